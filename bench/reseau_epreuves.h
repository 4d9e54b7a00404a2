// The nets on which the analyser stands beside other constructions.
#pragma once

#include <functional>
#include <string>

#include "Reseau/Net.h"

namespace familles {

struct Epreuve {
    std::string genre;  ///< "families", "random" or "dense random"
    std::string nom;
    int n;  ///< the family's parameter, or what the random numbers begin with
    Reseau::Net net;
};

/// All families with the parameters of the table; random nets, `graines` for each of nine sizes; and five times as many
/// dense ones that some initial marking makes unbounded: on the others, which conserve something, the sets are of any
/// size and the constructions enumerate.
/// @param f returns whether to go on
/// @return whether it always did
bool pourChaqueEpreuve(int graines, const std::function<bool(const Epreuve&)>& f);

}  // namespace familles
