// Upper bounds from the state equation, with proofs. The largest value of a place over all integers x >= 0 with
// M0 + C x >= 0 bounds it. The linear relaxation is solved exactly (see Equation.h), and where its solution is not the
// count vector of any run (see Contradiction.h), cases are distinguished that every run falls into (see Cas.h,
// Separation.h). Where it may be one, a run with these counts is looked for (see Realisation.h).
//
// Here the questions are asked, one after the other, and what one of them has taught is kept for the next ones.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "Reseau/Cas.h"
#include "Reseau/Contradiction.h"
#include "Reseau/Equation.h"
#include "Reseau/Jeton.h"
#include "Reseau/Net.h"

namespace Reseau {

class Tireur;

struct Majoration {
    Large borne;  ///< no reachable marking holds more in the asked places together
    std::vector<Cas> preuve;
    std::vector<std::uint32_t> passages;  ///< when it is of the net unfolded by these transitions (see Depliage.h)
    /// When it is what a set of places holds at most, with their weights, instead of a proof by cases. Places of one
    /// set share it.
    std::shared_ptr<const Creux> composante = nullptr;
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
    /// Of several places of the control token it looks for a run that marks any one.
    /// @return nothing when the state equation gives no bound
    /// @param effort how much it may cost; each step means four times as much as the one below
    /// @param depense what it has cost is added here, in entries of the program rewritten
    std::optional<Majoration> majorer(const std::vector<std::uint32_t>& places, Large minorant, Tireur* tireur,
                                      unsigned effort, std::uint64_t& depense);

    const std::optional<Jeton>& jeton() const { return equation_.jeton; }

    /// What it costs to set up the program.
    static std::uint64_t construction(const Net& net);
    /// What one question may cost.
    static std::uint64_t travail(unsigned effort);

private:
    std::optional<Majoration> parInvariant(std::uint32_t place, Large minorant) const;

    std::uint64_t travail_ = 0;  // what the question under way may still cost
    const Equation equation_;
    Contradictions contradictions_;
    std::vector<std::uint32_t> departs_;  // the ways to begin, where there are several
    // Bounds without cases, each with the place that it was found for; they bound other places, too.
    std::vector<std::pair<std::uint32_t, Cas>> invariants_;
};

}  // namespace Reseau
