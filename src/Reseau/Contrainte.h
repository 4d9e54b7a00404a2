// What a case of a proof says about the firing counts, as linear constraints.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "Reseau/Cas.h"
#include "Reseau/Jeton.h"
#include "Reseau/Net.h"

namespace Reseau {

/// `constante` + the sum of coefficient * (firings of the transition) >= 0
struct Contrainte {
    Large constante = 0;
    std::vector<std::pair<std::uint32_t, Large>> forme;
};

/// The state equation of a place: its count at the end is not negative.
Contrainte etat(const Net& net, std::uint32_t place);

/// The constraints that hold in each case of a distinction.
/// @param jeton the net's control token; needed for DEPART
/// @throws Abandon when a number does not fit
std::vector<std::vector<Contrainte>> distinguer(const Net& net, const Jeton* jeton, const Cas& cas);

/// What a case of the kind COUPE adds to the constraints in force, those of the places first.
/// @throws Abandon when a number does not fit
Contrainte coupe(const Cas& cas, const std::vector<const Contrainte*>& enVigueur, std::size_t transitions);

/// The count of `place` when the token enters the set `u` for good, at the least.
Contrainte entree(const Net& net, const Jeton& jeton, const std::vector<bool>& u, std::uint32_t place);

bool touche(const Creux& cote, const std::vector<bool>& places);

}  // namespace Reseau
