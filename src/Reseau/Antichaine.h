// The maximal markings found so far, in an index for the questions of the construction: is this marking covered by one
// of them, which of them does it cover, and is it still one of them?
//
// A discrimination tree: an inner node splits the markings below it by "place p holds at least s", with p and s chosen
// from the markings themselves so that the halves balance; the markings lie packed in the leaves. A query that is
// covered in p has to look only on one side. Where no place divides better than one to sixteen, as when each marking
// holds tokens in a few places out of thousands, many places do it together: "some place p of a set holds at least
// s(p)". Markings come in an order that can make the tree as deep as it is large; then the subtree at fault is built
// anew (I. Galperin, R. Rivest, "Scapegoat trees", SODA 1993). A leaf that nothing divides stays whole until it is
// twice as large. Besides, every node knows the join
// and the meet of what lies below it (the largest and the smallest count of each place, itself a packed marking): a
// subtree is left out when its join does not cover the query, or its meet is not covered by it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "Reseau/Blocs.h"
#include "Reseau/Champs.h"
#include "Reseau/Liasse.h"

namespace Reseau {

class Antichaine {
public:
    /// @param champs must outlive it
    explicit Antichaine(const Champs& champs)
        : champs_(&champs), bornes_(2 * champs.octets()), seuils_(champs.octets()) {}

    std::uint64_t taille() const { return taille_; }

    /// @return whether a member covers `m`
    bool couvre(const Mot* m) const;
    /// @return whether `m` is a member
    bool contient(const Mot* m) const;
    /// Removes the members that `m` covers.
    void retirer(const Mot* m);
    void ajouter(const Mot* m);
    /// Goes over to another layout, which must outlive it.
    void convertir(const Champs& champs);

    /// Calls f(kept marking) for every member.
    template <class F>
    void pourChaque(F&& f) const {
        for (const Liasse& l : feuilles_)
            for (std::uint32_t i = 0; i < l.taille(); ++i) f(l.en(i, champs_->octets()));
    }

    /// Calls f(kept marking) for every member that holds so much of a place, or more.
    template <class F>
    void pourChaqueAvec(std::uint32_t place, Compte compte, F&& f) const {
        if (branches_.empty()) return;
        pile_.assign(1, 0);
        while (!pile_.empty()) {
            const std::uint32_t ici = pile_.back();
            pile_.pop_back();
            if (champs_->lire(jointure(ici), place) < compte) continue;
            const Branche& b = branches_[ici];
            if (b.place != FEUILLE) {
                pile_.insert(pile_.end(), {b.suite, b.suite + 1});
                continue;
            }
            const Liasse& l = feuilles_[b.suite];
            for (std::uint32_t i = 0; i < l.taille(); ++i)
                if (champs_->lire(l.en(i, champs_->octets()), place) >= compte) f(l.en(i, champs_->octets()));
        }
    }

private:
    static constexpr std::uint32_t FEUILLE = ~std::uint32_t{0};
    static constexpr std::uint32_t ENSEMBLE = FEUILLE - 1;
    static constexpr std::size_t CAPACITE = 64;     // of a leaf: members, or
    static constexpr std::size_t OCTETS = 1536;     // bytes, whichever is more
    static constexpr std::size_t GRAIN = 32;        // bytes by which a leaf grows
    static constexpr std::size_t MOINDRE = 16;      // of a cut, the smaller part: one of so many at least
    static constexpr std::uint32_t CLAIRSEME = 16;  // members of a leaf on average, below which the tree is built anew
    static constexpr std::size_t ECHANTILLON = 1024;  // members that decide how a subtree is built
    static constexpr std::uint64_t CREDIT = 8;        // members that may be moved for each one added

    struct Branche {
        // Of a leaf: how many members it holds before it is split. Of a cut by a set: the number of its thresholds.
        Compte seuil = 0;
        std::uint32_t place = FEUILLE;  // or ENSEMBLE
        // Of an inner node: the one below for those with less than `seuil`; that for the others follows it. Of a leaf:
        // its number in `feuilles_`.
        std::uint32_t suite = 0;
    };
    struct Coupe {
        std::uint32_t place;
        Compte seuil;
        std::size_t ecart;  // from the even split
        Creux ensemble;     // the thresholds of a set
    };
    using Membres = std::vector<std::vector<Mot>>;

    std::size_t capacite() const { return std::max(CAPACITE, OCTETS / champs_->octets()); }
    const std::uint8_t* jointure(std::uint32_t branche) const { return bornes_.en(branche); }
    const std::uint8_t* rencontre(std::uint32_t branche) const { return bornes_.en(branche) + champs_->octets(); }
    /// Whether the marking holds as much as the cut asks for; then so does whatever covers it.
    bool franchit(const Branche& b, const Sonde& s) const {
        if (b.place == ENSEMBLE) return champs_->franchit(s, seuils_.en(static_cast<std::size_t>(b.seuil)));
        return champs_->lire(s.mots, b.place) >= b.seuil;
    }
    std::uint32_t vers(const Branche& b, const Sonde& s) const { return b.suite + (franchit(b, s) ? 1 : 0); }
    template <bool EPARS>
    bool couvre(Sonde sonde) const;
    template <bool EPARS>
    void retirer(Sonde sonde);
    std::uint32_t sousLaBranche(std::uint32_t branche, const Mot* m);
    void englober(std::uint32_t branche, const Sonde& s);
    void equilibrer(const std::vector<std::uint32_t>& chemin);
    std::uint64_t compter(std::uint32_t branche) const;
    void rebatir(std::uint32_t branche);
    void demonter(std::uint32_t branche, std::vector<Liasse>& liasses);
    void batir(std::uint32_t branche, Membres::iterator debut, Membres::iterator fin, std::size_t poids);
    std::uint32_t nouvellePaire();
    std::uint32_t nouvelleFeuille();
    std::uint32_t nouveauxSeuils(const Creux& ensemble);
    Coupe meilleureCoupe(std::uint32_t branche, Membres::iterator debut, Membres::iterator fin) const;
    static void parLeMilieu(std::vector<Compte>& comptes, std::uint32_t place, Coupe& choix);
    static std::optional<Compte> seuilRare(std::vector<Compte>& comptes);

    const Champs* champs_;
    std::deque<Branche> branches_;
    std::deque<Liasse> feuilles_;
    Blocs bornes_;  // by branch, join and meet
    Blocs seuils_;  // of the cuts by sets, see Champs::franchit
    std::vector<std::uint32_t> pairesLibres_;
    std::vector<std::uint32_t> feuillesLibres_;
    std::vector<std::uint32_t> seuilsLibres_;
    std::uint64_t taille_ = 0;
    std::uint64_t retires_ = 0;  // since the tree was built
    std::uint64_t credit_ = 0;
    mutable std::vector<std::uint32_t> pile_;
    mutable std::vector<std::uint32_t> pleins_;  // of the marking that the call under way is about
    std::vector<std::uint32_t> chemin_;
};

}  // namespace Reseau
