// An arc: its place in both nodes' sets, its move to another destination, and the rule text it reads and
// writes.
#include "Modele/Arc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "Helpers.h"
#include "Modele/Noeud.h"

namespace {

using Modele::Arc;
using Modele::Multiset;
using Modele::Noeud;
using testing::ElementsAre;
using testing::IsEmpty;

class ArcTest : public testing::Test {
protected:
    Multiset consumed() const { return arc->getRegle()->getIn(); }
    Multiset produced() const { return arc->getRegle()->getOut(); }

    Noeud a{"a"};
    Noeud b{"b"};
    Arc* arc = a.addArc(&b, nullptr);
};

TEST_F(ArcTest, KnowsItsSourceItsDestinationAndThatItHasNoRule) {
    EXPECT_EQ(arc->getSource(), &a);
    EXPECT_EQ(arc->getDestination(), &b);
    EXPECT_EQ(arc->getRegle(), nullptr);
}

TEST_F(ArcTest, RegistersItselfWithItsSourceWhenMadeDirectly) {
    Arc* direct = new Arc(&b, &a, nullptr);
    EXPECT_THAT(b.getOut(), ElementsAre(direct));
    EXPECT_THAT(a.getOut(), ElementsAre(arc));
}

TEST_F(ArcTest, LeavesItsSourceBeforeItsViewIsToldToGo) {
    CountingView view(nullptr);
    view.onSucide = [&] { EXPECT_THAT(a.getOut(), IsEmpty()); };
    arc->setVue(&view);
    delete arc;
    EXPECT_EQ(view.farewells, 1);
}

TEST_F(ArcTest, DestroysItsRuleBeforeItsViewIsToldToGo) {
    std::string order;
    CountingView view(nullptr);
    CountingView ruleView(nullptr);
    view.onSucide = [&] { order += "arc"; };
    ruleView.onSucide = [&] { order += "rule "; };
    ASSERT_TRUE(arc->setRegle("->"));
    arc->setVue(&view);
    arc->getRegle()->setVue(&ruleView);
    delete arc;
    EXPECT_EQ(order, "rule arc");
}

TEST_F(ArcTest, MovesToAnotherDestinationAndTellsItsView) {
    CountingView view(arc);
    Noeud c("c");
    view.onUpdate = [&] { EXPECT_EQ(arc->getDestination(), &c); };
    arc->setDestination(&c);
    EXPECT_EQ(arc->getDestination(), &c);
    EXPECT_EQ(arc->getSource(), &a);
    EXPECT_THAT(a.getOut(), ElementsAre(arc));
    EXPECT_EQ(view.updates, 1);
}

TEST_F(ArcTest, StaysSilentWhenMovedToTheDestinationItHas) {
    CountingView view(arc);
    arc->setDestination(&b);
    EXPECT_EQ(arc->getDestination(), &b);
    EXPECT_EQ(view.updates, 0);
}

TEST_F(ArcTest, DiesWithItsNewDestination) {
    CountingView view(arc);
    {
        Noeud c("c");
        arc->setDestination(&c);
    }
    EXPECT_EQ(view.farewells, 1);
    EXPECT_THAT(a.getOut(), IsEmpty());
}

TEST_F(ArcTest, SurvivesTheDestinationItLeft) {
    auto* old = new Noeud("old");
    Arc* moving = b.addArc(old, nullptr);
    moving->setDestination(&a);
    CountingView view(moving);
    delete old;
    EXPECT_EQ(view.farewells, 0);
    EXPECT_THAT(b.getOut(), ElementsAre(moving));
    EXPECT_EQ(moving->toString(), "b -> a;");
}

TEST_F(ArcTest, MayBecomeASelfLoopAndBackAgain) {
    arc->setDestination(&a);
    EXPECT_EQ(arc->toString(), "a -> a;");
    arc->setDestination(&b);
    EXPECT_EQ(arc->toString(), "a -> b;");
    EXPECT_THAT(a.getOut(), ElementsAre(arc));
    EXPECT_THAT(b.getOut(), IsEmpty());
}

TEST_F(ArcTest, ReadsARule) {
    EXPECT_TRUE(arc->setRegle("a 2b -> c"));
    EXPECT_EQ(consumed(), (Multiset{{"a", 1}, {"b", 2}}));
    EXPECT_EQ(produced(), (Multiset{{"c", 1}}));
}

TEST_F(ArcTest, ReadsARuleWithAnEmptyRightSideAndARepeatedMolecule) {
    EXPECT_TRUE(arc->setRegle("a a -> "));
    EXPECT_EQ(consumed(), (Multiset{{"a", 2}}));
    EXPECT_THAT(produced(), IsEmpty());
}

TEST_F(ArcTest, ReadsARuleWhateverSpacesStandAroundTheArrow) {
    for (const char* text : {"a->b", "a ->b", "a-> b", "  a   ->   b  "}) {
        ASSERT_TRUE(arc->setRegle("")) << text;
        EXPECT_TRUE(arc->setRegle(text)) << text;
        EXPECT_EQ(consumed(), (Multiset{{"a", 1}})) << text;
        EXPECT_EQ(produced(), (Multiset{{"b", 1}})) << text;
    }
}

TEST_F(ArcTest, ReadsABareArrowAsARuleWithTwoEmptySides) {
    for (const char* text : {"->", " -> ", "-> ", " ->"}) {
        ASSERT_TRUE(arc->setRegle("")) << text;
        EXPECT_TRUE(arc->setRegle(text)) << text;
        ASSERT_NE(arc->getRegle(), nullptr) << text;
        EXPECT_THAT(consumed(), IsEmpty()) << text;
        EXPECT_THAT(produced(), IsEmpty()) << text;
    }
}

TEST_F(ArcTest, KeepsZeroCountsOfARuleInMemory) {
    EXPECT_TRUE(arc->setRegle("0a -> 0b c"));
    EXPECT_EQ(consumed(), (Multiset{{"a", 0}}));
    EXPECT_EQ(produced(), (Multiset{{"b", 0}, {"c", 1}}));
}

const char* const notRules[] = {
    // only the empty text removes the rule
    " ", "     ",
    // no arrow, or one that is cut off or torn
    "a", "a b", "a > b", ">", "-", "a -", "a - > b", "a - b", "a -- > b",
    // the first "-" decides
    "a --> b", "a - -> b", "a-b -> c", "-1a -> b",
    // a second arrow is not a molecule
    "a -> b -> c", "a -> -> b", "a ->> b", "-> >", "a -> b-",
    // a count without a molecule, on either side
    "3 -> b", "a -> 3",
    // only the space separates
    "a\t-> b", "a ->\tb", "a ->\n", "a, b -> c", "a -> b;",
    // counts and sums beyond the int range
    "2147483648a -> b", "a -> 2147483648b", "a -> 2147483647b b", "a 2147483647a -> b",
    "a -> 99999999999999999999999b"};

TEST_F(ArcTest, RejectsATextThatIsNotARuleAndStaysWithoutOne) {
    CountingView view(arc);
    for (const char* text : notRules) {
        EXPECT_FALSE(arc->setRegle(text)) << '"' << text << '"';
        EXPECT_EQ(arc->getRegle(), nullptr) << '"' << text << '"';
    }
    EXPECT_EQ(view.updates, 0);
}

TEST_F(ArcTest, RejectsATextThatIsNotARuleAndKeepsTheOneItHas) {
    ASSERT_TRUE(arc->setRegle("x -> 2y"));
    Modele::Regle* before = arc->getRegle();
    CountingView view(arc);
    CountingView ruleView(before);
    for (const char* text : notRules) {
        EXPECT_FALSE(arc->setRegle(text)) << '"' << text << '"';
        EXPECT_EQ(arc->getRegle(), before) << '"' << text << '"';
        EXPECT_EQ(before->toString(), "x -> 2y ") << '"' << text << '"';
    }
    EXPECT_EQ(view.updates, 0);
    EXPECT_EQ(ruleView.farewells, 0);
}

TEST_F(ArcTest, ReplacesItsRuleDestroysTheOldOneAndTellsItsViewOnce) {
    ASSERT_TRUE(arc->setRegle("x -> y"));
    CountingView view(arc);
    CountingView oldRule(arc->getRegle());
    view.onUpdate = [&] { EXPECT_EQ(arc->toString(), "a -> b : z -> ;"); };
    EXPECT_TRUE(arc->setRegle("z ->"));
    EXPECT_EQ(view.updates, 1);
    EXPECT_EQ(oldRule.farewells, 1);
}

TEST_F(ArcTest, LosesItsRuleThroughTheEmptyText) {
    ASSERT_TRUE(arc->setRegle("x -> y"));
    CountingView view(arc);
    CountingView oldRule(arc->getRegle());
    view.onUpdate = [&] { EXPECT_EQ(arc->getRegle(), nullptr); };
    EXPECT_TRUE(arc->setRegle(""));
    EXPECT_EQ(arc->getRegle(), nullptr);
    EXPECT_EQ(view.updates, 1);
    EXPECT_EQ(oldRule.farewells, 1);
}

TEST_F(ArcTest, TellsItsViewEvenWhenThereWasNoRuleToLose) {
    CountingView view(arc);
    EXPECT_TRUE(arc->setRegle(""));
    EXPECT_EQ(arc->getRegle(), nullptr);
    EXPECT_EQ(view.updates, 1);
}

TEST_F(ArcTest, WritesItsTwoNodesWhenItHasNoRule) { EXPECT_EQ(arc->toString(), "a -> b;"); }

TEST_F(ArcTest, WritesARuleWithTwoEmptySidesAsABareArrow) {
    ASSERT_TRUE(arc->setRegle("->"));
    EXPECT_EQ(arc->toString(), "a -> b : -> ;");
}

TEST_F(ArcTest, WritesItsRuleBeforeTheSemicolon) {
    ASSERT_TRUE(arc->setRegle("b 2a -> 10c a"));
    EXPECT_EQ(arc->toString(), "a -> b : 2a b -> a 10c ;");
}

TEST_F(ArcTest, WritesNoMoleculeOfCountZero) {
    ASSERT_TRUE(arc->setRegle("0a -> b"));
    EXPECT_EQ(arc->toString(), "a -> b : -> b ;");
}

TEST_F(ArcTest, WritesItsDestinationOfTheMoment) {
    Noeud c("c");
    arc->setDestination(&c);
    EXPECT_EQ(arc->toString(), "a -> c;");
    arc->setDestination(&b);
}

}  // namespace
