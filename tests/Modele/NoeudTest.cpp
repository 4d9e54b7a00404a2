// A node: its marking, its arcs, its line of a file, and its end.
#include "Modele/Noeud.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <type_traits>
#include <utility>

#include "Helpers.h"
#include "Modele/Arc.h"

namespace {

using Modele::Multiset;
using Modele::Noeud;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Node, StartsWithItsNameWithoutArcsWithoutMarkingAndNotInitial) {
    Noeud node("a");
    EXPECT_EQ(node.getName(), "a");
    EXPECT_THAT(node.getOut(), IsEmpty());
    EXPECT_THAT(node.getMarquage(), IsEmpty());
    EXPECT_FALSE(node.isInit());
    EXPECT_EQ(node.toString(), "");
}

TEST(Node, GivesACopyOfItsNameAndReferencesToItsMarkingAndItsOutgoingArcs) {
    static_assert(std::is_same_v<decltype(std::declval<Noeud&>().getName()), std::string>);
    static_assert(std::is_same_v<decltype(std::declval<Noeud&>().getMarquage()), Multiset&>);
    static_assert(std::is_same_v<decltype(std::declval<Noeud&>().getOut()), std::set<Modele::Arc*>&>);

    Noeud node("a");
    node.getMarquage()["x"] = 3;
    EXPECT_EQ(node.getMarquage(), (Multiset{{"x", 3}}));
}

TEST(Node, BecomesInitialWithACopyOfTheGivenMarking) {
    Noeud node("a");
    Multiset marking{{"x", 2}, {"zero", 0}, {"y", 1}};
    node.setInit(&marking);
    marking["x"] = 9;
    EXPECT_TRUE(node.isInit());
    EXPECT_EQ(node.getMarquage(), (Multiset{{"x", 2}, {"y", 1}, {"zero", 0}})) << "zero counts are kept";
}

TEST(Node, ReplacesItsWholeMarkingByANewOne) {
    Noeud node("a");
    ASSERT_TRUE(node.setInit("x 2y"));
    ASSERT_TRUE(node.setInit("z"));
    EXPECT_EQ(node.getMarquage(), (Multiset{{"z", 1}}));

    const Multiset marking{{"w", 4}};
    node.setInit(&marking);
    EXPECT_EQ(node.getMarquage(), marking);
}

TEST(Node, KeepsItsMarkingWhenSetToItsOwn) {
    Noeud node("a");
    ASSERT_TRUE(node.setInit("x 2y"));
    node.setInit(&node.getMarquage());
    EXPECT_EQ(node.getMarquage(), (Multiset{{"x", 1}, {"y", 2}}));
}

TEST(Node, BecomesInitialWithAnEmptyMarkingFromAnEmptyText) {
    Noeud node("a");
    EXPECT_TRUE(node.setInit(""));
    EXPECT_TRUE(node.isInit());
    EXPECT_THAT(node.getMarquage(), IsEmpty());
}

TEST(Node, LosesItsMarkingButStaysInitialWhenGivenAnEmptyTextLater) {
    Noeud node("a");
    ASSERT_TRUE(node.setInit("x"));
    EXPECT_TRUE(node.setInit(""));
    EXPECT_TRUE(node.isInit());
    EXPECT_THAT(node.getMarquage(), IsEmpty());
}

TEST(Node, IsUntouchedByATextThatIsNotAMarking) {
    Noeud node("a");
    CountingView view(&node);
    for (const char* text : {"3", "x 3", "x\ty", "x,y", "x -> y", "-1x", "x 2147483648y"}) {
        EXPECT_FALSE(node.setInit(text)) << text;
        EXPECT_FALSE(node.isInit()) << text;
        EXPECT_THAT(node.getMarquage(), IsEmpty()) << text;
    }

    ASSERT_TRUE(node.setInit("2z"));
    const int updates = view.updates;
    EXPECT_FALSE(node.setInit("x 3"));
    EXPECT_TRUE(node.isInit());
    EXPECT_EQ(node.getMarquage(), (Multiset{{"z", 2}}));
    EXPECT_EQ(view.updates, updates) << "nothing changed, nothing to show";
}

