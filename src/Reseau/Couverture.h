// The minimal coverability set: the finite set of maximal markings, omega included, whose downward closure is
// the closure of what the net can reach. Every question asked here is read off it.
//
// The construction keeps an index over the maximal markings and a frontier, and repeats: take the frontier's next
// marking; fire each transition; apply every acceleration learnt so far, and every transition that can be repeated;
// drop the successor when a kept marking covers it; otherwise compare it with its ancestors, and where it strictly
// covers one, learn the acceleration of the path between them and apply it; then keep it, and retire the maximal
// markings that it covers.
//
// Why the answer is exact, whatever the order: what is kept is reachable or a limit of reachable markings,
// since firing and accelerating are. At the end every maximal marking has been expanded and each of its
// successors is covered: the downward closure of the maximal markings contains the initial marking and is
// closed under firing. A retired marking is never lost, since what retired it is kept; nothing else is ever
// removed, no subtree is pruned. (Pruning subtrees of covered markings is the known unsound shortcut.) A
// retired marking stays an ancestor of what waits in the frontier: forgetting it could delay an acceleration. Where
// nothing is left to accelerate (Epuisement in Conservation.h), ancestors are neither compared nor kept. Where it is
// led on from outside (`suivre`), what it comes to is reachable or a limit as well, and waits like all the rest.
//
// Why it ends: an infinite branch would hold an infinite ascending sequence (Dickson), hence infinitely many
// accelerations, each of which turns a place into omega. That holds as well when far ancestors are compared
// only at every 256th depth, as here, since the branch has infinitely many of those, too.
//
// Where no marking covers another one, none of this is needed: see Enumeration.h, which takes over then.
//
// Sources: R. M. Karp, R. E. Miller, "Parallel program schemata", JCSS 3 (1969); A. Valmari, H. Hansen, "Old
// and new algorithms for minimal coverability sets", Fundamenta Informaticae 131 (2014), for keeping retired
// ancestors and the order; A. Finkel, S. Haddad, I. Khmelnitsky (see Acceleration.h) for the accelerations.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "Reseau/Acceleration.h"
#include "Reseau/Antichaine.h"
#include "Reseau/Arbre.h"
#include "Reseau/Champs.h"
#include "Reseau/Conservation.h"
#include "Reseau/Enumeration.h"
#include "Reseau/Franchissement.h"
#include "Reseau/Frontiere.h"
#include "Reseau/Marquage.h"
#include "Reseau/Net.h"

namespace Reseau {

class Couverture {
public:
    /// @param net must outlive the construction
    /// @param fils threads that may take part, 0 for as many as there are cores; they change nothing but the time
    explicit Couverture(const Net& net, unsigned fils = 0) : Couverture(net, net.initial, fils) {}
    /// From another marking than the net's, which may hold OMEGA.
    Couverture(const Net& net, std::vector<Compte> initial, unsigned fils);
    Couverture(const Couverture&) = delete;
    Couverture& operator=(const Couverture&) = delete;

    /// Sets what `explorer` may stop at: once every place has been seen with `buts[place]` tokens.
    void viser(std::vector<Compte> buts) {
        buts_ = std::move(buts);
        atteintes_ = 0;
    }

    /// Declares that no reachable marking covers another one, which makes the search cheaper.
    void declarerIncomparables() { incomparables_ = true; }

    /// Keeps the whole tree, so that `chemin` can be asked; to be called before `explorer`.
    void garderLesChemins();

    /// Goes on until the set is complete, or what was aimed at is reached, or the first omega when `arretOmega`, or
    /// `limite` markings have been expanded.
    /// @return whether it ended for another reason than the limit
    /// @throws Debordement, std::bad_alloc
    bool explorer(std::uint64_t limite, bool arretOmega);

    /// Goes from a marking of the tree by these transitions, as far as they can be fired, and keeps where that leads.
    void suivre(const Creux& depart, const std::vector<std::uint32_t>& tirs);

