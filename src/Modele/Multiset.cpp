#include "Modele/Multiset.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

namespace Modele {

namespace {

// The C locale's classes, whatever locale the toolkit has set.
bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isNameCharacter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '_'; }

bool addWord(Multiset& m, std::string_view word) {
    const auto nameBegin = std::find_if_not(word.begin(), word.end(), isDigit);
    const std::string_view digits(word.begin(), nameBegin);
    const std::string_view name(nameBegin, word.end());

    if (!std::all_of(name.begin(), name.end(), isNameCharacter)) return false;

    int count = 1;
    if (!digits.empty()) {
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), count);
        if (read.ec != std::errc{}) return false;
    }
    if (name.empty()) return false;

    int& total = m[std::string(name)];
    if (total > std::numeric_limits<int>::max() - count) return false;
    total += count;
    return true;
}

}  // namespace

bool toMap(Multiset& m, const std::string& text) {
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t space = rest.find(' ');
        const std::string_view word = rest.substr(0, space);
        if (!word.empty() && !addWord(m, word)) return false;
        rest.remove_prefix(space == std::string_view::npos ? rest.size() : space + 1);
    }
    return true;
}

std::string toText(const Multiset& m) {
    std::string text;
    for (const auto& [name, count] : m) {
        if (count <= 0) continue;
        if (count != 1) text += std::to_string(count);
        text += name;
        text += ' ';
    }
    return text;
}

}  // namespace Modele
