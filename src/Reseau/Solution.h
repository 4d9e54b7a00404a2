// Solutions that are as good as one of the state equation and easier to turn into a run: that fire less, and in whole
// numbers.
//
// Source: A. H. Land, A. G. Doig, "An automatic method of solving discrete programming problems", Econometrica 28
// (1960), for the search of whole numbers.
#pragma once

#include <optional>

#include "Reseau/Equation.h"
#include "Reseau/Simplexe.h"

namespace Reseau {

/// A solution that is as good, to the integer, and fires the least; it fires nothing in circles.
/// @param s maximises `forme`
/// @return nothing when that would cost too much
std::optional<Simplexe> moindresTirs(const Equation& equation, const Simplexe& s, const Simplexe::Forme& forme);

/// A solution in integers, near the given one and of few firings: thresholds are set, the one with fewer firings first.
/// @return nothing when none is found soon
std::optional<Simplexe> enEntiers(const Equation& equation, Simplexe s);

}  // namespace Reseau
