// Nets in which nothing is ever gained or lost: when some weighting of the places, all weights positive, is left
// unchanged by every transition, no reachable marking covers another one. Then the exploration needs neither the index
// of the maximal markings nor the comparison with ancestors; telling equal markings apart is enough.
//
// Where some places are omega already, the weighting is asked of the others; and when it only never grows, no run from
// there comes back to more than before: there is nothing left to accelerate, and ancestors are of no use.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "Reseau/Champs.h"
#include "Reseau/Net.h"

namespace Reseau {

/// @return whether each of these transitions puts as many tokens as it takes
bool sommeConstante(const Net& net, const std::vector<std::uint32_t>& transitions);

/// @return whether a positive place invariant has been found (exactly; it may be missed in a net too large to ask)
bool conservatif(const Net& net);

/// For the markings that an exploration expands, whether there is nothing left to accelerate.
class Epuisement {
public:
    /// @param net must outlive it
    explicit Epuisement(const Net& net) : net_(net) {}

    /// @return whether it is certain that no run from `m` comes back to `m` with more in a finite place. It is asked in
    /// earnest when so many markings have had these places omega that the question costs less than they did.
    bool chez(const Champs& champs, const Mot* m);

private:
    struct Reponse {
        std::uint64_t marquages = 0;
        bool epuise = false;
    };

    const Net& net_;
    std::map<std::vector<std::uint32_t>, Reponse> reponses_;  // by the places that are omega
    std::vector<std::uint32_t> omegas_;
};

}  // namespace Reseau
