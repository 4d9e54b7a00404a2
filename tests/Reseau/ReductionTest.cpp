// What makes a net smaller before it is analysed: what is taken out and what stays, at the edges of each rule; and that
// the answer and its proof are those of the whole net.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "Outils.h"
#include "Reseau/Ecriture.h"
#include "Reseau/Lecture.h"
#include "Reseau/Reduction.h"
#include "Reseau/Reseau.h"
#include "Verificateur.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr Reseau::Compte PLUS_GRAND = 9223372036854775806;
const std::string M = "9223372036854775806";

Reseau::Net lu(const std::string& texte) { return Reseau::lire(texte, "essai"); }

/// A transition of what is left, as words: what it needs "->" what it puts.
using Mots = std::vector<std::string>;

/// What a reduction has done to a net, in names.
struct Reduit {
    explicit Reduit(const std::string& texte) : net(lu(texte)), reduction(net) {
        for (const Reseau::Reduction::Etape& etape : reduction.etapes()) {
            if (const auto* m = std::get_if<Reseau::Mortes>(&etape))
                for (const std::uint32_t t : m->transitions) mortes.push_back(net.transitions[t].nom);
            if (const auto* d = std::get_if<Reseau::Dominee>(&etape))
                dominees[net.transitions[d->transition].nom] = d->par ? net.transitions[*d->par].nom : "";
            if (const auto* f = std::get_if<Reseau::Fusion>(&etape))
                fusions[net.places[f->place]] = net.places[f->temoin];
        }
        for (std::size_t t = 0; t < reduction.net().transitions.size(); ++t)
            restent[net.transitions[reduction.transitions()[t]].nom] = mots(reduction.net().transitions[t]);
    }
    std::string mots(const Reseau::Transition& t) const {
        std::ostringstream out;
        const auto ecrire = [&](const Reseau::Creux& cote) {
            for (const Reseau::Poids& p : cote) out << net.places[p.place] << '*' << p.compte << ' ';
        };
        ecrire(t.pre);
        out << "->";
        for (const Reseau::Poids& p : t.post) out << ' ' << net.places[p.place] << '*' << p.compte;
        return out.str();
    }

    Reseau::Net net;
    Reseau::Reduction reduction;
    Mots mortes;
    std::map<std::string, std::string> dominees;  // by what
    std::map<std::string, std::string> fusions;   // into what
    std::map<std::string, std::string> restent;
};

/// The bounds, which all ways to the answer agree on and whose proofs the checker accepts; nothing when one does not
/// fit.
std::optional<std::map<std::string, Reseau::Compte>> bornes(const std::string& texte) {
    const Reseau::Net net = lu(texte);
    std::optional<std::map<std::string, Reseau::Compte>> resultat;
    for (const std::uint64_t essai : {std::uint64_t{0}, std::uint64_t{1000}})
        for (const bool verdictSeul : {true, false}) {
            std::optional<Reseau::Rapport> r;
            try {
                r = Reseau::analyser(net, {.verdictSeul = verdictSeul, .preuves = true, .essai = essai});
            } catch (const Reseau::Debordement&) {
                EXPECT_FALSE(resultat) << texte;
                continue;
            }
            const std::string out = Reseau::ecrire(net, *r);
            EXPECT_EQ(essai::verifier(texte, out, verdictSeul), "") << texte << out;
            if (verdictSeul) continue;
            std::map<std::string, Reseau::Compte> b;
            for (std::size_t p = 0; p < net.places.size(); ++p) b[net.places[p]] = r->bornes[p];
            EXPECT_TRUE(!resultat || *resultat == b) << texte;
            resultat = b;
        }
    return resultat;
}
using Bornes = std::map<std::string, Reseau::Compte>;
using Paires = std::map<std::string, std::string>;

