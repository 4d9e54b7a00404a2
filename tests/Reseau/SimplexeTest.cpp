// The exact linear programs: what a solution and its multipliers say is checked by what they mean, on random programs.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "Outils.h"
#include "Reseau/Simplexe.h"

namespace {

using Reseau::Fraction;
using Reseau::Large;
using Reseau::Simplexe;

struct Programme {
    std::uint32_t variables;
    std::vector<std::pair<Large, Simplexe::Forme>> contraintes;
    Simplexe::Forme forme;
};

Programme auHasard(essai::Hasard& h) {
    const auto coefficients = [&h](std::uint32_t n) {
        Simplexe::Forme f;
        for (std::uint32_t v = 0; v < n; ++v)
            if (const int c = essai::tirer(h, 9) - 4; c != 0) f.emplace_back(v, c);
        return f;
    };
    Programme p{1 + static_cast<std::uint32_t>(essai::tirer(h, 4)), {}, {}};
    for (int n = essai::tirer(h, 6); n > 0; --n)
        p.contraintes.emplace_back(essai::tirer(h, 12) - 3, coefficients(p.variables));
    p.forme = coefficients(p.variables);
    return p;
}

/// The coefficients of the program's own variables in a form, the constant last.
std::vector<Large> developpee(const Programme& p, const Simplexe::Forme& forme) {
    std::vector<Large> total(p.variables + 1, 0);
    for (const auto& [v, y] : forme) {
        if (v < p.variables) {
            total[v] += y;
            continue;
        }
        const auto& [constante, contrainte] = p.contraintes[v - p.variables];
        total[p.variables] += y * constante;
        for (const auto& [u, c] : contrainte) total[u] += y * c;
    }
    return total;
}

TEST(SimplexeTest, WhatIsFoundIsAsGoodAsItsMultipliersShow) {
    essai::Hasard h(5);
    int issues[3] = {0, 0, 0};
    for (int i = 0; i < 5000; ++i) {
        const Programme p = auHasard(h);
        std::uint64_t travail = 100'000;
        Simplexe s(p.variables, &travail);
        for (const auto& [constante, forme] : p.contraintes) s.contraindre(constante, forme);
        const Simplexe::Issue issue = s.maximiser(p.forme);
        ++issues[static_cast<int>(issue)];
        if (issue == Simplexe::Issue::INFINI) {
            Large gain = 0;
            for (const auto& [v, c] : p.forme)
                gain += c * s.croissance(v).numerateur * 1000 / s.croissance(v).denominateur;
            EXPECT_GT(gain, 0);
            continue;
        }
        const Fraction optimum = s.optimum();
        std::vector<Large> somme = developpee(p, s.multiplicateurs());
        for (const auto& [v, y] : s.multiplicateurs()) EXPECT_GT(y, 0);
        if (issue == Simplexe::Issue::OPTIMUM)
            for (const auto& [v, c] : p.forme) somme[v] += optimum.denominateur * c;
        else
            EXPECT_LT(optimum.numerateur, 0);
        for (std::uint32_t v = 0; v < p.variables; ++v) EXPECT_EQ(somme[v], 0);
        EXPECT_EQ(somme[p.variables], optimum.numerateur);
        for (std::uint32_t v = 0; issue == Simplexe::Issue::OPTIMUM && v < p.variables + p.contraintes.size(); ++v)
            EXPECT_GE(s.valeur(v).numerateur, 0);
    }
    for (const int n : issues) EXPECT_GT(n, 100);
}

/// What does not fit, and the number whose negative does not, are given up.
TEST(SimplexeTest, NumbersBeyond128BitsAreGivenUp) {
    const Large grand = Large{1} << 126;
    std::uint64_t travail = 1000;
    Simplexe s(1, &travail);
    EXPECT_THROW(s.contraindre(0, {{0, grand}, {0, grand}}), Reseau::Abandon);
    EXPECT_THROW(Simplexe(1, &travail).contraindre(0, {{0, -grand}, {0, -grand}}), Reseau::Abandon);
    EXPECT_THROW(Simplexe(1, &travail).contraindre(-grand - grand, {{0, 1}}), Reseau::Abandon);
    EXPECT_NO_THROW(Simplexe(1, &travail).contraindre(-grand - (grand - 1), {{0, 1}}));
}

}  // namespace
