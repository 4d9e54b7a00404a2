// Makes a net smaller that reaches the same counts, step by step until nothing changes any more:
//
//   - A transition that needs more of a place than there is, where only transitions that are never fired raise it, is
//     never fired. What can be fired is over-approximated by firing without taking anything away.
//   - A place that no transition left changes is constant: it is settled, and nobody needs to ask it any more.
//   - A transition that another one dominates, or that only takes, is never needed (Domination.h).
//   - Of places that count the same one is enough (Parallele.h).
//
// What is done is kept, so that it can be proved, and undone in the counts. The first is the reduction of dead
// transitions in T. Murata, "Petri nets: properties, analysis and applications", Proc. IEEE 77 (1989).
#pragma once

#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

#include "Reseau/Domination.h"
#include "Reseau/Net.h"
#include "Reseau/Parallele.h"

namespace Reseau {

struct Mortes {
    std::vector<std::uint32_t> transitions;
};

class Reduction {
public:
    /// In the numbers of the given net; the dead ones begin.
    using Etape = std::variant<Mortes, Dominee, Fusion>;

    explicit Reduction(const Net& net);

    /// What is left: all places, some of which no transition changes any more, and the transitions without names that
    /// are left. Constant places are in no transition.
    const Net& net() const { return net_; }
    /// By transition that is left, its number in the given net.
    const std::vector<std::uint32_t>& transitions() const { return transitions_; }
    const std::vector<Etape>& etapes() const { return etapes_; }
    /// Gives the transitions away: nobody needs them twice.
    std::vector<Transition> ceder() { return std::exchange(net_.transitions, {}); }

    /// Sets the counts of the places that others tell the counts of.
    /// @throws Debordement when one does not fit
    void restituer(std::vector<Compte>& comptes) const;

private:
    void copierVivantes(const Net& net);
    void retirerMortes();
    bool retirerDominees();
    bool retirerParalleles();
    void oublierConstantes();
    void garder(const std::vector<bool>& gardees);

    Net net_;
    std::vector<std::uint32_t> transitions_;
    std::vector<Etape> etapes_;
};

}  // namespace Reseau