TEST(PlacesParalleles, TheFactorMayBeAFraction) {
    const std::string net = "tr t a*4 x*6 -> b\ntr u b -> a*2 x*3\npl a (9)\npl x (14)\n";
    const Reduit r(net);
    EXPECT_EQ(r.fusions, (Paires{{"x", "a"}}));
    EXPECT_EQ(r.restent, (Paires{{"t", "a*4 -> b*1"}, {"u", "b*1 -> a*2"}}));
    EXPECT_EQ(bornes(net), (Bornes{{"a", 9}, {"x", 14}, {"b", 2}}));
}

TEST(PlacesParalleles, TheCountsOfAllStandInEveryMarking) {
    const Reseau::Net net = lu("tr t a -> b*2 c*6\npl a (3)\npl b (1)\npl c (5)\n");
    const Reseau::Rapport r = Reseau::analyser(net, {});
    const std::string out = Reseau::ecrire(net, r);
    EXPECT_EQ(out, "the net is bounded\n0 : a*3 b c*5\n1 : b*7 c*23\n");
}

/// In q and p there is one token more or less at a time; p has two more. What reads n of p needs n - 2 of q.
TEST(PlacesParalleles, ANeedIsThatOfThePlaceThatStandsForTheOther) {
    const auto net = [](int n) {
        return "tr t q p -> s\ntr u s -> q p\ntr r z p*" + std::to_string(n) + " -> w p*" + std::to_string(n) +
               "\npl q (1)\npl p (3)\npl z (1)\n";
    };
    EXPECT_EQ(Reduit(net(2)).restent.at("r"), "z*1 -> w*1");
    EXPECT_EQ(bornes(net(2)), (Bornes{{"q", 1}, {"p", 3}, {"s", 1}, {"z", 1}, {"w", 1}}));
    EXPECT_EQ(Reduit(net(3)).restent.at("r"), "q*1 z*1 -> q*1 w*1");
    EXPECT_EQ(bornes(net(3)), (Bornes{{"q", 1}, {"p", 3}, {"s", 1}, {"z", 1}, {"w", 1}}));
    EXPECT_EQ(Reduit(net(4)).restent.at("r"), "q*2 z*1 -> q*2 w*1");
    EXPECT_EQ(bornes(net(4)), (Bornes{{"q", 1}, {"p", 3}, {"s", 1}, {"z", 1}, {"w", 0}}));
}

/// Neither is redundant: each keeps one of the readers from firing that the other one lets pass.
TEST(PlacesParalleles, EachMayLimitTheOther) {
    const std::string net =
        "tr t z -> a b*2\ntr u a b*2 -> z\ntr r a*3 -> a*3 c\ntr v b*7 -> b*7 d\npl z (3)\npl b (1)\n";
    const Reduit r(net);
    EXPECT_EQ(r.fusions, (Paires{{"b", "a"}}));
    EXPECT_EQ(r.restent.at("r"), "a*3 -> a*3 c*1");
    EXPECT_EQ(r.restent.at("v"), "a*3 -> a*3 d*1");
    EXPECT_EQ(bornes(net), (Bornes{{"a", 3}, {"b", 7}, {"z", 3}, {"c", Reseau::OMEGA}, {"d", Reseau::OMEGA}}));
    std::string sansV = net;
    sansV.replace(sansV.find("b*7 -> b*7"), 10, "b*8 -> b*8");
    EXPECT_EQ(Reduit(sansV).restent.at("v"), "a*4 -> a*4 d*1");
    EXPECT_EQ(bornes(sansV)->at("d"), 0);
}

TEST(PlacesParalleles, WhatCountsTheOtherWayOrNotAlwaysStays) {
    EXPECT_THAT(Reduit("tr t a -> b\ntr u b -> a\npl a (2)\n").fusions, IsEmpty());
    EXPECT_THAT(Reduit("tr t z -> a b\ntr u a b -> z c\ntr v c b -> z\npl z (2)\n").fusions, IsEmpty());
    EXPECT_THAT(Reduit("tr t z -> a b*2\ntr u a b*3 -> z\npl z (2)\npl b (9)\n").fusions, IsEmpty());
}

