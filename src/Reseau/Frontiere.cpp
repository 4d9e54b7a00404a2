// Ranks lead to lists; a probe remembers the ranks of what it keeps.
#include "Reseau/Frontiere.h"

#include <bit>
#include <iterator>
#include <utility>

namespace Reseau {

namespace {

constexpr std::uint64_t PREMIERE = 256;    // expansion that may belong to a probe
constexpr std::uint64_t DERNIERE = 16383;  // that may
constexpr std::uint64_t LONGUEUR = 64;     // of a probe, in expansions

/// Whether the expansion belongs to a probe: those in the second half between two powers of two do.
bool dUneSonde(std::uint64_t explores) {
    return explores >= PREMIERE && explores <= DERNIERE && (explores & std::bit_floor(explores) / 2) != 0;
}

}  // namespace

void Frontiere::ajouter(Arbre& arbre, const Rang& rang, std::uint32_t noeud, std::uint32_t connues) {
    Liste& liste = listes_[rang];
    arbre.suivant(noeud) = std::exchange(liste.tete, noeud);
    liste.connues = connues;
    ++taille_;
    if (fin_ > 0) rencontre_.push_back(rang);
}

void Frontiere::ajouterEpuise(const Champs& champs, const Rang& rang, const Mot* m) {
    champs.ranger(m, listes_[rang].epuisees.allonger(champs.octets()));
    ++taille_;
}

void Frontiere::choisir(std::uint64_t explores) {
    if (dUneSonde(explores)) {
        choisie_ = sonder(explores);
        if (choisie_->second.tete != AUCUN) return;  // else nothing is left to accelerate there
    } else {
        fin_ = 0;
        rencontre_.clear();
    }
    choisie_ = std::prev(listes_.end());
}

/// Where the probe goes on, or a new one begins.
Frontiere::Listes::iterator Frontiere::sonder(std::uint64_t explores) {
    if (explores >= fin_) {
        fin_ = explores + LONGUEUR;
        rencontre_.clear();
        neufs_ = 0;
    }
    if (neufs_ < rencontre_.size())
        std::swap(rencontre_.back(), rencontre_[neufs_ + hasard_() % (rencontre_.size() - neufs_)]);
    for (; !rencontre_.empty(); rencontre_.pop_back()) {
        neufs_ = rencontre_.size();
        if (const auto liste = listes_.find(rencontre_.back()); liste != listes_.end()) return liste;
    }
    neufs_ = 0;
    return listes_.begin();
}

void Frontiere::lire(const Arbre& arbre, const Champs& champs, Mot* m) const {
    const Liste& liste = choisie_->second;
    if (liste.tete == AUCUN)
        champs.reprendre(liste.epuisees.en(liste.epuisees.taille() - 1, champs.octets()), m);
    else
        arbre.lire(liste.tete, m);
}

void Frontiere::oter(Arbre& arbre, const Champs& champs) {
    Liste& liste = choisie_->second;
    if (liste.tete == AUCUN)
        liste.epuisees.raccourcir(liste.epuisees.taille() - 1, champs.octets());
    else
        liste.tete = arbre.suivant(liste.tete);
    liste.connues = 0;
    if (liste.vide()) listes_.erase(choisie_);
    --taille_;
}

void Frontiere::convertir(const Champs& de, const Champs& vers) {
    for (auto& [rang, liste] : listes_) liste.epuisees.convertir(de, vers);
}

}  // namespace Reseau
