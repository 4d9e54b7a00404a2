// Checks a certificate against the text of the net. It shares no code with the analyser: it reads both texts itself and
// adds integers. What it accepts is true: every bound is reached by a run that it has followed, and exceeded by none.
#pragma once

#include <string>

namespace essai {

/// @param net a well-formed net
/// @param rapport what the analyser wrote for it with -v
/// @param verdictSeul whether -a was given
/// @return "" when the certificate proves the verdict and every bound that the marking lines show, else what is wrong
std::string verifier(const std::string& net, const std::string& rapport, bool verdictSeul);

}  // namespace essai
