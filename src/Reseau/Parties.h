// Takes out of a net what cannot matter, and cuts the rest where nothing connects it.
//
//   - A transition that needs a place which no run can ever mark, or more of a constant place than it holds, is never
//   fired.
//     The places that can be marked are over-approximated by firing everything without taking anything away.
//   - A transition that changes nothing, or that does what another one does with the same need, adds no marking.
//   - A place that no transition left changes is constant: it is settled, and nobody needs to ask it any more.
//   - Parts that share no place run independently: what is reachable is the product, so each part is answered alone and
//   the
//     product is never built.
//
// None of this changes which counts a place can reach. The first is the reduction of dead transitions in T. Murata's
// survey (Proc. IEEE 77, 1989); the rest follows from the definitions.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Net.h"

namespace Reseau {

/// A part as a net of its own, without names, and where its places and transitions stand in the whole.
struct Partie {
    Net net;
    std::vector<std::uint32_t> places;
    std::vector<std::uint32_t> transitions;
};

/// @return by transition, whether it is found to be never fired
std::vector<bool> transitionsMortes(const Net& net);

/// The parts in ascending order of size. A place that is in none keeps its initial count for ever.
std::vector<Partie> decouper(const Net& net);

}  // namespace Reseau
