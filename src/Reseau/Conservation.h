// Nets in which nothing is ever gained or lost: when some weighting of the places, all weights positive, is left
// unchanged by every transition, no reachable marking covers another one. Then the exploration needs neither the index
// of the maximal markings nor the comparison with ancestors; telling equal markings apart is enough.
#pragma once

#include "Reseau/Net.h"

namespace Reseau {

/// @return whether every transition puts as many tokens as it takes
bool sommeConstante(const Net& net);

/// @return whether a positive place invariant has been found (exactly; it may be missed in a net too large to ask)
bool conservatif(const Net& net);

}  // namespace Reseau
