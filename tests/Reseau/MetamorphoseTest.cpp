// What changes a net's text without changing, or in a known way, what the net can do must leave the bounds, or change
// them in that way: names, the order of the lines, a transition that cannot be fired or is not needed, a place that
// never matters or counts what another one does, a common factor.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "Outils.h"
#include "Reseau/Ecriture.h"
#include "Reseau/Lecture.h"
#include "Reseau/Reseau.h"
#include "Verificateur.h"
#include "reseau_familles.h"

namespace {

using Bornes = std::map<std::string, Reseau::Compte>;

/// The bounds, which the verdict with them and the verdict alone must agree with.
Bornes bornes(const std::string& texte) {
    const Reseau::Net net = Reseau::lire(texte, "essai");
    const Reseau::Rapport rapport = Reseau::analyser(net, {});
    const bool bornee = Reseau::analyser(net, {.verdictSeul = true}).bornee;
    Bornes resultat;
    for (std::size_t p = 0; p < net.places.size(); ++p) resultat[net.places[p]] = rapport.bornes[p];
    const bool finies = std::ranges::none_of(resultat, [](const auto& b) { return b.second == Reseau::OMEGA; });
    EXPECT_EQ(rapport.bornee, finies) << texte;
    EXPECT_EQ(bornee, finies) << texte;
    return resultat;
}

#ifdef __SANITIZE_ADDRESS__
constexpr int NETS = 500;
#else
constexpr int NETS = 5000;
#endif

class Metamorphoses : public testing::Test {
protected:
    /// Calls f with a random net, of either kind in turn, until it has failed or all are done.
    template <class F>
    void pourChaqueNet(F&& f) {
        essai::Hasard h(4242);
        for (int i = 0; i < NETS && !HasFailure(); ++i) {
            const essai::Net net = i % 2 == 0 ? essai::netAuHasard(h) : essai::netDeReseauAuHasard(h);
            f(net, h);
        }
    }
};

TEST_F(Metamorphoses, OtherNamesGiveTheSameBounds) {
    pourChaqueNet([](const essai::Net& net, essai::Hasard&) {
        std::string texte = net.texte();
        for (std::size_t ou = 0; (ou = texte.find('p', ou)) != std::string::npos; ++ou)
            if (texte[ou + 1] != 'l') texte.replace(ou, 1, "z.");
        const Bornes autres = bornes(texte);
        for (const auto& [place, borne] : bornes(net.texte()))
            ASSERT_EQ(autres.at("z." + place.substr(1)), borne) << texte;
    });
}

TEST_F(Metamorphoses, LinesInAnotherOrderGiveTheSameBounds) {
    pourChaqueNet([](const essai::Net& net, essai::Hasard& h) {
        std::vector<std::string> lignes;
        std::istringstream in(net.texte());
        for (std::string ligne; std::getline(in, ligne);) lignes.push_back(ligne + "\n");
        std::ranges::shuffle(lignes, h);
        std::string melange;
        for (const std::string& ligne : lignes) melange += ligne;
        ASSERT_EQ(bornes(melange), bornes(net.texte())) << melange;
    });
}

TEST_F(Metamorphoses, ADeadTransitionChangesNothing) {
    pourChaqueNet([](const essai::Net& net, essai::Hasard& h) {
        Bornes attendues = bornes(net.texte());
        attendues["jamais"] = 0;
        const std::string morte = "tr morte jamais -> p" + std::to_string(essai::tirer(h, net.places)) + "*3 jamais\n";
        ASSERT_EQ(bornes(net.texte() + morte), attendues) << net.texte() << morte;
    });
}

TEST_F(Metamorphoses, APlaceThatFollowsAnotherWithTokensToSpareChangesNothing) {
    pourChaqueNet([](const essai::Net& net, essai::Hasard& h) {
        const auto modele = static_cast<std::size_t>(essai::tirer(h, net.places));
        const int enPlus = essai::tirer(h, 4);
        essai::Net avec = net;
        ++avec.places;
        avec.initial.push_back(net.initial[modele] + enPlus);
        for (auto& t : avec.transitions) {
            t.pre.push_back(t.pre[modele]);
            t.post.push_back(t.post[modele]);
        }
        Bornes attendues = bornes(net.texte());
        const Reseau::Compte borne = attendues.at("p" + std::to_string(modele));
        attendues["p" + std::to_string(net.places)] = borne == Reseau::OMEGA ? borne : borne + enPlus;
        ASSERT_EQ(bornes(avec.texte()), attendues) << avec.texte();
    });
}

/// The factor is a fraction where the place's own changes have a common divisor; at times tokens are to spare, at times
/// just enough, and at times a reader needs some.
TEST_F(Metamorphoses, APlaceParallelToAnotherByAFactorHasTheBoundThatFollows) {
    pourChaqueNet([](const essai::Net& net, essai::Hasard& h) {
        const auto modele = static_cast<std::size_t>(essai::tirer(h, net.places));
        const int facteur = 1 + essai::tirer(h, 4);
        const int enPlus = essai::tirer(h, 3);
        essai::Net avec = net;
        ++avec.places;
        avec.initial.push_back(net.initial[modele] * facteur + enPlus);
        for (auto& t : avec.transitions) {
            const int change = (t.post[modele] - t.pre[modele]) * facteur;
            const int besoin = t.pre[modele] * facteur + essai::tirer(h, enPlus + 1);
            t.pre.push_back(t.pre[modele] == 0 && essai::tirer(h, 2) == 0 ? 0 : besoin);
            t.post.push_back(t.pre.back() + change);
        }
        Bornes attendues = bornes(net.texte());
        const Reseau::Compte borne = attendues.at("p" + std::to_string(modele));
        attendues["p" + std::to_string(net.places)] = borne == Reseau::OMEGA ? borne : borne * facteur + enPlus;
        ASSERT_EQ(bornes(avec.texte()), attendues) << avec.texte();
    });
}

/// A transition that needs more than another one, and leaves less.
TEST_F(Metamorphoses, ADominatedTransitionChangesNothing) {
    pourChaqueNet([](const essai::Net& net, essai::Hasard& h) {
        if (net.transitions.empty()) return;
        essai::Net avec = net;
        essai::Net::Transition d = net.transitions[h() % net.transitions.size()];
        for (std::size_t p = 0; p < d.pre.size(); ++p) {
            const int enPlus = essai::tirer(h, 3) == 0 ? 1 + essai::tirer(h, 2) : 0;
            d.pre[p] += enPlus;
            d.post[p] += essai::tirer(h, enPlus + 1);
            if (essai::tirer(h, 4) == 0) d.post[p] = essai::tirer(h, d.post[p] + 1);
        }
        const auto ou = static_cast<std::ptrdiff_t>(h() % (net.transitions.size() + 1));
        avec.transitions.insert(avec.transitions.begin() + ou, d);
        ASSERT_EQ(bornes(avec.texte()), bornes(net.texte())) << avec.texte();
    });
}

TEST_F(Metamorphoses, ATransitionThatOnlyTakesChangesNothing) {
    pourChaqueNet([](const essai::Net& net, essai::Hasard& h) {
        essai::Net avec = net;
        essai::Net::Transition d;
        for (int p = 0; p < net.places; ++p) {
            d.pre.push_back(essai::tirer(h, 2) == 0 ? essai::tirer(h, 3) : 0);
            d.post.push_back(essai::tirer(h, d.pre.back() + 1));
        }
        avec.transitions.push_back(d);
        ASSERT_EQ(bornes(avec.texte()), bornes(net.texte())) << avec.texte();
    });
}

TEST_F(Metamorphoses, ACommonFactorMultipliesTheBounds) {
    pourChaqueNet([](const essai::Net& net, essai::Hasard& h) {
        const int k = 2 + essai::tirer(h, 1000);
        Bornes attendues = bornes(net.texte());
        for (auto& [place, borne] : attendues)
            if (borne != Reseau::OMEGA) borne *= k;
        ASSERT_EQ(bornes(net.texte(k)), attendues) << net.texte(k);
    });
}

/// A factor with which some bounds still fit and others do not. On the way to an unbounded place a count may fail to
/// fit where the bounds do.
TEST_F(Metamorphoses, ACommonFactorThatLeaves64BitsIsAnError) {
    constexpr long long K = 500'000'000'000'000'000;
    int grands = 0;
    int erreurs = 0;
    pourChaqueNet([&](const essai::Net& petit, essai::Hasard&) {
        essai::Net net = petit;
        for (int& n : net.initial) n *= 6;
        Bornes attendues = bornes(net.texte());
        bool tiennent = true;
        bool bornee = true;
        for (auto& [place, borne] : attendues) {
            bornee = bornee && borne != Reseau::OMEGA;
            if (borne == Reseau::OMEGA) continue;
            tiennent = tiennent && borne <= (Reseau::OMEGA - 1) / K;
            if (tiennent) borne *= K;
        }
        try {
            ASSERT_EQ(bornes(net.texte(K)), attendues) << net.texte(K);
            ASSERT_TRUE(tiennent) << net.texte(K);
            ++grands;
        } catch (const Reseau::Debordement&) {
            ASSERT_TRUE(!tiennent || !bornee) << net.texte(K);
            ++erreurs;
        }
    });
    EXPECT_GT(grands, NETS / 2);
    EXPECT_GT(erreurs, NETS / 100);
}

TEST(GrandsNets, TenThousandPlacesOfWhichMostNeverMatter) {
    std::ostringstream net;
    for (int i = 0; i < 10000; ++i) net << "pl p" << i << " (" << i % 3 << ")\n";
    for (int i = 0; i + 1 < 10000; i += 100) net << "tr t" << i << " p" << i << " -> p" << i + 1 << "*2\n";
    const Bornes b = bornes(net.str());
    ASSERT_EQ(b.size(), 10000U);
    EXPECT_EQ(b.at("p9999"), 0);
    EXPECT_EQ(b.at("p9998"), 2);
    EXPECT_EQ(b.at("p100"), 1);
    EXPECT_EQ(b.at("p101"), 2 + 2 * 1);
}

TEST(GrandsNets, ARingOfTenThousandPlaces) {
    std::ostringstream net;
    for (int i = 0; i < 10000; ++i) net << "tr t" << i << " p" << i << " -> p" << (i + 1) % 10000 << '\n';
    net << "pl p0 (1)\n";
    for (const auto& [place, borne] : bornes(net.str())) ASSERT_EQ(borne, 1) << place;
}

TEST(GrandsNets, ARingOfFiveThousandPlacesThatPumpsOne) {
    std::ostringstream net;
    for (int i = 0; i < 5000; ++i)
        net << "tr t" << i << " p" << i << " -> p" << (i + 1) % 5000 << (i == 4999 ? " x\n" : "\n");
    net << "pl p0 (1)\n";
    for (const auto& [place, borne] : bornes(net.str())) ASSERT_EQ(borne, place == "x" ? Reseau::OMEGA : 1) << place;
}

/// A place weighs as much as all that comes behind it, whichever transition is looked at first.
TEST(GrandsNets, AChainThatLeavesATokenAtEachStepIsBoundedInWhateverOrderItStands) {
    std::vector<std::string> lignes;
    for (int i = 0; i < 3000; ++i) {
        const std::string n = std::to_string(i);
        lignes.push_back("tr t" + n + " c" + n + " -> c" + std::to_string(i + 1) + " d" + n + "\n");
    }
    for (int ordre = 0; ordre < 2; ++ordre) {
        std::string texte = "pl c0 (2)\n";
        for (const std::string& ligne : lignes) texte += ligne;
        EXPECT_TRUE(Reseau::analyser(Reseau::lire(texte, "essai"), {.verdictSeul = true}).bornee);
        std::ranges::reverse(lignes);
    }
}

/// Models of two hundred nodes with many tokens, of which the exploration sees next to nothing.
TEST(GrandsNets, TheVerdictOnLargeModelsComesBeforeALongExploration) {
    const auto serie = std::ranges::find(familles::series(), 200, &familles::Serie::noeuds);
    for (const int i : {0, 3, 5, 6, 8}) {
        const Reseau::Rapport rapport = Reseau::analyser(serie->net(i), {.verdictSeul = true});
        EXPECT_TRUE(rapport.bornee) << i;
        EXPECT_LE(rapport.explores, 1000U) << i;
    }
}

/// The answer on a random model, with its proof.
Reseau::Rapport prouver(familles::Genre genre, int noeuds, int numero, bool verdictSeul) {
    const auto serie = std::ranges::find_if(
        familles::series(), [&](const familles::Serie& s) { return s.genre == genre && s.noeuds == noeuds; });
    const Reseau::Net net = serie->net(numero);
    Reseau::Rapport rapport = Reseau::analyser(net, {.verdictSeul = verdictSeul, .preuves = true});
    std::ostringstream texte;
    familles::ecrire(texte, net);
    EXPECT_EQ(essai::verifier(texte.str(), Reseau::ecrire(net, rapport), verdictSeul), "") << noeuds << ' ' << numero;
    return rapport;
}

/// What becomes more there does so only where the token goes around through dozens of nodes, and takes on its way what
/// must be gathered first.
TEST(GrandsNets, AModelGrowsByAWayAroundThroughDozensOfNodes) {
    const std::pair<int, int> modeles[] = {{100, 3}, {100, 6}, {100, 7}, {100, 9}, {200, 0}};
    for (const auto& [noeuds, numero] : modeles) {
        const Reseau::Rapport rapport = prouver(familles::Genre::LIBRE, noeuds, numero, true);
        EXPECT_FALSE(rapport.bornee) << noeuds << ' ' << numero;
        EXPECT_LE(rapport.explores, 1000U) << noeuds << ' ' << numero;
    }
}

/// Each of its twelve kinds of molecules is raised by some way around.
TEST(GrandsNets, AllBoundsOfAModelThatGrowsByWaysAround) {
    const Reseau::Rapport rapport = prouver(familles::Genre::LIBRE, 200, 0, false);
    EXPECT_FALSE(rapport.bornee);
    EXPECT_EQ(std::ranges::count(rapport.bornes, Reseau::OMEGA), 12);
    EXPECT_LE(rapport.explores, 10'000U);
}

TEST(GrandsNets, WeightsShowThatNoWayAroundAddsAnything) {
    for (const int numero : {1, 9}) {
        const Reseau::Rapport rapport = prouver(familles::Genre::ETAGE, 200, numero, true);
        EXPECT_TRUE(rapport.bornee) << numero;
        EXPECT_LE(rapport.explores, 1000U) << numero;
    }
}

TEST(GrandsNets, ATransmissionThroughFiveThousandBuffersOfWhichNoneIsBounded) {
    std::ostringstream net;
    familles::ecrire(net, std::ranges::find(familles::toutes(), "buffers", &familles::Famille::nom)->net(5000));
    const Bornes b = bornes(net.str());
    ASSERT_EQ(b.size(), 10'003U);
    for (const auto& [place, borne] : b) ASSERT_EQ(borne, place.starts_with("tampon") ? Reseau::OMEGA : 1) << place;
}

/// A chain of ten rules with weights 1 to 3, as one node with ten loops: each molecule's bound is what the rules before
/// can make at most, floor by floor.
TEST(GrandsComptes, AChainOfTenRulesOverABillionMoleculesIsExact) {
    const int pris[] = {1, 2, 3, 1, 2, 3, 3, 2, 1, 3};
    const int mis[] = {3, 1, 2, 2, 3, 1, 2, 3, 1, 2};
    std::ostringstream net;
    for (int i = 0; i < 10; ++i)
        net << "tr t" << i << " q1 m" << i << '*' << pris[i] << " -> q1 m" << i + 1 << '*' << mis[i] << '\n';
    net << "tr depart q0 -> q1 m0*1000000000\npl q0 (1)\n";
    const Bornes b = bornes(net.str());
    Reseau::Compte attendu = 1000000000;
    for (int i = 0; i <= 10; ++i) {
        EXPECT_EQ(b.at("m" + std::to_string(i)), attendu) << "m" << i;
        if (i < 10) attendu = attendu / pris[i] * mis[i];
    }
}

TEST(GrandsComptes, BoundsNearTheLargestCountAreExact) {
    const Bornes b = bornes("tr t a*3 -> b*2\ntr u b -> c\npl a (1000000000000000000)\n");
    EXPECT_EQ(b.at("a"), 1000000000000000000);
    EXPECT_EQ(b.at("b"), 666666666666666666);
    EXPECT_EQ(b.at("c"), 666666666666666666);
}

/// Only one of two nodes is ever visited, each with a loop of its own; the state equation alone would run both.
TEST(GrandsComptes, LoopsOfANodeThatIsNotVisitedCountForNothing) {
    const std::string net =
        "tr d q0 -> q1 ma*1000000000\ntr b q1 -> q2\ntr c q1 -> q3\ntr l q2 ma -> q2 mb*2\ntr k q3 mb -> q3 mc\npl q0 "
        "(1)\n";
    const Bornes b = bornes(net);
    EXPECT_EQ(b.at("ma"), 1000000000);
    EXPECT_EQ(b.at("mb"), 2000000000);
    EXPECT_EQ(b.at("mc"), 0);
}

/// What must be taken one by one before, or gathered before, is taken and gathered in bulk.
TEST(GrandsComptes, ANetThatCanGrowOnlyAfterABillionFiringsIsFoundUnbounded) {
    for (const char* suite : {"tr c q1 b*1000000000 -> q2\ntr d q2 -> q2 c\n",
                              "tr c q1 b*1000000000 -> q2\ntr d q2 -> q3\ntr e q3 -> q2 c*2\ntr f q2 c -> q2 d\n"}) {
        const Bornes b =
            bornes(std::string("tr i q0 -> q1 a*1000000000\ntr a q1 a -> q4\ntr b q4 -> q1 b\npl q0 (1)\n") + suite);
        EXPECT_EQ(b.at("a"), 1000000000);
        EXPECT_EQ(b.at("b"), 1000000000);
        EXPECT_EQ(b.at("c"), Reseau::OMEGA);
    }
}

}  // namespace