TEST(PlacesParalleles, AnUnboundedPlaceMakesTheOtherOneUnbounded) {
    const std::string net = "tr t p -> p a*2 b*3\ntr u a*4 b*6 -> c\npl p (1)\npl b (1)\n";
    EXPECT_EQ(Reduit(net).fusions, (Paires{{"b", "a"}}));
    EXPECT_EQ(bornes(net), (Bornes{{"p", 1}, {"a", Reseau::OMEGA}, {"b", Reseau::OMEGA}, {"c", Reseau::OMEGA}}));
}

/// The place that stands for the others is never marked, but they are.
TEST(PlacesParalleles, APlaceMayHoldTokensWhereTheOneThatTellsItsCountHoldsNone) {
    const std::string net = "tr t a*3 b*3 -> z\ntr u y*2 z -> a b\ntr v a b y -> a b c\npl b (5)\npl y (1)\npl z (2)\n";
    EXPECT_THAT(Reduit(net).mortes, UnorderedElementsAre("t", "u", "v"));
    const std::string vide = "tr t x -> a b z\ntr u a b*2 z -> x b\npl z (1)\npl b (5)\n";
    EXPECT_EQ(bornes(vide), (Bornes{{"x", 0}, {"a", 0}, {"b", 5}, {"z", 1}}));
    const std::string seul = "tr t x*2 -> a b\ntr u a b -> x*2\ntr v y -> x\npl y (1)\npl b (5)\n";
    EXPECT_EQ(Reduit(seul).fusions, (Paires{{"b", "a"}}));
    EXPECT_EQ(bornes(seul), (Bornes{{"x", 1}, {"y", 1}, {"a", 0}, {"b", 5}}));
}

/// a and b differ by a transition that only takes; a chain of three that become parallel in two rounds.
TEST(PlacesParalleles, WhatBecomesParallelLaterIsMergedLater) {
    const std::string net =
        "tr t z -> a b*2 c*3 y\ntr u a b*2 c*3 y -> z\ntr d b -> \ntr e c k*2 -> y\ntr f k -> \n"
        "pl z (4)\npl k (1)\npl b (2)\n";
    const Reduit r(net);
    EXPECT_THAT(r.mortes, ElementsAre("e"));
    EXPECT_EQ(r.dominees, (Paires{{"d", ""}, {"f", ""}}));
    EXPECT_EQ(r.fusions, (Paires{{"b", "a"}, {"c", "a"}, {"y", "a"}}));
    EXPECT_EQ(bornes(net), (Bornes{{"z", 4}, {"a", 4}, {"b", 10}, {"c", 12}, {"y", 4}, {"k", 1}}));
}

TEST(PlacesParalleles, AWeightOfZeroIsNone) {
    const std::string net = "tr t z a*0 -> a b*2 b*0\ntr u a b*2 -> z y*0\npl z (2)\npl y\n";
    EXPECT_EQ(Reduit(net).fusions, (Paires{{"b", "a"}}));
    EXPECT_EQ(bornes(net), (Bornes{{"z", 2}, {"a", 2}, {"b", 4}, {"y", 0}}));
}

TEST(PlacesParalleles, TheLargestCountIsExactAndOneMoreIsAnError) {
    const std::string net = "tr t a -> q p*3\ntr u q*2 p*6 -> a\npl a (3074457345618258602)\n";
    EXPECT_EQ(Reduit(net).fusions, (Paires{{"p", "q"}}));
    EXPECT_EQ(bornes(net), (Bornes{{"a", 3074457345618258602}, {"q", 3074457345618258602}, {"p", PLUS_GRAND}}));
    EXPECT_EQ(bornes(net + "pl p (1)\n"), std::nullopt);
    EXPECT_FALSE(Reseau::analyser(lu(net + "pl p (1)\n"), {.verdictSeul = true}).marquages.size());
}

