// Two firings of a solution that can come in neither order.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Outils.h"
#include "Reseau/Contrainte.h"
#include "Reseau/Ecriture.h"
#include "Reseau/Lecture.h"
#include "Reseau/Moments.h"
#include "Reseau/Reseau.h"
#include "Verificateur.h"

namespace {

using Reseau::Compte;

Reseau::Net net(const std::string& texte) { return Reseau::lire(texte, "essai"); }

std::vector<Reseau::Contrainte> etats(const Reseau::Net& n) {
    std::vector<Reseau::Contrainte> resultat;
    for (std::uint32_t p = 0; p < n.places.size(); ++p) resultat.push_back(Reseau::etat(n, p));
    return resultat;
}

/// How often each transition is fired by a random run.
std::vector<Compte> tirsAuHasard(const Reseau::Net& n, int longueur, essai::Hasard& h) {
    std::vector<Compte> tirs(n.transitions.size(), 0);
    std::vector<Compte> m = n.initial;
    for (int i = 0; i < longueur; ++i) {
        std::vector<std::uint32_t> tirables;
        for (std::uint32_t t = 0; t < tirs.size(); ++t)
            if (std::ranges::all_of(n.transitions[t].pre, [&m](const auto& b) { return m[b.place] >= b.compte; }))
                tirables.push_back(t);
        if (tirables.empty()) break;
        const std::uint32_t t = tirables[static_cast<std::size_t>(essai::tirer(h, static_cast<int>(tirables.size())))];
        ++tirs[t];
        for (const Reseau::Poids& e : n.transitions[t].effet) m[e.place] += e.compte;
    }
    return tirs;
}

TEST(Moments, ARunIsNeverContradicted) {
    essai::Hasard h(21);
    int paires = 0;
    for (int i = 0; i < 4000; ++i) {
        const Reseau::Net n = net((i % 2 == 0 ? essai::netAuHasard(h) : essai::netDeReseauAuHasard(h)).texte());
        const std::vector<Reseau::Contrainte> e = etats(n);
        const std::vector<Compte> tirs = tirsAuHasard(n, 1 + essai::tirer(h, 25), h);
        std::uint64_t travail = 1'000'000'000;
        const Reseau::Moments moments(n, e, tirs, &travail);
        for (const Reseau::Moments::Paire& paire : moments.paires()) {
            ++paires;
            ASSERT_FALSE(moments.contredire(paire));
        }
    }
    EXPECT_GT(paires, 20000);
}

/// a takes what b alone gives, and b what a gives: neither can come first, although nothing is missing in the end.
TEST(Moments, TwoFiringsThatNeedEachOther) {
    const Reseau::Net n = net("tr a q0 y -> q0 x\ntr b q0 x -> q0 y\npl q0 (1)\n");
    const std::vector<Reseau::Contrainte> e = etats(n);
    const std::vector<Compte> tirs{1, 1};
    std::uint64_t travail = 1'000'000;
    const Reseau::Moments moments(n, e, tirs, &travail);
    const auto cas = moments.contredire({{0, false}, {1, false}});
    ASSERT_TRUE(cas);
    EXPECT_EQ(cas->suites(), 4U);
    const auto suites = Reseau::distinguer(n, nullptr, *cas);
    ASSERT_EQ(suites.size(), 4U);
    for (const auto& contraintes : suites) {
        bool contredite = false;
        for (const Reseau::Contrainte& c : contraintes) {
            Reseau::Large valeur = c.constante;
            for (const auto& [t, k] : c.forme) valeur += k * tirs[t];
            contredite = contredite || valeur < 0;
        }
        EXPECT_TRUE(contredite);
    }
}

TEST(Moments, TheirProofIsAcceptedAndAFalseOrderIsNot) {
    const std::string texte =
        "tr t0 q0 -> q1\ntr t1 q0 m1*2 m2*2 -> q1\ntr t2 q1 -> q2\ntr t3 q1 m0*2 m3 -> m1*3 q3\ntr t4 q2 -> q3\n"
        "tr t5 m1*4 q2 -> q0 m2 m0*2\ntr t6 q3 -> q4\ntr t7 m2 q3 -> q3 m3 m4\ntr t8 m2*3 q4 m4*2 -> q0 m4*2\n"
        "tr t9 q4 -> q2\ntr t10 depart -> m1 m2*732 q2 m3*960\ntr t11 depart -> q1 m1*705400196 m2*14754 m0*9610642\n"
        "pl depart (1)\n";
    const Reseau::Net n = net(texte);
    const std::string rapport = Reseau::ecrire(n, Reseau::analyser(n, {.preuves = true}));
    ASSERT_EQ(essai::verifier(texte, rapport, false), "") << rapport;
    EXPECT_NE(rapport.find("bound m4 705414947"), std::string::npos) << rapport;
    const std::string avant = "order last t3 first t7 ";
    const std::size_t ou = rapport.find(avant);
    ASSERT_NE(ou, std::string::npos) << rapport;
    for (const char* faux : {"order first t3 first t7 ", "order last t7 first t3 ", "order last t3 first t3 ",
                             "order last t3 last t7 ", "order last t3 first t7 then "})
        EXPECT_NE(essai::verifier(texte, std::string(rapport).replace(ou, avant.size(), faux), false), "") << faux;
}

}  // namespace
