// The state equation of a net, as what every bound is worked out from. A reachable marking is M0 + C x for the vector x
// of firing counts, and no place is below zero. The variables of its linear program are the transitions, then one for
// each place (its marking), then one for each constraint that is added.
//
// Source: T. Murata, "Petri nets: properties, analysis and applications", Proc. IEEE 77 (1989).
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Cas.h"
#include "Reseau/Contrainte.h"
#include "Reseau/Jeton.h"
#include "Reseau/Net.h"
#include "Reseau/Simplexe.h"

namespace Reseau {

struct Equation {
    /// @param net must outlive it
    /// @param travail what is worked out of it may cost so much together; must outlive it
    Equation(const Net& net, std::uint64_t* travail);

    /// The entries of the program.
    static std::uint64_t cases(const Net& net) { return (net.places.size() + 1) * (net.transitions.size() + 1); }
    /// Accounts for a copy of the program.
    void payer() const { *travail -= std::min(*travail, cases(net)); }

    Simplexe::Variable transitions() const { return static_cast<Simplexe::Variable>(net.transitions.size()); }
    /// The variable of what `place` holds in the end.
    Simplexe::Variable marquage(std::uint32_t place) const { return transitions() + place; }
    /// The multipliers of the places and of the constraints added. Those of the transitions follow from them.
    Multiplicateurs desContraintes(const Simplexe::Forme& multiplicateurs) const;

    const Net& net;
    const std::optional<Jeton> jeton;
    const std::vector<Contrainte> etats;  ///< by place
    std::uint64_t* const travail;
    /// "Nothing is fired" is its solution: without needless firings solutions are easier to turn into runs, and the
    /// dictionary is at its sparsest.
    const Simplexe programme;
};

}  // namespace Reseau