/// Fifty of q, besides the many that it has at the start, is more than fits: then p stays.
TEST(PlacesParalleles, ANeedThatWouldNotFitIsLeftWhereItIs) {
    const std::string net = "tr t x -> q p*2\ntr u q*50 p*100 -> x\npl q (" + M + ")\npl x (0)\n";
    EXPECT_EQ(bornes(net), (Bornes{{"q", PLUS_GRAND}, {"p", 0}, {"x", 0}}));
    const std::string petit = "tr t x -> q p*2\ntr u q*50 p*100 -> x\npl q (9223372036854775800)\npl x (3)\n";
    EXPECT_THAT(Reduit(petit).fusions, IsEmpty());
    EXPECT_EQ(bornes(petit), (Bornes{{"q", 9223372036854775803}, {"p", 6}, {"x", 3}}));
}

TEST(TransitionsDominees, OneThatNeedsMoreOrLeavesLessIsDropped) {
    const std::string t = "tr t a*2 -> b*3 c\n";
    for (const std::string d : {"a*2 -> b*3 c", "a*2 k -> b*3 c k", "a*2 k -> b*3 c", "a*3 -> a b*3 c", "a*3 -> b*3 c",
                                "a*2 -> b*3", "a*2 -> b*2 c", "a*3 k -> c", "a*2 b -> b*4 c", "a*2 b*5 -> b*7 c"}) {
        EXPECT_EQ(Reduit(t + "tr d " + d + "\ntr s -> a k\n").dominees, (Paires{{"d", "t"}})) << d;
        const std::string debut = "pl a (5)\npl k (1)\npl b (5)\n";
        EXPECT_EQ(bornes(t + "tr d " + d + "\n" + debut), bornes(t + debut)) << d;
    }
    for (const std::string d : {"a -> b c", "a*2 -> b*4", "k*2 -> b*3 c", "a*3 -> a*2 b*3 c", "a*3 -> b*4 c"})
        EXPECT_THAT(Reduit(t + "tr d " + d + "\ntr s -> a k\n").dominees, IsEmpty()) << d;
}

TEST(TransitionsDominees, OneThatOnlyTakesOrDoesNothingIsDropped) {
    for (const std::string d : {"a -> ", "a*3 -> a*2", "a b*2 -> a b", "a -> a", " -> ", "a*0 -> b*0"})
        EXPECT_EQ(Reduit("tr d " + d + "\ntr t a -> b\ntr s -> a\n").dominees, (Paires{{"d", ""}})) << d;
    EXPECT_EQ(bornes("tr d a -> \ntr e b*3 -> b\ntr t a -> b\npl a (3)\n"), (Bornes{{"a", 3}, {"b", 3}}));
    EXPECT_EQ(bornes("tr d a*5 -> a\ntr e -> \npl a (7)\n"), (Bornes{{"a", 7}}));
}

/// The first of several that are the same stays, wherever the best one stands.
TEST(TransitionsDominees, OfAChainTheBestStays) {
    const Reduit r("tr d a*2 -> b\ntr e a -> b\ntr t a -> b*2\ntr f a -> b*2\ntr g a*2 -> a b*2\ntr s -> a\n");
    EXPECT_THAT(r.restent, testing::SizeIs(2));
    EXPECT_TRUE(r.restent.contains("t"));
    EXPECT_TRUE(r.restent.contains("s"));
}

/// A constant place asks nothing of anybody that it has enough for; and one that only transitions change that are never
/// needed is constant, too.
TEST(TransitionsDominees, ConstantPlacesAsideTheyAreCompared) {
    EXPECT_EQ(Reduit("tr d a -> b\ntr t a k*2 -> b*2 k*2\ntr s -> a\npl k (2)\n").dominees, (Paires{{"d", "t"}}));
    EXPECT_THAT(Reduit("tr d a -> b\ntr t a k*2 -> b*2 k*2\ntr s -> a\npl k (1)\n").mortes, ElementsAre("t"));
    const std::string net = "tr t a k -> b k\ntr u a -> b\ntr v b k*2 -> b k*2 c\ntr w k -> \npl k (2)\npl a (2)\n";
    const Reduit r(net);
    EXPECT_EQ(r.dominees, (Paires{{"t", "u"}, {"w", ""}}));
    EXPECT_EQ(r.restent, (Paires{{"u", "a*1 -> b*1"}, {"v", "b*1 -> b*1 c*1"}}));
    EXPECT_EQ(bornes(net), (Bornes{{"a", 2}, {"b", 2}, {"c", Reseau::OMEGA}, {"k", 2}}));
}

