// The parts that the exploration is built from, each against the plainest thing that does the same; and the exploration
// itself with different numbers of threads, which must not differ in a single byte.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "Outils.h"
#include "Reseau/Antichaine.h"
#include "Reseau/Champs.h"
#include "Reseau/Composante.h"
#include "Reseau/Conservation.h"
#include "Reseau/Couverture.h"
#include "Reseau/Ecriture.h"
#include "Reseau/Ensemble.h"
#include "Reseau/Enumeration.h"
#include "Reseau/Equipe.h"
#include "Reseau/Franchissement.h"
#include "Reseau/Lecture.h"
#include "Reseau/Liasse.h"
#include "Reseau/Prolongement.h"
#include "Reseau/Reseau.h"
#include "Reseau/Tir.h"
#include "Reseau/Visite.h"
#include "Verificateur.h"
#include "reseau_familles.h"

namespace {

using essai::Hasard;
using essai::tirer;
using Reseau::Champs;
using Reseau::Compte;
using Reseau::Mot;
using Reseau::OMEGA;
using Reseau::Sonde;
using Comptes = std::vector<Compte>;
using Mots = std::vector<Mot>;

constexpr auto SANS_LIMITE = std::numeric_limits<std::uint64_t>::max();

Mots emballer(const Champs& champs, const Comptes& comptes) {
    Mots m(champs.mots(), 0);
    for (std::uint32_t p = 0; p < comptes.size(); ++p) champs.poser(m.data(), p, comptes[p]);
    return m;
}

Comptes deballer(const Champs& champs, const Mot* m) {
    Comptes comptes(champs.places());
    for (std::uint32_t p = 0; p < comptes.size(); ++p) comptes[p] = champs.lire(m, p);
    return comptes;
}

/// A marking ready to be compared with others.
struct Sondee {
    Sondee(const Champs& layout, const Mots& m) : champs(layout), sonde(champs.sonder(m.data(), pleins)) {}
    bool couverteDe(const std::uint8_t* garde) const {
        return champs.epars() ? champs.couvre<true>(garde, sonde) : champs.couvre<false>(garde, sonde);
    }
    bool couvre(const std::uint8_t* garde) const {
        return champs.epars() ? champs.couverte<true>(garde, sonde) : champs.couverte<false>(garde, sonde);
    }

