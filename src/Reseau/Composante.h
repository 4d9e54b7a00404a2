// Upper bounds without a linear program, for nets of any size: a set of places which no transition adds tokens to in
// the balance never holds more than at the start. Of a lock it is the places where it is held and where it is free; of
// a control token, its locations.
//
// A set grows from one place: a transition that adds to it must take from a place of the set, too. Where only one of
// its places can be that one, it comes in; where there are several, one after the other is tried. No place comes in
// that has been seen with more tokens than the set may hold. A token of a place weighs as much as it must, which is one
// in most nets: it weighs more where what a transition puts at once is taken one by one. Source: the state machine
// components of M. Hack, "Analysis of production schemata by Petri nets" (1972).
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "Reseau/Listes.h"
#include "Reseau/Net.h"

namespace Reseau {

/// What the places hold at the start, by weight.
Large poidsInitial(const Net& net, const Creux& poids);

class Composantes {
public:
    static constexpr Compte LEGER = 1000;              // a weight that most nets do with,
    static constexpr Compte PESANT = Compte{1} << 40;  // and one whose sums stay within 128 bits

    /// @param net must outlive it
    explicit Composantes(const Net& net);

    /// Looks for a set that bounds `place` by `borne`. It may miss one.
    /// @param vus the largest count known to be reached, by place
    /// @param travail how many arcs may still be followed
    /// @return its places, ascending, with their weights
    std::optional<Creux> chercher(std::uint32_t place, Compte borne, const std::vector<Compte>& vus,
                                  std::uint64_t& travail);
    /// Looks for weights for all places, each at least one, of which the sum never becomes more: one each and more
    /// where they must be. It may miss them.
    /// @param plusLourd no weight is more
    /// @return as `chercher`
    std::optional<Creux> couvrir(const std::vector<Compte>& vus, Compte plusLourd, std::uint64_t& travail);

private:
    struct Arc {
        std::uint32_t transition;
        Compte effet;
    };
    /// Several places can make a transition add no more.
    struct Choix {
        std::size_t premiere;       // the transition, among the gaining ones
        std::size_t ajouts;         // before the choice
        std::size_t gagnantes;      // before the choice
        std::vector<Poids> places;  // not tried yet, the next one last
    };

    std::optional<Creux> depuis(const Creux& germe, Compte borne, const std::vector<Compte>& vus, std::uint64_t plus,
                                std::uint64_t& travail);
    std::vector<std::uint32_t> avalDabord() const;
    bool completer(const std::vector<Compte>& vus);
    bool propager(const std::vector<Compte>& vus);
    std::vector<Poids> candidates(std::uint32_t transition, const std::vector<Compte>& vus);
    bool admissible(const Poids& p, const std::vector<Compte>& vus) const;
    Large capacite(Large poids) const { return poids * (static_cast<Large>(borne_) + 1) - 1; }
    void depenser(std::size_t arcs) { travail_ -= std::min<std::uint64_t>(travail_, arcs); }
    void ajouter(const Poids& p);
    void revenir(std::size_t taille);

    const Net& net_;
    Listes<Arc> arcs_;  // by place
    // The set under way; empty between calls.
    std::vector<Poids> ajouts_;             // weights, in the order in which they came in
    std::vector<Compte> poids_;             // by place
    std::vector<Large> gains_;              // by transition
    std::vector<std::uint32_t> gagnantes_;  // transitions that have come to add to the set
    std::size_t vues_ = 0;                  // of them
    std::uint32_t place_ = 0;
    Compte borne_ = 0;
    Large jetons_ = 0;
    bool toutes_ = false;  // whether every place is in
    Compte plusLourd_ = 0;
    std::uint64_t travail_ = 0;
};

}  // namespace Reseau
