// The network: finding and naming nodes, what it lists, its section of a file, and the order in which things
// go.
#include "Modele/KLV.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "Helpers.h"
#include "Modele/Arc.h"
#include "Modele/Noeud.h"

namespace {

using Modele::KLV;
using Modele::Multiset;
using Modele::Noeud;
using testing::ElementsAre;
using testing::IsEmpty;

class Network : public testing::Test {
protected:
    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (const auto& [name, node] : network.getNoeuds()) {
            EXPECT_EQ(node->getName(), name);
            found.push_back(name);
        }
        return found;
    }

    std::string nextAutomaticName() { return network.addNoeud()->getName(); }

    KLV network;
};

TEST_F(Network, StartsEmpty) {
    EXPECT_THAT(network.getNoeuds(), IsEmpty());
    EXPECT_THAT(network.getNoeudIn(), IsEmpty());
    EXPECT_THAT(network.getArcs(), IsEmpty());
    EXPECT_THAT(network.getMolecules(), IsEmpty());
    EXPECT_EQ(network.toString(), "");
}

TEST_F(Network, NamesNodesByItselfFromQ1Upwards) {
    for (int i = 1; i <= 12; ++i) EXPECT_EQ(nextAutomaticName(), "q" + std::to_string(i));
    EXPECT_EQ(network.getNoeuds().size(), 12U);
}

TEST_F(Network, SkipsAnAutomaticNameInUse) {
    network.addNoeud("q1");
    EXPECT_EQ(nextAutomaticName(), "q2");
}

TEST_F(Network, SkipsEveryAutomaticNameInUse) {
    for (const char* name : {"q1", "q2", "q4", "q05", "Q5"}) network.addNoeud(name);
    EXPECT_EQ(nextAutomaticName(), "q3");
    EXPECT_EQ(nextAutomaticName(), "q5");
}

TEST_F(Network, ReusesTheNameOfTheLastNodeAfterItsRemoval) {
    nextAutomaticName();
    network.removeNoeud(network.addNoeud());
    EXPECT_THAT(names(), ElementsAre("q1"));
    EXPECT_EQ(nextAutomaticName(), "q2");
}

TEST_F(Network, SkipsForwardOverNamesInUseAfterAnEarlierNodesRemoval) {
    for (int i = 0; i < 3; ++i) network.addNoeud();
    network.removeNoeud(network.get("q1"));
    EXPECT_EQ(nextAutomaticName(), "q4") << "the counter stepped back to 2, and q3 is in use";
    EXPECT_THAT(names(), ElementsAre("q2", "q3", "q4"));
}

TEST_F(Network, StepsItsCounterBackForEveryRemovedNodeWhateverItsName) {
    for (int i = 0; i < 3; ++i) network.addNoeud();
    network.removeNoeud(network.addNoeud("named"));
    network.removeNoeud(network.get("q3"));
    EXPECT_EQ(nextAutomaticName(), "q3") << "the counter stood at 1, and q2 is in use";
}

TEST_F(Network, CountsBelowZeroWhenMoreNodesAreRemovedThanWereNamedByItself) {
    network.removeNoeud(network.addNoeud("named"));
    EXPECT_EQ(nextAutomaticName(), "q0");
    EXPECT_EQ(nextAutomaticName(), "q1");
}

TEST_F(Network, DoesNotMoveItsCounterForNodesNamedByTheCaller) {
    network.addNoeud("a");
    network.get("b");
    const Multiset marking;
    network.addNoeud("c", &marking);
    EXPECT_EQ(nextAutomaticName(), "q1");
}

TEST_F(Network, FindsOrCreatesANodeByName) {
    Noeud* a = network.addNoeud("a");
    ASSERT_TRUE(a->setInit("x"));
    EXPECT_EQ(network.addNoeud("a"), a);
    EXPECT_EQ(a->getMarquage(), (Multiset{{"x", 1}})) << "the node found is unchanged";
    EXPECT_NE(network.addNoeud("A"), a) << "names are case-sensitive";
    EXPECT_THAT(names(), ElementsAre("A", "a"));
}

TEST_F(Network, MakesANodeInitialWithACopyOfTheMarking) {
    Multiset marking{{"x", 2}};
    Noeud* a = network.addNoeud("a", &marking);
    marking["x"] = 5;
    EXPECT_TRUE(a->isInit());
    EXPECT_EQ(a->getMarquage(), (Multiset{{"x", 2}}));
    EXPECT_EQ(network.get("a"), a);
}

