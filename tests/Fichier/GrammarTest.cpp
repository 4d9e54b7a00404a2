// The declarations: what each form of each of them makes of a network.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <string>

#include "Lecture.h"
#include "Reading.h"
#include "common/Toolkit.h"

namespace {

using Modele::Multiset;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

constexpr std::optional<Content::Rule> noRule;

Content::Arc arc(const std::string& source, const std::string& destination,
                 std::optional<Content::Rule> rule = noRule) {
    return {source, destination, std::move(rule)};
}

/// Asserts that it is well formed.
Content contentOfFile(const std::string& text) {
    Reader reader;
    EXPECT_TRUE(reader.read(text));
    return contentOf(reader);
}

Multiset markingOf(const std::string& multiset) {
    return contentOfFile("q : " + multiset + ";").nodes.at("q").marking.value();
}

Content::Rule ruleOf(const std::string& rule) {
    return std::get<2>(*contentOfFile("a -> b : " + rule + ";").arcs.begin()).value();
}

TEST(Grammar, AnEmptyFileIsAnEmptyModel) {
    EXPECT_EQ(contentOfFile(""), Content());
    EXPECT_EQ(contentOfFile("\n"), Content());
    EXPECT_EQ(contentOfFile(" \t\n // nothing\n"), Content());
}

TEST(Grammar, APositionMakesANodeAtThatPlace) {
    const Content content = contentOfFile("q1(10, 20);");
    ASSERT_EQ(content.nodes.size(), 1U);
    EXPECT_EQ(content.nodes.at("q1"), (Content::Node{10, 20, std::nullopt}));
    EXPECT_THAT(content.arcs, IsEmpty());
}

TEST(Grammar, TheFirstNumberOfAPositionIsXAndTheSecondIsY) {
    const Content content = contentOfFile("q(3,4);");
    EXPECT_EQ(content.nodes.at("q").x, 3);
    EXPECT_EQ(content.nodes.at("q").y, 4);
}

TEST(Grammar, APositionMayHoldTheLargestNumber) {
    EXPECT_EQ(contentOfFile("q(2147483647, 0);").nodes.at("q").x, double{INT_MAX});
}

TEST(Grammar, ALaterPositionOfTheSameNodeMovesIt) {
    const Content content = contentOfFile("q(1, 2); q(30, 40);");
    ASSERT_EQ(content.nodes.size(), 1U);
    EXPECT_EQ(content.nodes.at("q"), (Content::Node{30, 40, std::nullopt}));
}

TEST(Grammar, AnArcMakesItsNodesAtTheOrigin) {
    const Content content = contentOfFile("a -> b;");
    EXPECT_EQ(content.nodes.at("a"), (Content::Node{0, 0, std::nullopt}));
    EXPECT_EQ(content.nodes.at("b"), (Content::Node{0, 0, std::nullopt}));
    EXPECT_THAT(content.arcs, ElementsAre(arc("a", "b")));
}

TEST(Grammar, AnArcMakesItsSourceBeforeItsDestination) {
    Reader reader;
    reader.read("b -> a;");
    EXPECT_EQ(reader.drawing->toString(), "b(0, 0);\na(0, 0);\n");
}

TEST(Grammar, AnArcDoesNotMoveNodesThatHaveAPlace) {
    const Content content = contentOfFile("a(5, 6); a -> b;");
    EXPECT_EQ(content.nodes.at("a").x, 5);
    EXPECT_EQ(content.nodes.at("a").y, 6);
}

TEST(Grammar, APositionAfterAnArcMovesTheNodesThatTheArcMade) {
    const Content content = contentOfFile("a -> b; b(7, 8);");
    EXPECT_EQ(content.nodes.at("b").x, 7);
    EXPECT_EQ(content.nodes.at("b").y, 8);
}

TEST(Grammar, AnArcBackIsASecondArc) {
    EXPECT_THAT(contentOfFile("a -> b; b -> a;").arcs, UnorderedElementsAre(arc("a", "b"), arc("b", "a")));
}

TEST(Grammar, TwoIdenticalArcsAreTwoArcs) {
    EXPECT_THAT(contentOfFile("a -> b; a -> b;").arcs, ElementsAre(arc("a", "b"), arc("a", "b")));
}

TEST(Grammar, AnArcMayRunFromANodeToItself) {
    const Content content = contentOfFile("a -> a : x -> y;");
    EXPECT_EQ(content.nodes.size(), 1U);
    EXPECT_THAT(content.arcs, ElementsAre(arc("a", "a", Content::Rule({{"x", 1}}, {{"y", 1}}))));
}

TEST(Grammar, ARuleHasAConsumedAndAProducedSide) {
    EXPECT_EQ(ruleOf("2x y -> z"), Content::Rule({{"x", 2}, {"y", 1}}, {{"z", 1}}));
}

TEST(Grammar, EachSideOfARuleMayBeEmpty) {
    EXPECT_EQ(ruleOf("x ->"), Content::Rule({{"x", 1}}, {}));
    EXPECT_EQ(ruleOf("-> z"), Content::Rule({}, {{"z", 1}}));
}

TEST(Grammar, ARuleWithTwoEmptySidesIsARule) {
    EXPECT_EQ(ruleOf("->"), Content::Rule());
    EXPECT_THAT(contentOfFile("a -> b;").arcs, ElementsAre(arc("a", "b", noRule)));
}

TEST(Grammar, AnInitialMarkingMakesAnInitialNodeAtTheOrigin) {
    EXPECT_EQ(contentOfFile("q : 2a b;").nodes.at("q"), (Content::Node{0, 0, Multiset{{"a", 2}, {"b", 1}}}));
}

TEST(Grammar, AnEmptyMarkingMakesAnInitialNode) {
    EXPECT_EQ(markingOf(""), Multiset());
    EXPECT_EQ(contentOfFile("q(0, 0);").nodes.at("q").marking, std::nullopt);
}

TEST(Grammar, ALaterMarkingReplacesAnEarlierOne) {
    EXPECT_EQ(contentOfFile("q : a b; q : 3c;").nodes.at("q").marking, (Multiset{{"c", 3}}));
    EXPECT_EQ(contentOfFile("q : a b; q : ;").nodes.at("q").marking, Multiset());
}

TEST(Grammar, AMarkingDoesNotMoveANodeThatHasAPlace) {
    EXPECT_EQ(contentOfFile("q(1, 2); q : a;").nodes.at("q"), (Content::Node{1, 2, Multiset{{"a", 1}}}));
}

TEST(Grammar, AMoleculeNamedTwiceKeepsItsLastCount) {
    EXPECT_EQ(markingOf("a 3a"), (Multiset{{"a", 3}}));
    EXPECT_EQ(markingOf("3a a"), (Multiset{{"a", 1}}));
    EXPECT_EQ(markingOf("2a 5a 4a"), (Multiset{{"a", 4}}));
    EXPECT_EQ(ruleOf("a 3a -> 3b b"), Content::Rule({{"a", 3}}, {{"b", 1}}));
}

TEST(Grammar, ACountOfZeroIsKept) {
    EXPECT_EQ(markingOf("0a b"), (Multiset{{"a", 0}, {"b", 1}}));
    EXPECT_EQ(markingOf("a 0a"), (Multiset{{"a", 0}}));
    EXPECT_EQ(ruleOf("0a -> b"), Content::Rule({{"a", 0}}, {{"b", 1}}));
}

TEST(Grammar, ACountMayHaveLeadingZeros) { EXPECT_EQ(markingOf("007a 00b"), (Multiset{{"a", 7}, {"b", 0}})); }

TEST(Grammar, ACountMayBeTheLargestInt) { EXPECT_EQ(markingOf("2147483647a"), (Multiset{{"a", INT_MAX}})); }

TEST(Grammar, BlanksBetweenACountAndItsMoleculeMeanNothing) {
    EXPECT_EQ(markingOf("2 a"), markingOf("2a"));
    EXPECT_EQ(markingOf("2\n// two of them\n\ta"), markingOf("2a"));
}

TEST(Grammar, DigitsAfterALetterBelongToTheMolecule) { EXPECT_EQ(markingOf("a2"), (Multiset{{"a2", 1}})); }

TEST(Grammar, ADigitAfterAMoleculeAndABlankIsTheNextCount) {
    EXPECT_EQ(markingOf("a 2b"), (Multiset{{"a", 1}, {"b", 2}}));
}

TEST(Grammar, NamesAreCaseSensitive) {
    EXPECT_EQ(contentOfFile("q -> Q;").nodes.size(), 2U);
    EXPECT_EQ(markingOf("x 2X"), (Multiset{{"x", 1}, {"X", 2}}));
}

TEST(Grammar, NodesAndMoleculesMayShareAName) {
    EXPECT_EQ(contentOfFile("a : 2a;").nodes.at("a").marking, (Multiset{{"a", 2}}));
}

TEST(Grammar, NamesOf255CharactersAreKeptWhole) {
    const std::string node(255, 'n');
    const std::string molecule = std::string(254, 'm') + "2";
    const Content content =
        contentOfFile(node + "(1, 2);" + node + "->" + node + ":" + molecule + "->;" + node + ":" + molecule + ";");
    EXPECT_EQ(content.nodes.at(node).marking, (Multiset{{molecule, 1}}));
    EXPECT_THAT(content.arcs, ElementsAre(arc(node, node, Content::Rule({{molecule, 1}}, {}))));
}

TEST(Grammar, DeclarationsMayComeInAnyOrder) {
    const std::string position = "a(10, 20);";
    const std::string arcLine = "a -> b : x -> y;";
    const std::string marking = "a : 2x;";
    const Content content = contentOfFile(position + arcLine + marking);
    EXPECT_EQ(contentOfFile(position + marking + arcLine), content);
    EXPECT_EQ(contentOfFile(arcLine + position + marking), content);
    EXPECT_EQ(contentOfFile(arcLine + marking + position), content);
    EXPECT_EQ(contentOfFile(marking + position + arcLine), content);
    EXPECT_EQ(contentOfFile(marking + arcLine + position), content);
}

TEST(Grammar, AFileIsTheSameOnOneLineAndWithATokenALine) {
    const Content content = contentOfFile("a(1,2);a->b:2x y->z;b:3 x;");
    EXPECT_EQ(contentOfFile("a\n(\n1\n,\n2\n)\n;\na\n->\nb\n:\n2\nx\ny\n->\nz\n;\nb\n:\n3\nx\n;\n"), content);
    EXPECT_EQ(contentOfFile("  a ( 1 , 2 ) ;\ta -> b : 2 x y -> z ; b : 3 x ;  "), content);
}

TEST(Grammar, ACommentMayFollowADeclarationAndStandInsideOne) {
    EXPECT_EQ(contentOfFile("a(1, 2); // anything {}\nb // the second\n(3, 4);"), contentOfFile("a(1,2);b(3,4);"));
}

TEST(Grammar, AMarkingWithAsManyMoleculesAsAFileHoldsIsRead) {
    std::string marking;
    for (int i = 0; i < 100000; ++i) marking += "m" + std::to_string(i) + " ";
    EXPECT_EQ(markingOf(marking).size(), 100000U);  // no bound on the depth of the parser's stack stands in the way
}

}  // namespace
