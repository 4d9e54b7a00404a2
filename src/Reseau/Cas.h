// The proof of an upper bound: a tree of cases that every run falls into, each closed by non-negative multipliers which
// show its bound, a place invariant for short.
//
//   threshold  transition t is fired at most k times, or at least k + 1 times.
//   level      place p holds at most k tokens at the end, or at least k + 1.
//   entry      a set Q of places, empty at the start, is never entered, and then nothing that needs a place of Q is
//              fired; or a transition that enters Q from outside is fired.
//   departure  a set U of places of the control token (see Jeton.h) is never left, and then no place is below zero when
//              it is entered, after everything that takes the token elsewhere; or a transition that leaves U is fired.
//   first, last
//              transition t is never fired; or it is, and what it needs is there when it is fired for the first or the
//              last time.
//   order      transition t is never fired; or u is not; or the first or last firing of t comes before that of u; or
//              behind it; and either time what they need is there.
//   round      no distinction: what follows from the constraints in force because firing counts are integers.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "Reseau/Compte.h"

namespace Reseau {

/// Of places or constraints, by number, ascending.
using Multiplicateurs = std::vector<std::pair<std::uint32_t, Large>>;

/// One node of a proof. A case distinction is followed by its first case and then the others, as in a prefix notation.
struct Cas {
    enum Genre { BORNE, SEUIL, NIVEAU, ENTREE, DEPART, PREMIER, DERNIER, ORDRE, COUPE } genre = BORNE;
    /// BORNE: `facteur` * (the sum of the asked places) + sum of multiplier * constraint <= `total`, where the left
    /// side has no positive coefficient for any transition. With `facteur` 0, `total` is negative: the case cannot
    /// occur. The constraints are the places, then those of the cases above in their order.
    Large facteur = 0;
    Large total = 0;
    Multiplicateurs multiplicateurs;
    /// COUPE: the sum of multiplier * constraint, divided by `facteur` and rounded: each transition's coefficient up,
    /// then the constant down.
    /// PREMIER, DERNIER: the sum of multiplier * place, of the places alone, as it is when `transition` is fired for
    /// the first time or the last: less what it needs; of its own firings none, or all but one, are done; of the others
    /// it is only known that they are not more than in the end, so that what lowers the sum is left out. In the first
    /// case one constraint: it is not fired. In the second two: it is; and the sum is not negative. SEUIL: "transition
    /// <= seuil", or "transition >= seuil + 1"; one constraint either way. NIVEAU: the same of `places[0]`.
    std::uint32_t transition = 0;
    Compte seuil = 0;
    /// ENTREE: the set Q. In the first case one constraint for each transition that needs a place of Q, ascending: it
    /// is not fired; in the second one constraint: the transitions that need nothing of Q and put into Q are fired once
    /// or more.
    /// DEPART: the set U. In the first case one constraint for each transition that leaves U, ascending: it is not
    /// fired; and then one for each place of `bornees`: it is not below zero when U is entered. In the second one
    /// constraint: the transitions that leave U are fired once or more.
    std::vector<std::uint32_t> places;
    std::vector<std::uint32_t> bornees;
    /// ORDRE: two firings, of two transitions. In the first and the second case one constraint: the one transition is
    /// not fired, or the other. In the third, where the one firing comes first, and in the fourth, three: both are
    /// fired; and the sum of multiplier * place at the earlier moment and at the later one, less what is needed there,
    /// is not negative. Of the firings before the moments it is known how often the two transitions have been fired by
    /// themselves, that there are no more before the earlier one than before the later one, and no more than in the
    /// end.
    struct Evenement {
        std::uint32_t transition;
        bool dernier;  ///< the last firing, or else the first
        bool operator==(const Evenement&) const = default;
    };
    std::vector<Evenement> evenements;
    /// ORDRE: of the places at the earlier moment and at the later one in the third case, and then in the fourth.
    std::vector<Multiplicateurs> moments;

    /// How many cases follow.
    std::uint32_t suites() const { return genre == BORNE ? 0 : genre == COUPE ? 1 : genre == ORDRE ? 4 : 2; }
};

}  // namespace Reseau
