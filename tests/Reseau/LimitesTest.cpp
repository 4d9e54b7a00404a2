// Counts at the edge of 64 bits, 2^63 - 2: exact up to there by every means of the analyser, proofs included, and an
// error one beyond. Never a count that wraps, and never a verdict in its place.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "Reseau/Ecriture.h"
#include "Reseau/Lecture.h"
#include "Reseau/Reseau.h"
#include "Verificateur.h"

namespace {

using Bornes = std::map<std::string, Reseau::Compte>;

constexpr Reseau::Compte PLUS_GRAND = 9223372036854775806;
const std::string M = "9223372036854775806";
const std::string M_MOINS_1 = "9223372036854775805";
const std::string TIERS = "3074457345618258602";   // M / 3
const std::string MOITIE = "4611686018427387903";  // M / 2

/// @param essai 0 asks the state equation and runs in bulk first, a large number explores first
std::optional<Bornes> bornes(const std::string& texte, std::uint64_t essai) {
    const Reseau::Net net = Reseau::lire(texte, "essai");
    try {
        const Reseau::Rapport rapport = Reseau::analyser(net, {.preuves = true, .essai = essai});
        const std::string out = Reseau::ecrire(net, rapport);
        EXPECT_EQ(essai::verifier(texte, out, false), "") << out;
        EXPECT_EQ(Reseau::analyser(net, {.essai = essai}).bornes, rapport.bornes) << texte;
        EXPECT_EQ(Reseau::analyser(net, {.verdictSeul = true, .essai = essai}).bornee, rapport.bornee) << texte;
        Bornes resultat;
        for (std::size_t p = 0; p < net.places.size(); ++p) resultat[net.places[p]] = rapport.bornes[p];
        return resultat;
    } catch (const Reseau::Debordement&) {
        EXPECT_THROW(Reseau::analyser(net, {.essai = essai}), Reseau::Debordement) << texte;
        return std::nullopt;
    }
}

class Limites : public testing::TestWithParam<std::uint64_t> {
protected:
    void exacts(const std::string& net, const Bornes& attendues) {
        const auto b = bornes(net, GetParam());
        ASSERT_TRUE(b) << net;
        EXPECT_EQ(*b, attendues) << net;
    }
    void deborde(const std::string& net) { EXPECT_FALSE(bornes(net, GetParam())) << net; }
};

TEST_P(Limites, OneFiringReachesTheLargestCountAndNoMore) {
    exacts("tr t a -> b*" + M_MOINS_1 + "\npl a (1)\npl b (1)\n", {{"a", 1}, {"b", PLUS_GRAND}});
    deborde("tr t a -> b*" + M + "\npl a (1)\npl b (1)\n");
    deborde("tr t a -> b*" + M_MOINS_1 + "\npl a (1)\npl b (2)\n");
    exacts("tr t a*" + M + " -> b*" + M + "\npl a (" + M + ")\n", {{"a", PLUS_GRAND}, {"b", PLUS_GRAND}});
    exacts("tr t a*" + M + " -> b\npl a (" + M_MOINS_1 + ")\n", {{"a", PLUS_GRAND - 1}, {"b", 0}});
}

TEST_P(Limites, ATransitionThatTakesMoreThanItPutsIsExactAtTheEnd) {
    exacts("tr t a b*" + M + " -> b*" + M_MOINS_1 + " c\npl a (2)\npl b (" + M + ")\n",
           {{"a", 2}, {"b", PLUS_GRAND}, {"c", 1}});
    deborde("tr t a b*" + M_MOINS_1 + " -> b*" + M + " c\npl a (1)\npl b (" + M + ")\n");
}

/// The runs take 10^18 firings and more, which the exploration alone would not end.
TEST(LimitesEnMasse, RunsInBulkReachTheLargestCountAndNoMore) {
    for (const std::uint64_t essai : {0U, 100U}) {
        EXPECT_EQ(bornes("tr t a -> b*3\npl a (" + TIERS + ")\n", essai),
                  (Bornes{{"a", PLUS_GRAND / 3}, {"b", PLUS_GRAND}}));
        EXPECT_EQ(bornes("tr t a -> b*3\npl a (" + TIERS + ")\npl b (1)\n", essai), std::nullopt);
        EXPECT_EQ(bornes("tr t a*2 -> b\ntr u b*4611686018427387904 s -> c\npl a (" + M + ")\npl s (1)\n", essai),
                  (Bornes{{"a", PLUS_GRAND}, {"s", 1}, {"b", PLUS_GRAND / 2}, {"c", 0}}));
        EXPECT_EQ(bornes("tr t p a -> p b*2\npl a (" + MOITIE + ")\npl p (1)\n", essai),
                  (Bornes{{"a", PLUS_GRAND / 2}, {"b", PLUS_GRAND}, {"p", 1}}));
        EXPECT_EQ(bornes("tr t p a -> p b*2\npl a (" + MOITIE + ")\npl p (1)\npl b (1)\n", essai), std::nullopt);
        EXPECT_EQ(bornes("tr t p a -> q\ntr u q -> p b*2\npl a (" + MOITIE + ")\npl p (1)\n", essai),
                  (Bornes{{"a", PLUS_GRAND / 2}, {"b", PLUS_GRAND}, {"p", 1}, {"q", 1}}));
        EXPECT_EQ(bornes("tr t p a -> q\ntr u q -> p b*2\npl a (" + MOITIE + ")\npl p (1)\npl b (1)\n", essai),
                  std::nullopt);
    }
}

TEST(LimitesEnMasse, ACountThatIsPassedOneByOneIsAnErrorToo) {
    for (const std::uint64_t essai : {0U, 100U}) {
        const std::string net = "tr t a -> b\ntr u c -> b\npl a (" + M_MOINS_1 + ")\n";
        EXPECT_EQ(bornes(net + "pl c (1)\n", essai), (Bornes{{"a", PLUS_GRAND - 1}, {"b", PLUS_GRAND}, {"c", 1}}));
        EXPECT_EQ(bornes(net + "pl c (5)\n", essai), std::nullopt);
    }
}

/// All firings of one transition together put more than fits, in 64 bits or even in 128, but it is taken each time.
TEST(LimitesEnMasse, WhatARunMovesInAllNeedNotFit) {
    constexpr Reseau::Compte MILLIARD = 1'000'000'000;
    for (const auto& [tours, poids] :
         {std::pair{MILLIARD, 1'000'000 * MILLIARD}, std::pair{4 * MILLIARD * MILLIARD, Reseau::Compte{1} << 62}}) {
        const std::string q = "q*" + std::to_string(poids);
        const std::string net =
            "tr t a p -> b " + q + "\ntr u b " + q +
            " -> a r\ntr v c q d -> e d q\ntr w d q*3 -> f z\npl a (1)\npl c (1)\npl d (1)\npl p (" +
            std::to_string(tours) + ")\n";
        const Bornes attendues{{"a", 1}, {"b", 1},     {"c", 1},     {"d", 1},     {"e", 1},
                               {"f", 1}, {"p", tours}, {"q", poids}, {"r", tours}, {"z", 1}};
        for (const std::uint64_t essai : {0U, 100U}) EXPECT_EQ(bornes(net, essai), attendues);
    }
}

/// The run in bulk leaves 64 bits, but only where there is no largest count.
TEST(LimitesEnMasse, WhatLeaves64BitsInAnUnboundedPlaceIsNoError) {
    for (const std::uint64_t essai : {0U, 100U})
        EXPECT_EQ(bornes("tr t p a -> p b*3\ntr u b -> b*2\npl a (" + M + ")\npl p (1)\n", essai),
                  (Bornes{{"a", PLUS_GRAND}, {"b", Reseau::OMEGA}, {"p", 1}}));
}

/// A pump that needs the largest count, which is there, or is one short, or is gathered first.
TEST_P(Limites, APumpMayNeedTheLargestCount) {
    const std::string pompe = "tr t a*" + M + " -> a*" + M + " b\n";
    exacts(pompe + "pl a (" + M + ")\n", {{"a", PLUS_GRAND}, {"b", Reseau::OMEGA}});
    exacts(pompe + "pl a (" + M_MOINS_1 + ")\n", {{"a", PLUS_GRAND - 1}, {"b", 0}});
    exacts(pompe + "tr s c -> a*" + M_MOINS_1 + "\npl a (1)\npl c (1)\n",
           {{"a", PLUS_GRAND}, {"b", Reseau::OMEGA}, {"c", 1}});
    exacts(pompe + "tr s c -> a*" + M_MOINS_1 + "\npl c (1)\n", {{"a", PLUS_GRAND - 1}, {"b", 0}, {"c", 1}});
}

/// Taken M tokens twice a turn, from a place that holds as many as one likes.
TEST_P(Limites, ASequenceMayNeedMoreThanTheLargestCountFromAnUnboundedPlace) {
    exacts("tr s -> a\ntr t p a*" + M + " -> q\ntr u q a*" + M + " -> p e\npl p (1)\n",
           {{"a", Reseau::OMEGA}, {"e", Reseau::OMEGA}, {"p", 1}, {"q", 1}});
}

TEST_P(Limites, APumpThatAddsTheLargestCountIsAPump) {
    exacts("tr t -> b*" + M + "\n", {{"b", Reseau::OMEGA}});
    exacts("tr t -> b\npl b (" + M + ")\n", {{"b", Reseau::OMEGA}});
    exacts("tr t a -> a b\npl a (1)\npl b (" + M + ")\n", {{"a", 1}, {"b", Reseau::OMEGA}});
    exacts("tr t a -> a b*" + M + "\ntr u b*" + M + " -> c*" + M + "\npl a (1)\n",
           {{"a", 1}, {"b", Reseau::OMEGA}, {"c", Reseau::OMEGA}});
}

/// What all places hold together is beyond 64 bits, each alone is not.
TEST_P(Limites, ManyPlacesAtTheLargestCountAreBounded) {
    std::string net;
    Bornes attendues;
    for (int i = 0; i < 9; ++i) {
        const std::string a = "a" + std::to_string(i);
        const std::string b = "b" + std::to_string(i);
        net +=
            "tr t" + std::to_string(i) + " s " + a + "*" + M + " -> s " + b + "*" + M + "\npl " + a + " (" + M + ")\n";
        attendues[a] = attendues[b] = PLUS_GRAND;
    }
    attendues["s"] = 1;
    exacts(net + "pl s (1)\n", attendues);
}

INSTANTIATE_TEST_SUITE_P(Moyens, Limites, testing::Values(std::uint64_t{0}, std::uint64_t{100'000}),
                         [](const auto& essai) { return essai.param == 0 ? "StateEquation" : "Exploration"; });

}  // namespace
