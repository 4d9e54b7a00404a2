// Queries walk the tree with an explicit stack; a leaf that grows too large is split in two.
#include "Reseau/Antichaine.h"

#include <algorithm>
#include <utility>

namespace Reseau {

bool Antichaine::couvre(const Mot* m) const {
    if (branches_.empty()) return false;
    const std::size_t octets = champs_->octets();
    pile_.assign(1, 0);
    while (!pile_.empty()) {
        const std::uint32_t ici = pile_.back();
        pile_.pop_back();
        if (!champs_->couvre(jointure(ici), m)) continue;
        const Branche& b = branches_[ici];
        if (b.place == FEUILLE) {
            const Liasse& l = feuilles_[b.suite];
            for (std::uint32_t i = 0; i < l.taille(); ++i)
                if (champs_->couvre(l.en(i, octets), m)) return true;
        } else {
            if (champs_->lire(m, b.place) < b.seuil) pile_.push_back(b.suite);
            pile_.push_back(b.suite + 1);
        }
    }
    return false;
}

/// The leaf where `m` belongs, of a tree that is not empty.
std::uint32_t Antichaine::feuille(const Mot* m) const {
    std::uint32_t ici = 0;
    while (branches_[ici].place != FEUILLE)
        ici = branches_[ici].suite + (champs_->lire(m, branches_[ici].place) >= branches_[ici].seuil ? 1 : 0);
    return ici;
}

bool Antichaine::contient(const Mot* m) const {
    if (branches_.empty()) return false;
    const Liasse& l = feuilles_[branches_[feuille(m)].suite];
    for (std::uint32_t i = 0; i < l.taille(); ++i)
        if (champs_->egale(l.en(i, champs_->octets()), m)) return true;
    return false;
}

void Antichaine::retirer(const Mot* m) {
    if (branches_.empty()) return;
    const std::size_t octets = champs_->octets();
    const std::uint64_t avant = taille_;
    pile_.assign(1, 0);
    while (!pile_.empty()) {
        const std::uint32_t ici = pile_.back();
        pile_.pop_back();
        if (!champs_->couverte(rencontre(ici), m)) continue;
        const Branche& b = branches_[ici];
        if (b.place == FEUILLE) {
            Liasse& l = feuilles_[b.suite];
            std::uint32_t restent = 0;
            for (std::uint32_t i = 0; i < l.taille(); ++i) {
                if (champs_->couverte(l.en(i, octets), m)) continue;
                if (restent < i) std::copy_n(l.en(i, octets), octets, l.en(restent, octets));
                ++restent;
            }
            taille_ -= l.taille() - restent;
            if (restent < l.taille()) l.raccourcir(restent, octets);
        } else {
            pile_.push_back(b.suite);
            if (champs_->lire(m, b.place) >= b.seuil) pile_.push_back(b.suite + 1);
        }
    }
    if (taille_ < avant && feuilles_.size() > CAPACITE && taille_ < feuilles_.size() * CLAIRSEME) rebatir(*champs_);
}

void Antichaine::ajouter(const Mot* m) {
    if (branches_.empty()) brancher(0, m);
    std::uint32_t ici = 0;
    while (true) {
        englober(ici, m);
        const Branche& b = branches_[ici];
        if (b.place == FEUILLE) break;
        ici = b.suite + (champs_->lire(m, b.place) >= b.seuil ? 1 : 0);
    }
    Liasse& l = feuilles_[branches_[ici].suite];
    champs_->ranger(m, l.allonger(champs_->octets()));
    ++taille_;
    if (l.taille() > CAPACITE) scinder(ici);
}

/// Adds a leaf of its own number with join and meet `premier`.
void Antichaine::brancher(std::uint32_t feuille, const Mot* premier) {
    branches_.push_back({0, FEUILLE, feuille});
    if (feuille == feuilles_.size()) feuilles_.emplace_back();
    std::uint8_t* bornes = bornes_.ajouter();
    champs_->ranger(premier, bornes);
    champs_->ranger(premier, bornes + champs_->octets());
}

void Antichaine::englober(std::uint32_t branche, const Mot* m) {
    std::uint8_t* bornes = bornes_.en(branche);
    champs_->joindre(bornes, m);
    champs_->rencontrer(bornes + champs_->octets(), m);
}

/// The place and the threshold that split `membres` most evenly.
Antichaine::Coupe Antichaine::meilleureCoupe(const std::vector<std::vector<Mot>>& membres) const {
    const auto nombre = static_cast<std::uint32_t>(membres.size());
    Coupe choix{FEUILLE, 0, nombre};
    std::vector<Compte> comptes(nombre);
    for (std::uint32_t p = 0; p < champs_->places() && choix.ecart > nombre % 2; ++p) {
        for (std::uint32_t i = 0; i < nombre; ++i) comptes[i] = champs_->lire(membres[i].data(), p);
        std::ranges::sort(comptes);
        for (std::uint32_t i = 1; i < nombre; ++i) {  // i members have less
            const std::uint32_t ecart = i * 2 > nombre ? i * 2 - nombre : nombre - i * 2;
            if (comptes[i] != comptes[i - 1] && ecart < choix.ecart) choix = {p, comptes[i], ecart};
        }
    }
    return choix;
}

void Antichaine::scinder(std::uint32_t branche) {
    const std::uint32_t ancienne = branches_[branche].suite;
    const Liasse liasse = std::exchange(feuilles_[ancienne], Liasse());
    std::vector<std::vector<Mot>> membres(liasse.taille(), std::vector<Mot>(champs_->mots()));
    for (std::uint32_t i = 0; i < liasse.taille(); ++i)
        champs_->reprendre(liasse.en(i, champs_->octets()), membres[i].data());
    const Coupe coupe = meilleureCoupe(membres);

    const auto plus = [&](const std::vector<Mot>& m) { return champs_->lire(m.data(), coupe.place) >= coupe.seuil; };
    const auto milieu = std::ranges::partition(membres, [&](const auto& m) { return !plus(m); }).begin();
    branches_[branche] = {coupe.seuil, coupe.place, static_cast<std::uint32_t>(branches_.size())};
    brancher(ancienne, membres.front().data());
    brancher(static_cast<std::uint32_t>(feuilles_.size()), milieu->data());
    for (const std::vector<Mot>& m : membres) {
        const std::uint32_t cote = branches_[branche].suite + (plus(m) ? 1 : 0);
        englober(cote, m.data());
        champs_->ranger(m.data(), feuilles_[branches_[cote].suite].allonger(champs_->octets()));
    }
}

void Antichaine::convertir(const Champs& champs) { rebatir(champs); }

/// Adds every member anew to an empty tree of the layout `champs`.
void Antichaine::rebatir(const Champs& champs) {
    const Champs& anciens = *champs_;
    std::deque<Liasse> liasses;
    liasses.swap(feuilles_);
    branches_.clear();
    champs_ = &champs;
    bornes_ = Blocs(2 * champs.octets());
    taille_ = 0;
    std::vector<Mot> de(anciens.mots());
    std::vector<Mot> vers(champs.mots());
    for (Liasse& l : liasses) {
        for (std::uint32_t i = 0; i < l.taille(); ++i) {
            anciens.reprendre(l.en(i, anciens.octets()), de.data());
            Reseau::convertir(anciens, de.data(), champs, vers.data());
            ajouter(vers.data());
        }
        l = Liasse();
    }
}

}  // namespace Reseau
