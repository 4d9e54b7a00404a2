// Upper bounds without a linear program, for nets of any size: a set of places which no transition adds tokens to in
// the balance never holds more than at the start. Of a lock it is the places where it is held and where it is free; of
// a control token, its locations.
//
// A set grows from one place: a transition that adds to it must take from a place of the set, too. Where only one of
// its places can be that one, it comes in; where there are several, one after the other is tried. No place comes in
// that has been seen with more tokens than the set may hold. Source: the state machine components of M. Hack, "Analysis
// of production schemata by Petri nets" (1972).
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Net.h"

namespace Reseau {

class Composantes {
public:
    /// @param net must outlive it
    explicit Composantes(const Net& net);

    /// Looks for a set with `place` that holds no more than `vus[place]` tokens at the start. It may miss one.
    /// @param vus the largest count known to be reached, by place
    /// @param travail how many arcs may still be followed
    /// @return its places, ascending
    std::optional<std::vector<std::uint32_t>> chercher(std::uint32_t place, const std::vector<Compte>& vus,
                                                       std::uint64_t& travail);

private:
    struct Arc {
        std::uint32_t transition;
        Compte effet;
    };

    bool completer(const std::vector<Compte>& vus, std::size_t premiere);
    bool propager(const std::vector<Compte>& vus);
    std::vector<std::uint32_t> candidates(std::uint32_t transition, const std::vector<Compte>& vus) const;
    void ajouter(std::uint32_t place);
    void revenir(std::size_t taille);

    const Net& net_;
    std::vector<std::vector<Arc>> arcs_;  // by place
    // The set under way; empty between calls.
    std::vector<std::uint32_t> ensemble_;
    std::vector<bool> dedans_;
    std::vector<Large> gains_;              // by transition
    std::vector<std::uint32_t> gagnantes_;  // transitions that have come to add to the set
    std::size_t vues_ = 0;                  // of them
    Compte borne_ = 0;
    Large jetons_ = 0;
    std::uint64_t travail_ = 0;
};

}  // namespace Reseau
