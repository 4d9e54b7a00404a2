// Queries walk the tree with an explicit stack; a leaf that grows too large is split in two.
#include "Reseau/Antichaine.h"

#include <algorithm>
#include <utility>

namespace Reseau {

namespace {

std::uint64_t plier(const Signature& s) { return s[0] | s[1] | s[2] | s[3]; }

Signature signatureDe(const Creux& v) {
    Signature s{};
    for (const Poids& p : v) s[p.place / 64 % s.size()] |= std::uint64_t{1} << (p.place % 64);
    return s;
}

}  // namespace

bool Antichaine::couvre(const Marquage& m) const {
    if (branches_.empty()) return false;
    const Signature signature = m.signature();
    const std::uint64_t pliee = plier(signature);
    pile_.assign(1, 0);
    while (!pile_.empty()) {
        const Branche& b = branches_[pile_.back()];
        pile_.pop_back();
        if (!incluse(signature, b.union_)) continue;
        if (b.place == FEUILLE) {
            for (const Membre& membre : feuilles_[b.moins])
                if ((pliee & ~membre.signature) == 0 && reserve_.couvre(membre.adresse, m)) return true;
        } else {
            if (m[b.place] < b.seuil) pile_.push_back(b.moins);
            pile_.push_back(b.plus);
        }
    }
    return false;
}

void Antichaine::retirer(const Marquage& m, std::vector<std::uint32_t>& retirees) {
    if (branches_.empty()) return;
    const Signature signature = m.signature();
    const std::uint64_t pliee = plier(signature);
    pile_.assign(1, 0);
    while (!pile_.empty()) {
        const Branche& b = branches_[pile_.back()];
        pile_.pop_back();
        if (!incluse(b.intersection, signature)) continue;
        if (b.place == FEUILLE) {
            std::erase_if(feuilles_[b.moins], [&](const Membre& membre) {
                const bool couvert = (membre.signature & ~pliee) == 0 && reserve_.couverte(membre.adresse, m);
                if (couvert) retirees.push_back(membre.numero);
                return couvert;
            });
        } else {
            pile_.push_back(b.moins);
            if (m[b.place] >= b.seuil) pile_.push_back(b.plus);
        }
    }
}

void Antichaine::ajouter(const Marquage& m, Reserve::Adresse adresse, std::uint32_t numero) {
    if (branches_.empty()) {
        branches_.emplace_back();
        feuilles_.emplace_back();
    }
    const Signature signature = m.signature();
    const std::uint64_t pliee = plier(signature);
    std::uint32_t ici = 0;
    while (true) {
        Branche& b = branches_[ici];
        englober(b, signature);
        if (b.place == FEUILLE) break;
        ici = m[b.place] >= b.seuil ? b.plus : b.moins;
    }
    std::vector<Membre>& feuille = feuilles_[branches_[ici].moins];
    feuille.push_back({pliee, adresse, numero});
    if (feuille.size() > CAPACITE) scinder(ici);
}

/// The place and the threshold that split `membres` most evenly.
Antichaine::Coupe Antichaine::meilleureCoupe(const std::vector<Membre>& membres) const {
    std::vector<Poids> tout;
    for (const Membre& membre : membres) {
        const Creux v = reserve_.creux(membre.adresse);
        tout.insert(tout.end(), v.begin(), v.end());
    }
    std::ranges::sort(tout, [](const Poids& a, const Poids& b) {
        return a.place != b.place ? a.place < b.place : a.compte > b.compte;
    });
    const std::size_t milieu = membres.size() / 2;
    const auto ecart = [milieu](std::size_t plus) { return plus > milieu ? plus - milieu : milieu - plus; };
    Coupe choix{FEUILLE, 0, 0};
    for (std::size_t debut = 0, fin = 0; debut < tout.size(); debut = fin) {
        while (fin < tout.size() && tout[fin].place == tout[debut].place) {
            ++fin;
            const bool seuilPossible =
                fin == tout.size() || tout[fin].place != tout[debut].place || tout[fin].compte != tout[fin - 1].compte;
            const std::size_t plus = fin - debut;
            if (seuilPossible && plus < membres.size() && (choix.place == FEUILLE || ecart(plus) < ecart(choix.plus)))
                choix = {tout[debut].place, tout[fin - 1].compte, plus};
        }
    }
    return choix;
}

void Antichaine::englober(Branche& b, const Signature& signature) {
    for (std::size_t i = 0; i < signature.size(); ++i) {
        b.union_[i] |= signature[i];
        b.intersection[i] &= signature[i];
    }
}

void Antichaine::scinder(std::uint32_t branche) {
    const std::uint32_t ancienne = branches_[branche].moins;
    std::vector<Membre> membres = std::move(feuilles_[ancienne]);
    const Coupe coupe = meilleureCoupe(membres);

    const auto premiere = static_cast<std::uint32_t>(branches_.size());
    branches_.resize(branches_.size() + 2);
    const auto neuve = static_cast<std::uint32_t>(feuilles_.size());
    feuilles_.emplace_back();
    feuilles_[ancienne].clear();
    branches_[premiere].moins = ancienne;
    branches_[premiere + 1].moins = neuve;
    Branche& b = branches_[branche];
    b.place = coupe.place;
    b.seuil = coupe.seuil;
    b.moins = premiere;
    b.plus = premiere + 1;

    for (const Membre& membre : membres) {
        const Creux v = reserve_.creux(membre.adresse);
        const bool plus = valeur(v, coupe.place) >= coupe.seuil;
        Branche& cote = branches_[premiere + (plus ? 1 : 0)];
        englober(cote, signatureDe(v));
        feuilles_[cote.moins].push_back(membre);
    }
}

}  // namespace Reseau
