// How runs begin. A model of the editor may have several initial nodes: a place with one token that nothing puts back,
// and a transition for each of them that takes it. What holds after one of them need not hold after another, so that
// they are better looked at one by one.
#pragma once

#include <cstdint>
#include <vector>

#include "Reseau/Net.h"

namespace Reseau {

/// The transitions one of which every run begins with and which are never fired again: all that the initial marking
/// enables, when they share a token that is not put back. None when there is no such token,
/// or when they are so many that each for itself would cost too much.
std::vector<std::uint32_t> departs(const Net& net);

/// The marking after `depart`, which the initial marking enables.
/// @throws Debordement
std::vector<Compte> apres(const Net& net, std::uint32_t depart);

}  // namespace Reseau