/// What a place holds at the start it never holds more of when nothing raises it.
TEST(TransitionsMortes, NeedingMoreOfAPlaceThatIsOnlyTakenIsNever) {
    const std::string net = "tr t a*3 -> b\ntr u a -> c\npl a (2)\n";
    EXPECT_THAT(Reduit(net).mortes, ElementsAre("t"));
    EXPECT_EQ(bornes(net), (Bornes{{"a", 2}, {"b", 0}, {"c", 2}}));
    EXPECT_THAT(Reduit("tr t a*2 -> b\ntr u a -> c\npl a (2)\n").mortes, IsEmpty());
}

/// What raises a place is no help where it needs more of it itself than there is.
TEST(TransitionsMortes, WhatOnlyDeadTransitionsRaiseStaysAsItIs) {
    const std::string net = "tr t a*3 -> a*4 b\ntr u b*2 -> c\ntr v a -> d\npl a (2)\npl b (1)\n";
    EXPECT_THAT(Reduit(net).mortes, UnorderedElementsAre("t", "u"));
    EXPECT_EQ(bornes(net), (Bornes{{"a", 2}, {"b", 1}, {"c", 0}, {"d", 2}}));
    EXPECT_THAT(Reduit("tr t a*3 -> a*4 b\ntr u b*2 -> c\ntr v -> a\npl a (2)\npl b (1)\n").mortes, IsEmpty());
}

/// Each raises what the next one needs, and the first one lacks a token.
TEST(GrandesReductions, AChainOfDeadTransitionsIsGoneThroughOnce) {
    std::ostringstream net;
    for (int i = 0; i < 50000; ++i) net << "tr t" << i << " p" << i << "*2 -> p" << i + 1 << "\npl p" << i << " (1)\n";
    EXPECT_THAT(Reduit(net.str()).mortes, testing::SizeIs(50000));
}

TEST(GrandesReductions, TenThousandParallelPlacesAreOne) {
    std::ostringstream net;
    net << "tr t z*2 ->";
    for (int i = 0; i < 10000; ++i) net << " p" << i << '*' << 1 + i % 7;
    net << "\ntr u";
    for (int i = 0; i < 10000; ++i) net << " p" << i << '*' << 1 + i % 7;
    net << " -> z\npl z (9)\n";
    for (int i = 0; i < 10000; ++i) net << "pl p" << i << " (" << i % 5 << ")\n";
    EXPECT_THAT(Reduit(net.str()).fusions, testing::SizeIs(9999));
    const Reseau::Rapport r = Reseau::analyser(lu(net.str()), {});
    for (std::size_t i = 0; i < 10000; ++i)
        ASSERT_EQ(r.bornes[i + 1], static_cast<Reseau::Compte>(4 * (1 + i % 7) + i % 5)) << i;
}

/// Between the same two places, each with a place of its own besides: what leads there is looked through once.
TEST(GrandesReductions, TwentyThousandTransitionsOfWhichHalfAreDominated) {
    std::ostringstream net;
    for (int i = 0; i < 10000; ++i)
        net << "tr t" << i << " a k" << i % 100 << " -> b m" << i << "\ntr d" << i << " a*2 k" << i % 100 << " -> b m"
            << i << "\n";
    for (int i = 0; i < 100; ++i) net << "tr s" << i << " -> k" << i << '\n';
    net << "pl a (2)\n";
    const Reduit r(net.str());
    EXPECT_THAT(r.dominees, testing::SizeIs(10000));
    EXPECT_THAT(r.restent, testing::SizeIs(10100));
    EXPECT_EQ(r.dominees.at("d77"), "t77");
}

}  // namespace
