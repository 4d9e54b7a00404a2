// Ways on from a marking in which much is unbounded already. What is unbounded there is not asked for any more: it is
// left out of the net. What remains is often little, since many transitions then do the same, and falls into parts that
// run independently, such as the threads of a program whose messages are without bound. Each part is explored for
// itself, and what it reaches that has not been seen is a way on: of thousands of transitions that are enabled where
// much is unbounded, those that lead somewhere.
//
// It is a guess. In the net itself the ways are gone from that marking, and what they take of the places left out is
// taken.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Net.h"

namespace Reseau {

struct Prolongements {
    std::vector<std::vector<std::uint32_t>> chemins;  ///< transitions, to be fired as far as they can be
    std::uint64_t explores = 0;                       ///< markings expanded to find them
};

/// @param depart a reachable marking or a limit of such
/// @param vus what has been seen of each place, OMEGA when nobody asks for more
/// @param limite markings expanded in each part
/// @return ways from `depart` to what is unbounded there, or marked and has not been seen so; one may serve many places
Prolongements prolonger(const Net& net, const Creux& depart, const std::vector<Compte>& vus, std::uint64_t limite);

/// @param bornes OMEGA where a place is left out
/// @return the places of each part of what is left
std::vector<std::vector<std::uint32_t>> partiesSansOmegas(const Net& net, const std::vector<Compte>& bornes);

}  // namespace Reseau
