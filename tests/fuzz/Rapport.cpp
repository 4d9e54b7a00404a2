// Any bytes as the report of a net analyser: the bounds read from it are those that the few lines below read, for the
// molecules of the model and for the counter of the prefix net.
#include "Analyse/Rapport.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <sstream>
#include <string>

namespace {

using Int = std::numeric_limits<int>;

/// The integer at the beginning of `text`, held within the int range.
int leadingInteger(const std::string& text) {
    const bool isNegative = text.starts_with('-');
    double value = 0.0;
    for (std::size_t i = isNegative ? 1 : 0; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = 10.0 * value + (text[i] - '0');
    }
    if (isNegative) value = -value;
    if (value > Int::max()) return Int::max();
    if (value < Int::min()) return Int::min();
    return static_cast<int>(value);
}

std::map<std::string, int> boundsIn(const std::string& report, const std::string& counter) {
    std::map<std::string, int> bounds;
    std::istringstream lines(report);
    for (std::string line; std::getline(lines, line);) {
        if (line.find(':') == std::string::npos) continue;
        std::istringstream tokens(line.substr(line.find(':') + 1));
        for (std::string token; std::getline(tokens, token, ' ');) {
            if (token.substr(0, counter.size()) != counter) continue;
            token.erase(0, counter.size());
            const std::size_t star = token.find('*');
            const int count = star == std::string::npos ? 1 : leadingInteger(token.substr(star + 1));
            const std::string molecule = token.substr(0, star);
            if (bounds.count(molecule) == 0 ? count > 0 : count > bounds[molecule]) bounds[molecule] = count;
        }
    }
    return bounds;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string report(reinterpret_cast<const char*>(data), size);
    for (const char* counter : {"m", "r_m"})
        EXPECT_EQ(readBounds(report, counter), boundsIn(report, counter)) << counter;
    return 0;
}
