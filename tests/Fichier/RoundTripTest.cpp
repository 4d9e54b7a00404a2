// What is written is read back as it was, but for the fractions of positions and the counts that mean nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "Reading.h"
#include "common/Toolkit.h"

namespace {

using Modele::Multiset;
using testing::ElementsAre;

std::string rewritten(const std::string& text) {
    Reader reader;
    EXPECT_TRUE(reader.read(text));
    return reader.controleur.toString();
}

TEST(Writer, AnEmptyModelIsAnEmptyText) { EXPECT_EQ(rewritten(""), ""); }

TEST(Writer, PositionsComeFirstThenALineForEveryNode) {
    const Traces unseen;
    Network network;
    network.controleur.addNoeud("q1", 10.7, 20.2);
    network.controleur.addNoeud("q2", 100, 50);
    const Multiset marking = {{"a", 2}, {"b", 1}};
    network.controleur.addNoeudInit("q1", &marking);
    const Multiset in = {{"a", 1}};
    const Multiset out = {{"c", 1}};
    network.controleur.addArc(network.model->get("q1"), network.model->get("q2"), new Modele::Regle(&in, &out));
    EXPECT_EQ(network.controleur.toString(),
              "q1(10, 20);\n"
              "q2(100, 50);\n"
              "q1 -> q2 : a -> c ;q1 : 2a b ;\n"
              "\n");
}

TEST(Writer, PositionsStandInTheOrderOfTheDrawingAndNodesInTheOrderOfTheirNames) {
    EXPECT_EQ(rewritten("b(1, 2); a(3, 4); B(5, 6); a : ; b : x; B : 2x;"),
              "b(1, 2);\na(3, 4);\nB(5, 6);\n"
              "B : 2x ;\na : ;\nb : x ;\n");
}

TEST(Writer, AnArcWithoutARuleHasNoColon) { EXPECT_EQ(rewritten("a -> b;"), "a(0, 0);\nb(0, 0);\na -> b;\n\n"); }

TEST(Writer, AnEmptyRuleIsWrittenAndReadBackAsARule) {
    const std::string text = rewritten("a -> b : -> ;");
    EXPECT_EQ(text, "a(0, 0);\nb(0, 0);\na -> b : -> ;\n\n");
    EXPECT_EQ(rewritten(text), text);
}

TEST(Writer, AnEmptyMarkingIsWrittenAndReadBackAsAMarking) {
    const std::string text = rewritten("q : ;");
    EXPECT_EQ(text, "q(0, 0);\nq : ;\n");
    EXPECT_EQ(rewritten(text), text);
}

TEST(Writer, AnIsolatedNodeLivesOnInItsPositionAndLeavesAnEmptyLine) {
    EXPECT_EQ(rewritten("alone(3, 4);"), "alone(3, 4);\n\n");
    EXPECT_EQ(rewritten(rewritten("alone(3, 4);")), "alone(3, 4);\n\n");
}

TEST(Writer, CountsOfZeroAreDropped) {
    EXPECT_EQ(rewritten("a -> b : 0a -> b;"), "a(0, 0);\nb(0, 0);\na -> b : -> b ;\n\n");
    EXPECT_EQ(rewritten("q : 0a 2b 0c;"), "q(0, 0);\nq : 2b ;\n");
}

TEST(Writer, MoleculesStandInTheOrderOfTheirBytes) {
    EXPECT_EQ(rewritten("q : b a _ Z a1 z;"), "q(0, 0);\nq : Z _ a a1 b z ;\n");
}

TEST(Writer, ACountOfOneIsLeftOut) { EXPECT_EQ(rewritten("q : 1a 2b 10c;"), "q(0, 0);\nq : a 2b 10c ;\n"); }

TEST(Writer, PositionsAreTruncatedTowardsZero) {
    const Traces unseen;
    Network network;
    network.controleur.addNoeud("q", 10.99, -0.9);
    EXPECT_EQ(network.drawing->toString(), "q(10, 0);\n");
    network.controleur.addNoeud("q", -5.7, 20.5);
    EXPECT_EQ(network.drawing->toString(), "q(-5, 20);\n");
}

TEST(Writer, ANegativePositionIsWrittenAlthoughTheReaderRefusesIt) {
    std::string text;
    {
        const Traces unseen;
        Network network;
        network.controleur.addNoeud("q1", -5, 20);
        text = network.controleur.toString();
    }
    EXPECT_EQ(text, "q1(-5, 20);\n\n");
    Reader reader;
    EXPECT_EXIT(reader.read(text), testing::ExitedWithCode(255), testing::Eq("line 1: lexical error <->\n"));
}

TEST(Writer, TheWrittenFormOfTheLargestNumbersIsReadBack) {
    const std::string text = "q(2147483647, 2147483647);\nq : 2147483647a ;\n";
    EXPECT_EQ(rewritten(text), text);
}

TEST(Writer, ArcsOfOneNodeStandOnItsLineInAnyOrder) {
    const std::string text = rewritten("a -> b : x -> ; a -> b : y -> ;");
    const std::string first = "a -> b : x -> ;";
    const std::string second = "a -> b : y -> ;";
    EXPECT_THAT(text, testing::AnyOf("a(0, 0);\nb(0, 0);\n" + first + second + "\n\n",
                                     "a(0, 0);\nb(0, 0);\n" + second + first + "\n\n"));
}

// ---------------------------------------------------------------------------------------------------------------------
// Random models
// ---------------------------------------------------------------------------------------------------------------------

class RandomModels {
public:
    explicit RandomModels(unsigned seed) : _random(seed) {}