    const Champs& champs;
    std::vector<std::uint32_t> pleins;
    Sonde sonde;
};

/// A packed marking as it is kept.
std::vector<std::uint8_t> garder(const Champs& champs, const Comptes& comptes) {
    std::vector<std::uint8_t> octets(champs.octets() + Champs::MARGE, 0xA5);
    champs.ranger(emballer(champs, comptes).data(), octets.data());
    return octets;
}

Comptes lireGarde(const Champs& champs, const std::uint8_t* octets) {
    Mots m(champs.mots());
    champs.reprendre(octets, m.data());
    return deballer(champs, m.data());
}

bool couvre(const Comptes& a, const Comptes& b) { return std::ranges::equal(a, b, std::ranges::greater_equal()); }

/// A count from 0 to `plafond`, the ends more often than chance would have it; now and then OMEGA.
Compte compteAuHasard(Hasard& h, Compte plafond, bool omegas) {
    switch (tirer(h, omegas ? 6 : 5)) {
        case 0:
            return 0;
        case 1:
            return plafond;
        case 5:
            return OMEGA;
        default:
            return static_cast<Compte>(h() % (static_cast<std::uint64_t>(plafond) + 1));
    }
}

TEST(ChampsTest, PackedMarkingsAreReadComparedJoinedAndConvertedAsTheirCountsAre) {
    Hasard h(1);
    for (int tour = 0; tour < 3000; ++tour) {
        const bool omegas = tour % 2 == 0;
        Comptes plafonds(static_cast<std::size_t>(1 + tirer(h, 40)));
        Comptes plusLarges = plafonds;
        Comptes a = plafonds;
        Comptes b = plafonds;
        for (std::size_t p = 0; p < plafonds.size(); ++p) {
            plafonds[p] = tirer(h, 3) == 0 ? static_cast<Compte>(h() >> (1 + h() % 63)) : tirer(h, 9);
            plafonds[p] = std::min(plafonds[p], OMEGA - 1);
            plusLarges[p] = tirer(h, 2) == 0 ? plafonds[p] : OMEGA - 1;
            a[p] = compteAuHasard(h, plafonds[p], omegas);
            b[p] = tirer(h, 3) == 0 ? compteAuHasard(h, plafonds[p], omegas) : a[p];
        }
        const Champs champs(plafonds, omegas);
        const Mots motsA = emballer(champs, a);
        const Sondee sondeA(champs, motsA);
        std::vector<std::uint8_t> gardeB = garder(champs, b);
        ASSERT_EQ(deballer(champs, motsA.data()), a);
        ASSERT_EQ(lireGarde(champs, gardeB.data()), b);
        ASSERT_EQ(champs.egale(gardeB.data(), sondeA.sonde), a == b);
        for (std::uint32_t p = 0; p < plafonds.size(); ++p) ASSERT_GE(champs.plafond(p), plafonds[p]);
        if (!omegas) continue;
        ASSERT_EQ(sondeA.couverteDe(gardeB.data()), couvre(b, a));
        ASSERT_EQ(sondeA.couvre(gardeB.data()), couvre(a, b));
        ASSERT_EQ(champs.couvre(motsA.data(), emballer(champs, b).data()), couvre(a, b));
        bool plus = false;
        for (std::size_t p = 0; p < a.size(); ++p) plus = plus || (a[p] > b[p] && a[p] != OMEGA);
        const Mots motsB = emballer(champs, b);
        for (std::size_t doute = 0; doute < champs.mots(); ++doute) {
            std::size_t montre = doute;
            ASSERT_EQ(champs.depasse(motsA.data(), motsB.data(), montre), plus && couvre(a, b));
            ASSERT_LT(montre, champs.mots());
        }
        std::vector<std::uint32_t> marquees;
        champs.pourChaqueMarquee(motsA.data(), [&](std::uint32_t p) { marquees.push_back(p); });
        std::ranges::sort(marquees);
        std::vector<std::uint32_t> positives;
        for (std::uint32_t p = 0; p < a.size(); ++p)
            if (a[p] > 0) positives.push_back(p);
        ASSERT_EQ(marquees, positives);
        Comptes jointure = a;
        Comptes rencontre = a;
        for (std::size_t p = 0; p < a.size(); ++p) {
            jointure[p] = std::max(a[p], b[p]);
            rencontre[p] = std::min(a[p], b[p]);
        }
        champs.joindre(gardeB.data(), sondeA.sonde);
        ASSERT_EQ(lireGarde(champs, gardeB.data()), jointure);
        ASSERT_TRUE(sondeA.couverteDe(gardeB.data()));
        gardeB = garder(champs, b);
        champs.rencontrer(gardeB.data(), sondeA.sonde);
        ASSERT_EQ(lireGarde(champs, gardeB.data()), rencontre);
        ASSERT_TRUE(sondeA.couvre(gardeB.data()));
        const Mots motsRencontre = emballer(champs, rencontre);
        ASSERT_TRUE(champs.egale(gardeB.data(), Sondee(champs, motsRencontre).sonde));
        const Champs larges(plusLarges, true);
        Mots convertie(larges.mots());
        Reseau::convertir(champs, motsA.data(), larges, convertie.data());
        ASSERT_EQ(deballer(larges, convertie.data()), a);
    }
}

TEST(ChampsTest, ThresholdsAreMetWhereSomePlaceHoldsWhatIsAskedOfIt) {
    Hasard h(6);
    for (int tour = 0; tour < 3000; ++tour) {
        Comptes plafonds(static_cast<std::size_t>(1 + tirer(h, 60)));
        for (Compte& c : plafonds) c = 1 + tirer(h, 9);
        const Champs champs(plafonds, true);
        Comptes m = plafonds;
        Mots seuils(champs.mots(), 0);
        bool franchis = false;
        for (std::uint32_t p = 0; p < m.size(); ++p) {
            m[p] = compteAuHasard(h, plafonds[p], true);
            const Compte seuil = std::max<Compte>(1, compteAuHasard(h, plafonds[p], true));
            const bool demandee = tirer(h, 4) == 0;
            if (demandee) champs.exiger(seuils.data(), p, seuil);
            ASSERT_EQ(champs.exige(seuils.data(), p), demandee);
            franchis = franchis || (demandee && m[p] >= seuil);
        }
        std::vector<std::uint8_t> garde(champs.octets() + Champs::MARGE, 0xA5);
        champs.ranger(seuils.data(), garde.data());
        const Mots mots = emballer(champs, m);
        ASSERT_EQ(champs.franchit(Sondee(champs, mots).sonde, garde.data()), franchis);
    }
}

TEST(EnsembleTest, ItHoldsWhatWasAddedOnceEach) {
    Hasard h(2);
    for (const std::size_t places : {1U, 3U, 7U, 30U}) {
        const Champs champs(Comptes(places, 200), false);
        Reseau::Ensemble ensemble;
        std::set<Comptes> temoin;
        for (int i = 0; i < 20'000; ++i) {
            Comptes comptes(places);
            for (Compte& c : comptes) c = tirer(h, places == 1 ? 200 : 8);
            const std::vector<std::uint8_t> garde = garder(champs, comptes);
            ASSERT_EQ(ensemble.ajouter(champs, garde.data(), champs.empreinte(garde.data())),
                      temoin.insert(comptes).second);
        }
        ASSERT_EQ(ensemble.taille(), temoin.size());
        std::set<Comptes> lus;
        ensemble.pourChaque(champs, [&](const std::uint8_t* garde) { lus.insert(lireGarde(champs, garde)); });
        EXPECT_EQ(lus, temoin);
    }
}

TEST(LiasseTest, WhatIsPackedAnewIsTheSameInLargerAndInSmallerFields) {
    Hasard h(8);
    Champs champs(Comptes(30, 3), true);
    Reseau::Liasse liasse;
    std::vector<Comptes> temoin;
    for (const Compte plafond : {3, 200, 4, 70'000, 3}) {
        const Champs neufs(Comptes(30, plafond), true);
        liasse.convertir(champs, neufs);
        champs = neufs;
        for (int i = 0; i < 50; ++i) {
            Comptes comptes(30);
            for (Compte& c : comptes) c = compteAuHasard(h, 3, true);
            temoin.push_back(comptes);
            champs.ranger(emballer(champs, comptes).data(), liasse.allonger(champs.octets()));
        }
        ASSERT_EQ(liasse.taille(), temoin.size());
        for (std::uint32_t i = 0; i < liasse.taille(); ++i)
            ASSERT_EQ(lireGarde(champs, liasse.en(i, champs.octets())), temoin[i]) << i;
    }
}

TEST(ElargissementTest, FieldsAreNarrowUnlessTheSameSetIsConvertedAgainAndAgain) {
    Reseau::Elargissement elargissement;
    const Comptes besoins{0, 1, 5};
    for (std::uint64_t gardes = 1; gardes < 1'000'000; gardes *= 2)
        ASSERT_EQ(elargissement.plafonds(besoins, gardes), besoins) << gardes;
    for (int i = 0; i < 5; ++i) elargissement.plafonds(besoins, 1'000'000);
    EXPECT_EQ(elargissement.plafonds(besoins, 1'000'000), (Comptes{0, 1, 9}));
    EXPECT_EQ(elargissement.plafonds(besoins, 10'000'000), besoins);
}

/// The same questions to the index and to a list.
class Antichaines : public testing::Test {
protected:
    void ajouter(const Comptes& comptes) {
        const Mots m = emballer(*champs, comptes);
        const auto egale = [&](const Comptes& autre) { return autre == comptes; };
        ASSERT_EQ(index.contient(m.data()), std::ranges::any_of(liste, egale));
        const bool couvert = std::ranges::any_of(liste, [&](const Comptes& autre) { return couvre(autre, comptes); });
        ASSERT_EQ(index.couvre(m.data()), couvert);
        if (couvert) return;
        index.retirer(m.data());
        index.ajouter(m.data());
        std::erase_if(liste, [&](const Comptes& autre) { return couvre(comptes, autre); });
        liste.push_back(comptes);
        ASSERT_EQ(index.taille(), liste.size());
    }
    void elargir() {
        auto larges = std::make_unique<const Champs>(Comptes(PLACES, 100'000), true);
        index.convertir(*larges);
        champs = std::move(larges);
    }
    void comparer() {
        std::vector<Comptes> lus;
        index.pourChaque([&](const std::uint8_t* garde) { lus.push_back(lireGarde(*champs, garde)); });
        EXPECT_THAT(lus, testing::UnorderedElementsAreArray(liste));
    }

    static constexpr std::size_t PLACES = 6;
    std::unique_ptr<const Champs> champs = std::make_unique<const Champs>(Comptes(PLACES, 3000), true);
    Reseau::Antichaine index{*champs};
    std::vector<Comptes> liste;
};

TEST_F(Antichaines, RandomMarkingsAreCoveredAndRetiredAsInAList) {
    Hasard h(3);
    for (int i = 0; i < 4000; ++i) {
        Comptes comptes(PLACES);
        for (Compte& c : comptes) c = tirer(h, 200) == 0 ? OMEGA : tirer(h, 4 + i / 400);
        ajouter(comptes);
        if (i == 2000) elargir();
    }
    EXPECT_GT(liste.size(), 100U);
    comparer();
    ajouter(Comptes(PLACES, OMEGA));
    EXPECT_EQ(liste.size(), 1U);
    comparer();
}

TEST_F(Antichaines, MarkingsThatComeInOrderAreFoundAgain) {
    for (Compte i = 0; i < 3000; ++i) ajouter({i, 3000 - i, i % 2, 1 - i % 2, 0, 0});
    EXPECT_EQ(liste.size(), 3000U);
    comparer();
    for (Compte i = 0; i < 3000; i += 2) ajouter({i + 1, 3000 - i, 1, 1, 1, 0});
    comparer();
}

/// Hundreds of places none of which divides: the index has to divide by many at once.
TEST(AntichainesLarges, MarkingsOfAFewTokensAmongManyPlacesAreCoveredAndRetiredAsInAList) {
    constexpr std::size_t PLACES = 300;
    auto champs = std::make_unique<const Champs>(Comptes(PLACES, 3), true);
    Reseau::Antichaine index(*champs);
    std::vector<Comptes> liste;
    Hasard h(7);
    for (int i = 0; i < 3000; ++i) {
        if (i == 1500) {
            auto larges = std::make_unique<const Champs>(Comptes(PLACES, 100), true);
            index.convertir(*larges);
            champs = std::move(larges);
        }
        Comptes comptes(PLACES, 0);
        for (int jeton = tirer(h, 4); jeton >= 0; --jeton)
            comptes[static_cast<std::size_t>(tirer(h, PLACES))] = tirer(h, 20) == 0 ? OMEGA : 1 + tirer(h, 2);
        const Mots m = emballer(*champs, comptes);
        const bool couvert = std::ranges::any_of(liste, [&](const Comptes& autre) { return couvre(autre, comptes); });
        ASSERT_EQ(index.contient(m.data()), std::ranges::find(liste, comptes) != liste.end());
        ASSERT_EQ(index.couvre(m.data()), couvert);
        if (couvert) continue;
        index.retirer(m.data());
        index.ajouter(m.data());
        std::erase_if(liste, [&](const Comptes& autre) { return couvre(comptes, autre); });
        liste.push_back(comptes);
        ASSERT_EQ(index.taille(), liste.size());
    }
    EXPECT_GT(liste.size(), 1000U);
    for (std::uint32_t p = 0; p < PLACES; ++p) {
        std::vector<Comptes> lus;
        index.pourChaqueAvec(p, 2, [&](const std::uint8_t* garde) { lus.push_back(lireGarde(*champs, garde)); });
        std::vector<Comptes> attendus;
        std::ranges::copy_if(liste, std::back_inserter(attendus), [p](const Comptes& m) { return m[p] >= 2; });
        ASSERT_THAT(lus, testing::UnorderedElementsAreArray(attendus)) << p;
    }
}

/// Once there are as many customers as one likes the rest of the shop only goes round; before, it can still be pumped.
/// Each transition puts more into a place of its own than its field holds, and everything found so far is converted.
TEST(CouvertureTest, RoomIsMadeForTheSuccessorsOfAMarkingAtOnce) {
    constexpr int N = 3000;
    std::ostringstream texte;
    texte << "tr retour d -> c\npl c (1)\n";
    for (int i = 0; i < N; ++i)
        texte << "tr t" << i << " c a" << i << " -> d p" << i << '*' << 1000 + i << "\npl a" << i << " (1)\n";
    const Reseau::Net net = Reseau::lire(texte.str(), "essai");
    Reseau::Couverture couverture(net, 1);
    EXPECT_FALSE(couverture.explorer(1, false));
    EXPECT_EQ(couverture.maximaux(), std::uint64_t{N} + 1);
    for (int i = 0; i < N; ++i) {
        const auto p = std::ranges::find(net.places, "p" + std::to_string(i)) - net.places.begin();
        ASSERT_EQ(couverture.maxima()[static_cast<std::size_t>(p)], 1000 + i) << i;
    }
}

std::set<std::string> ensemble(const Reseau::Couverture& couverture) {
    std::set<std::string> resultat;
    couverture.pourChaqueMaximal([&](const Reseau::Creux& m) {
        std::string ligne;
        for (const Reseau::Poids& p : m) ligne += std::to_string(p.place) + "*" + std::to_string(p.compte) + " ";
        resultat.insert(ligne);
    });
    return resultat;
}

/// Wherever it is led, the set that it completes afterwards is the same one, and each maximal marking has its run.
TEST(CouvertureTest, WaysThatItIsLedOnLeaveTheSetAsItIs) {
    constexpr std::uint64_t ASSEZ = 2000;
    Hasard h(21);
    int menees = 0;
    for (int i = 0; i < 10'000; ++i) {
        const essai::Net tire = i % 2 == 0 ? essai::netAuHasard(h) : essai::netDeReseauAuHasard(h);
        const Reseau::Net net = Reseau::lire(tire.texte(), "essai");
        Reseau::Couverture seule(net, 1);
        if (!seule.explorer(ASSEZ, false) || !seule.nonBornee()) continue;
        Reseau::Couverture couverture(net, 1);
        const bool chemins = tirer(h, 2) == 0;
        if (chemins) couverture.garderLesChemins();
        for (std::uint64_t limite = 1; !couverture.explorer(limite, false) && limite < ASSEZ; ++limite) {
            if (!couverture.nonBornee()) continue;
            std::vector<std::uint32_t> tirs;
            for (int k = tirer(h, 8); k >= 0; --k)
                tirs.push_back(static_cast<std::uint32_t>(tirer(h, static_cast<int>(net.transitions.size()))));
            const Reseau::Creux depart = couverture.plusLarge();
            couverture.suivre(depart, tirs);
            ++menees;
        }
        ASSERT_TRUE(couverture.explorer(SANS_LIMITE, false));
        ASSERT_EQ(ensemble(couverture), ensemble(seule)) << tire.texte();
        ASSERT_EQ(couverture.maxima(), seule.maxima());
        if (chemins) couverture.pourChaqueMaximal([&](const Reseau::Creux& m) { (void)couverture.chemin(m); });
    }
    EXPECT_GT(menees, 1000);
}

/// Of the markings that are the same in `a` and `b`, that with the most omegas.
TEST(CouvertureTest, TheWidestMarkingIsToldForEachLocation) {
    const Reseau::Net net =
        Reseau::lire("tr s a -> a m\ntr t a m -> b\ntr u a -> a n\npl a (1)\n", "essai");  // a, m, b, n
    Reseau::Couverture couverture(net, 1);
    ASSERT_TRUE(couverture.explorer(SANS_LIMITE, false));
    const auto larges = couverture.plusLarges({0, 2}, 3);
    ASSERT_EQ(larges.size(), 2U);
    const auto omegas = [](std::uint32_t ou) { return Reseau::Creux{{ou, 1}, {1, OMEGA}, {3, OMEGA}}; };
    Reseau::Creux enB{{1, OMEGA}, {2, 1}, {3, OMEGA}};
    EXPECT_THAT(larges, testing::UnorderedElementsAre(omegas(0), enB));
}

/// Without the messages two threads are left that know nothing of each other; one of them can go round.
TEST(ProlongementTest, AWayOnLeadsThroughWhatIsLeftOut) {
    const Reseau::Net net =
        Reseau::lire("tr t0 a0 m -> a1\ntr t1 a1 -> a0 q\ntr u b0 m -> b1 m\npl a0 (1)\npl b0 (1)\npl m\n",
                     "essai");  // a0, m, a1, q, b0, b1
    const auto parties = Reseau::partiesSansOmegas(net, {1, OMEGA, 1, 1, 1, 1});
    EXPECT_THAT(parties, testing::UnorderedElementsAre(testing::UnorderedElementsAre(0, 2, 3),
                                                       testing::UnorderedElementsAre(4, 5)));
    const Reseau::Creux depart{{0, 1}, {1, OMEGA}, {4, 1}};
    const auto ways = Reseau::prolonger(net, depart, {1, OMEGA, 1, 0, 1, 1}, 100);
    EXPECT_THAT(ways.chemins, testing::ElementsAre(testing::ElementsAre(0, 1)));
    EXPECT_GT(ways.explores, 0U);
    EXPECT_TRUE(Reseau::prolonger(net, depart, {1, OMEGA, 1, OMEGA, 1, 1}, 100).chemins.empty());
}

/// Ten processes that pass messages on: 700 places, and no two processes have anything to do with each other but for
/// messages of which there are as many as one likes.
TEST(ProlongementTest, ProcessesBesideMessagesWithoutBoundAreAnsweredOneByOne) {
    const Reseau::Net net = std::ranges::find(familles::toutes(), "messages", &familles::Famille::nom)->net(10);
    const Reseau::Rapport rapport = Reseau::analyser(net, {});
    EXPECT_FALSE(rapport.bornee);
    EXPECT_LE(rapport.explores, 20'000U);
    EXPECT_GE(std::ranges::count(rapport.bornes, OMEGA), 100);
    for (const Compte c : rapport.bornes) ASSERT_TRUE(c <= 1 || c == OMEGA) << c;
}

TEST(FrontiereTest, ProbesFindWhatTheMostTokensLeadAwayFrom) {
    for (const int graine : {58, 77, 144, 274}) {
        const Reseau::Net net = familles::dense(graine);
        Reseau::Couverture couverture(net);
        couverture.explorer(4000, false);  // without probes 38,000 and more
        EXPECT_TRUE(couverture.complete()) << graine;
        EXPECT_TRUE(couverture.nonBornee()) << graine;
    }
}

TEST(EnumerationTest, RoomIsMadeForAllPlacesOfASuccessorAtOnce) {
    constexpr std::uint32_t N = 20000;
    Reseau::Net net;
    net.places.resize(N + 1);
    net.initial.assign(N + 1, 0);
    net.initial[N] = 1;
    Reseau::Creux post;
    for (std::uint32_t p = 0; p < N; ++p) post.push_back({p, 1000 + p});
    net.ajouter("t", {{N, 1}}, post);
    Reseau::Couverture couverture(net, 1);
    couverture.declarerIncomparables();
    EXPECT_TRUE(couverture.explorer(10, false));
    EXPECT_EQ(couverture.maximaux(), 2U);
    for (std::uint32_t p = 0; p < N; ++p) ASSERT_EQ(couverture.maxima()[p], 1000 + p) << p;
}

TEST(EpuisementTest, NothingIsLeftToAccelerateWhereTheFinitePlacesKeepAWeighting) {
    const Reseau::Net lu =
        Reseau::lire("tr a -> client\ntr b client libre -> servi\ntr c servi -> libre\npl libre (3)\n", "essai");
    ASSERT_THAT(lu.places, testing::ElementsAre("client", "libre", "servi"));
    const Champs champs(Comptes(3, 5), true);
    Reseau::Epuisement epuisement(lu);
    const Mots fini = emballer(champs, {2, 3, 0});
    const Mots omega = emballer(champs, {OMEGA, 3, 0});
    bool avecFini = false;
    bool avecOmega = false;
    for (int i = 0; i < 1000; ++i) {
        avecFini = avecFini || epuisement.chez(champs, fini.data());
        avecOmega = epuisement.chez(champs, omega.data());
    }
    EXPECT_FALSE(avecFini);
    EXPECT_TRUE(avecOmega);
    // What was finite and takes part in growth must not be taken for exhausted, either.
    const Mots autre = emballer(champs, {0, OMEGA, 0});
    for (int i = 0; i < 1000; ++i) EXPECT_FALSE(epuisement.chez(champs, autre.data()));
}

Reseau::Net lireLeNet(const std::string& texte) { return Reseau::lire(texte, "essai"); }

TEST(AccelerationsTest, ATransitionIsRepeatedWithoutSearchWhereWhatItConsumesIsOmega) {
    const Reseau::Net net = lireLeNet(
        "tr a q -> q p\ntr b p*3 -> r\ntr c r s -> s*2\ntr d s*7 t -> u s*7 t\ntr e v r -> w r*9\ntr f e0 p -> e0 e0\n"
        "pl q (1)\npl t (1)\npl s (1)\npl v (5)\n");
    Reseau::Couverture c(net, 1);
    c.garderLesChemins();
    ASSERT_TRUE(c.explorer(SANS_LIMITE, false));
    std::vector<std::vector<Reseau::Pas>> apprises;
    for (std::uint32_t i = 0; i < c.accelerations().nombre(); ++i) apprises.push_back(c.accelerations()[i].pas);
    const auto tir = [](std::uint32_t t) { return std::vector{Reseau::Pas{Reseau::Pas::TIR, t}}; };
    EXPECT_THAT(apprises, testing::UnorderedElementsAre(tir(0), tir(1), tir(2), tir(3)));
    EXPECT_THAT(c.tige(), testing::IsEmpty());
    EXPECT_EQ(apprises.front(), tir(0));
}

TEST(AccelerationsTest, TheFirstRepeatedTransitionComesAfterTheRunThatMakesItPossible) {
    const Reseau::Net net = lireLeNet("tr a p -> q\ntr b q -> r\ntr c r -> r s\ntr d s -> p\npl p (1)\n");
    Reseau::Couverture c(net, 1);
    ASSERT_TRUE(c.explorer(SANS_LIMITE, false));
    EXPECT_THAT(c.tige(), testing::ElementsAre(Reseau::Pas{Reseau::Pas::TIR, 0}, Reseau::Pas{Reseau::Pas::TIR, 1}));
    EXPECT_THAT(c.accelerations()[0].pas, testing::ElementsAre(Reseau::Pas{Reseau::Pas::TIR, 2}));
    EXPECT_EQ(c.explores(), 2U) << "what follows is everything, without bounds";
    EXPECT_THAT(c.maxima(), testing::Each(OMEGA));
}

TEST(AccelerationsTest, WhatNeedsNothingIsRepeatedAtOnce) {
    const Reseau::Net net = lireLeNet("tr a -> p\ntr b p -> q\ntr c q*5 -> r*2\n");
    Reseau::Couverture c(net, 1);
    ASSERT_TRUE(c.explorer(0, false));
    EXPECT_EQ(c.maximaux(), 1U);
    EXPECT_THAT(c.maxima(), testing::Each(OMEGA));
}

TEST(AccelerationsTest, TwoTransitionsThatTakeNothingTogetherAreRepeatedWithoutSearch) {
    const auto tir = [](std::uint32_t t) { return Reseau::Pas{Reseau::Pas::TIR, t}; };
    for (const char* texte :
         {"tr a p*2 -> q x\ntr b q -> p*2\npl p (2)\n", "tr a p -> q\ntr b q r -> p r*2\npl p (1)\npl r (1)\n"}) {
        const Reseau::Net net = lireLeNet(texte);
        Reseau::Couverture c(net, 1);
        c.explorer(0, false);
        EXPECT_THAT(c.tige(), testing::IsEmpty()) << texte;
        ASSERT_EQ(c.accelerations().nombre(), 1U) << texte;
        EXPECT_THAT(c.accelerations()[0].pas, testing::ElementsAre(tir(0), tir(1))) << texte;
    }
    const Reseau::Net plusTard = lireLeNet("tr a p -> q\ntr b q -> r\ntr c r -> q s\npl p (1)\n");
    Reseau::Couverture apresUnTir(plusTard, 1);
    apresUnTir.explorer(1, false);
    EXPECT_THAT(apresUnTir.tige(), testing::ElementsAre(tir(0)));
    ASSERT_EQ(apresUnTir.accelerations().nombre(), 1U);
    EXPECT_THAT(apresUnTir.accelerations()[0].pas, testing::ElementsAre(tir(1), tir(2)));
}

TEST(AccelerationsTest, TwoTransitionsThatTakeSomethingTogetherAreNotRepeated) {
    const Reseau::Net net = lireLeNet("tr a p -> q\ntr b q s -> p x\ntr c q*2 -> p y\npl p (4)\npl s (3)\n");
    Reseau::Couverture c(net, 1);
    ASSERT_TRUE(c.explorer(SANS_LIMITE, false));
    EXPECT_FALSE(c.nonBornee());
    EXPECT_EQ(c.accelerations().nombre(), 0U);
}

/// Threads without end in a ring of locations, which hand on a shared counter: thousands of transitions can be repeated
/// somewhere, and none is tried over and over where it raises nothing any more.
TEST(AccelerationsTest, ThousandsThatMayBeRepeatedAreTriedWhereTheyRaiseSomething) {
    constexpr std::uint32_t ETATS = 8;
    constexpr std::uint32_t LIEUX = 1000;
    Reseau::Net net;
    net.places.resize(ETATS + LIEUX);
    net.initial.assign(ETATS + LIEUX, 0);
    net.initial[0] = 1;
    net.ajouter("source", {}, {{ETATS, 1}});
    for (std::uint32_t v = 0; v < ETATS; ++v)
        for (std::uint32_t i = 0; i < LIEUX; ++i)
            net.ajouter("t", {{v, 1}, {ETATS + i, 1}},
                        {{i % 3 == 0 ? v : (v + 1) % ETATS, 1}, {ETATS + (i + 1) % LIEUX, 1}});
    Reseau::Couverture c(net, 1);
    ASSERT_TRUE(c.explorer(SANS_LIMITE, false));
    EXPECT_GT(c.accelerations().nombre(), LIEUX / 2);
    EXPECT_LT(c.explores(), LIEUX);
    EXPECT_EQ(c.maximaux(), ETATS);
    for (std::uint32_t p = 0; p < net.places.size(); ++p) EXPECT_EQ(c.maxima()[p], p < ETATS ? 1 : OMEGA) << p;
}

TEST(FranchissementTest, TheUsefulTransitionsAreThoseThatAScanOfAllFinds) {
    Hasard h(8);
    for (int tour = 0; tour < 300; ++tour) {
        const essai::Net net = tour % 2 == 0 ? essai::netAuHasard(h) : essai::netDeReseauAuHasard(h);
        const Reseau::Net lu = Reseau::lire(net.texte(), "essai");
        const Champs champs(Comptes(lu.places.size(), 5), true);
        Reseau::Franchissement franchissement(lu, champs);
        for (int essai = 0; essai < 10; ++essai) {
            Comptes comptes(lu.places.size());
            for (Compte& c : comptes) c = tirer(h, 2) == 0 ? 0 : compteAuHasard(h, 5, true);
            const Mots m = emballer(champs, comptes);
            std::vector<std::uint32_t> utiles;
            franchissement.utiles(m.data(), utiles);
            std::vector<std::uint32_t> attendues;
            for (std::uint32_t t = 0; t < lu.transitions.size(); ++t)
                if (franchissement.utile(t, m.data())) attendues.push_back(t);
            ASSERT_EQ(utiles, attendues) << net.texte();
            std::vector<std::uint64_t> marquee(comptes.size());
            for (std::uint64_t& n : marquee) n = h() % 9;
            franchissement.guetter(marquee);
        }
    }
}

/// Twenty locks, each free or held; what is held counts against nobody else's.
TEST(ComposantesTest, ALockIsASetOfItsOwnAndWhatHasNoSetIsLeftAlone) {
    std::ostringstream net;
    net << "tr source -> attend\n";
    for (int i = 0; i < 20; ++i)
        net << "tr prend" << i << " attend libre" << i << " -> tient" << i << "\ntr rend" << i << " tient" << i
            << " -> attend libre" << i << "\npl libre" << i << " (1)\n";
    const Reseau::Net lu = Reseau::lire(net.str(), "essai");
    const auto place = [&lu](const std::string& nom) {
        return static_cast<std::uint32_t>(std::ranges::find(lu.places, nom) - lu.places.begin());
    };
    Comptes vus(lu.places.size(), 1);
    vus[place("attend")] = OMEGA;
    Reseau::Composantes composantes(lu);
    std::uint64_t travail = 1000;
    Reseau::Creux attendu{{place("libre7"), 1}, {place("tient7"), 1}};
    std::ranges::sort(attendu, {}, &Reseau::Poids::place);
    EXPECT_EQ(composantes.chercher(place("tient7"), 1, vus, travail), attendu);
    EXPECT_EQ(composantes.chercher(place("libre7"), 1, vus, travail), attendu);
    vus[place("attend")] = 1;
    EXPECT_EQ(composantes.chercher(place("attend"), 1, vus, travail), std::nullopt);
    travail = 0;
    EXPECT_EQ(composantes.chercher(place("libre7"), 1, vus, travail), std::nullopt);
}

/// Where a transition may take from either of two places, only one of them leads to a set.
TEST(ComposantesTest, EveryPlaceThatATransitionTakesFromIsTried) {
    const Reseau::Net lu =
        Reseau::lire("tr a x y -> p\ntr b p -> q\ntr c q -> x y\ntr d -> x\ntr e x ->\npl x (0)\npl y (1)\n", "essai");
    Reseau::Composantes composantes(lu);
    std::uint64_t travail = 1000;
    EXPECT_THAT(lu.places, testing::ElementsAre("x", "y", "p", "q"));
    EXPECT_EQ(composantes.chercher(2, 1, {1, 1, 1, 1}, travail), (Reseau::Creux{{1, 1}, {2, 1}, {3, 1}}));
    EXPECT_EQ(composantes.chercher(2, 1, {1, OMEGA, 1, 1}, travail), std::nullopt);
}

/// Three readers or one writer: who writes holds three permits.
TEST(ComposantesTest, ATokenWeighsAsMuchAsItMust) {
    const Reseau::Net lu = Reseau::lire(
        "tr a permis -> lit\ntr b lit -> permis\ntr c permis*3 -> ecrit\ntr d ecrit -> permis*3\n"
        "tr e lit*2 -> perdu*7\npl permis (3)\n",
        "essai");
    Reseau::Composantes composantes(lu);
    std::uint64_t travail = 1000;
    EXPECT_THAT(lu.places, testing::ElementsAre("permis", "lit", "ecrit", "perdu"));
    EXPECT_EQ(composantes.chercher(0, 3, {3, 3, 1, 7}, travail), (Reseau::Creux{{0, 1}, {1, 1}, {2, 3}}));
    EXPECT_EQ(composantes.chercher(1, 3, {3, 3, 2, 7}, travail), std::nullopt);
    const auto perdu = composantes.chercher(3, 12, {3, 3, 1, 7}, travail);
    ASSERT_TRUE(perdu);
    EXPECT_EQ(*perdu, (Reseau::Creux{{0, 4}, {1, 4}, {2, 12}, {3, 1}}));
}

TEST(ComposantesTest, AllPlacesAreWeighedTogether) {
    const std::string permis =
        "tr a permis -> lit\ntr b lit -> permis\ntr c permis*3 -> ecrit\ntr d ecrit -> permis*3\n";
    const auto couvrir = [](const std::string& texte, std::uint64_t travail) {
        const Reseau::Net net = lireLeNet(texte + "pl permis (3)\n");
        return Reseau::Composantes(net).couvrir(net.initial, Reseau::Composantes::LEGER, travail);
    };
    EXPECT_EQ(couvrir(permis, 1000), (Reseau::Creux{{0, 1}, {1, 1}, {2, 3}}));
    EXPECT_EQ(couvrir(permis + "tr e lit*2 -> perdu*7\n", 1000), (Reseau::Creux{{0, 4}, {1, 4}, {2, 12}, {3, 1}}));
    EXPECT_EQ(couvrir(permis + "tr e -> lit\n", 1000), std::nullopt);
    EXPECT_EQ(couvrir(permis, 0), std::nullopt);
}

/// Threads that move on together with a shared state. Each place for itself would be looked for in vain: whether the
/// state or the thread brings a token back is another choice at each transition.
TEST(ComposantesTest, ThreadsThatAreNeverMoreNeedNoChoices) {
    constexpr std::uint64_t ETATS = 500;
    constexpr std::uint64_t LIEUX = 200;
    std::mt19937_64 hasard(1);
    Reseau::Net net;
    net.places.resize(ETATS + LIEUX);
    net.initial.assign(ETATS + LIEUX, 0);
    net.initial[0] = 1;
    net.initial[ETATS] = 3;
    const auto place = [](std::uint64_t p) { return Reseau::Poids{static_cast<std::uint32_t>(p), 1}; };
    for (std::uint64_t t = 0; t < 10 * ETATS; ++t) {
        const std::uint64_t etat = t % ETATS;
        const std::uint64_t lieu = t % LIEUX;
        net.ajouter("t", {place(etat), place(ETATS + (lieu * hasard()) % LIEUX)},
                    {place((etat + 1 + hasard() % 3) % ETATS), place(ETATS + (lieu + hasard() % 4) % LIEUX)});
    }
    const Reseau::Rapport rapport = Reseau::analyser(net, {.verdictSeul = true, .fils = 1});
    EXPECT_TRUE(rapport.bornee);
    EXPECT_LE(rapport.explores, 8000U);
}

/// Each of thirty tasks posts the next one twice, so that a task weighs twice what the next one does. What takes a task
/// takes it from an idle thread, too, to which every task comes back.
TEST(ComposantesTest, TasksThatPostTasksWeighAsMuchAsAllThatComesOfThem) {
    constexpr int TACHES = 30;
    std::ostringstream texte;
    texte << "pl libre (1)\npl tache0 (1)\n";
    for (int i = 0; i < TACHES; ++i)
        texte << "tr a" << i << " libre tache" << i << " -> debut" << i << "\ntr b" << i << " debut" << i << " -> fin"
              << i << " tache" << i + 1 << "\ntr c" << i << " fin" << i << " -> libre tache" << i + 1 << '\n';
    const Reseau::Net net = lireLeNet(texte.str());
    std::uint64_t travail = 100000;
    EXPECT_FALSE(Reseau::Composantes(net).couvrir(net.initial, Reseau::Composantes::LEGER, travail));
    travail = 100000;
    const auto poids = Reseau::Composantes(net).couvrir(net.initial, Reseau::Composantes::PESANT, travail);
    ASSERT_TRUE(poids);
    EXPECT_EQ(poids->size(), net.places.size());
    const auto premiere = std::ranges::find(net.places, "tache0") - net.places.begin();
    EXPECT_EQ((*poids)[static_cast<std::size_t>(premiere)].compte, Compte{1} << TACHES);
}

/// Of nets of thousands of places, the exploration sees a corner; the rest is walked to and settled by sets.
TEST(VisitesTest, LargeNetsOfSmallPartsAreAnsweredWithoutExploringThem) {
    const std::vector<std::tuple<std::string, int, bool, Compte>> nets{
        {"philosophers", 300, true, 1}, {"token ring", 200, true, 1},        {"pipeline", 300, true, 3},
        {"mesh", 12, true, 2},          {"mutual exclusion", 200, false, 1}, {"assembly", 255, false, 1}};
    for (const auto& [nom, n, bornee, plus] : nets) {
        const Reseau::Net net = std::ranges::find(familles::toutes(), nom, &familles::Famille::nom)->net(n);
        const Reseau::Rapport rapport = Reseau::analyser(net, {});
        EXPECT_EQ(rapport.bornee, bornee) << nom;
        EXPECT_LE(rapport.explores, 1000U) << nom;
        std::size_t infinies = 0;
        for (std::size_t p = 0; p < net.places.size(); ++p) {
            EXPECT_GE(rapport.bornes[p], 1) << nom << ": " << net.places[p];
            if (rapport.bornes[p] == OMEGA)
                ++infinies;
            else
                EXPECT_LE(rapport.bornes[p], plus) << nom << ": " << net.places[p];
        }
        EXPECT_EQ(infinies, nom == "assembly" ? 1U : bornee ? 0U : static_cast<std::size_t>(n) + 1) << nom;
        EXPECT_EQ(Reseau::analyser(net, {.verdictSeul = true}).bornee, bornee) << nom;
    }
}

/// Transitions of thousands of arcs: what a walk costs is counted by arcs, so that it ends soon.
TEST(VisitesTest, WideTransitionsCostAsMuchAsTheyAreWide) {
    constexpr std::uint32_t LARGES = 10;
    constexpr std::uint32_t PLACES = 10000;
    Reseau::Net net;
    net.places.resize(LARGES + PLACES + 1);
    net.initial.assign(net.places.size(), 0);
    net.initial[0] = 1;
    net.initial.back() = 1'000'000;
    for (std::uint32_t t = 0; t < LARGES; ++t) {
        Reseau::Creux post{{(t + 1) % LARGES, 1}};
        for (std::uint32_t p = t % 3; p < PLACES; p += 3) post.push_back({LARGES + p, 1 + (p * (t + 1)) % 7});
        net.ajouter("t", {{t, 1}, {LARGES + PLACES, 1}}, post);
    }
    Reseau::Tireur tireur(net);
    std::vector<Compte> vus = net.initial;
    Reseau::Visites(net).aller(
        vus, [](std::uint32_t) { return OMEGA; }, tireur, 20'000 * std::uint64_t{PLACES}, false);
    EXPECT_EQ(tireur.minorants(), vus);
    EXPECT_EQ(std::count(vus.begin() + LARGES, vus.end(), 0), 0);
}

TEST(VisitesTest, AllTokensOfARingAreBroughtToEachPlaceAtOnce) {
    constexpr std::uint32_t PLACES = 300;
    constexpr Compte JETONS = 1'000'000'000;
    Reseau::Net net;
    net.places.resize(PLACES);
    net.initial.assign(PLACES, 0);
    net.initial[0] = JETONS;
    for (std::uint32_t p = 0; p < PLACES; ++p) net.ajouter("t", {{p, 1}}, {{(p + 1) % PLACES, 1}});
    Reseau::Tireur tireur(net);
    std::vector<Compte> vus = net.initial;
    Reseau::Visites(net).aller(
        vus, [](std::uint32_t) { return JETONS; }, tireur, 20'000 * std::uint64_t{PLACES}, true);
    EXPECT_EQ(vus, Comptes(PLACES, JETONS));
    EXPECT_EQ(tireur.minorants(), vus);
}

/// Nets that are too large to be asked the state equation, and in which each place can hold all there is.
class TransportsEnMasse : public testing::Test {
protected:
    static Reseau::Net lire(const std::string& texte) { return Reseau::lire(texte, "essai"); }
    static std::string chaine(int places) {
        std::ostringstream texte;
        for (int p = 1; p < places; ++p) texte << "tr t" << p << " p" << p << " -> p" << p + 1 << '\n';
        return texte.str() + "pl p1 (1000000000)\n";
    }
    static std::string etoile(int places) {
        std::ostringstream texte;
        for (int p = 2; p <= places; ++p)
            texte << "tr t" << p << " p1 -> p" << p << "\ntr u" << p << " p" << p << " -> p1\n";
        return texte.str() + "pl p1 (1000000000)\n";
    }
};

TEST_F(TransportsEnMasse, EveryTokenIsBroughtToEachOfThousandsOfPlaces) {
    constexpr int PLACES = 3000;
    for (const std::string& texte : {chaine(PLACES), etoile(PLACES)})
        EXPECT_EQ(Reseau::analyser(lire(texte), {}).bornes, Comptes(PLACES, 1'000'000'000));
}

TEST_F(TransportsEnMasse, WhatIsBroughtInBulkIsProved) {
    constexpr int PLACES = 1200;
    for (const std::string& texte : {chaine(PLACES), etoile(PLACES)}) {
        const Reseau::Net net = lire(texte);
        const Reseau::Rapport rapport = Reseau::analyser(net, {.preuves = true});
        EXPECT_EQ(rapport.bornes, Comptes(PLACES, 1'000'000'000));
        const std::string ecrit = Reseau::ecrire(net, rapport);
        EXPECT_EQ(essai::verifier(texte, ecrit, false), "");
    }
}

TEST(EquipeTest, EveryMemberDoesItsPartAndTheFirstErrorIsThrown) {
    Reseau::Equipe equipe(4);
    ASSERT_EQ(equipe.taille(), 4U);
    std::vector<int> faits(4, 0);
    for (int tour = 0; tour < 1000; ++tour) equipe.executer([&](unsigned i) { ++faits[i]; });
    EXPECT_EQ(faits, std::vector<int>(4, 1000));
    const auto echouer = [](unsigned i) {
        if (i > 0) throw std::runtime_error(std::to_string(i));
    };
    for (int tour = 0; tour < 10; ++tour)
        EXPECT_THAT([&] { equipe.executer(echouer); }, testing::ThrowsMessage<std::runtime_error>("1"));
    equipe.executer([&](unsigned i) { ++faits[i]; });
    EXPECT_EQ(faits, std::vector<int>(4, 1001));
}

const std::vector<unsigned> FILS{1, 2, 3, 8};

/// An enumeration from the net's initial marking in which any set is worth sharing out.
class Partage {
public:
    Partage(const Reseau::Net& net, unsigned fils) : maxima_(net.initial), enumeration_(net, maxima_, fils, 0) {
        Reseau::Creux initial;
        for (std::uint32_t p = 0; p < net.initial.size(); ++p)
            if (net.initial[p] > 0) initial.push_back({p, net.initial[p]});
        enumeration_.admettre(initial, true);
    }
    /// @return markings expanded
    std::uint64_t achever() {
        while (!enumeration_.finie()) developpes_ += enumeration_.avancer(SANS_LIMITE);
        return developpes_;
    }
    std::uint64_t developpes() const { return developpes_; }
    const Comptes& maxima() const { return maxima_; }
    const Reseau::Enumeration& enumeration() const { return enumeration_; }

private:
    Comptes maxima_;
    Reseau::Enumeration enumeration_;
    std::uint64_t developpes_ = 0;
};

/// Everything that an enumeration of the whole set shows, in its order.
std::string enumerer(const Reseau::Net& net, unsigned fils) {
    Partage partage(net, fils);
    std::ostringstream out;
    out << partage.achever() << ' ' << partage.enumeration().taille();
    for (const Compte m : partage.maxima()) out << ' ' << m;
    std::uint64_t h = 0;
    const Champs& champs = partage.enumeration().champs();
    partage.enumeration().pourChaque([&](const std::uint8_t* garde) {
        for (const Compte c : lireGarde(champs, garde)) h = (h ^ static_cast<std::uint64_t>(c)) * 0x9E3779B97F4A7C15U;
        h ^= h >> 29;
    });
    out << ' ' << h;
    return out.str();
}

class FilsParFamille : public testing::TestWithParam<std::pair<std::string, int>> {};

TEST_P(FilsParFamille, TheSetComesInTheSameOrderWhateverTheirNumber) {
    const auto& [nom, n] = GetParam();
    const Reseau::Net net = std::ranges::find(familles::toutes(), nom, &familles::Famille::nom)->net(n);
    ASSERT_TRUE(Reseau::conservatif(net));
    const std::string seul = enumerer(net, 1);
    for (const unsigned fils : FILS) ASSERT_EQ(enumerer(net, fils), seul) << fils << " threads";
}

INSTANTIATE_TEST_SUITE_P(Grands, FilsParFamille,
                         testing::Values(std::pair("kanban", 2), std::pair("kanban", 3), std::pair("fms", 2),
                                         std::pair("readers-writers", 20), std::pair("mesh", 2)));

TEST(Fils, AReportOnARandomNetIsTheSameWhateverTheirNumber) {
    Hasard h(5);
    for (int i = 0; i < 500; ++i) {
        const essai::Net net = i % 2 == 0 ? essai::netAuHasard(h) : essai::netDeReseauAuHasard(h);
        const Reseau::Net lu = Reseau::lire(net.texte(), "essai");
        std::vector<std::string> rapports;
        for (const unsigned fils : FILS) {
            rapports.push_back(
                Reseau::ecrire(lu, Reseau::analyser(lu, {.essai = static_cast<std::uint64_t>(i), .fils = fils})));
        }
        ASSERT_THAT(rapports, testing::Each(rapports.front())) << net.texte();
    }
}

/// A ring in which the counts grow long after the threads have started, so that everything is packed anew under way.
TEST(Fils, CountsThatOutgrowTheirFieldsLateAreTheSameWhateverTheirNumber) {
    const Reseau::Net net = Reseau::lire(
        "tr a p0 -> p1\ntr b p1 -> p2\ntr c p2 -> p3\ntr d p3 -> p4\ntr e p4*18 -> p5*18\ntr f p5*18 -> p0*18\n"
        "pl p0 (20)\n",
        "essai");
    const std::string seul = enumerer(net, 1);
    EXPECT_THAT(seul, testing::HasSubstr(" 20 20 20 20 20 18 "));
    for (const unsigned fils : FILS) EXPECT_EQ(enumerer(net, fils), seul);
}

TEST(Fils, ACountBeyond64BitsIsAnErrorWhateverTheirNumber) {
    std::ostringstream net;
    net << "tr x p1*3 p4*3 p7*4 -> q*4000000000000000000\npl p0 (10)\npl q (6000000000000000000)\n";
    for (int i = 0; i < 8; ++i) net << "tr t" << i << " p" << i << " -> p" << (i + 1) % 8 << '\n';
    const Reseau::Net lu = Reseau::lire(net.str(), "essai");
    for (const unsigned fils : FILS) {
        Partage partage(lu, fils);
        EXPECT_THROW(partage.achever(), Reseau::Debordement);
        EXPECT_GT(partage.developpes(), 4096U) << "too early for the threads to have started";
    }
}

}  // namespace
