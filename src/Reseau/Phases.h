// The state equation of unfolded nets (see Depliage.h): for a place whose upper bound and largest count seen are still
// apart, the net is unfolded in one way after the other, and its state equation is asked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Jeton.h"
#include "Reseau/Majorant.h"
#include "Reseau/Net.h"
#include "Reseau/Tir.h"

namespace Reseau {

class Phases {
public:
    /// @param net, jeton must outlive it
    Phases(const Net& net, const Jeton& jeton);

    /// Whether there is a way to unfold the net that leaves it small enough.
    bool possible() const { return !passages_.empty(); }

    /// Bounds a place by the net unfolded in the way whose turn it is. Runs that reach more than tireur.minorants()
    /// are handed to `tireur`.
    /// @return as Majorants::majorer, whose other parameters these are
    std::optional<Majoration> majorer(std::uint32_t place, Large minorant, Tireur& tireur, unsigned effort,
                                      std::uint64_t& depense);

private:
    const Net& net_;
    const Jeton& jeton_;
    std::vector<std::vector<std::uint32_t>> passages_;  // the ways
    std::vector<std::size_t> tours_;                    // questions put so far, by place
};

}  // namespace Reseau