    void fill(Network& network) {
        std::vector<std::string> names(upTo(12));
        for (std::string& name : names) name = identifier();
        for (const std::string& name : names) network.controleur.addNoeud(name, coordinate(), coordinate());
        if (names.empty()) return;
        for (std::size_t i = upTo(20); i > 0; --i) {
            Modele::Regle* rule = nullptr;
            if (upTo(3) > 0) {
                const Multiset in = multiset();
                const Multiset out = multiset();
                rule = new Modele::Regle(&in, &out);
            }
            network.controleur.addArc(network.model->get(anyOf(names)), network.model->get(anyOf(names)), rule);
        }
        for (std::size_t i = upTo(4); i > 0; --i) {
            const Multiset marking = multiset();
            network.controleur.addNoeudInit(anyOf(names), &marking);
        }
    }

private:
    std::size_t upTo(std::size_t most) { return std::uniform_int_distribution<std::size_t>(0, most)(_random); }

    const std::string& anyOf(const std::vector<std::string>& names) { return names[upTo(names.size() - 1)]; }

    /// Mostly short, so that names meet.
    std::string identifier() {
        const std::string letters = "abzAZ_019";
        std::string name(1, letters[upTo(5)]);
        for (std::size_t i = upTo(20) == 0 ? 254 : upTo(2); i > 0; --i) name += letters[upTo(letters.size() - 1)];
        return name;
    }

    double coordinate() { return std::uniform_real_distribution<double>(0, 3000)(_random); }

    Multiset multiset() {
        Multiset molecules;
        for (std::size_t i = upTo(5); i > 0; --i) {
            molecules[identifier()] = upTo(10) == 0 ? INT_MAX : static_cast<int>(upTo(4));
        }
        return molecules;
    }

    std::mt19937 _random;
};

void dropZeros(Multiset& molecules) {
    std::erase_if(molecules, [](const auto& entry) { return entry.second == 0; });
}

/// What is left of a network in a file.
Content writtenPartOf(const Content& content) {
    Content written = content;
    for (auto& [name, node] : written.nodes) {
        node.x = std::trunc(node.x);
        node.y = std::trunc(node.y);
        if (node.marking) dropZeros(*node.marking);
    }
    written.arcs.clear();
    for (auto [source, destination, rule] : content.arcs) {
        if (rule) dropZeros(rule->first);
        if (rule) dropZeros(rule->second);
        written.arcs.emplace(source, destination, rule);
    }
    return written;
}

TEST(RoundTrip, ARandomModelIsReadBackWithWholePositionsAndWithoutZeros) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        const Traces unseen;
        Network network;
        RandomModels(seed).fill(network);
        const Content content = contentOf(network);
        Reader reader;
        ASSERT_TRUE(reader.read(network.controleur.toString()));
        EXPECT_EQ(contentOf(reader), writtenPartOf(content));
        EXPECT_EQ(reader.drawing->toString(), network.drawing->toString());
    }
}

TEST(RoundTrip, WhatWasReadBackIsReadBackUnchanged) {
    for (unsigned seed = 0; seed < 50; ++seed) {
        SCOPED_TRACE(seed);
        const Traces unseen;
        Network network;
        RandomModels(seed).fill(network);
        Reader first;
        ASSERT_TRUE(first.read(network.controleur.toString()));
        Reader second;
        ASSERT_TRUE(second.read(first.controleur.toString()));
        EXPECT_EQ(contentOf(second), contentOf(first));
    }
}

}  // namespace
