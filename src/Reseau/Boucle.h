// Ways of the control token back to where it stands that add something and take nothing, as firing counts, and counts
// that lead to them. Both come from the state equation, and tell neither the order of the firings nor whether there is
// one. Every transition moves the token.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Cas.h"
#include "Reseau/Equation.h"
#include "Reseau/Simplexe.h"

namespace Reseau {

/// Whether there is such a way that adds to some places together.
struct Boucle {
    std::optional<std::vector<Compte>> tour;  ///< counts as small as may be of one that is of one piece
    std::optional<Cas> borne;                 ///< weights that show that there is none bound the sum of the places
};

/// @return one of the two, or neither when it is not found soon
Boucle boucle(const Equation& equation, const std::vector<std::uint32_t>& places);

/// Whatever such a way takes, by place, but for the token: with so much at hand it can be gone in any order.
/// @throws Debordement
std::vector<Compte> provisions(const Equation& equation, const std::vector<Compte>& tour);

/// By place, whether such a way takes the token from there.
std::vector<bool> etapes(const Equation& equation, const std::vector<Compte>& tour);

/// Counts as small as may be, rounded up, that bring the token to one of `etapes` from the start and leave
/// `provisions`.
/// @param s a program of the state equation that has been solved; its constraints hold here, too
/// @return nothing when there are none, or none are found soon
std::optional<std::vector<Compte>> approche(const Equation& equation, Simplexe s, const std::vector<bool>& etapes,
                                            const std::vector<Compte>& provisions);

}  // namespace Reseau
