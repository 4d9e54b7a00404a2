#include "Reseau/Rayon.h"

#include <numeric>

namespace Reseau {

namespace {

/// @return nothing when it leaves 64 bits
std::optional<Large> multipleCommun(Large a, Large b) {
    if (a % b == 0) return a;
    if (b >= OMEGA) return std::nullopt;
    const Large produit = a * (b / std::gcd(static_cast<Compte>(a), static_cast<Compte>(b)));
    return produit < OMEGA ? std::optional(produit) : std::nullopt;
}

/// `fois` times the smallest multiple in integers.
/// @return nothing when it leaves 64 bits
std::optional<std::vector<Compte>> multiple(const std::vector<Fraction>& rayon, Large fois) {
    std::optional<Large> commun = 1;
    for (auto f = rayon.begin(); f != rayon.end() && commun; ++f) commun = multipleCommun(*commun, f->denominateur);
    if (!commun) return std::nullopt;
    std::vector<Compte> comptes;
    for (const Fraction& f : rayon) {
        const Large facteur = fois * (*commun / f.denominateur);
        Large n = 0;
        if (__builtin_mul_overflow(f.numerateur, facteur, &n) || n >= OMEGA) return std::nullopt;
        comptes.push_back(static_cast<Compte>(n));
    }
    return comptes;
}

}  // namespace

std::optional<std::vector<Compte>> leLongDuRayon(const Equation& equation, const Simplexe& s, Large fois) {
    std::vector<Fraction> rayon;
    for (std::uint32_t t = 0; t < equation.transitions(); ++t) rayon.push_back(s.croissance(t));
    auto comptes = multiple(rayon, fois);
    if (!comptes) return std::nullopt;
    for (std::uint32_t t = 0; t < comptes->size(); ++t) {
        const Large tirs = s.valeur(t).plancher();
        if (tirs >= OMEGA - (*comptes)[t]) return std::nullopt;
        (*comptes)[t] += static_cast<Compte>(tirs);
    }
    return comptes;
}

std::optional<std::vector<Compte>> multipleEntier(const Equation& equation, const Simplexe& s) {
    std::vector<Fraction> comptes;
    for (std::uint32_t t = 0; t < equation.transitions(); ++t) comptes.push_back(s.valeur(t));
    return multiple(comptes, 1);
}

}  // namespace Reseau
