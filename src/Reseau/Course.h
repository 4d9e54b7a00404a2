// A run written in bulk.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "Reseau/Net.h"

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

/// Thrown where a run reaches counts that do not fit.
struct Depassement : Debordement {
    explicit Depassement(std::vector<std::uint32_t> p) : places(std::move(p)) {}
    std::vector<std::uint32_t> places;  ///< that hold them at the end of a block
};

/// Goes through a block that can be fired from `m`.
/// @throws Depassement; Debordement when the block cannot be worked out; `m` stays as it is
void parcourir(const Net& net, const Bloc& bloc, std::vector<Compte>& m);

}  // namespace Reseau
