// The textual format: what it accepts, and where it says that something is wrong.
#include "Reseau/Lecture.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Reseau::Creux;

Reseau::Net lire(const std::string& texte) { return Reseau::lire(texte, "essai.net"); }

std::string erreur(const std::string& texte) {
    try {
        lire(texte);
    } catch (const Reseau::ErreurDeLecture& e) {
        return e.what();
    }
    return "no error";
}

/// Hands over a text in pieces of `taille` characters and counts them.
class Morceaux {
public:
    Morceaux(std::string_view texte, std::size_t taille) : reste_(texte), taille_(taille) {}

    std::string_view operator()() {
        ++demandes_;
        lu_ = reste_.substr(0, taille_);  // where the piece before was
        reste_.remove_prefix(lu_.size());
        return lu_;
    }
    int demandes() const { return demandes_; }

private:
    std::string_view reste_;
    std::size_t taille_;
    std::string lu_;
    int demandes_ = 0;
};

TEST(Lecture, ATextInPiecesCutAnywhereIsTheSameNet) {
    std::string texte;
    for (int i = 0; i < 30; ++i)
        texte += "tr transition" + std::to_string(i) + " {a place} -> p" + std::to_string(i) + "*2\n\n";
    texte += "pl {a place} (7) # the last line has no end";
    const Reseau::Net entier = lire(texte);
    for (std::size_t taille = 1; taille <= texte.size(); ++taille) {
        const Reseau::Net net = Reseau::lire(Morceaux(texte, taille), "essai.net");
        ASSERT_EQ(net.places, entier.places) << taille;
        ASSERT_EQ(net.initial, entier.initial) << taille;
        ASSERT_EQ(net.transitions.size(), 30U) << taille;
        ASSERT_EQ(net.transitions.back().nom, "transition29") << taille;
        ASSERT_EQ(net.transitions.back().post, entier.transitions.back().post) << taille;
    }
}

TEST(Lecture, AMalformedLineIsRefusedBeforeMoreThanItsEndIsAskedFor) {
    const std::string texte = "tr t a -> b\nyes\n" + std::string(1000, '\n');
    for (const std::size_t taille : {std::size_t{1}, std::size_t{5}, std::size_t{16}, std::size_t{100}}) {
        Morceaux morceaux(texte, taille);
        try {
            Reseau::lire(std::ref(morceaux), "essai.net");
            ADD_FAILURE() << taille;
        } catch (const Reseau::ErreurDeLecture& e) {
            EXPECT_STREQ(e.what(), "essai.net:2: \"net\", \"tr\" or \"pl\" expected, not \"yes\"");
        }
        EXPECT_EQ(morceaux.demandes(), static_cast<int>((15 + taille) / taille)) << taille;  // 16 characters
    }
}

TEST(Lecture, TheEditorsNetIsReadAsWritten) {
    const Reseau::Net net =
        lire("net buffer\ntr t1 q1 ma*1 -> q2 mb*1 \ntr t2 q0 -> q1 ma*2 \ntr t3 q2 -> q1 \npl q0 (1)\n\n");
    EXPECT_EQ(net.nom, "buffer");
    EXPECT_EQ(net.places, (std::vector<std::string>{"q1", "ma", "q2", "mb", "q0"}));
    EXPECT_EQ(net.initial, (std::vector<Reseau::Compte>{0, 0, 0, 0, 1}));
    ASSERT_EQ(net.transitions.size(), 3U);
    EXPECT_EQ(net.transitions[0].nom, "t1");
    EXPECT_EQ(net.transitions[0].pre, (Creux{{0, 1}, {1, 1}}));
    EXPECT_EQ(net.transitions[0].post, (Creux{{2, 1}, {3, 1}}));
    EXPECT_EQ(net.transitions[1].post, (Creux{{0, 1}, {1, 2}}));
}

TEST(Lecture, TheMoverLinesOfThePrefixNetAreRead) {
    const Reseau::Net net = lire("tr t6 p_ma ->  s_ma r_m\n");
    EXPECT_EQ(net.places, (std::vector<std::string>{"p_ma", "s_ma", "r_m"}));
    EXPECT_EQ(net.transitions[0].effet, (Creux{{0, -1}, {1, 1}, {2, 1}}));
}

TEST(Lecture, AnArcOfWeightZeroIsNoArcButItsPlaceExists) {
    const Reseau::Net net = lire("tr t a*0 -> b*0 c*2\n");
    EXPECT_EQ(net.places.size(), 3U);
    EXPECT_TRUE(net.transitions[0].pre.empty());
    EXPECT_EQ(net.transitions[0].post, (Creux{{2, 2}}));
}

TEST(Lecture, APlaceListedTwiceOnOneSideCountsTwice) {
    EXPECT_EQ(lire("tr t a a*2 -> a\n").transitions[0].pre, (Creux{{0, 3}}));
    EXPECT_EQ(lire("tr t a a*2 -> a\n").transitions[0].effet, (Creux{{0, -2}}));
}

