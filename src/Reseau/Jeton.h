// The control token of a net, when it has one: places that hold one token together, whatever is fired. The token of a
// model of the editor walks over the nodes.
//
// It gives the firings an order that the state equation does not see. A set of the token's places which nothing that is
// fired leaves is entered once, and everything that takes the token elsewhere is fired before: with these firings alone
// no place may fall below zero.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Net.h"

namespace Reseau {

class Jeton {
public:
    static constexpr std::uint32_t NULLE_PART = ~std::uint32_t{0};

    /// Looks for a control token by propagation: a transition that takes the token puts it somewhere, and one that does
    /// not take it does not put it. What is found is one; it may be missed.
    static std::optional<Jeton> trouver(const Net& net);

    /// The places that hold the token, ascending.
    const std::vector<std::uint32_t>& places() const { return places_; }
    std::uint32_t depart() const { return depart_; }
    /// Where a transition takes the token from and puts it, NULLE_PART for one that leaves it alone.
    std::uint32_t de(std::uint32_t t) const { return de_[t]; }
    std::uint32_t vers(std::uint32_t t) const { return vers_[t]; }

    /// For each of the token's places that it comes to when only `tirees` are fired: the places that it can go on to,
    /// as a bit vector over all places, without repetition and without those that hold it at the start.
    std::vector<std::vector<bool>> derniers(const std::vector<bool>& tirees) const;

    /// The places that `tirees` connect, as bit vectors over all places, one for each component; every transition moves
    /// the token.
    std::vector<std::vector<bool>> composantes(const std::vector<bool>& tirees) const;

private:
    std::vector<std::uint32_t> places_;
    std::size_t nombre_ = 0;  // of all places of the net
    std::uint32_t depart_ = 0;
    std::vector<std::uint32_t> de_;
    std::vector<std::uint32_t> vers_;
};

}  // namespace Reseau
