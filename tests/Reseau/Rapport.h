// What a report says, read as a person would read it.
#pragma once

#include <map>
#include <string>

namespace essai {

/// Every place's largest count in a report's marking lines, "w" as -1; places without tokens are missing.
std::map<std::string, long long> comptesDuRapport(const std::string& rapport);

}  // namespace essai
