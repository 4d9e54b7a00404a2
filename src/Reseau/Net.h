// A place/transition net: places with their initial counts, transitions with what they take and what they
// put. Places are numbered from 0 in the order of their first mention; everything behind the reader works on
// these numbers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Reseau/Compte.h"

namespace Reseau {

/// A place and a count: an arc's weight, or the tokens of a place in a sparse marking.
struct Poids {
    std::uint32_t place;
    Compte compte;
    bool operator==(const Poids&) const = default;
};

/// The non-zero entries of a vector over the places, in ascending order of place.
using Creux = std::vector<Poids>;

/// @return the count that `v` holds for `place`, 0 when it has no entry.
Compte valeur(const Creux& v, std::uint32_t place);

struct Transition {
    std::string nom;
    Creux pre;    ///< tokens needed and taken, all positive
    Creux post;   ///< tokens put, all positive
    Creux effet;  ///< post - pre, without zeros
};

struct Net {
    std::string nom;
    std::vector<std::string> places;  ///< names, by number
    std::vector<Compte> initial;      ///< tokens at the start, by place; finite
    std::vector<Transition> transitions;

    /// Adds a transition and works out its effect. Both sides may list a place several times, and with count
    /// 0.
    /// @throws Debordement when the counts of one place do not add up to 64 bits.
    void ajouter(std::string nomTransition, Creux pre, Creux post);
};

}  // namespace Reseau
