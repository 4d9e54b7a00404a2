// Both are asked for with as few firings as may be. Where the solution falls into pieces that the token cannot go
// between, it is asked to leave each piece, or to come to it, and the program is solved again.
#include "Reseau/Boucle.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Reseau/Rayon.h"

namespace Reseau {

namespace {

constexpr std::size_t LIAISONS = 20;  // rounds of connecting what is fired

Simplexe::Forme moinsDeTirs(const Equation& equation) {
    Simplexe::Forme tirs;
    for (std::uint32_t t = 0; t < equation.transitions(); ++t) tirs.emplace_back(t, -1);
    return tirs;
}

/// What a solution connects of the token's places.
std::vector<std::vector<bool>> morceaux(const Equation& equation, const Simplexe& s) {
    std::vector<bool> tirees;
    for (std::uint32_t t = 0; t < equation.transitions(); ++t) tirees.push_back(s.valeur(t).numerateur > 0);
    return equation.jeton->composantes(tirees);
}

/// Asks that the token leaves a set of places.
void faireSortir(const Equation& equation, const std::vector<bool>& u, Simplexe& s) {
    Simplexe::Forme sorties;
    for (std::uint32_t t = 0; t < equation.transitions(); ++t)
        if (u[equation.jeton->de(t)] && !u[equation.jeton->vers(t)]) sorties.emplace_back(t, 1);
    s.contraindre(-1, sorties);
}

/// Asks that the token comes to a set of places.
void faireEntrer(const Equation& equation, std::vector<bool> u, Simplexe& s) {
    u.flip();
    faireSortir(equation, u, s);
}

std::vector<Compte> parExces(const Equation& equation, const Simplexe& s) {
    std::vector<Compte> comptes;
    for (std::uint32_t t = 0; t < equation.transitions(); ++t)
        comptes.push_back(static_cast<Compte>(std::min<Large>(s.valeur(t).plafond(), OMEGA - 1)));
    return comptes;
}

/// What bounds the sum of `places` when no counts have a `gain` there: no transition raises the marking with these
/// multipliers, where that of `gain` stands for all of them.
/// @return nothing when it leaves 128 bits
std::optional<Cas> poids(const Equation& equation, const std::vector<std::uint32_t>& places,
                         const Simplexe::Forme& multiplicateurs, Simplexe::Variable gain) {
    Cas cas;
    for (const auto& [v, y] : multiplicateurs)
        if (v == gain)
            cas.facteur = y;
        else if (v >= equation.transitions())
            cas.multiplicateurs.emplace_back(v - equation.transitions(), y);
    std::ranges::sort(cas.multiplicateurs);
    bool tient = true;
    for (const auto& [p, y] : cas.multiplicateurs)
        tient = tient && accumuler(cas.total, y, equation.etats[p].constante);
    for (const std::uint32_t p : places)
        tient = tient && accumuler(cas.total, cas.facteur, equation.etats[p].constante);
    return tient ? std::optional(std::move(cas)) : std::nullopt;
}

}  // namespace

Boucle boucle(const Equation& equation, const std::vector<std::uint32_t>& places) {
    try {
        equation.payer();
        Simplexe s(equation.transitions(), equation.travail);
        for (const Contrainte& c : equation.etats) s.contraindre(0, c.forme);
        s.maximiser(moinsDeTirs(equation));  // fires nothing; from there the dual method takes few steps
        Simplexe::Forme ajout;
        for (const std::uint32_t p : places) std::ranges::copy(equation.etats[p].forme, std::back_inserter(ajout));
        const Simplexe::Variable gain = s.contraindre(-1, ajout);
        Simplexe::Issue issue = s.reoptimiser();
        if (issue == Simplexe::Issue::IMPOSSIBLE) return {{}, poids(equation, places, s.multiplicateurs(), gain)};
        for (std::size_t essai = 0; essai < LIAISONS && issue == Simplexe::Issue::OPTIMUM; ++essai) {
            const auto composantes = morceaux(equation, s);
            if (composantes.size() <= 1) return {multipleEntier(equation, s), {}};
            for (const std::vector<bool>& u : composantes) faireSortir(equation, u, s);
            issue = s.reoptimiser();
        }
    } catch (const Abandon&) {
        // Too much to ask for these places.
    }
    return {};
}

std::vector<Compte> provisions(const Equation& equation, const std::vector<Compte>& tour) {
    std::vector<Compte> resultat(equation.net.places.size(), 0);
    for (std::uint32_t t = 0; t < tour.size(); ++t)
        for (const Poids& p : equation.net.transitions[t].pre)
            if (p.place != equation.jeton->de(t))
                resultat[p.place] = somme(resultat[p.place], produit(p.compte, tour[t]));
    return resultat;
}

std::vector<bool> etapes(const Equation& equation, const std::vector<Compte>& tour) {
    std::vector<bool> resultat(equation.net.places.size(), false);
    for (std::uint32_t t = 0; t < tour.size(); ++t)
        if (tour[t] > 0) resultat[equation.jeton->de(t)] = true;
    return resultat;
}

std::optional<std::vector<Compte>> approche(const Equation& equation, Simplexe s, const std::vector<bool>& etapes,
                                            const std::vector<Compte>& provisions) {
    try {
        equation.payer();
        if (s.maximiser(moinsDeTirs(equation)) != Simplexe::Issue::OPTIMUM) return std::nullopt;
        Simplexe::Forme arrivees;
        for (std::uint32_t p = 0; p < provisions.size(); ++p) {
            if (provisions[p] > 0) s.contraindre(equation.etats[p].constante - provisions[p], equation.etats[p].forme);
            if (etapes[p]) arrivees.emplace_back(equation.marquage(p), 1);
        }
        s.contraindre(-1, arrivees);
        for (std::size_t essai = 0; essai < LIAISONS && s.reoptimiser() == Simplexe::Issue::OPTIMUM; ++essai) {
            auto loin = morceaux(equation, s);
            std::erase_if(loin, [&](const std::vector<bool>& u) { return u[equation.jeton->depart()]; });
            if (loin.empty()) return parExces(equation, s);
            for (const std::vector<bool>& u : loin) faireEntrer(equation, u, s);
        }
    } catch (const Abandon&) {
        // Too much to ask for.
    }
    return std::nullopt;
}

}  // namespace Reseau
