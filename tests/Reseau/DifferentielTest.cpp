// The analyser against decisions that share nothing with it: forward search where the reachable markings are
// few, the backward algorithm for everything else. A finite bound b is right when b is coverable and b + 1 is
// not; an unbounded place must reach a count that the small nets here do not reach by accident. What stands in one
// marking line must be coverable together. And against the
// benchmark's yardstick, the plain tree of Karp and Miller, wherever that ends in time.
//
// 150,000 nets in all, each analysed in four ways. Each test takes a slice of them, so that each ends within seconds.
#include <gtest/gtest.h>

#include <algorithm>
#include <bitset>
#include <map>

#include "Outils.h"
#include "Reseau/Lecture.h"
#include "Reseau/Reseau.h"
#include "reseau_karp_miller.h"

namespace {

using essai::Hasard;

struct Bilan {
    int verifies = 0;
    int bornes = 0;
    int places = 0;
    int indecis = 0;
    int etalonnes = 0;
    int marquages = 0;
    int marquagesIndecis = 0;
};

constexpr int TOUS = 2000;  // nets of a slice
#ifdef __SANITIZE_ADDRESS__
constexpr int NETS = TOUS / 20;  // those that are analysed
#else
constexpr int NETS = TOUS;
#endif
constexpr int TRANCHES = 25;
constexpr int BEAUCOUP = 12;
constexpr std::size_t RECHERCHE = 1000;
constexpr std::size_t BASE = 300;
constexpr std::uint64_t ARBRE = 1000;

/// Checks one bound by coverability; counts it as undecided when the backward basis grows too large.
void verifierBorne(const essai::Net& net, int place, Reseau::Compte borne, Bilan& bilan) {
    const bool infinie = borne == Reseau::OMEGA;
    const auto atteinte = essai::atteint(net, place, infinie ? BEAUCOUP : static_cast<int>(borne), BASE);
    const auto depassee =
        infinie ? std::optional<bool>(false) : essai::atteint(net, place, static_cast<int>(borne) + 1, BASE);
    if (!atteinte || !depassee) {
        ++bilan.indecis;
        return;
    }
    EXPECT_TRUE(*atteinte) << "place p" << place << " does not reach " << borne << " in\n" << net.texte();
    EXPECT_FALSE(*depassee) << "place p" << place << " exceeds " << borne << " in\n" << net.texte();
}

/// Checks that what stands in one line can be reached together, unbounded places with many tokens.
void verifierMarquages(const essai::Net& net, const Reseau::Net& lu, const Reseau::Rapport& rapport, Bilan& bilan) {
    for (const Reseau::Creux& marquage : rapport.marquages) {
        std::vector<int> but(static_cast<std::size_t>(net.places), 0);
        for (const Reseau::Poids& p : marquage)
            but[static_cast<std::size_t>(std::stoi(lu.places[p.place].substr(1)))] =
                p.compte == Reseau::OMEGA ? BEAUCOUP : static_cast<int>(p.compte);
        const auto couvrable = essai::couvrable(net, but, BASE);
        ++bilan.marquages;
        bilan.marquagesIndecis += couvrable ? 0 : 1;
        EXPECT_TRUE(couvrable.value_or(true)) << testing::PrintToString(but) << " is not reached in\n" << net.texte();
    }
}

void verifier(const essai::Net& net, Bilan& bilan) {
    const Reseau::Net lu = Reseau::lire(net.texte(), "essai");
    const Reseau::Rapport rapport = Reseau::analyser(lu, {});
    const bool bornee = Reseau::analyser(lu, {.verdictSeul = true}).bornee;
    const Reseau::Rapport autrement = Reseau::analyser(lu, {.essai = 0});
    ++bilan.verifies;
    bilan.places += net.places;
    bilan.bornes += rapport.bornee;
    ASSERT_EQ(rapport.bornee, bornee) << net.texte();
    ASSERT_EQ(Reseau::analyser(lu, {.verdictSeul = true, .essai = 0}).bornee, bornee) << net.texte();
    ASSERT_EQ(rapport.bornes, autrement.bornes) << net.texte();

    verifierMarquages(net, lu, rapport, bilan);
    verifierMarquages(net, lu, autrement, bilan);

    if (const auto etalon = etalon::karpMiller(lu, ARBRE)) {
        ++bilan.etalonnes;
        ASSERT_EQ(rapport.bornee, etalon->bornee) << net.texte();
        ASSERT_EQ(rapport.bornes, etalon->bornes) << net.texte();
    }

    std::vector<Reseau::Compte> bornes(static_cast<std::size_t>(net.places), 0);
    for (std::size_t p = 0; p < lu.places.size(); ++p)
        bornes[static_cast<std::size_t>(std::stoi(lu.places[p].substr(1)))] = rapport.bornes[p];
    ASSERT_EQ(rapport.bornee, std::ranges::find(bornes, Reseau::OMEGA) == bornes.end()) << net.texte();

    if (const auto maxima = essai::maximaParRecherche(net, RECHERCHE)) {
        ASSERT_EQ(bornes, std::vector<Reseau::Compte>(maxima->begin(), maxima->end())) << net.texte();
        return;
    }
    for (int p = 0; p < net.places; ++p) verifierBorne(net, p, bornes[static_cast<std::size_t>(p)], bilan);
}

template <class Fabrique>
void verifierTranche(int tranche, Fabrique&& fabrique) {
    Hasard h(static_cast<std::uint64_t>(tranche));
    Bilan bilan;
    for (int i = 0; i < NETS && !testing::Test::HasFailure(); ++i) verifier(fabrique(h), bilan);
    EXPECT_EQ(bilan.verifies, NETS);
    EXPECT_GT(bilan.bornes, NETS / 4) << "too few bounded nets to say anything";
    EXPECT_LT(bilan.bornes, NETS - NETS / 20) << "too few unbounded nets to say anything";
    EXPECT_LT(bilan.indecis, bilan.places / 100) << "too many bounds left unchecked";
    EXPECT_LT(bilan.marquagesIndecis, bilan.marquages / 20) << "too many markings left unchecked";
    EXPECT_GT(bilan.etalonnes, NETS * 3 / 4) << "too few nets beside the yardstick";
}

class NetsAuHasard : public testing::TestWithParam<int> {};

TEST_P(NetsAuHasard, BoundsOfGeneralNetsAreThoseOfSearchAndBackwardCoverability) {
    verifierTranche(GetParam(), essai::netAuHasard);
}

TEST_P(NetsAuHasard, BoundsOfNetsWithAControlTokenAreThoseOfSearchAndBackwardCoverability) {
    verifierTranche(GetParam() + 1000, essai::netDeReseauAuHasard);
}

TEST_P(NetsAuHasard, BoundsOfRedundantNetsAreThoseOfSearchAndBackwardCoverability) {
    verifierTranche(GetParam() + 2000, essai::netRedondantAuHasard);
}

INSTANTIATE_TEST_SUITE_P(Tranches, NetsAuHasard, testing::Range(0, TRANCHES));

/// Which of the features a net has: weights beyond 1, a source, zero weights, a self-loop, an isolated place.
std::bitset<5> traits(const essai::Net& net) {
    std::bitset<5> t;
    t[2] = net.texte().find("*0") != std::string::npos;
    std::vector<bool> touchees(static_cast<std::size_t>(net.places), false);
    for (const auto& tr : net.transitions) {
        t[1] = t[1] || std::ranges::max(tr.pre) == 0;
        for (std::size_t p = 0; p < touchees.size(); ++p) {
            touchees[p] = touchees[p] || tr.pre[p] > 0 || tr.post[p] > 0;
            t[0] = t[0] || tr.pre[p] > 1 || tr.post[p] > 1;
            t[3] = t[3] || (tr.pre[p] > 0 && tr.post[p] > 0);
        }
    }
    t[4] = std::ranges::find(touchees, false) != touchees.end();
    return t;
}

TEST(NetsAuHasard, EveryCombinationOfTheFeaturesIsAmongThem) {
    std::map<unsigned long, int> nombre;
    for (int tranche = 0; tranche < TRANCHES; ++tranche) {
        Hasard h(static_cast<std::uint64_t>(tranche));
        for (int i = 0; i < TOUS; ++i) ++nombre[traits(essai::netAuHasard(h)).to_ulong()];
    }
    ASSERT_EQ(nombre.size(), 32U);
    for (const auto& [combinaison, n] : nombre)
        EXPECT_GT(n, TOUS / 10) << std::bitset<5>(combinaison)
                                << ", from the right: weights, sources, zeros, loops, isolated";
}

}  // namespace
