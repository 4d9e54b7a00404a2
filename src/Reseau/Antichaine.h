// The maximal markings found so far, in an index for the questions of the construction: is this marking covered by one
// of them, which of them does it cover, and is it still one of them?
//
// A discrimination tree: an inner node splits the markings below it by "place p holds at least s", with p and s chosen
// from the markings themselves so that the halves balance; the markings lie packed in the leaves. A query that is
// covered in p has to look only on one side. Besides, every node knows the join and the meet of what lies below it (the
// largest and the smallest count of each place, itself a packed marking): a subtree is left out when its join does not
// cover the query, or its meet is not covered by it.
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "Reseau/Blocs.h"
#include "Reseau/Champs.h"
#include "Reseau/Liasse.h"

namespace Reseau {

class Antichaine {
public:
    /// @param champs must outlive it
    explicit Antichaine(const Champs& champs) : champs_(&champs), bornes_(2 * champs.octets()) {}

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

private:
    static constexpr std::uint32_t FEUILLE = ~std::uint32_t{0};
    static constexpr std::uint32_t CAPACITE = 64;
    static constexpr std::uint32_t CLAIRSEME = 16;  // members of a leaf on average, below which the tree is built anew

    struct Branche {
        Compte seuil = 0;
        std::uint32_t place = FEUILLE;
        // Of an inner node: the one below for those with less than `seuil`; that for the others follows it. Of a leaf:
        // its number in `feuilles_`.
        std::uint32_t suite = 0;
    };
    struct Coupe {
        std::uint32_t place;
        Compte seuil;
        std::uint32_t ecart;  // from the even split
    };

    const std::uint8_t* jointure(std::uint32_t branche) const { return bornes_.en(branche); }
    const std::uint8_t* rencontre(std::uint32_t branche) const { return bornes_.en(branche) + champs_->octets(); }
    std::uint32_t feuille(const Mot* m) const;
    void brancher(std::uint32_t feuille, const Mot* premier);
    void englober(std::uint32_t branche, const Mot* m);
    void scinder(std::uint32_t branche);
    Coupe meilleureCoupe(const std::vector<std::vector<Mot>>& membres) const;
    void rebatir(const Champs& champs);

    const Champs* champs_;
    std::deque<Branche> branches_;
    std::deque<Liasse> feuilles_;
    Blocs bornes_;  // by branch, join and meet
    std::uint64_t taille_ = 0;
    mutable std::vector<std::uint32_t> pile_;
};

}  // namespace Reseau
