#include "Analyse/Rapport.h"

#include <charconv>
#include <limits>

namespace {

/// The integer that `text` begins with, at the nearer end of the range when it is beyond; 0 when there is
/// none.
int readCount(std::string_view text) {
    int count = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), count);
    if (read.ec != std::errc::result_out_of_range) return count;
    return text.front() == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
}

/// Cuts what stands before the first `separator` off the front of `text`, and the separator with it.
std::string_view takePiece(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    const std::string_view piece = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return piece;
}

}  // namespace

std::map<std::string, int> readBounds(std::string_view report, std::string_view counter) {
    std::map<std::string, int> bounds;
    while (!report.empty()) {
        std::string_view marking = takePiece(report, '\n');
        takePiece(marking, ':');  // leaves nothing of a line without a colon
        while (!marking.empty()) {
            std::string_view count = takePiece(marking, ' ');
            if (!count.starts_with(counter)) continue;
            count.remove_prefix(counter.size());

            const bool isSingle = count.find('*') == std::string_view::npos;
            const std::string name(takePiece(count, '*'));
            const int n = isSingle ? 1 : readCount(count);
            const auto known = bounds.find(name);
            if (n > (known == bounds.end() ? 0 : known->second)) bounds[name] = n;
        }
    }
    return bounds;
}
