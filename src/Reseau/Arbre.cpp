#include "Reseau/Arbre.h"

#include <algorithm>
#include <new>
#include <utility>

namespace Reseau {

std::uint32_t Arbre::ajouter(const Mot* m, std::uint32_t parent, std::uint32_t tir, std::vector<std::uint32_t> pompes) {
    std::uint32_t n = libre_;
    if (n == AUCUN) {
        if (noeuds_.size() == AUCUN) throw std::bad_alloc();
        n = static_cast<std::uint32_t>(noeuds_.size());
        noeuds_.emplace_back();
        gardes_.ajouter();
    } else {
        libre_ = noeuds_[n].parent;
    }
    champs_->ranger(m, gardes_.en(n));
    noeuds_[n] = {parent, tir, parent == AUCUN ? 0 : noeuds_[parent].profondeur + 1, AUCUN};
    if (parent != AUCUN) ++noeuds_[parent].lien;
    if (!pompes.empty()) pompes_.emplace(n, std::move(pompes));
    return n;
}

std::uint32_t Arbre::doubler(std::uint32_t n) {
    std::vector<Mot> m(champs_->mots());
    lire(n, m.data());
    const auto pompes = pompes_.find(n);
    return ajouter(m.data(), noeuds_[n].parent, noeuds_[n].tir,
                   pompes == pompes_.end() ? std::vector<std::uint32_t>() : pompes->second);
}

void Arbre::lacher(std::uint32_t n) {
    if (toutGarder_) return;
    while (n != AUCUN && --noeuds_[n].lien == 0) {
        pompes_.erase(n);
        n = std::exchange(noeuds_[n].parent, std::exchange(libre_, n));
    }
}

void Arbre::remonter(std::uint32_t n, std::uint32_t ancetre, std::vector<Pas>& envers) const {
    for (; n != ancetre; n = noeuds_[n].parent) {
        if (const auto i = pompes_.find(n); i != pompes_.end())
            for (auto a = i->second.rbegin(); a != i->second.rend(); ++a) envers.push_back({Pas::POMPE, *a});
        if (noeuds_[n].tir != AUCUN) envers.push_back({Pas::TIR, noeuds_[n].tir});
    }
}

std::vector<Pas> Arbre::chemin(std::uint32_t n) const {
    std::vector<Pas> pas;
    remonter(n, AUCUN, pas);
    std::ranges::reverse(pas);
    return pas;
}

std::uint32_t Arbre::chercher(const Mot* m) const {
    std::vector<std::uint32_t> pleins;
    const Sonde sonde = champs_->sonder(m, pleins);
    for (std::uint32_t n = 0; n < noeuds_.size(); ++n)
        if (champs_->egale(gardes_.en(n), sonde)) return n;
    return AUCUN;
}

void Arbre::convertir(const Champs& champs) {
    std::vector<Mot> de(champs_->mots());
    std::vector<Mot> vers(champs.mots());
    gardes_.refondre(champs.octets(), [&](const std::uint8_t* garde, std::uint8_t* place) {
        champs_->reprendre(garde, de.data());
        Reseau::convertir(*champs_, de.data(), champs, vers.data());
        champs.ranger(vers.data(), place);
    });
    champs_ = &champs;
}

void Lignee::suivre(const Arbre& arbre, const Champs& champs, std::uint32_t n) {
    pas_ = champs.mots();
    montee_.clear();
    for (; n != Arbre::AUCUN; n = arbre.parent(n)) {
        const std::uint32_t p = arbre.profondeur(n);
        if (p < noeuds_.size() && noeuds_[p] == n) break;
        montee_.push_back(n);
    }
    noeuds_.resize(n == Arbre::AUCUN ? 0 : arbre.profondeur(n) + 1);
    mots_.resize((noeuds_.size() + montee_.size()) * pas_);
    for (auto i = montee_.rbegin(); i != montee_.rend(); ++i) {
        arbre.lire(*i, &mots_[noeuds_.size() * pas_]);
        noeuds_.push_back(*i);
    }
}

void Lignee::convertir(const Champs& de, const Champs& vers) {
    std::vector<Mot> mots(noeuds_.size() * vers.mots());
    for (std::size_t i = 0; i < noeuds_.size(); ++i)
        Reseau::convertir(de, &mots_[i * de.mots()], vers, &mots[i * vers.mots()]);
    mots_ = std::move(mots);
    pas_ = vers.mots();
}

}  // namespace Reseau