TEST(Node, TellsItsViewOnceOfAMarkingAndTwiceOfAMarkingText) {
    Noeud node("a");
    CountingView view(&node);
    const Multiset marking{{"x", 1}};
    node.setInit(&marking);
    EXPECT_EQ(view.updates, 1);
    EXPECT_TRUE(node.setInit("x"));
    EXPECT_EQ(view.updates, 3);
}

TEST(Node, ShowsItsViewTheNewMarkingAlready) {
    Noeud node("a");
    CountingView view(&node);
    view.onUpdate = [&] {
        EXPECT_TRUE(node.isInit());
        EXPECT_EQ(node.getMarquage(), (Multiset{{"x", 2}}));
    };
    const Multiset marking{{"x", 2}};
    node.setInit(&marking);
    EXPECT_TRUE(node.setInit("2x"));
    EXPECT_EQ(view.updates, 3);
}

TEST(Node, MakesAnArcToTheDestinationWithTheGivenRule) {
    Noeud a("a");
    Noeud b("b");
    Modele::Regle* regle = newRegle({{"x", 1}}, {});
    Modele::Arc* arc = a.addArc(&b, regle);
    EXPECT_EQ(arc->getSource(), &a);
    EXPECT_EQ(arc->getDestination(), &b);
    EXPECT_EQ(arc->getRegle(), regle);
    EXPECT_THAT(a.getOut(), ElementsAre(arc));
    EXPECT_THAT(b.getOut(), IsEmpty());
}

TEST(Node, MakesAsManyArcsToTheSameDestinationAsAsked) {
    Noeud a("a");
    Noeud b("b");
    Modele::Arc* first = a.addArc(&b, nullptr);
    Modele::Arc* second = a.addArc(&b, nullptr);
    EXPECT_NE(first, second);
    EXPECT_THAT(a.getOut(), testing::UnorderedElementsAre(first, second));
}

TEST(Node, ListsItsOutgoingArcsByAddress) {
    Noeud a("a");
    Noeud b("b");
    for (int i = 0; i < 20; ++i) a.addArc(&b, nullptr);
    EXPECT_TRUE(std::is_sorted(a.getOut().begin(), a.getOut().end(), std::less<>()));
    EXPECT_EQ(a.getOut().size(), 20U);
}

TEST(Node, WritesNothingWhenItHasNoArcAndIsNotInitial) {
    Noeud a("a");
    Noeud b("b");
    b.addArc(&a, nullptr);
    a.getMarquage()["x"] = 2;
    EXPECT_EQ(a.toString(), "") << "arcs that enter it and a marking that does not count are not written";
}

TEST(Node, WritesAnEmptyMarking) {
    Noeud node("q");
    ASSERT_TRUE(node.setInit(""));
    EXPECT_EQ(node.toString(), "q : ;");
}

TEST(Node, WritesItsMarkingInByteOrderWithoutCountsOfOneAndWithoutCountsBelowOne) {
    Noeud node("q");
    const Multiset marking{{"b", 1}, {"a", 2}, {"Z", 1}, {"_", 12}, {"zero", 0}, {"debt", -3}, {"a2", 1}};
    node.setInit(&marking);
    EXPECT_EQ(node.toString(), "q : Z 12_ 2a a2 b ;");
}

TEST(Node, WritesTheLargestCountInFull) {
    Noeud node("q");
    const Multiset marking{{"a", std::numeric_limits<int>::max()}};
    node.setInit(&marking);
    EXPECT_EQ(node.toString(), "q : 2147483647a ;");
}

TEST(Node, WritesItsArcsThenItsMarkingWithNothingBetween) {
    Noeud q1("q1");
    Noeud q2("q2");
    q1.addArc(&q2, newRegle({{"a", 1}}, {{"c", 1}}));
    ASSERT_TRUE(q1.setInit("2a b"));
    EXPECT_EQ(q1.toString(), "q1 -> q2 : a -> c ;q1 : 2a b ;");
}