    /// The marking that it starts from.
    const std::vector<Compte>& initial() const { return initial_; }
    /// Whether the coverability set is complete, so that the maxima are the bounds.
    bool complete() const { return commencee_ && (enumeration_ ? enumeration_->finie() : frontiere_.vide()); }
    /// Whether some place has been found to be unbounded.
    bool nonBornee() const { return nonBornee_; }
    /// The largest count seen, by place; the place's exact bound once the set is complete.
    const std::vector<Compte>& maxima() const { return maxima_; }
    /// A maximal marking with the largest count of `place`; the same one whenever the set is complete.
    Creux temoin(std::uint32_t place) const;
    /// Of all that has been kept the marking with the most omegas, then the most marked places, then the most tokens.
    const Creux& plusLarge() const { return plusLarge_; }
    /// Of the maximal markings that are the same in these places, and hold some omega, that with the most omegas each;
    /// so many of these as are asked for, those with the most omegas first.
    std::vector<Creux> plusLarges(const std::vector<std::uint32_t>& places, std::size_t nombre) const;
    /// The run from the initial marking to a maximal one, when the tree is kept.
    std::vector<Pas> chemin(const Creux& marquage) const;
    const Accelerations& accelerations() const { return accelerations_; }
    /// The run that leads to where the first acceleration was found; neither holds an acceleration.
    const std::vector<Pas>& tige() const { return tige_; }

    /// Calls f(marking) for each maximal marking, in an order that the net alone determines.
    void pourChaqueMaximal(const std::function<void(const Creux&)>& f) const;

    /// Markings expanded.
    std::uint64_t explores() const { return explores_; }
    /// Maximal markings found so far, whether or not they are expanded.
    std::uint64_t maximaux() const { return enumeration_ ? enumeration_->taille() : antichaine_.taille(); }
    /// Maximal or retired markings that wait to be expanded.
    std::uint64_t enAttente() const { return enumeration_ ? enumeration_->enAttente() : frontiere_.taille(); }
    /// Bytes of one packed marking.
    std::size_t octets() const { return enumeration_ ? enumeration_->octets() : champs_->octets(); }

private:
    static constexpr std::uint32_t AUCUN = Arbre::AUCUN;
    static constexpr std::uint32_t PROCHES = 256;  // ancestors that are compared in any case

    void commencer();
    bool construire(std::uint64_t limite, bool arretOmega);
    bool enumerer(std::uint64_t limite);
    void ceder();
    bool atteinte();
    bool sommet();
    void developper();
    bool depassee();
    void fermer(std::uint32_t noeud);
    void tirer(std::uint32_t tir, std::vector<std::uint32_t>& pompes);
    bool successeur(std::uint32_t tir);
    void avancer(std::uint32_t tir);
    bool connu() const;
    Frontiere::Rang compterLeCourant();
    bool accelerer(std::uint32_t tir, std::vector<std::uint32_t>& pompes);
    void garder(std::uint32_t parent, std::uint32_t tir, std::vector<std::uint32_t> pompes);
    void elargir();
    /// The layout of the maximal markings.
    const Champs& champs() const { return enumeration_ ? enumeration_->champs() : *champs_; }
    /// Calls f(kept marking) for each maximal marking.
    template <class F>
    void parcourir(F&& f) const;

    const Net& net_;
    const std::vector<Compte> initial_;
    unsigned fils_;
    std::vector<Compte> plafonds_;  // the largest finite counts that must fit, by place, at least 1
    Elargissement elargissement_;
    bool ample_ = false;  // whether `champs_` has more room than is needed
    std::unique_ptr<const Champs> champs_;
    Franchissement franchissement_;
    Antichaine antichaine_;
    Arbre arbre_;
    Lignee lignee_;
    Accelerations accelerations_;
    Epuisement epuisement_;
    Frontiere frontiere_;
    std::uint32_t noeud_ = AUCUN;  // of `parent_`, when it has one
    bool epuise_ = false;          // whether nothing that `parent_` leads to can be accelerated
    std::uint32_t connues_ = 0;    // of the accelerations, how many do not change `parent_`
    std::vector<std::uint32_t> tirs_;
    std::vector<std::uint64_t> marquee_;  // by place, how many of the expanded markings mark it
    std::uint64_t gardes_ = 0;
    Marquage parent_;
    Marquage courant_;
    std::unique_ptr<Enumeration> enumeration_;  // once it has taken over

    std::vector<Compte> maxima_;
    std::vector<Compte> buts_;
    std::uint32_t atteintes_ = 0;  // places, from the first one on, that have been seen with their aims
    Frontiere::Rang rangLePlusLarge_;
    Creux plusLarge_;
    std::vector<Pas> tige_;
    std::uint64_t explores_ = 0;
    bool nonBornee_ = false;
    bool commencee_ = false;
    bool incomparables_ = false;
    bool chemins_ = false;
};

}  // namespace Reseau
