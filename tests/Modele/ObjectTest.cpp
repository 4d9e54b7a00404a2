// The link between a model object and its view: who is told what, and that whichever end dies first, in
// whatever order, nobody is told twice and nobody reaches into the dead.
#include "Modele/Object.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <type_traits>
#include <vector>

#include "Helpers.h"
#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"

namespace {

TEST(ModelObject, IsTheBaseOfEveryModelClassAndIsDestroyedThroughItsBase) {
    static_assert(std::has_virtual_destructor_v<Modele::Object>);
    static_assert(std::is_base_of_v<Modele::Object, Modele::Noeud>);
    static_assert(std::is_base_of_v<Modele::Object, Modele::Regle>);
    static_assert(std::is_base_of_v<Modele::Object, Modele::Arc>);
    static_assert(std::is_base_of_v<Modele::Object, Modele::KLV>);

    Modele::Noeud source("a");
    Modele::Object* destination = new Modele::Noeud("b");
    source.addArc(static_cast<Modele::Noeud*>(destination), nullptr);
    delete destination;
    EXPECT_TRUE(source.getOut().empty()) << "the node's own destructor ran";
}

TEST(ModelObject, CannotBeCopiedBecauseACopyWouldShareItsViewAndItsParts) {
    static_assert(!std::is_copy_constructible_v<Modele::Object> && !std::is_copy_assignable_v<Modele::Object>);
    static_assert(!std::is_copy_constructible_v<Modele::Noeud> && !std::is_copy_assignable_v<Modele::Noeud>);
    static_assert(!std::is_copy_constructible_v<Modele::Arc> && !std::is_copy_assignable_v<Modele::Arc>);
    static_assert(!std::is_copy_constructible_v<Modele::KLV> && !std::is_copy_assignable_v<Modele::KLV>);
    static_assert(!std::is_copy_constructible_v<Vue::Object> && !std::is_copy_assignable_v<Vue::Object>);
    static_assert(std::is_abstract_v<Vue::Object> && std::has_virtual_destructor_v<Vue::Object>);
}

TEST(ModelObject, WithoutAViewTellsNobody) {
    CountingView stranger(nullptr);
    {
        Modele::Object object;
        object.callUpdate();
        object.callDelete();
    }
    EXPECT_EQ(stranger.updates, 0);
    EXPECT_EQ(stranger.farewells, 0);
}

TEST(ModelObject, IsLinkedByTheConstructorOfItsView) {
    Modele::Object object;
    CountingView view(&object);
    object.callUpdate();
    EXPECT_EQ(view.updates, 1);
    EXPECT_EQ(view.farewells, 0);
}

TEST(ModelObject, PassesEveryUpdateAndEveryDeleteCallToItsView) {
    Modele::Object object;
    CountingView view(nullptr);
    object.setVue(&view);
    object.callUpdate();
    object.callUpdate();
    object.callDelete();
    EXPECT_EQ(view.updates, 2);
    EXPECT_EQ(view.farewells, 1);
}

TEST(ModelObject, TellsItsViewToGoAwayExactlyOnceWhenDestroyed) {
    CountingView view(nullptr);
    {
        Modele::Object object;
        object.setVue(&view);
    }
    EXPECT_EQ(view.farewells, 1);
    EXPECT_EQ(view.updates, 0);
}

TEST(ModelObject, OfEveryClassTellsItsViewToGoAwayExactlyOnce) {
    std::vector<std::unique_ptr<CountingView>> views;
    const auto watch = [&](Modele::Object* object) { views.push_back(std::make_unique<CountingView>(object)); };
    {
        Modele::KLV network;
        watch(&network);
        Modele::Noeud* a = network.addNoeud("a");
        watch(a);
        Modele::Arc* arc = a->addArc(network.addNoeud("b"), newRegle({}, {}));
        watch(arc);
        watch(arc->getRegle());
        for (const auto& view : views) EXPECT_EQ(view->farewells, 0);
    }
    for (const auto& view : views) EXPECT_EQ(view->farewells, 1);
}

TEST(ModelObject, ForgetsAViewThatDiedBeforeIt) {
    Modele::Noeud node("a");
    { CountingView shortLived(&node); }
    EXPECT_TRUE(node.setInit("a"));
    CountingView next(&node);
    EXPECT_TRUE(node.setInit("b"));
    EXPECT_EQ(next.updates, 2);
}

TEST(ModelObject, SpeaksOnlyToTheLastViewItWasGiven) {
    CountingView first(nullptr);
    CountingView second(nullptr);
    {
        Modele::Object object;
        object.setVue(&first);
        object.setVue(&second);
        object.callUpdate();
    }
    EXPECT_EQ(first.updates + first.farewells, 0);
    EXPECT_EQ(second.updates, 1);
    EXPECT_EQ(second.farewells, 1);
}

TEST(ModelObject, KeepsItsPresentViewWhenAFormerOneDies) {
    Modele::Object object;
    auto former = std::make_unique<CountingView>(&object);
    CountingView present(&object);
    former.reset();
    object.callUpdate();
    EXPECT_EQ(present.updates, 1);
}

TEST(ModelObject, IsSilentAfterItsViewWasTakenAway) {
    CountingView view(nullptr);
    {
        Modele::Object object;
        object.setVue(&view);
        object.setVue(nullptr);
        object.callUpdate();
    }
    EXPECT_EQ(view.updates + view.farewells, 0);
}

class SelfDestroyingView : public Vue::Object {
public:
    SelfDestroyingView(Modele::Object* modele, int& alive) : Vue::Object(modele), _alive(alive) { ++_alive; }
    ~SelfDestroyingView() override { --_alive; }
    void update() override {}
    void sucide() override { delete this; }

private:
    int& _alive;
};

TEST(ModelObject, MayBeDestroyedWithAViewThatDestroysItselfWhenTold) {
    int alive = 0;
    {
        Modele::KLV network;
        Modele::Noeud* a = network.addNoeud("a");
        Modele::Noeud* b = network.addNoeud("b");
        for (Modele::Object* object : {static_cast<Modele::Object*>(a), static_cast<Modele::Object*>(b),
                                       static_cast<Modele::Object*>(a->addArc(b, newRegle({}, {}))),
                                       static_cast<Modele::Object*>(b->addArc(b, nullptr))}) {
            new SelfDestroyingView(object, alive);
        }
        EXPECT_EQ(alive, 4);
        network.removeNoeud(b);
        EXPECT_EQ(alive, 1) << "only the view of \"a\" is left";
    }
    EXPECT_EQ(alive, 0);
}

// Two nodes joined by an arc, each with a view: the five ends that somebody may destroy, in all their 120
// orders. The arc goes with the first of its nodes.
TEST(ModelObject, AndViewsMayDieInAnyOrder) {
    std::vector<int> order(5);
    std::iota(order.begin(), order.end(), 0);
    do {
        SCOPED_TRACE(testing::PrintToString(order));
        int farewells[3] = {};
        auto a = std::make_unique<Modele::Noeud>("a");
        auto b = std::make_unique<Modele::Noeud>("b");
        std::unique_ptr<CountingView> views[3] = {std::make_unique<CountingView>(a.get()),
                                                  std::make_unique<CountingView>(b.get()),
                                                  std::make_unique<CountingView>(a->addArc(b.get(), nullptr))};
        for (std::size_t i = 0; i < 3; ++i) views[i]->onSucide = [&farewells, i] { ++farewells[i]; };

        for (const int victim : order) {
            if (victim == 0) {
                a.reset();
            } else if (victim == 1) {
                b.reset();
            } else {
                views[victim - 2].reset();
            }
        }

        const auto rank = [&](int victim) { return std::find(order.begin(), order.end(), victim) - order.begin(); };
        EXPECT_EQ(farewells[0], rank(2) > rank(0) ? 1 : 0);
        EXPECT_EQ(farewells[1], rank(3) > rank(1) ? 1 : 0);
        EXPECT_EQ(farewells[2], rank(4) > std::min(rank(0), rank(1)) ? 1 : 0);
    } while (std::next_permutation(order.begin(), order.end()));
}

}  // namespace
