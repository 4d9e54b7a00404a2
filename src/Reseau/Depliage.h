// The net in two phases, before certain transitions are fired and after, for nets with a control token.
//
// The state equation does not see an order. In the unfolded net each of the token's places is there twice: the token
// begins in the first ones, and the first of these transitions that is fired takes it over to the second ones, for
// good. Each run of the net is one of the unfolded net and the other way round, and what is no place of the token
// holds the same; but now the firings before that moment are told from those after it, what is there at that moment
// counts, and the token's way must be of one piece in each phase.
//
// Sources: S. R. Kosaraju, "Decidability of reachability in vector addition systems", STOC (1982); J.-L. Lambert, "A
// structure to decide reachability in Petri nets", Theoretical Computer Science 99 (1992), where runs are told apart by
// such moments, too.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Course.h"
#include "Reseau/Jeton.h"
#include "Reseau/Net.h"

namespace Reseau {

class Depliage {
public:
    /// @param jeton the net's
    /// @param passages the transitions that end the first phase, ascending; each moves the token
    Depliage(const Net& net, const Jeton& jeton, const std::vector<std::uint32_t>& passages);

    /// The unfolded net. The places and transitions of the given one keep their numbers, those of the token and those
    /// that move it in the first phase; those of the second phase stand behind, in the same order.
    const Net& net() const { return net_; }

    /// The place or transition of the given net that one of the unfolded net stands for.
    std::uint32_t place(std::uint32_t p) const { return places_[p]; }
    std::uint32_t transition(std::uint32_t t) const { return transitions_[t]; }
    /// The places that stand for one of the given net.
    std::vector<std::uint32_t> images(std::uint32_t place) const;

    /// A run of the unfolded net as one of the given net.
    Course replier(Course course) const;

private:
    Net net_;
    std::vector<std::uint32_t> places_;
    std::vector<std::uint32_t> transitions_;
};

/// Sets of transitions whose first firing may well tell two phases apart: what adds to a place that is not the token's,
/// but for what the net may begin with; and each transition for itself.
std::vector<std::vector<std::uint32_t>> passagesPossibles(const Net& net, const Jeton& jeton);

}  // namespace Reseau
