// Runs to many places, one after the other, for nets of thousands of places that hold a few tokens each: a walk goes
// on from where it stands to the nearest place that is still to be seen with more tokens than ever.
//
// What is near, and by which way, tells a relaxation: firing takes nothing away, so that the cheapest way to one more
// token of a place is worked out as shortest paths are. The transitions of the way are fired as far as they really can
// be, what is missing first; where tokens that were counted on are gone, another way is worked out. Where it is known
// how many tokens a place can hold, all that can come that way are brought at once. Every run is fired, so what it
// reaches is reached. It may find no run where there is one.
//
// Sources: B. Bonet, H. Geffner, "Planning as heuristic search", Artificial Intelligence 129 (2001), for the
// relaxation and its costs; J. Hoffmann, B. Nebel, "The FF planning system", JAIR 14 (2001), for following its plans;
// D. Knuth, "A generalization of Dijkstra's algorithm", Information Processing Letters 6 (1977).
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "Reseau/Course.h"
#include "Reseau/Listes.h"
#include "Reseau/Net.h"

namespace Reseau {

class Tireur;

class Visites {
public:
    /// @param net must outlive it
    explicit Visites(const Net& net);

    /// How many tokens a place is to be seen with, OMEGA where nothing is known; no more than vus[place] when it is
    /// settled.
    using But = std::function<Compte(std::uint32_t place)>;

    /// Walks until nothing is left to be seen, no way is found, or the work is done. The runs are handed to `tireur`,
    /// with the pumps in them.
    /// @param vus the largest count known to be reached, by place; kept up to date
    /// @param travail how many arcs may be looked at
    /// @param enMasse whether all tokens are brought at once where it is known how many are asked for
    void aller(std::vector<Compte>& vus, const But& but, Tireur& tireur, std::uint64_t travail, bool enMasse);

private:
    static constexpr std::uint32_t AUCUNE = ~std::uint32_t{0};
    using Cout = std::uint64_t;

    /// What a place costs in the relaxation, and the transition that brings it.
    struct Prix {
        Cout cout;
        std::uint32_t source;
        bool fixe;  // nothing cheaper will be found
    };
    /// What a transition costs, and how many of the places that it needs have no price yet.
    struct Depense {
        Cout cout;
        std::uint32_t attend;
    };
    /// The blocks of the walk that can be repeated for ever.
    struct Cycle {
        std::size_t debut;
        std::size_t fin;
    };

    void recommencer(Tireur& tireur);
    bool detendre(std::uint32_t but);
    void preparer();
    void proposer(std::uint32_t tir);
    void fixer(std::uint32_t place);
    bool atteindre(std::uint32_t place);
    bool suivreLePlan(std::uint32_t place, Compte but);
    std::uint32_t manque(std::uint32_t tir) const;
    Compte repetitions(std::uint32_t tir) const;
    bool tirer(std::uint32_t tir, Compte fois);
    bool vise(std::uint32_t place) const { return buts_[place] > (*vus_)[place]; }
    void voir(std::uint32_t place);
    void pomper(std::uint32_t place);
    bool depenser(std::size_t arcs);

    const Net& net_;
    Listes<Poids> demandes_;   // by place, the transitions (as `place`) that need it, and how much
    std::size_t besoins_ = 0;  // of all transitions together
    std::vector<Compte>* vus_ = nullptr;
    const But* but_ = nullptr;
    std::vector<Compte> buts_;  // by place; 0 where it is not asked for any more
    std::uint64_t travail_ = 0;
    bool enMasse_ = false;

    // The walk.
    std::vector<Compte> marquage_;
    Course course_;
    std::vector<Cycle> cycles_;

    std::vector<std::uint32_t> remises_;  // places that it found no way to from where it was

    // The relaxation from `marquage_`.
    std::vector<Prix> prix_;                               // by place
    std::vector<Depense> depenses_;                        // by transition
    std::vector<std::pair<Cout, std::uint32_t>> file_;     // a heap of places
    std::vector<std::pair<Cout, std::uint32_t>> proches_;  // places, the nearest first
    std::vector<std::uint32_t> plan_;                      // transitions to be fired, the next one last
    std::vector<Compte> bilan_;                            // by place; all zero between calls
};

}  // namespace Reseau
