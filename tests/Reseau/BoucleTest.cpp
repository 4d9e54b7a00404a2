// Ways of the control token around, and the weights that show that there is none.
#include "Reseau/Boucle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "Reseau/Equation.h"
#include "Reseau/Lecture.h"
#include "reseau_familles.h"

namespace {

using Reseau::Compte;
using Comptes = std::vector<Compte>;

std::vector<std::uint32_t> toutes(const Reseau::Net& net) {
    std::vector<std::uint32_t> places(net.places.size());
    std::iota(places.begin(), places.end(), 0U);
    return places;
}

/// What some firings change, by place.
std::vector<Reseau::Large> effet(const Reseau::Net& net, const Comptes& tirs) {
    std::vector<Reseau::Large> resultat(net.places.size(), 0);
    for (std::size_t t = 0; t < tirs.size(); ++t)
        for (const Reseau::Poids& e : net.transitions[t].effet)
            resultat[e.place] += static_cast<Reseau::Large>(e.compte) * tirs[t];
    return resultat;
}

void verifierLeTour(const Reseau::Equation& equation, const Comptes& tour) {
    const std::vector<Reseau::Large> change = effet(equation.net, tour);
    EXPECT_TRUE(std::ranges::all_of(change, [](Reseau::Large c) { return c >= 0; }));
    EXPECT_TRUE(std::ranges::any_of(change, [](Reseau::Large c) { return c > 0; }));
    std::vector<bool> tirees;
    for (const Compte c : tour) tirees.push_back(c > 0);
    EXPECT_EQ(equation.jeton->composantes(tirees).size(), 1U);
}

void verifierLesPoids(const Reseau::Net& net, const Reseau::Cas& cas) {
    ASSERT_GT(cas.facteur, 0);
    std::vector<Reseau::Large> poids(net.places.size(), cas.facteur);
    for (const auto& [p, y] : cas.multiplicateurs) {
        ASSERT_GE(y, 0);
        poids[p] += y;
    }
    Reseau::Large total = 0;
    for (std::size_t p = 0; p < poids.size(); ++p) total += poids[p] * net.initial[p];
    EXPECT_EQ(cas.total, total);
    for (const Reseau::Transition& t : net.transitions) {
        Reseau::Large change = 0;
        for (const Reseau::Poids& e : t.effet) change += poids[e.place] * e.compte;
        EXPECT_LE(change, 0) << t.nom;
    }
}

TEST(Boucle, ARandomModelHasAWayAroundOrWeightsAgainstIt) {
    int tours = 0;
    int bornes = 0;
    for (const auto genre : {familles::Genre::ETAGE, familles::Genre::ECONOME, familles::Genre::LIBRE})
        for (std::uint64_t graine = 0; graine < 100; ++graine) {
            const Reseau::Net net = familles::modeleAuHasard(genre, 4 + static_cast<int>(graine % 20), 4, graine);
            std::uint64_t travail = 100'000'000;
            const Reseau::Equation equation(net, &travail);
            ASSERT_TRUE(equation.jeton);
            const Reseau::Boucle trouvee = boucle(equation, toutes(net));
            ASSERT_FALSE(trouvee.tour && trouvee.borne) << graine;
            if (trouvee.tour) verifierLeTour(equation, *trouvee.tour);
            if (trouvee.borne) verifierLesPoids(net, *trouvee.borne);
            tours += trouvee.tour ? 1 : 0;
            bornes += trouvee.borne ? 1 : 0;
        }
    EXPECT_GT(tours, 30);
    EXPECT_GT(bornes, 200);
    EXPECT_GT(tours + bornes, 290);
}

class Gisement : public testing::Test {
protected:
    /// At r three a make b, again and again; they are made of c at q before.
    const Reseau::Net net_ = Reseau::lire(
        "tr g q c -> q a\ntr h q -> r\ntr k r a*3 -> r a*3 b\ntr i s -> q\npl q (1)\npl c (10)\n", "essai");
    std::uint64_t travail_ = 1'000'000;
    const Reseau::Equation equation_{net_, &travail_};
    const Comptes tour_{0, 0, 1, 0};

    std::vector<bool> place(const std::string& nom) const {
        std::vector<bool> resultat(net_.places.size(), false);
        resultat[static_cast<std::size_t>(std::ranges::find(net_.places, nom) - net_.places.begin())] = true;
        return resultat;
    }
};

TEST_F(Gisement, TheWayAroundIsFoundWithWhatItTakesAndWhereItGoes) {
    const Reseau::Boucle trouvee = boucle(equation_, toutes(net_));
    ASSERT_TRUE(trouvee.tour);
    EXPECT_EQ(std::accumulate(trouvee.tour->begin(), trouvee.tour->end(), Compte{0}), 1);
    const Comptes prises = provisions(equation_, tour_);
    for (std::size_t p = 0; p < prises.size(); ++p) EXPECT_EQ(prises[p], net_.places[p] == "a" ? 3 : 0);
    EXPECT_EQ(etapes(equation_, tour_), place("r"));
}

TEST_F(Gisement, WhatTheWayTakesIsGatheredBefore) {
    const auto comptes = approche(equation_, equation_.programme, place("r"), provisions(equation_, tour_));
    EXPECT_EQ(comptes, (Comptes{3, 1, 0, 0}));
}

TEST_F(Gisement, WhatCannotBeGatheredIsNotPromised) {
    EXPECT_FALSE(approche(equation_, equation_.programme, place("r"), provisions(equation_, {0, 0, 4, 0})));
    EXPECT_FALSE(approche(equation_, equation_.programme, place("s"), provisions(equation_, tour_)));
}

}  // namespace
