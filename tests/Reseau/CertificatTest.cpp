// Every answer comes with a proof that stands on its own; and the checker of the proofs is no rubber stamp.
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <utility>

#include "Outils.h"
#include "Reseau/Ecriture.h"
#include "Reseau/Lecture.h"
#include "Reseau/Reseau.h"
#include "Verificateur.h"
#include "reseau_familles.h"

namespace familles {

void PrintTo(const Famille& famille, std::ostream* out) { *out << famille.nom; }

}  // namespace familles

namespace {

std::string rapport(const std::string& net, const Reseau::Options& options) {
    const Reseau::Net lu = Reseau::lire(net, "essai");
    return Reseau::ecrire(lu, Reseau::analyser(lu, options));
}

void certifie(const std::string& net) {
    for (const std::uint64_t essai : {std::uint64_t{1000}, std::uint64_t{0}})
        for (const bool verdictSeul : {false, true}) {
            const std::string r = rapport(net, {.verdictSeul = verdictSeul, .preuves = true, .essai = essai});
            ASSERT_EQ(essai::verifier(net, r, verdictSeul), "") << net << r;
        }
}

#ifdef __SANITIZE_ADDRESS__
constexpr int NETS = 100;
#else
constexpr int NETS = 2500;
#endif

class CertificatsAuHasard : public testing::TestWithParam<int> {};

TEST_P(CertificatsAuHasard, EveryAnswerIsProved) {
    essai::Hasard h(static_cast<std::uint64_t>(GetParam()) + 77);
    for (int i = 0; i < NETS && !HasFatalFailure(); ++i) {
        certifie(essai::netAuHasard(h).texte());
        certifie(essai::netDeReseauAuHasard(h).texte());
        certifie(essai::netRedondantAuHasard(h).texte());
    }
}

INSTANTIATE_TEST_SUITE_P(Tranches, CertificatsAuHasard, testing::Range(0, 4));

std::string texte(const Reseau::Net& net) {
    std::ostringstream out;
    familles::ecrire(out, net);
    return out.str();
}

class CertificatsDesFamilles : public testing::TestWithParam<familles::Famille> {};

/// The nets of the benchmark, but for models that are not answered in time and nets of thousands of places that take
/// the checker long: bench/reseau_preuves tries all of them.
TEST_P(CertificatsDesFamilles, EveryAnswerOfTheBenchmarkIsProved) {
    const std::set<std::string> longs{"model 20/8",  "model 50/2",   "model 50/12",
                                      "model 100/6", "model 100/20", "model 200/20"};
    const std::set<std::pair<std::string, int>> grands{
        {"threads", 1000},  {"calls", 1000},        {"mutual exclusion", 1000},
        {"mesh", 45},       {"philosophers", 1000}, {"token ring", 1000},
        {"pipeline", 1000}, {"assembly", 1023},     {"threads, locals", 250}};
    for (const int n : GetParam().parametres) {
        if (n > 1 && longs.contains(GetParam().nom)) continue;
        if (grands.contains({GetParam().nom, n})) continue;
        const std::string net = texte(GetParam().net(n));
        for (const bool verdictSeul : {false, true}) {
            const std::string r = rapport(net, {.verdictSeul = verdictSeul, .preuves = true});
            ASSERT_EQ(essai::verifier(net, r, verdictSeul), "") << GetParam().nom << ' ' << n;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Toutes, CertificatsDesFamilles, testing::ValuesIn(familles::toutes()));

class CertificatsDesModeles : public testing::TestWithParam<familles::Genre> {};

/// Models with up to 10^9 molecules of a kind.
TEST_P(CertificatsDesModeles, EveryAnswerToAModelIsProved) {
    for (int i = 0; i < 10; ++i) {
        const std::string net =
            texte(familles::modeleAuHasard(GetParam(), 3, 2 + (i * 7 + 3) % 3, static_cast<std::uint64_t>(3000 + i)));
        for (const bool verdictSeul : {false, true}) {
            const std::string r = rapport(net, {.verdictSeul = verdictSeul, .preuves = true});
            ASSERT_EQ(essai::verifier(net, r, verdictSeul), "") << net << r;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Tous, CertificatsDesModeles,
                         testing::Values(familles::Genre::ETAGE, familles::Genre::ECONOME, familles::Genre::LIBRE));

const std::string NET =
    "net n\ntr i q0 -> q1 ma*21\ntr t q1 ma*2 -> q1 mb*3\ntr u q1 mb*2 -> q2 mc\ntr v q2 -> q1\ntr w q3 mc -> q3 md\n"
    "tr x e -> e f\npl e (1)\npl q0 (1)\npl alone (5)\n";

/// A pump of three transitions, which is not found without exploring or asking the state equation.
const std::string POMPE = "net n\ntr x e -> g\ntr y g -> h\ntr z h -> e f\npl e (1)\npl alone (5)\n";

/// The report of `net` with the first `avant` replaced by `apres`.
std::string fausse(const std::string& avant, const std::string& apres, const Reseau::Options& options,
                   const std::string& net = NET) {
    std::string r = rapport(net, options);
    const std::size_t ou = r.find(avant);
    EXPECT_NE(ou, std::string::npos) << avant << " is not in\n" << r;
    return ou == std::string::npos ? r : r.replace(ou, avant.size(), apres);
}

/// Proofs by the order of the token's firings, by where the token ends, and by a pump at the end of a run in bulk.
TEST(Certificat, ProofsOfNetsWithBillionsOfTokensAreAccepted) {
    const std::string parLaFin =
        "tr i q0 -> q1 a*51 b*8224880\ntr a q1 -> q2\ntr b q2 b -> q1 c*2\ntr c q2 a*2 -> q3 b\n"
        "tr d q3 b*3 -> q1 c*2\npl q0 (1)\n";
    const std::string pompe =
        "tr i q0 -> q1 a*1000000000\ntr a q1 a -> q4\ntr b q4 -> q1 b\ntr c q1 b*1000000000 -> q2\n"
        "tr d q2 -> q3\ntr e q3 -> q2 c*2\ntr f q2 c -> q2 d\npl q0 (1)\n";
    for (const std::string& net : {parLaFin, pompe})
        for (const bool verdictSeul : {false, true}) {
            const std::string r = rapport(net, {.verdictSeul = verdictSeul, .preuves = true, .essai = 10});
            EXPECT_EQ(essai::verifier(net, r, verdictSeul), "") << net << r;
        }
    const Reseau::Options options{.preuves = true, .essai = 10};
    const std::string r = rapport(parLaFin, options);
    EXPECT_NE(r.find("departure "), std::string::npos) << r;
    const auto fausser = [&](const std::string& avant, const std::string& apres) {
        std::string faux = r;
        const std::size_t ou = faux.find(avant);
        EXPECT_NE(ou, std::string::npos) << avant;
        return ou == std::string::npos ? r : faux.replace(ou, avant.size(), apres);
    };
    EXPECT_NE(essai::verifier(parLaFin, fausser("token q0", "token a"), false), "");
    EXPECT_NE(essai::verifier(parLaFin, fausser("departure 1 q3", "departure 1 q1"), false), "");
    std::string sansBulk = rapport(pompe, options);
    sansBulk.replace(sansBulk.find("cycle"), 5, "cycle a");
    EXPECT_NE(essai::verifier(pompe, sansBulk, false), "");
}

/// A pump that needs 10^9 tokens and gives them back: they are gathered first, with a control token and without one.
/// The second pump leaves 64 bits when it is gone through more than twice.
TEST(Certificat, WhatAPumpNeedsIsGatheredFirst) {
    const std::string gagner = "tr i q0 -> q1 a*1000000000\ntr a q1 a -> q4\ntr b q4 -> q1 b\npl q0 (1)\n";
    for (const std::string& net :
         {gagner + "tr c q1 b*1000000000 -> q2\ntr d q2 -> q1 b*1000000000 w\n",
          gagner + "tr c q1 b*1000000000 -> q2 b*1000000000 w*4000000000000000000\ntr d q2 -> q1\n",
          std::string("tr a x -> y\ntr b y*1000000000 -> z\ntr c z -> y*1000000000 w\npl x (1000000000)\n")})
        for (const bool verdictSeul : {false, true}) {
            const std::string r = rapport(net, {.verdictSeul = verdictSeul, .preuves = true, .essai = 10});
            EXPECT_EQ(essai::verifier(net, r, verdictSeul), "") << net << r;
            EXPECT_EQ(r.find("the net is not bounded"), 0U) << net << r;
        }
}

/// A round takes two cycles of the control token that do not touch: the connection is found besides.
TEST(Certificat, APumpOfSeveralCyclesIsConnected) {
    const std::string net =
        "tr i q0 -> q1 m*4000000\ntr a q1 m*4 -> q2 c*3\ntr b q2 -> q1\ntr d q2 -> q3\ntr e q3 m -> q4\n"
        "tr f q4 -> q3 m*2\ntr g q3 -> q1\npl q0 (1)\n";
    const std::string r = rapport(net, {.preuves = true, .essai = 0});
    EXPECT_EQ(essai::verifier(net, r, false), "") << r;
    EXPECT_NE(r.find("bound c w by"), std::string::npos) << r;
}

/// The solutions' runs have shown as much of m1 before as the round of the pump does.
TEST(Certificat, APumpIsSeenInARunThatReachesNothingNew) {
    const std::string net =
        "tr t0 q0 -> q1\ntr t1 q0 m2*3 m4*2 -> q3 m3*3 m2\ntr t2 q1 -> q2\ntr t3 q1 m0 -> m3*3 q2\ntr t4 q2 -> q3\n"
        "tr t5 m4*3 q2 -> q4 m1*3\ntr t6 q3 -> q4\ntr t7 q3 m4*2 -> q3 m4*3\ntr t8 q4 -> q0\ntr t9 m4*3 q4 m1*2 -> q4\n"
        "tr t10 depart -> q0 m2*9201 m4*384585234\ntr t11 depart -> q1 m2*6239 m4*2 m0*7011975\npl depart (1)\n";
    const std::string r = rapport(net, {.preuves = true});
    EXPECT_EQ(essai::verifier(net, r, false), "") << r;
    EXPECT_NE(r.find("bound m1 w "), std::string::npos) << r;
}

/// A pump of some 300 firings needs a store of several kinds of molecules, which other pumps have to gather.
TEST(Certificat, APumpStartsFromWhatAnotherHasGathered) {
    const std::string net =
        "tr t0 q0 -> q1\ntr t1 q0 m0*3 -> q1\ntr t2 q1 -> q2\ntr t3 q1 m2*2 -> q19 m5\ntr t4 q2 m5 -> q3\n"
        "tr t5 q2 m4 m7 -> m2*2 q8 m1\ntr t6 q3 -> q4\ntr t7 q3 m7 -> q10\ntr t8 q4 -> q5\ntr t9 q4 -> q0\n"
        "tr t10 q5 -> q6\ntr t11 q5 -> q18\ntr t12 q6 -> q7\ntr t13 m1*3 q6 -> m2*2 m4*2 q17\ntr t14 q7 -> q8\n"
        "tr t15 q7 -> q14\ntr t16 q8 -> q9\ntr t17 q8 m3 -> m0*2 m1*2 q7\ntr t18 m0 m5 q9 -> q10\n"
        "tr t19 q9 -> q9\ntr t20 m2*3 q10 m8 -> m4 q11\ntr t21 m4 q10 m8*3 -> q6\ntr t22 q11 -> q12\n"
        "tr t23 q11 -> q7\ntr t24 m1*3 m7*2 q12 -> m8 q13\ntr t25 q12 -> q12\ntr t26 m2*2 m3*2 q13 -> q14\n"
        "tr t27 q13 -> q1\ntr t28 q14 -> q15\ntr t29 m4*3 q14 -> q1 m5 m2\ntr t30 q15 -> q16\n"
        "tr t31 m1*2 q15 m6 -> q0 m3*2\ntr t32 q16 -> q17\ntr t33 m1*3 m3*3 q16 -> q1\ntr t34 q17 -> q18\n"
        "tr t35 m4*3 q17 -> m5*2 m7 q16\ntr t36 q18 -> q19\ntr t37 m5*2 m2 q18 -> q8 m6*3\ntr t38 q19 -> q0\n"
        "tr t39 q19 m2*2 m8 -> m5*3 q5\ntr t40 depart -> q2 m5*6899928 m2*57187944 m3*996634 m6\n"
        "tr t41 depart -> q2 m5 m1*99691 m3*4\npl depart (1)\n";
    const std::string r = rapport(net, {.preuves = true});
    EXPECT_EQ(essai::verifier(net, r, false), "");
    for (const char* p : {"m0", "m1", "m2", "m4", "m5", "m6", "m7"})
        EXPECT_NE(r.find(std::string("bound ") + p + " w "), std::string::npos) << p;
}

/// Each round takes one of m for one of c, but it takes four and gives three back: the last one needs four.
TEST(Certificat, TheLastFiringOfATransitionNeedsWhatItTakes) {
    const std::string net = "tr i q0 -> q1 m*1000000000\ntr a q1 m*4 -> q2 c\ntr b q2 -> q1 m*3\npl q0 (1)\n";
    const std::string r = rapport(net, {.preuves = true, .essai = 10});
    EXPECT_EQ(essai::verifier(net, r, false), "") << r;
    EXPECT_NE(r.find("bound c 999999997"), std::string::npos) << r;
    const std::size_t ou = r.find("last a");
    ASSERT_NE(ou, std::string::npos) << r;
    for (const std::string faux : {"first a", "last b", "last i"})
        EXPECT_NE(essai::verifier(net, std::string(r).replace(ou, 6, faux), false), "") << faux;
}

/// One set of places bounds each of them, and each run goes on from the one before.
TEST(Certificat, TheProofOfARingGrowsWithItsPlacesAndNotWithTheirSquare) {
    constexpr std::size_t PLACES = 1000;
    std::ostringstream net;
    for (std::size_t p = 0; p < PLACES; ++p) net << "tr t" << p << " p" << p << " -> p" << (p + 1) % PLACES << '\n';
    net << "pl p0 (1)\n";
    const std::string r = rapport(net.str(), {.preuves = true});
    EXPECT_EQ(essai::verifier(net.str(), r, false), "");
    EXPECT_LT(r.size(), 200 * PLACES);
}

TEST(Certificat, TheCheckerAcceptsWhatIsTrueAndRejectsEveryFalsifiedLine) {
    const Reseau::Options parEquation{.preuves = true, .essai = 0};
    const Reseau::Options parEnsemble{.preuves = true, .essai = 100000};
    for (const Reseau::Options& o : {parEquation, parEnsemble}) {
        EXPECT_EQ(essai::verifier(NET, rapport(NET, o), false), "") << rapport(NET, o);
        EXPECT_NE(essai::verifier(NET, fausse("the net is not bounded", "the net is bounded", o), false), "");
        EXPECT_NE(essai::verifier(NET, fausse("dead w", "dead w u", o), false), "");
        EXPECT_NE(essai::verifier(NET, fausse("dead w", "dead", o), false), "");
        EXPECT_NE(essai::verifier(NET, fausse("bound mb 30", "bound mb 31", o), false), "");
        EXPECT_NE(essai::verifier(NET, fausse("bound mb 30", "bound mb 27", o), false), "");
        EXPECT_NE(essai::verifier(NET, fausse("mb*30", "mb*31", o), false), "");
        EXPECT_NE(essai::verifier(NET, fausse("bound f w", "bound f 3", o), false), "");
        EXPECT_NE(essai::verifier(NET, fausse("raises f", "raises e", o), false), "");
        EXPECT_NE(essai::verifier(NET, fausse("alone*5", "alone*6", o), false), "");
        EXPECT_NE(essai::verifier(NET, fausse("fires i t u v", "fires i t u", o), false), "");
    }
    EXPECT_NE(essai::verifier(NET, fausse("cycle x", "cycle", parEnsemble), false), "");
    EXPECT_NE(essai::verifier(POMPE, fausse("cycle (x*1)*1 (y*1)*1 (z*1)*1", "cycle", parEquation, POMPE), false), "");
    EXPECT_NE(essai::verifier(POMPE, fausse("cycle x y z", "cycle", parEnsemble, POMPE), false), "");
    EXPECT_NE(essai::verifier(NET, fausse("close 8 126 ", "close 8 125 ", parEquation), false), "");
    EXPECT_NE(essai::verifier(NET, fausse("subinvariant 2 21 ", "subinvariant 2 20 ", parEquation), false), "");
    EXPECT_NE(essai::verifier(NET, fausse("21 q0*21 ma*1", "21 q0*21 ma*2", parEquation), false), "");
    EXPECT_NE(essai::verifier(NET, fausse("21 by subinvariant 2", "21 by subinvariant 1", parEquation), false), "");
    EXPECT_NE(essai::verifier(NET, fausse("round 2 q0*1 ma*1", "round 4 q0*1 ma*1", parEquation), false), "");
    EXPECT_NE(essai::verifier(NET, fausse("round 2 q0*1 ma*1", "round 2 q0*1 ma*3", parEquation), false), "");
    EXPECT_NE(essai::verifier(NET, fausse("set q1*1 ma*21", "set q1*1 ma*20", parEnsemble), false), "");
    EXPECT_NE(essai::verifier(NET, fausse("set q1*1 ma*1 mb*30\n", "", parEnsemble), false), "");
}

}  // namespace
