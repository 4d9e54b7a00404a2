// The layout: wide fields first, each into the first word with room for it.
#include "Reseau/Champs.h"

#include <numeric>

namespace Reseau {

Champs::Champs(const std::vector<Compte>& plafonds, bool omegas) : champs_(plafonds.size()), omegas_(omegas) {
    const unsigned garde = omegas ? 1 : 0;
    std::vector<unsigned> largeurs(plafonds.size());
    for (std::size_t p = 0; p < plafonds.size(); ++p)
        largeurs[p] =
            static_cast<unsigned>(std::bit_width(std::max<Mot>(1, static_cast<Mot>(plafonds[p]) + garde))) + garde;
    std::vector<std::uint32_t> ordre(plafonds.size());
    std::iota(ordre.begin(), ordre.end(), 0U);
    std::ranges::stable_sort(ordre, [&](std::uint32_t a, std::uint32_t b) { return largeurs[a] > largeurs[b]; });

    const unsigned etroite = ordre.empty() ? MOT : largeurs[ordre.back()];
    std::vector<unsigned> pris{0};
    std::size_t premier = 0;  // no word before it has room for any field
    for (const std::uint32_t p : ordre) {
        while (premier < pris.size() && pris[premier] + etroite > MOT) ++premier;
        std::size_t i = premier;
        while (i < pris.size() && pris[i] + largeurs[p] > MOT) ++i;
        if (i == pris.size()) pris.push_back(0);
        champs_[p] = {(Mot{1} << (largeurs[p] - garde)) - 1, static_cast<std::uint32_t>(i), pris[i]};
        parBit_.resize(pris.size() * MOT);
        for (unsigned b = 0; b + garde < largeurs[p]; ++b) parBit_[i * MOT + pris[i] + b] = p;
        pris[i] += largeurs[p];
    }
    mots_.resize(pris.size());
    for (std::size_t i = 0; i < pris.size(); ++i) mots_[i].utile = pris[i] == MOT ? ~Mot{0} : (Mot{1} << pris[i]) - 1;
    if (omegas)
        for (const Champ& c : champs_) {
            mots_[c.mot].gardes |= (c.masque + 1) << c.decalage;
            mots_[c.mot].uns |= Mot{1} << c.decalage;
        }
    finDesMots_ = (pris.size() - 1) * sizeof(Mot) + std::max<std::size_t>(1, (pris.back() + 7) / 8);
    mots_.back().utile = finDesMots_ % sizeof(Mot) == 0 ? ~Mot{0} : (Mot{1} << (finDesMots_ % sizeof(Mot) * 8)) - 1;
    octets_ = finDesMots_ + (omegas && pris.size() >= BEAUCOUP ? sizeof(Mot) : 0);
}

void Champs::resumer(std::uint8_t* garde) const {
    Mot r = 0;
    for (std::size_t i = 0; i < mots_.size(); ++i)
        if (mot(garde, i) != 0) r |= groupe(i);
    ecrire(garde + finDesMots_, r, sizeof(Mot));
}

Sonde Champs::sonderEpars(const Mot* m, std::vector<std::uint32_t>& pleins) const {
    pleins.resize(mots_.size());
    Mot r = 0;
    std::size_t n = 0;
    for (std::size_t i = 0; i < mots_.size(); ++i) {
        if (m[i] == 0) continue;
        pleins[n++] = static_cast<std::uint32_t>(i);
        r |= groupe(i);
    }
    return {m, std::span(pleins).first(n), r};
}

bool Champs::couvreEpars(const std::uint8_t* garde, Sonde s) const {
    if ((s.resume & ~resume(garde)) != 0) return false;
    return std::ranges::all_of(s.pleins,
                               [&](std::size_t i) { return atteint(mot(garde, i), s.mots[i], mots_[i].gardes); });
}

void Champs::joindreEpars(std::uint8_t* garde, Sonde s) const {
    for (const std::uint32_t i : s.pleins) joindre(garde, i, s.mots[i]);
    ecrire(garde + finDesMots_, resume(garde) | s.resume, sizeof(Mot));
}

bool Champs::franchitEpars(Sonde s, const std::uint8_t* seuils) const {
    return std::ranges::any_of(s.pleins,
                               [&](std::size_t i) { return franchit(s.mots[i], mot(seuils, i), mots_[i].gardes); });
}

Creux Champs::creux(const Mot* m) const {
    Creux v;
    for (std::uint32_t p = 0; p < places(); ++p)
        if (const Compte c = lire(m, p); c != 0) v.push_back({p, c});
    return v;
}

std::vector<Compte> Elargissement::plafonds(std::vector<Compte> besoins, std::uint64_t gardes) {
    convertis_ += gardes;
    if (convertis_ > FOIS * gardes)
        for (Compte& c : besoins)
            if (c > 1) c = std::min(c, OMEGA / 2) * 2 - 1;
    return besoins;
}

bool Champs::precede(const Mot* a, const Mot* b) const {
    for (std::uint32_t p = 0; p < places(); ++p)
        if (lire(a, p) != lire(b, p)) return lire(a, p) > lire(b, p);
    return false;
}

void convertir(const Champs& de, const Mot* m, const Champs& vers, Mot* resultat) {
    std::fill_n(resultat, vers.mots(), Mot{0});
    for (std::uint32_t p = 0; p < de.places(); ++p) vers.poser(resultat, p, de.lire(m, p));
}

}  // namespace Reseau
