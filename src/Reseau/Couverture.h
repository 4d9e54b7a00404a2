// The minimal coverability set: the finite set of maximal markings, omega included, whose downward closure is
// the closure of what the net can reach. Every question asked here is read off it.
//
// The construction keeps a tree of markings, an index over the maximal ones and a frontier, and repeats: take
// the frontier's marking with the most tokens (most omegas first); fire each transition; apply every
// acceleration learnt so far; drop the successor when a kept marking covers it; otherwise compare it with its
// ancestors, and where it strictly covers one, learn the acceleration of the path between them and apply it;
// then keep it, and retire the maximal markings that it covers.
//
// Why the answer is exact, whatever the order: what is kept is reachable or a limit of reachable markings,
// since firing and accelerating are. At the end every maximal marking has been expanded and each of its
// successors is covered: the downward closure of the maximal markings contains the initial marking and is
// closed under firing. A retired marking is never lost, since what retired it is kept; nothing else is ever
// removed, no subtree is pruned. (Pruning subtrees of covered markings is the known unsound shortcut.) A
// retired marking stays an ancestor: forgetting it could only delay an acceleration.
//
// Why it ends: an infinite branch would hold an infinite ascending sequence (Dickson), hence infinitely many
// accelerations, each of which turns a place into omega. That holds as well when far ancestors are compared
// only at every 256th depth, as here, since the branch has infinitely many of those, too.
//
// Sources: R. M. Karp, R. E. Miller, "Parallel program schemata", JCSS 3 (1969); A. Valmari, H. Hansen, "Old
// and new algorithms for minimal coverability sets", Fundamenta Informaticae 131 (2014), for keeping retired
// ancestors and the order; A. Finkel, S. Haddad, I. Khmelnitsky (see Acceleration.h) for the accelerations.
#pragma once

#include <cstdint>
#include <queue>
#include <unordered_map>
#include <vector>

#include "Reseau/Acceleration.h"
#include "Reseau/Antichaine.h"
#include "Reseau/Marquage.h"
#include "Reseau/Net.h"
#include "Reseau/Registre.h"
#include "Reseau/Reserve.h"

namespace Reseau {

class Couverture {
public:
    /// @param net must outlive the construction
    explicit Couverture(const Net& net);

    /// Sets what `explorer` may stop at: once every place has been seen with `buts[place]` tokens.
    void viser(std::vector<Compte> buts);

    /// Declares that no reachable marking covers another one, which makes the search cheaper.
    void declarerIncomparables() { incomparables_ = true; }

    /// Goes on until the set is complete, or what was aimed at is reached, or the first omega when `arretOmega`, or
    /// `limite` markings have been expanded.
    /// @return whether it ended for another reason than the limit
    /// @throws Debordement, std::bad_alloc
    bool explorer(std::uint64_t limite, bool arretOmega);

    /// Whether the coverability set is complete, so that the maxima are the bounds.
    bool complete() const { return commencee_ && frontiere_.empty(); }
    /// Whether some place has been found to be unbounded.
    bool nonBornee() const { return nonBornee_; }
    /// The largest count seen, by place; the place's exact bound once the set is complete.
    const std::vector<Compte>& maxima() const { return maxima_; }
    /// The number of a kept marking with the largest count of `place`.
    std::uint32_t temoin(std::uint32_t place) const { return temoins_[place]; }
    Creux marquage(std::uint32_t numero) const { return reserve_.creux(noeuds_[numero].adresse); }
    /// The run from the initial marking to a kept one.
    std::vector<Pas> chemin(std::uint32_t numero) const;
    const Accelerations& accelerations() const { return accelerations_; }
    /// The run that leads to where the first acceleration was found; neither holds an acceleration.
    std::vector<Pas> tige() const { return chemin(tige_); }

    /// The numbers of the maximal markings, ascending.
    std::vector<std::uint32_t> maximaux() const;

    std::uint64_t explores() const { return explores_; }
    std::uint64_t gardes() const { return noeuds_.size(); }
    std::uint64_t octets() const { return reserve_.octets(); }

private:
    static constexpr std::uint32_t AUCUN = ~std::uint32_t{0};
    static constexpr std::uint32_t REPERE = 256;

    struct Noeud {
        Reserve::Adresse adresse;
        std::uint32_t parent;
        std::uint32_t tir;     // the transition fired at the parent
        std::uint32_t repere;  // the nearest proper ancestor whose depth is a multiple of REPERE
        std::uint32_t profondeur;
    };
    struct Attente {
        std::uint32_t omegas;
        std::uint32_t numero;
        std::uint64_t jetons;
        bool operator<(const Attente& b) const {
            if (omegas != b.omegas) return omegas < b.omegas;
            if (jetons != b.jetons) return jetons < b.jetons;
            return numero < b.numero;
        }
    };
    /// What a transition needs of one place.
    struct Besoin {
        std::uint32_t transition;
        Compte compte;
    };

    void developper(std::uint32_t numero);
    void tirables();
    bool augmente(std::uint32_t tir) const;
    void successeur(std::uint32_t parent, std::uint32_t tir);
    bool connu();
    void accelerer(std::uint32_t parent, std::uint32_t tir, std::vector<std::uint32_t>& appliquees);
    std::uint32_t suivantAncetre(std::uint32_t numero, std::uint32_t pas) const;
    void pasDe(std::uint32_t numero, std::vector<Pas>& envers) const;
    void garder(std::uint32_t parent, std::uint32_t tir, std::vector<std::uint32_t> appliquees);

    const Net& net_;
    Reserve reserve_;
    Registre registre_;
    Antichaine antichaine_;
    Accelerations accelerations_;
    std::vector<Noeud> noeuds_;
    std::vector<bool> retires_;
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> appliquees_;  // at a node, after its transition
    std::priority_queue<Attente> frontiere_;

    std::vector<std::vector<Besoin>> besoins_;  // by place
    std::vector<std::uint32_t> sources_;        // transitions that need nothing
    std::vector<std::uint32_t> satisfaits_;     // by transition, how many of its needs are met
    std::vector<std::uint32_t> tirables_;
    std::vector<std::uint32_t> couvertes_;
    Marquage courant_;

    std::vector<Compte> maxima_;
    std::vector<std::uint32_t> temoins_;
    std::vector<Compte> buts_;
    std::size_t butsManques_ = 0;
    std::uint64_t explores_ = 0;
    std::uint32_t tige_ = AUCUN;
    bool nonBornee_ = false;
    bool commencee_ = false;
    bool incomparables_ = false;
};

}  // namespace Reseau
