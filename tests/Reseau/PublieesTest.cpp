// The minimal coverability set itself, marking by marking, against constructions from the literature, each in every
// order that it is measured with.
#include <gtest/gtest.h>

#include <algorithm>

#include "Outils.h"
#include "Reseau/Couverture.h"
#include "Reseau/Lecture.h"
#include "reseau_familles.h"
#include "reseau_publies.h"

namespace {

using essai::Hasard;

#ifdef __SANITIZE_ADDRESS__
constexpr int NETS = 250;
#else
constexpr int NETS = 2000;
#endif
constexpr int TRANCHES = 4;
constexpr std::uint64_t EXPLORES = 300;
constexpr std::uint64_t SUCCESSEURS = 3000;

std::vector<etalon::Dense> maximaux(const Reseau::Couverture& c, std::size_t places) {
    std::vector<etalon::Dense> resultat;
    c.pourChaqueMaximal([&](const Reseau::Creux& m) {
        etalon::Dense dense(places, 0);
        for (const Reseau::Poids& p : m) dense[p.place] = p.compte;
        resultat.push_back(std::move(dense));
    });
    std::ranges::sort(resultat);
    return resultat;
}

class EnsemblesMinimaux : public testing::TestWithParam<int> {};

TEST_P(EnsemblesMinimaux, EveryPublishedConstructionGivesTheSame) {
    Hasard h(static_cast<std::uint64_t>(GetParam() + 5000));
    int finis = 0;
    int compares = 0;
    int infinis = 0;
    for (int i = 0; i < NETS; ++i) {
        const essai::Net net = i % 2 == 0 ? essai::netAuHasard(h) : essai::netDeReseauAuHasard(h);
        const Reseau::Net lu = Reseau::lire(net.texte(), "essai");
        Reseau::Couverture c(lu, 1);
        if (!c.explorer(EXPLORES, false)) continue;
        ++finis;
        infinis += c.nonBornee();
        const auto attendus = maximaux(c, lu.places.size());
        for (const etalon::Publiee& publiee : etalon::publiees())
            for (const etalon::Ordre ordre : publiee.ordres) {
                const auto construction = publiee.construire(lu, ordre, SUCCESSEURS);
                if (!construction) continue;
                ++compares;
                ASSERT_EQ(construction->maximaux, attendus) << publiee.nom << '\n' << net.texte();
                ASSERT_GE(construction->explores, attendus.size()) << publiee.nom << '\n' << net.texte();
            }
    }
    EXPECT_GT(finis, NETS * 9 / 10);
    EXPECT_GT(infinis, NETS / 4) << "too few unbounded nets to say anything";
    EXPECT_GT(compares, finis * 6 * 9 / 10);
}

INSTANTIATE_TEST_SUITE_P(Tranches, EnsemblesMinimaux, testing::Range(0, TRANCHES));

/// On unbounded random nets, taken together, it expands no more than the best of all on each.
TEST(EnsemblesMinimauxDeNetsDenses, FewerMarkingsAreExpandedThanByThePublishedConstructions) {
    std::uint64_t explores = 0;
    std::uint64_t moindres = 0;
    int compares = 0;
    for (int graine = 0; graine < 40; ++graine) {
        const Reseau::Net net = familles::dense(graine);
        Reseau::Couverture c(net, 1);
        if (!c.explorer(EXPLORES, false) || !c.nonBornee()) continue;
        std::uint64_t meilleure = EXPLORES;
        for (const etalon::Publiee& publiee : etalon::publiees())
            for (const etalon::Ordre ordre : publiee.ordres)
                if (const auto construction = publiee.construire(net, ordre, SUCCESSEURS))
                    meilleure = std::min(meilleure, construction->explores);
        if (meilleure == EXPLORES) continue;
        ++compares;
        explores += c.explores();
        moindres += meilleure;
    }
    EXPECT_GE(compares, 15);
    EXPECT_LT(explores, moindres);
}

}  // namespace
