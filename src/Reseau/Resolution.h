// One net, answered: the order in which the means are tried, cheapest first.
//
//   1. `essayer`: a short exploration. Small nets are complete here, and most unbounded ones show it. Then `finir`:
//   2. The state equation: an upper bound for each place, with a proof, and runs fired in bulk that show how much of it
//   can be
//      reached. Where the two meet the place is settled, whatever the number of its tokens.
//   3. A longer exploration, and 2 again with more patience for what is left; a few times.
//   4. The exploration goes on until every place that is left has reached its upper bound, or is complete.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Couverture.h"
#include "Reseau/Majorant.h"
#include "Reseau/Net.h"
#include "Reseau/Reseau.h"
#include "Reseau/Tir.h"

namespace Reseau {

class Resolution {
public:
    /// @param net must outlive it
    /// @param fils see Options
    Resolution(const Net& net, unsigned fils) : couverture(net, fils), tireur(net), net_(net) {}

    /// The short exploration.
    /// @throws Debordement, std::bad_alloc
    void essayer(const Options& options);
    /// Finds every bound, or when only the verdict is asked whether all are finite.
    /// @throws Debordement, std::bad_alloc
    void finir(const Options& options);

    bool bornee() const { return !couverture.nonBornee() && tireur.pompes().empty(); }
    /// The bound of a place, OMEGA when there is none.
    Compte borne(std::uint32_t place) const;
    /// Whether a run of `tireur` reaches the bound, rather than a marking of `couverture`.
    bool parCourse(std::uint32_t place) const;
    /// A marking that reaches the bound.
    Creux temoin(std::uint32_t place) const;

    Couverture couverture;
    Tireur tireur;
    /// The state equation, once it has been asked.
    std::optional<Majorants> majorants;
    /// The upper bounds by the state equation, by place. What has none is bounded by the complete coverability set.
    std::vector<std::optional<Majoration>> majorations;
    /// When only the verdict was asked: the bound of all places together.
    std::optional<Majoration> ensemble;

private:
    bool majorer(unsigned effort);
    bool majorerEnsemble(unsigned effort);

    const Net& net_;
    bool fini_ = false;
};

}  // namespace Reseau
