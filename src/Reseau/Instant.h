// A firing of a solution that cannot be in its place: what a transition needs is there when it is fired for the first
// time or the last, and the others have been fired no more often than in the end. That is a linear program over the
// firings before the moment, or after it; where it has no solution, the counts are no run's.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Cas.h"
#include "Reseau/Equation.h"

namespace Reseau {

/// @param comptes what is fired in all; OMEGA is as many as one likes
/// @param genre PREMIER or DERNIER: when `t` is fired for the first time or the last, which it is
/// @return the distinction that the counts contradict; nothing when they do not, or it would cost too much
std::optional<Cas> instant(const Equation& equation, const std::vector<Compte>& comptes, std::uint32_t t,
                           Cas::Genre genre);

}  // namespace Reseau