TEST(Node, WritesItsArcsInTheOrderOfItsOutgoingSet) {
    Noeud a("a");
    Noeud b("b");
    Noeud c("c");
    a.addArc(&b, nullptr);
    a.addArc(&c, newRegle({}, {}));
    a.addArc(&a, nullptr);
    std::string expected;
    for (const Modele::Arc* arc : a.getOut()) expected += arc->toString();
    EXPECT_EQ(a.toString(), expected);
    EXPECT_EQ(expected.size(), std::string("a -> b;a -> c : -> ;a -> a;").size());
}

TEST(Node, TracesItsEndOnStandardOutput) {
    testing::internal::CaptureStdout();
    {
        Noeud a("a");
        Noeud b("b");
        a.addArc(&b, newRegle({}, {}));
        EXPECT_TRUE(a.setInit("x"));
        std::fputs("alive\n", stdout);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "alive\nModele::Noeud::~Noeud\nModele::Noeud::~Noeud\n");
}

TEST(Node, TracesItsEndBeforeItsArcsGo) {
    testing::internal::CaptureStdout();
    CountingView view(nullptr);
    view.onSucide = [] { std::fputs("arc gone\n", stdout); };
    {
        Noeud a("a");
        a.addArc(&a, nullptr)->setVue(&view);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Modele::Noeud::~Noeud\narc gone\n");
}

// The child leaves by _exit, which flushes nothing: what the parent reads had left the child by itself.
TEST(Node, TracesItsEndToAPipeAtOnce) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::fflush(stdout);
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        { Noeud node("a"); }
        _exit(0);
    }
    close(ends[1]);
    std::string received;
    char buffer[64];
    for (ssize_t n = 0; (n = read(ends[0], buffer, sizeof buffer)) > 0;) {
        received.append(buffer, static_cast<std::size_t>(n));
    }
    close(ends[0]);
    EXPECT_EQ(received, "Modele::Noeud::~Noeud\n");
}

TEST(Node, DestroysTheArcsThatLeaveItAndTheArcsThatEnterIt) {
    Noeud a("a");
    Noeud c("c");
    CountingView leaving(nullptr);
    CountingView entering(nullptr);
    CountingView elsewhere(nullptr);
    Modele::Arc* kept = a.addArc(&c, nullptr);
    kept->setVue(&elsewhere);
    {
        Noeud b("b");
        b.addArc(&c, newRegle({}, {}))->setVue(&leaving);
        a.addArc(&b, newRegle({}, {}))->setVue(&entering);
    }
    EXPECT_EQ(leaving.farewells, 1);
    EXPECT_EQ(entering.farewells, 1);
    EXPECT_EQ(elsewhere.farewells, 0);
    EXPECT_THAT(a.getOut(), ElementsAre(kept));
}

TEST(Node, DestroysTheArcsThatLeaveItBeforeThoseThatEnterItAndGoesLast) {
    std::string order;
    Noeud a("a");
    CountingView leaving(nullptr);
    CountingView entering(nullptr);
    CountingView own(nullptr);
    leaving.onSucide = [&] { order += "leaving "; };
    entering.onSucide = [&] { order += "entering "; };
    own.onSucide = [&] { order += "node"; };
    {
        Noeud b("b");
        b.setVue(&own);
        a.addArc(&b, nullptr)->setVue(&entering);
        b.addArc(&a, nullptr)->setVue(&leaving);
    }
    EXPECT_EQ(order, "leaving entering node");
}

TEST(Node, DestroysASelfLoopOnce) {
    CountingView loop(nullptr);
    CountingView rule(nullptr);
    {
        Noeud a("a");
        Modele::Arc* arc = a.addArc(&a, newRegle({{"x", 1}}, {}));
        arc->setVue(&loop);
        arc->getRegle()->setVue(&rule);
    }
    EXPECT_EQ(loop.farewells, 1);
    EXPECT_EQ(rule.farewells, 1);
}

TEST(Node, SurvivesTheNodesItsArcsWentTo) {
    Noeud a("a");
    {
        Noeud b("b");
        for (int i = 0; i < 100; ++i) {
            a.addArc(&b, nullptr);
            b.addArc(&a, nullptr);
        }
        EXPECT_EQ(a.getOut().size(), 100U);
    }
    EXPECT_THAT(a.getOut(), IsEmpty());
    EXPECT_EQ(a.toString(), "");
}

}  // namespace
