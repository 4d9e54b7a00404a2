// The frontier: the markings that wait to be expanded, and which of them is next.
//
// That with the most tokens comes first, which leaves few to wait; once there are omegas, that with the most of them,
// then the most marked places. But where those lead nowhere for a long time, an omega may be near elsewhere: the time
// a search takes has a heavy tail, which another beginning cuts off. So between the 256th and the 16384th expansion
// half of them are probes: from the least marking that waits on, one of the successors just kept, by chance, for 64
// markings. A probe has a long line of ancestors soon, and so finds accelerations; what it keeps waits in its place
// like all the rest. "By chance" means by a fixed sequence of numbers.
//
// Source: C. Gomes, B. Selman, N. Crato, H. Kautz, "Heavy-tailed phenomena in satisfiability and constraint
// satisfaction problems", Journal of Automated Reasoning 24 (2000), for beginning elsewhere.
#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <tuple>
#include <vector>

#include "Reseau/Arbre.h"
#include "Reseau/Champs.h"
#include "Reseau/Liasse.h"

namespace Reseau {

class Frontiere {
public:
    static constexpr std::uint32_t AUCUN = Arbre::AUCUN;

    /// What a marking is expanded by: the greatest comes first.
    struct Rang {
        std::uint32_t omegas = 0;
        std::uint32_t marquees = 0;  ///< places
        std::uint64_t jetons = 0;
        bool operator<(const Rang& autre) const {
            if (omegas == 0 && autre.omegas == 0)
                return std::tie(jetons, marquees) < std::tie(autre.jetons, autre.marquees);
            return std::tie(omegas, marquees, jetons) < std::tie(autre.omegas, autre.marquees, autre.jetons);
        }
    };

    bool vide() const { return listes_.empty(); }
    /// Markings that wait.
    std::uint64_t taille() const { return taille_; }

    /// Lets a node of the tree wait.
    /// @param connues of the accelerations, how many have been tried on it
    void ajouter(Arbre& arbre, const Rang& rang, std::uint32_t noeud, std::uint32_t connues);
    /// Lets a marking wait that needs no ancestors.
    void ajouterEpuise(const Champs& champs, const Rang& rang, const Mot* m);

    /// Chooses what is next, of one marking at least that waits; the same until it is removed.
    /// @param explores how many have been expanded
    void choisir(std::uint64_t explores);
    /// The chosen node, AUCUN when the chosen marking needs no ancestors.
    std::uint32_t noeud() const { return choisie_->second.tete; }
    /// Of the accelerations, how many have been tried on the chosen node.
    std::uint32_t connues() const { return choisie_->second.connues; }
    /// The chosen marking.
    void lire(const Arbre& arbre, const Champs& champs, Mot* m) const;
    /// Removes what has been chosen.
    void oter(Arbre& arbre, const Champs& champs);

    void convertir(const Champs& de, const Champs& vers);

private:
    /// What waits of one rank.
    struct Liste {
        std::uint32_t tete = AUCUN;  // nodes, chained through the tree, latest first
        std::uint32_t connues = 0;   // of the accelerations, how many have been tried on the head
        Liasse epuisees;             // markings that need no ancestors, latest last
        bool vide() const { return tete == AUCUN && epuisees.taille() == 0; }
    };
    using Listes = std::map<Rang, Liste>;

    Listes::iterator sonder(std::uint64_t explores);

    Listes listes_;
    Listes::iterator choisie_;
    std::uint64_t taille_ = 0;

    std::uint64_t fin_ = 0;        // of the probe: the expansion after its last
    std::vector<Rang> rencontre_;  // what the probe has kept and not yet gone on with
    std::size_t neufs_ = 0;        // from here on, what its last expansion has kept
    std::minstd_rand hasard_;
};

}  // namespace Reseau
