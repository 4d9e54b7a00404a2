// Packing and comparing; see the header for the layout.
#include "Reseau/Reserve.h"

#include <algorithm>
#include <new>

namespace Reseau {

void Reserve::entier(std::uint64_t n) {
    for (; n >= 128; n >>= 7) brouillon_.push_back(static_cast<std::uint8_t>(n | 128));
    brouillon_.push_back(static_cast<std::uint8_t>(n));
}

Reserve::Adresse Reserve::ranger(const Marquage& m) {
    brouillon_.clear();
    entier(m.cardinal());
    std::uint32_t prochaine = 0;
    m.pourChaque([&](std::uint32_t p, Compte c) {
        const std::uint64_t ecart = p - prochaine;
        const std::uint64_t compte = c == OMEGA ? 0 : static_cast<std::uint64_t>(c);
        const std::uint64_t haut = std::min<std::uint64_t>(ecart, 15);
        const std::uint64_t bas = std::min<std::uint64_t>(compte, 15);
        brouillon_.push_back(static_cast<std::uint8_t>(haut << 4 | bas));
        if (haut == 15) entier(ecart - 15);
        if (bas == 15) entier(compte - 15);
        prochaine = p + 1;
    });
    if (brouillon_.size() > BLOC) throw std::bad_alloc();
    if (blocs_.empty() || rempli_ + brouillon_.size() > BLOC) {
        blocs_.push_back(std::make_unique_for_overwrite<std::uint8_t[]>(BLOC));
        rempli_ = 0;
    }
    const Adresse a = (blocs_.size() - 1) * BLOC + rempli_;
    std::ranges::copy(brouillon_, blocs_.back().get() + rempli_);
    rempli_ += brouillon_.size();
    octets_ += brouillon_.size();
    return a;
}

void Reserve::lire(Adresse a, Marquage& m) const {
    m.vider();
    Curseur c = curseur(a);
    std::uint32_t p = 0;
    Compte n = 0;
    while (c.suivant(p, n)) m.poser(p, n);
    m.confirmer();
}

bool Reserve::couvre(Adresse a, const Marquage& m) const {
    Curseur c = curseur(a);
    std::uint64_t manquantes = m.cardinal();
    std::uint32_t p = 0;
    Compte n = 0;
    while (c.reste() >= manquantes && c.suivant(p, n)) {
        if (m[p] > n) return false;
        if (m[p] != 0 && --manquantes == 0) return true;
    }
    return manquantes == 0;
}

bool Reserve::couverte(Adresse a, const Marquage& m) const {
    Curseur c = curseur(a);
    if (c.reste() > m.cardinal()) return false;
    std::uint32_t p = 0;
    Compte n = 0;
    while (c.suivant(p, n))
        if (n > m[p]) return false;
    return true;
}

bool Reserve::depassee(Adresse a, const Marquage& m) const {
    Curseur c = curseur(a);
    if (c.reste() > m.cardinal()) return false;
    std::uint32_t finies = m.cardinal() - m.omegas();
    bool moins = false;
    std::uint32_t p = 0;
    Compte n = 0;
    while (c.suivant(p, n)) {
        if (n > m[p]) return false;
        if (m[p] == OMEGA) continue;
        --finies;
        moins = moins || n < m[p];
    }
    return moins || finies > 0;
}

bool Reserve::egale(Adresse a, const Marquage& m) const {
    Curseur c = curseur(a);
    if (c.reste() != m.cardinal()) return false;
    std::uint32_t p = 0;
    Compte n = 0;
    while (c.suivant(p, n))
        if (n != m[p]) return false;
    return true;
}

Creux Reserve::creux(Adresse a) const {
    Creux v;
    Curseur c = curseur(a);
    for (Poids p{}; c.suivant(p.place, p.compte);) v.push_back(p);
    return v;
}

}  // namespace Reseau