TEST(Lecture, BlanksCommentsAndEmptyLinesChangeNothing) {
    const Reseau::Net net =
        lire("# a net\r\n\n \t net\tn # named n\n  tr  t\ta->b c#d -> # nothing\n pl x(3) \n pl y ( 4 )\r\npl z");
    EXPECT_EQ(net.nom, "n");
    EXPECT_EQ(net.places, (std::vector<std::string>{"a->b", "c#d", "x", "y", "z"}));
    EXPECT_EQ(net.initial, (std::vector<Reseau::Compte>{0, 0, 3, 4, 0}));
}

TEST(Lecture, LinesMayStandInAnyOrderAndTheNameMayBeMissing) {
    EXPECT_EQ(lire("pl a (1)\ntr t a -> b\nnet n\n").nom, "n");
    EXPECT_EQ(lire("").places.size(), 0U);
    EXPECT_EQ(lire("net\n").nom, "");
}

TEST(Lecture, ANameInBracesMayHoldAnything) {
    const Reseau::Net net = lire("tr {a -> b} {x y}*2 -> {#(*)}\npl {x y}(7)");
    EXPECT_EQ(net.places, (std::vector<std::string>{"{x y}", "{#(*)}"}));
    EXPECT_EQ(net.transitions[0].pre, (Creux{{0, 2}}));
    EXPECT_EQ(net.initial[0], 7);
}

TEST(Lecture, CountsReachTheLargestThatIsNotOmega) {
    EXPECT_EQ(lire("pl a (9223372036854775806)").initial[0], 9223372036854775806);
    EXPECT_EQ(lire("pl a (1000000000000000000)").initial[0], 1000000000000000000);
    EXPECT_EQ(lire("pl a (007)").initial[0], 7);
}

TEST(Lecture, ErrorsNameTheFileAndTheLine) {
    EXPECT_EQ(erreur("net n\n\nplace a"), "essai.net:3: \"net\", \"tr\" or \"pl\" expected, not \"place\"");
    EXPECT_EQ(erreur("net n\nnet m"), "essai.net:2: the net already has a name");
    EXPECT_EQ(erreur("net a b"), "essai.net:1: one name expected after \"net\"");
    EXPECT_EQ(erreur("tr"), "essai.net:1: a transition name expected after \"tr\"");
    EXPECT_EQ(erreur("tr -> a"), "essai.net:1: a transition name expected after \"tr\"");
    EXPECT_EQ(erreur("tr t a b"), "essai.net:1: \"->\" expected");
    EXPECT_EQ(erreur("tr t a -> b -> c"), "essai.net:1: a second \"->\"");
    EXPECT_EQ(erreur("tr t ->\ntr t ->"), "essai.net:2: the transition \"t\" is declared twice");
    EXPECT_EQ(erreur("pl"), "essai.net:1: a place name expected after \"pl\"");
    EXPECT_EQ(erreur("pl (3)"), "essai.net:1: a place name expected after \"pl\"");
    EXPECT_EQ(erreur("pl a*2"), "essai.net:1: a place name expected after \"pl\"");
    EXPECT_EQ(erreur("pl a 3"), "essai.net:1: \"(TOKENS)\" expected after the place");
    EXPECT_EQ(erreur("pl a (3) b"), "essai.net:1: \"(TOKENS)\" expected after the place");
    EXPECT_EQ(erreur("pl a (3"), "essai.net:1: \")\" expected");
    EXPECT_EQ(erreur("pl a (3)\npl a"), "essai.net:2: the place \"a\" is declared twice");
    EXPECT_EQ(erreur("tr t {a -> b"), "essai.net:1: a name in braces does not end");
    EXPECT_EQ(erreur("tr t *2 -> b"), "essai.net:1: a place name expected, not \"*2\"");
    EXPECT_EQ(erreur("tr t {a}b -> b"), "essai.net:1: \"*\" or a blank expected after the place of \"{a}b\"");
}

TEST(Lecture, CountsThatAreNotNumbersOrTooLargeAreErrors) {
    EXPECT_EQ(erreur("tr t a*x -> b"), "essai.net:1: a weight expected, not \"x\"");
    EXPECT_EQ(erreur("tr t a* -> b"), "essai.net:1: a weight expected, not \"\"");
    EXPECT_EQ(erreur("tr t a*-1 -> b"), "essai.net:1: a weight expected, not \"-1\"");
    EXPECT_EQ(erreur("tr t a*+1 -> b"), "essai.net:1: a weight expected, not \"+1\"");
    EXPECT_EQ(erreur("tr t a*1.5 -> b"), "essai.net:1: a weight expected, not \"1.5\"");
    EXPECT_EQ(erreur("pl a ()"), "essai.net:1: a token count expected, not \"\"");
    EXPECT_EQ(erreur("pl a (1 2)"), "essai.net:1: a token count expected, not \"1 2\"");
    EXPECT_EQ(erreur("pl a (9223372036854775807)"),
              "essai.net:1: a token count does not fit in 64 bits, \"9223372036854775807\"");
    EXPECT_EQ(erreur("tr t a*99999999999999999999 ->"),
              "essai.net:1: a weight does not fit in 64 bits, \"99999999999999999999\"");
    EXPECT_EQ(erreur("tr t a*9223372036854775806 a ->"),
              "essai.net:1: the weights of one place do not fit in 64 bits together");
}

}  // namespace
