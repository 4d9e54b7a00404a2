// How runs begin, bounds where large counts are taken for unbounded, and the runs made of paths with accelerations.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Outils.h"
#include "Reseau/Abondance.h"
#include "Reseau/Couverture.h"
#include "Reseau/Depart.h"
#include "Reseau/Deroulement.h"
#include "Reseau/Ecriture.h"
#include "Reseau/Lecture.h"
#include "Reseau/Reseau.h"
#include "Reseau/Tir.h"
#include "Verificateur.h"

namespace {

using Reseau::Compte;
using Reseau::OMEGA;
using testing::ElementsAre;
using testing::IsEmpty;

Reseau::Net net(const std::string& texte) { return Reseau::lire(texte, "essai"); }

std::uint32_t place(const Reseau::Net& n, const std::string& nom) {
    return static_cast<std::uint32_t>(std::ranges::find(n.places, nom) - n.places.begin());
}

TEST(Depart, TheTransitionsThatTakeATokenWhichIsNotPutBack) {
    EXPECT_THAT(Reseau::departs(net("tr a i -> q1 m*5\ntr b q1 -> q2\ntr c i -> q2\npl i (1)\n")), ElementsAre(0, 2));
    EXPECT_THAT(Reseau::departs(net("tr a i -> q1\ntr b q1 -> i\npl i (1)\n")), IsEmpty()) << "put back";
    EXPECT_THAT(Reseau::departs(net("tr a i -> q1\ntr b j -> q1\npl i (1)\npl j (1)\n")), IsEmpty()) << "two tokens";
    EXPECT_THAT(Reseau::departs(net("tr a i -> q1\npl i (2)\n")), IsEmpty()) << "fired twice";
    EXPECT_THAT(Reseau::departs(net("tr a i -> q1\ntr b -> m\npl i (1)\n")), IsEmpty()) << "something else can begin";
    EXPECT_THAT(Reseau::departs(net("tr a i*2 -> q1\npl i (1)\n")), IsEmpty()) << "nothing is enabled";
    EXPECT_THAT(Reseau::apres(net("tr a i -> q1 m*5\npl i (1)\npl m (2)\n"), 0), ElementsAre(0, 1, 7));
}

const std::string COFFRE =
    "tr i q0 -> q1 m*SACS\ntr a q1 m*2 -> q2\ntr b q2 -> q1 c\ntr o q1 c*1000 -> q3\npl q0 (1)\n";

std::string coffre(int sacs) {
    std::string texte = COFFRE;
    return texte.replace(texte.find("SACS"), 4, std::to_string(sacs));
}

TEST(Abondance, ThePlacesOfTheTokenAreBoundedWhateverTheNumberOfTokens) {
    for (const int sacs : {2000, 2'000'000'000}) {
        const Reseau::Net n = net(coffre(sacs));
        Reseau::Abondance abondance(n);
        EXPECT_THAT(abondance.majorants(), testing::Each(OMEGA)) << "nothing is known yet";
        abondance.approfondir(100);
        for (const char* q : {"q0", "q1", "q2", "q3"}) EXPECT_EQ(abondance.majorants()[place(n, q)], 1) << q;
        EXPECT_EQ(abondance.majorants()[place(n, "c")], OMEGA);
        EXPECT_LT(abondance.explores(), 20U);
        const auto course = abondance.course(place(n, "q3"));
        ASSERT_TRUE(course);
        Reseau::Tireur tireur(n);
        EXPECT_EQ(Reseau::valeur(tireur.arrivee(*course), place(n, "q3")), 1);
        EXPECT_LT(course->size(), 6U) << "in bulk";
    }
}

TEST(Abondance, APathThatNeedsMoreThanThereIsIsNoRun) {
    const Reseau::Net n = net(coffre(1999));
    Reseau::Abondance abondance(n);
    abondance.approfondir(100);
    EXPECT_EQ(abondance.majorants()[place(n, "q3")], 1);
    EXPECT_FALSE(abondance.course(place(n, "q3")));
    EXPECT_EQ(Reseau::analyser(n, {}).bornes[place(n, "q3")], 0);
}

TEST(Abondance, ACountThatStaysSmallIsExact) {
    const std::string texte =
        "tr i q0 -> q1 m*1000000000 k*7\ntr j q0 -> q2 m*5\ntr a q1 m -> q2 n\ntr b q2 k*3 -> q1 n\n"
        "tr c q2 n*2 -> q1 r*2 m\npl q0 (1)\n";
    const Reseau::Net n = net(texte);
    Reseau::Abondance abondance(n);
    abondance.approfondir(1000);
    EXPECT_EQ(abondance.majorants()[place(n, "k")], 7);
    const std::string rapport = Reseau::ecrire(n, Reseau::analyser(n, {.preuves = true, .essai = 10}));
    EXPECT_EQ(essai::verifier(texte, rapport, false), "") << rapport;
    EXPECT_NE(rapport.find("most by relaxed"), std::string::npos) << rapport;
}

/// The net itself has m for one of the two steps only.
TEST(Abondance, CountsThatDoNotFitWhereMoreIsPossibleAreNoError) {
    const Reseau::Net n =
        net("tr i q0 -> q1 m*2\ntr a q1 m*2 -> q2 x*5000000000000000000\n"
            "tr b q2 m*2 -> q3 x*5000000000000000000\npl q0 (1)\n");
    Reseau::Abondance abondance(n);
    EXPECT_NO_THROW(abondance.approfondir(1000));
    EXPECT_THAT(abondance.majorants(), testing::Each(OMEGA));
    EXPECT_EQ(Reseau::analyser(n, {.essai = 0}).bornes[place(n, "x")], 5'000'000'000'000'000'000);
}

TEST(Abondance, NothingIsAskedWhereNothingIsThereTwice) {
    const Reseau::Net n = net("tr a i -> q1\ntr b q1 -> q2 m\ntr c q2 -> q1\npl i (1)\n");
    Reseau::Abondance abondance(n);
    abondance.approfondir(1000);
    EXPECT_THAT(abondance.majorants(), testing::Each(OMEGA));
    EXPECT_EQ(abondance.explores(), 0U);
}

/// Whatever is bounded is bounded rightly, and every run can be gone: `arrivee` throws where one cannot.
TEST(Abondance, BoundsAndRunsOfRandomNets) {
    essai::Hasard h(20);
    int bornes = 0;
    int courses = 0;
    for (int i = 0; i < 3000; ++i) {
        const Reseau::Net n = net((i % 2 == 0 ? essai::netAuHasard(h) : essai::netDeReseauAuHasard(h)).texte(3));
        Reseau::Couverture exacte(n, 1);
        if (!exacte.explorer(2000, false)) continue;
        Reseau::Abondance abondance(n);
        abondance.approfondir(200);
        for (std::uint32_t p = 0; p < n.places.size(); ++p) {
            const Compte majorant = abondance.majorants()[p];
            ASSERT_GE(majorant, exacte.maxima()[p]);
            if (majorant == OMEGA) continue;
            ++bornes;
            const auto course = abondance.course(p);
            if (!course) continue;
            ++courses;
            ASSERT_EQ(Reseau::valeur(Reseau::Tireur(n).arrivee(*course), p), majorant);
        }
    }
    EXPECT_GT(bornes, 1000);
    EXPECT_GT(courses, 500);
}

/// An acceleration within another one, and one that nothing needs.
TEST(Deroulement, WhatIsNeededTellsHowOftenASequenceIsRepeated) {
    const Reseau::Net n =
        net("tr a -> x\ntr b x*3 -> y\ntr c y*5 e -> z e\ntr d -> u\ntr f z*7 d -> g\npl e (1)\npl d (1)\n");
    Reseau::Couverture couverture(n, 1);
    couverture.garderLesChemins();
    ASSERT_TRUE(couverture.explorer(1000, false));
    const std::uint32_t g = place(n, "g");
    const Reseau::Creux but = couverture.temoin(g);
    const auto course = Reseau::derouler(n, couverture, but, n.initial);
    ASSERT_TRUE(course);
    EXPECT_EQ(Reseau::valeur(Reseau::Tireur(n).arrivee(*course), g), 1);
    std::vector<Compte> sansE = n.initial;
    sansE[place(n, "e")] = 0;
    EXPECT_FALSE(Reseau::derouler(n, couverture, but, sansE));
}

}  // namespace
