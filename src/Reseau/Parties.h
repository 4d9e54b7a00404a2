// Cuts a net where nothing connects it. Parts that share no place run independently: what is reachable is the product,
// so each part is answered alone and the product is never built.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Net.h"
#include "Reseau/Reduction.h"

namespace Reseau {

/// A part as a net of its own, without names, and where its places and transitions stand in the given net.
struct Partie {
    Net net;
    std::vector<std::uint32_t> places;
    std::vector<std::uint32_t> transitions;
};

/// Makes parts of what a reduction has left, in ascending order of size; they take its transitions over. A place that
/// is in none keeps its initial count for ever, or another one tells its count.
std::vector<Partie> decouper(Reduction& reduction);

}  // namespace Reseau
