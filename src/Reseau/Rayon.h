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

/// Counts as small as may be that a way of the token back to where it stands may have which adds to `place` and takes
/// nothing: a ray whose firings are connected. Every transition moves the token.
/// @return nothing when none is found soon
std::optional<std::vector<Compte>> boucle(const Equation& equation, std::uint32_t place);

}  // namespace Reseau
