// Transitions that are never needed, because what they do another one does with less. A transition is dominated by
// another one that needs no more in any place and leaves no less in any: in a run to a marking the other one can stand
// in its place, and the run ends with no less. One that puts nothing in the balance is dominated by doing nothing. So
// without the dominated ones the same counts are reached and the same places are unbounded: the firing rule is
// monotone, the reason for which coverability is decidable (R. Karp, R. Miller, "Parallel program schemata", JCSS 3,
// 1969).
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Net.h"

namespace Reseau {

struct Dominee {
    std::uint32_t transition;
    std::optional<std::uint32_t> par;  ///< the one that dominates it; nothing when it only takes
};

/// Of transitions that dominate each other the first one stays. All can be dropped in this order, each while the one
/// that dominates it is there. Some may be missed where very many transitions lead from one place to another.
std::vector<Dominee> dominees(const Net& net);

}  // namespace Reseau
