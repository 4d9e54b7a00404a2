// What a solution of the state equation contradicts that holds for every run: the distinction of cases that comes next
// (see Cas.h). Each operation looks for one kind, and gives nothing when the solution is free of it.
//
// Source: J. Esparza, S. Melzer, "Verification of safety properties using integer programming", FMSD 16 (2000), for
// refining the state equation by what it does not see.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Cas.h"
#include "Reseau/Equation.h"
#include "Reseau/Moments.h"
#include "Reseau/Simplexe.h"

namespace Reseau {

class Contradictions {
public:
    /// @param equation must outlive it
    explicit Contradictions(const Equation& equation) : equation_(equation) {}

    /// What is fired that no run can come to: out of a place that is never marked (entry), or where the control token
    /// is too early (departure).
    /// @param infinie the solution is that of a program without a largest value, and goes on along a ray
    std::optional<Cas> horsDAtteinte(const Simplexe& s, bool infinie) const;
    /// A transition that is fired when what it needs is not there, the first time or the last, in whatever order the
    /// solution's firings are done. On a ray firings may be repeated for ever, and there is no last one.
    /// @param infinie as above
    std::optional<Cas> tropTot(const Simplexe& s, bool infinie) const;
    /// Two firings that the solution allows in neither order. What has served before is tried first.
    /// @param travail what it may cost
    std::optional<Cas> horsDOrdre(const Simplexe& s, std::uint64_t travail);
    /// What the solution contradicts because firing counts are integers (round).
    std::optional<Cas> arrondi(const Simplexe& s) const;
    /// A count that is not an integer: of the control token first (level), which decides most, then of a transition
    /// (threshold).
    std::optional<Cas> fraction(const Simplexe& s) const;
    /// Where the control token ends (level): no contradiction, but there or elsewhere.
    std::optional<Cas> finDuJeton(const Simplexe& s) const;

private:
    const Equation& equation_;
    std::vector<Moments::Paire> paires_;  // that have contradicted a solution, the latest first
};

}  // namespace Reseau
