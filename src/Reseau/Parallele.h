// Places that count the same. Where every transition changes several places by the same amounts, but for a positive
// factor of each, the count of one tells those of all: M(p) = M0(p) + (M(q) - M0(q)) f(p) / f(q), with the greatest
// common divisor f of a place's changes. One of them, q, is enough. Needing n tokens of p is needing as many of q as
// there are when p holds n or the next larger count that it can have.
//
// Redundant places that always have tokens to spare are a special case: see M. Silva, E. Teruel, J. M. Colom, "Linear
// algebraic and linear programming techniques for the analysis of place/transition net systems", LNCS 1491 (1998).
// Places that are redundant because of several others are left: their bounds are no function of those of the others.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Net.h"

namespace Reseau {

/// A place that another one tells the count of.
struct Fusion {
    std::uint32_t place;
    std::uint32_t temoin;
    Compte facteur;  ///< M(place) - M0(place) is `facteur` / `diviseur` times M(temoin) - M0(temoin)
    Compte diviseur;

    /// The count of `place` when `temoin` holds `compte`.
    /// @throws Debordement when it does not fit
    Compte compte(const Net& net, Compte compte) const;
};

/// Takes places out of the transitions for each of which another place tells its count, and makes the transitions need
/// as much of that one.
std::vector<Fusion> fusionner(Net& net);

}  // namespace Reseau