TEST_F(Network, MakesAnExistingNodeInitialAndReplacesItsMarking) {
    Noeud* a = network.addNoeud("a");
    CountingView view(a);
    const Multiset first{{"x", 2}};
    const Multiset second{{"y", 1}};
    EXPECT_EQ(network.addNoeud("a", &first), a);
    EXPECT_EQ(network.addNoeud("a", &second), a);
    EXPECT_EQ(a->getMarquage(), second);
    EXPECT_EQ(view.updates, 2);
}

TEST_F(Network, GetsAnExistingNodeAndCreatesAMissingOne) {
    Noeud* a = network.addNoeud("a");
    EXPECT_EQ(network.get("a"), a);
    Noeud* b = network.get("b");
    ASSERT_NE(b, nullptr);
    EXPECT_FALSE(b->isInit());
    EXPECT_EQ(network.addNoeud("b"), b);
    EXPECT_THAT(names(), ElementsAre("a", "b"));
}

TEST_F(Network, GivesAReferenceToItsNodesByName) {
    static_assert(std::is_same_v<decltype(std::declval<KLV&>().getNoeuds()), std::map<std::string, Noeud*>&>);
    auto& nodes = network.getNoeuds();
    Noeud* a = network.addNoeud("a");
    EXPECT_THAT(nodes, ElementsAre(testing::Pair("a", a)));
}

TEST_F(Network, ListsItsNodesInByteOrder) {
    for (const char* name : {"b", "q10", "q2", "_x", "B", "a"}) network.addNoeud(name);
    EXPECT_THAT(names(), ElementsAre("B", "_x", "a", "b", "q10", "q2"));
}

TEST_F(Network, ListsItsInitialNodesInNameOrder) {
    const Multiset empty;
    Noeud* c = network.addNoeud("c", &empty);
    network.addNoeud("b")->getMarquage()["x"] = 1;
    Noeud* a = network.addNoeud("a");
    ASSERT_TRUE(a->setInit("x"));
    EXPECT_THAT(network.getNoeudIn(), ElementsAre(a, c));
}

TEST_F(Network, ListsEveryArcOnceUnderItsSourceInNameOrder) {
    Noeud* b = network.addNoeud("b");
    Noeud* a = network.addNoeud("a");
    Noeud* c = network.addNoeud("c");
    Modele::Arc* ca = c->addArc(a, nullptr);
    Modele::Arc* ba = b->addArc(a, nullptr);
    Modele::Arc* loop = a->addArc(a, nullptr);
    EXPECT_THAT(network.getArcs(), ElementsAre(loop, ba, ca));

    Modele::Arc* ab = a->addArc(b, nullptr);
    std::vector<Modele::Arc*> expected(a->getOut().begin(), a->getOut().end());
    EXPECT_THAT(expected, testing::UnorderedElementsAre(loop, ab));
    expected.insert(expected.end(), {ba, ca});
    EXPECT_EQ(network.getArcs(), expected);
}

TEST_F(Network, ListsTheMoleculesOfItsRulesAndMarkings) {
    Noeud* q = network.addNoeud("q");
    ASSERT_TRUE(q->addArc(network.addNoeud("r"), nullptr)->setRegle("a -> b"));
    ASSERT_TRUE(q->setInit("3c"));
    EXPECT_EQ(network.getMolecules(), (Multiset{{"a", -1}, {"b", -1}, {"c", -1}}));
}

TEST_F(Network, ListsEveryMoleculeThatIsNamedAnywhereAndWhateverItsCount) {
    Noeud* q = network.addNoeud("q");
    q->getMarquage()["notCounting"] = 7;
    q->addArc(q, nullptr);
    q->addArc(q, newRegle({{"zero", 0}, {"both", 2}}, {{"both", 1}}));
    network.addNoeud("r")->addArc(q, newRegle({}, {{"debt", -4}}));
    EXPECT_EQ(network.getMolecules(), (Multiset{{"both", -1}, {"debt", -1}, {"notCounting", -1}, {"zero", -1}}));
}

TEST_F(Network, WritesOneLineANodeInNameOrder) {
    network.addNoeud("b");
    Noeud* a = network.addNoeud("a");
    ASSERT_TRUE(a->setInit("x"));
    ASSERT_TRUE(network.addNoeud("c")->addArc(a, nullptr)->setRegle("->"));
    EXPECT_EQ(network.toString(), "a : x ;\n\nc -> a : -> ;\n");
}

TEST_F(Network, WritesAnEmptyLineForANodeWithoutArcAndMarking) {
    Noeud* q1 = network.addNoeud("q1");
    ASSERT_TRUE(q1->addArc(network.addNoeud("q2"), nullptr)->setRegle("a -> c"));
    ASSERT_TRUE(q1->setInit("2a b"));
    EXPECT_EQ(network.toString(), "q1 -> q2 : a -> c ;q1 : 2a b ;\n\n");
}

