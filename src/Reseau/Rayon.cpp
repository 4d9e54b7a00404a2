#include "Reseau/Rayon.h"

#include <numeric>

namespace Reseau {

namespace {

constexpr std::size_t LIAISONS = 20;  // rounds of connecting what a ray fires

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

/// Asks that the token leaves each of these sets of places, which the firings do not connect.
void relier(const Equation& equation, const std::vector<std::vector<bool>>& composantes, Simplexe& s) {
    for (const std::vector<bool>& u : composantes) {
        Simplexe::Forme sorties;
        for (std::uint32_t t = 0; t < equation.transitions(); ++t)
            if (u[equation.jeton->de(t)] && !u[equation.jeton->vers(t)]) sorties.emplace_back(t, 1);
        s.contraindre(-1, sorties);
    }
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

std::optional<std::vector<Compte>> boucle(const Equation& equation, std::uint32_t place) {
    try {
        equation.payer();
        Simplexe s(equation.transitions(), equation.travail);
        for (const Contrainte& c : equation.etats) s.contraindre(0, c.forme);
        s.contraindre(-1, equation.etats[place].forme);
        Simplexe::Forme tirs;
        for (std::uint32_t t = 0; t < equation.transitions(); ++t) tirs.emplace_back(t, -1);
        auto issue = s.maximiser(tirs);
        for (std::size_t essai = 0; essai < LIAISONS && issue == Simplexe::Issue::OPTIMUM; ++essai) {
            std::vector<Fraction> rayon;
            std::vector<bool> tirees;
            for (std::uint32_t t = 0; t < equation.transitions(); ++t) {
                rayon.push_back(s.valeur(t));
                tirees.push_back(rayon.back().numerateur > 0);
            }
            const auto composantes = equation.jeton->composantes(tirees);
            if (composantes.size() <= 1) return multiple(rayon, 1);
            relier(equation, composantes, s);
            issue = s.reoptimiser();
        }
    } catch (const Abandon&) {
        // Too much to ask for this place.
    }
    return std::nullopt;
}

}  // namespace Reseau
