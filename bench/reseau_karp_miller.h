// The yardstick: the tree of Karp and Miller as it stands in textbooks. A branch ends at a marking that stands above it
// on the same path; every ancestor that is strictly covered accelerates. Nothing else is kept, shared or skipped.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "Reseau/Net.h"

namespace etalon {

struct Resultat {
    bool bornee;
    std::vector<Reseau::Compte> bornes;
    std::uint64_t noeuds;
};

/// @return nothing when the tree has more than `limite` nodes
std::optional<Resultat> karpMiller(const Reseau::Net& net,
                                   std::uint64_t limite = std::numeric_limits<std::uint64_t>::max());

}  // namespace etalon
