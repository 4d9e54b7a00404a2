// What the net analyser reports: its marking lines, whatever else stands around them.
#pragma once

#include <map>
#include <string>
#include <string_view>

/// Reads marking lines, "LABEL : place place*n ...": the largest count of every place whose name begins with `counter`,
/// under the rest of its name. A count beyond the int range is the range's nearer end, one that is no number is 0.
std::map<std::string, int> readBounds(std::string_view report, std::string_view counter);
