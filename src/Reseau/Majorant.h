// Upper bounds from the state equation, with proofs. A reachable marking is M0 + C x for the vector x of firing counts,
// so the largest value of a place over all integers x >= 0 with M0 + C x >= 0 bounds it. The linear relaxation is
// solved exactly, and where its solution is not the count vector of any run, cases are distinguished that every run
// falls into:
//
//   threshold  transition t is fired at most k times, or at least k + 1 times (the solution has a fraction between
//   them); entry      a set Q of places, empty at the start, is never entered, and then nothing that needs a place of Q
//   is fired;
//              or a transition that enters Q from outside is fired (the solution fires what needs Q and never enters
//              it, as with the loops of a node which the control token does not visit).
//
// Each case that is closed leaves non-negative multipliers which show its bound: a place invariant, for short. The tree
// of cases with its multipliers is the proof; checking it takes integer sums only.
//
// Sources: T. Murata, "Petri nets: properties, analysis and applications", Proc. IEEE 77 (1989), for the state
// equation; A. H. Land, A. G. Doig, "An automatic method of solving discrete programming problems", Econometrica 28
// (1960), for the thresholds; J. Esparza, S. Melzer, "Verification of safety properties using integer programming",
// FMSD 16 (2000), for refining the state equation by what it does not see.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "Reseau/Net.h"
#include "Reseau/Simplexe.h"

namespace Reseau {

class Tireur;

/// One node of a proof. A case distinction is followed by its first case and then its second, as in a prefix notation.
struct Cas {
    enum Genre { BORNE, SEUIL, ENTREE } genre = BORNE;
    /// BORNE: `facteur` * (the sum of the asked places) + sum of multiplier * constraint <= `total`, where the left
    /// side has no positive coefficient for any transition. With `facteur` 0, `total` is negative: the case cannot
    /// occur. The constraints are the places, then those of the cases above in their order.
    Large facteur = 0;
    Large total = 0;
    std::vector<std::pair<std::uint32_t, Large>> multiplicateurs;
    /// SEUIL: "transition <= seuil", or "transition >= seuil + 1"; one constraint either way.
    std::uint32_t transition = 0;
    Compte seuil = 0;
    /// ENTREE: the set Q. In the first case one constraint for each transition that needs a place of Q, ascending: it
    /// is not fired; in the second one constraint: the transitions that need nothing of Q and put into Q are fired once
    /// or more.
    std::vector<std::uint32_t> places;
};

struct Majoration {
    Large borne;  ///< no reachable marking holds more in the asked places together
    std::vector<Cas> preuve;
};

class Majorants {
public:
    /// @param net must outlive it
    explicit Majorants(const Net& net);

    /// Whether the net is small enough for a dense program.
    static bool possible(const Net& net);

    /// Bounds the sum of `places`. Cases are distinguished until the bound is `minorant`, or the search has cost too
    /// much; the firing counts of every solution are handed to `tireur`, when there is one, whose minorant of a single
    /// asked place counts.
    /// @return nothing when the state equation gives no bound
    /// @param effort how much it may cost; each step means four times as much as the one below
    /// @param depense what it has cost is added here, in entries of the program rewritten
    std::optional<Majoration> majorer(const std::vector<std::uint32_t>& places, Large minorant, Tireur* tireur,
                                      unsigned effort, std::uint64_t& depense);

    /// What one question may cost.
    static std::uint64_t travail(unsigned effort);

private:
    struct Question;

    std::optional<Majoration> chercher(Question& q);
    void resoudre(Simplexe& s, Question& q);
    void distinguer(const Simplexe& s, Question& q, Cas cas);
    void clore(const Simplexe& s, Question& q, Simplexe::Issue issue);
    std::vector<std::uint32_t> jamaisMarquees(const std::vector<bool>& tirees) const;
    bool touche(const Creux& cote, const std::vector<bool>& places) const;

    const Net& net_;
    std::uint64_t travail_ = 0;
    // Each question starts here, from "nothing is fired": solutions without needless firings are the easier ones to
    // turn into runs, and the dictionary is at its sparsest.
    const Simplexe initial_;
};

}  // namespace Reseau
