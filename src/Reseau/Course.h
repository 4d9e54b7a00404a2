// A run written in bulk.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Compte.h"

namespace Reseau {

/// A transition, fired `fois` times in a row.
struct Elan {
    std::uint32_t transition;
    Compte fois;
};

/// A sequence, gone through `fois` times in a row.
struct Bloc {
    std::vector<Elan> elans;
    Compte fois;
};

using Course = std::vector<Bloc>;

}  // namespace Reseau