TEST_F(Network, RemovesANodeWithItsArcs) {
    Noeud* a = network.addNoeud("a");
    Noeud* b = network.addNoeud("b");
    a->addArc(b, nullptr);
    b->addArc(a, nullptr);
    b->addArc(b, nullptr);
    Modele::Arc* loop = a->addArc(a, nullptr);
    network.removeNoeud(b);
    EXPECT_THAT(names(), ElementsAre("a"));
    EXPECT_THAT(network.getArcs(), ElementsAre(loop));
}

TEST_F(Network, ForgetsARemovedNodeBeforeItsViewIsToldToGo) {
    CountingView view(nullptr);
    Noeud* a = network.addNoeud();
    a->setVue(&view);
    std::string reused;
    view.onSucide = [&] {
        EXPECT_THAT(network.getNoeuds(), IsEmpty());
        reused = nextAutomaticName();
    };
    network.removeNoeud(a);
    EXPECT_EQ(reused, "q1");
    EXPECT_EQ(view.farewells, 1);
}

TEST_F(Network, TracesEveryNodeItDestroys) {
    Noeud* a = network.addNoeud("a");
    network.addNoeud("b");
    network.addNoeud("c")->addArc(a, nullptr);
    testing::internal::CaptureStdout();
    network.removeNoeud(a);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Modele::Noeud::~Noeud\n");
    testing::internal::CaptureStdout();
    network.clear();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Modele::Noeud::~Noeud\nModele::Noeud::~Noeud\n");
}

TEST_F(Network, TracesNothingWhileNodesLive) {
    testing::internal::CaptureStdout();
    Noeud* a = network.addNoeud();
    Modele::Arc* arc = a->addArc(network.get("b"), nullptr);
    EXPECT_TRUE(arc->setRegle("x -> y"));
    EXPECT_FALSE(arc->setRegle("?"));
    EXPECT_TRUE(a->setInit("x"));
    EXPECT_FALSE(a->setInit("?"));
    arc->setDestination(a);
    network.toString();
    network.getMolecules();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(Network, IsAsNewAfterClear) {
    for (int i = 0; i < 5; ++i) network.addNoeud();
    network.get("q1")->addArc(network.get("q2"), newRegle({{"x", 1}}, {}));
    ASSERT_TRUE(network.get("q3")->setInit("y"));
    network.clear();
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(network.getArcs(), IsEmpty());
    EXPECT_THAT(network.getMolecules(), IsEmpty());
    EXPECT_EQ(network.toString(), "");
    EXPECT_EQ(nextAutomaticName(), "q1");
}

TEST_F(Network, MayBeClearedWhenEmpty) {
    network.clear();
    network.clear();
    EXPECT_EQ(nextAutomaticName(), "q1");
}

TEST(NetworkEnd, DestroysItsNodesInNameOrderWhenClearedAndWhenDestroyedThenGoesItself) {
    const std::vector<std::string> scrambled{"c", "a", "B", "q10", "q2"};
    std::string order;
    std::vector<std::unique_ptr<CountingView>> views;
    const auto watch = [&](Modele::Object* object, const std::string& name) {
        views.push_back(std::make_unique<CountingView>(object));
        views.back()->onSucide = [&order, name] { order += name + " "; };
    };
    {
        KLV network;
        watch(&network, "network");
        for (const auto& name : scrambled) watch(network.addNoeud(name), name);
        network.clear();
        EXPECT_EQ(order, "B a c q10 q2 ");
        order.clear();
        for (const auto& name : scrambled) watch(network.addNoeud(name), name);
    }
    EXPECT_EQ(order, "B a c q10 q2 network ");
}

TEST(NetworkEnd, DestroysEveryArcOfACompleteNetworkOnce) {
    std::vector<std::unique_ptr<CountingView>> views;
    {
        KLV network;
        for (int i = 0; i < 10; ++i) network.addNoeud();
        for (const auto& [from, source] : network.getNoeuds()) {
            for (const auto& [to, destination] : network.getNoeuds()) {
                views.push_back(std::make_unique<CountingView>(source->addArc(destination, newRegle({}, {}))));
            }
        }
        EXPECT_EQ(network.getArcs().size(), 100U);
    }
    EXPECT_EQ(std::count_if(views.begin(), views.end(), [](const auto& view) { return view->farewells == 1; }), 100);
}

}  // namespace
