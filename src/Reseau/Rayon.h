// Rays of the state equation: firing counts that can be added for ever, in integers, for runs that show what can be
// repeated.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Equation.h"
#include "Reseau/Simplexe.h"

namespace Reseau {

/// The firings of a solution without a largest value, and those that lead along its ray as far as integers go, `fois`
/// times.
/// @return nothing when they leave 64 bits
std::optional<std::vector<Compte>> leLongDuRayon(const Equation& equation, const Simplexe& s, Large fois);

/// The values of the transitions in a solution, and the smallest multiple of them in integers.
/// @return nothing when it leaves 64 bits
std::optional<std::vector<Compte>> multipleEntier(const Equation& equation, const Simplexe& s);

}  // namespace Reseau
