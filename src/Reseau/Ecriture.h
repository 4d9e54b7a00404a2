// Writes the report. Its reader looks for the words "not bounded" and for lines with a colon, so a colon
// stands in marking lines only and no name of the user's stands in the verdict. (A certificate, which is for another
// reader, holds names as they are.)
#pragma once

#include <string>

#include "Reseau/Net.h"
#include "Reseau/Reseau.h"

namespace Reseau {

/// The verdict line and the marking lines, "LABEL : place place*count ...", "*w" for OMEGA; then the certificate.
std::string ecrire(const Net& net, const Rapport& rapport);

}  // namespace Reseau
