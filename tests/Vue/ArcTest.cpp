// The picture of an arc: an arrow from node to node with the rule as its label, which follows the model.
#include "Vue/Arc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "EGD/Arc.h"
#include "EGD/Arrow.h"
#include "EGD/Text.h"
#include "Helpers.h"

namespace {

/// What an arc with the label `text` from (50, 100) to (250, 100) must look like; no label when it is null.
Picture arrowByHand(const char* text) {
    TestArea area;
    EGD::Arc from(50, 100, 20, 360, 0);
    EGD::Arc to(250, 100, 20, 360, 0);
    EGD::Arrow arrow(&from, &to);
    if (text != nullptr) arrow.setLabel(text);
    return Picture::ofDrawing(area, arrow, 300, 200);
}

/// Two nodes at (50, 100) and (250, 100).
class ArcView : public testing::Test {
protected:
    /// The arc's view alone.
    Picture picture(Vue::Arc* arc) { return Picture::ofDrawing(*scene.area, *arc, 300, 200); }

    Scene scene;
    Vue::Noeud* a = scene.node("a", 50, 100);
    Vue::Noeud* b = scene.node("b", 250, 100);
};

TEST_F(ArcView, IsAnArrowFromTheSourcesViewToTheDestinationsView) {
    Vue::Arc* arc = scene.arc(a, b);
    EXPECT_EQ(arc->getArrow()->getBegin(), a);
    EXPECT_EQ(arc->getArrow()->getEnd(), b);
    EXPECT_EQ(arc->getArea(), scene.area);
    EXPECT_EQ(arc->getPosX(), 0);
    EXPECT_TRUE(looksLike(picture(arc), arrowByHand(nullptr)));
}

TEST_F(ArcView, DrawsItsArrowAlsoWhenAskedWithoutItsOwnShift) {
    Vue::Arc* arc = scene.arc(a, b, "x -> y");
    const Picture picture(300, 200);
    EXPECT_TRUE(arc->vDraw(scene.area, picture.context()));
    EXPECT_TRUE(looksLike(picture, arrowByHand("x -> y ")));
}

TEST_F(ArcView, KnowsItsModelArc) {
    Modele::Arc* model = a->getModele()->addArc(b->getModele(), nullptr);
    EXPECT_EQ(scene.dessin->addArc(model)->getModele(), model);
}

TEST_F(ArcView, ShowsTheRuleItIsMadeWith) {
    const Modele::Multiset in{{"x", 2}};
    const Modele::Multiset out{{"y", 1}};
    Vue::Arc* arc = scene.dessin->addArc(a->getModele()->addArc(b->getModele(), new Modele::Regle(&in, &out)));
    EXPECT_TRUE(looksLike(picture(arc), arrowByHand("2x -> y ")));
}

TEST_F(ArcView, WithoutARuleShowsNoLabelUntilOneIsSetAndNoneAgainAfterItIsTakenAway) {
    Vue::Arc* arc = scene.arc(a, b);
    EXPECT_TRUE(looksLike(picture(arc), arrowByHand(nullptr)));
    ASSERT_TRUE(arc->getModele()->setRegle("2x -> y"));
    EXPECT_TRUE(looksLike(picture(arc), arrowByHand("2x -> y ")));
    ASSERT_TRUE(arc->getModele()->setRegle("->"));
    EXPECT_TRUE(looksLike(picture(arc), arrowByHand("-> "))) << "an empty rule is a rule";
    ASSERT_TRUE(arc->getModele()->setRegle(""));
    EXPECT_TRUE(looksLike(picture(arc), arrowByHand(nullptr)));
}

TEST_F(ArcView, KeepsItsLabelWhenTheNewRuleIsRefused) {
    Vue::Arc* arc = scene.arc(a, b, "x -> y");
    ASSERT_FALSE(arc->getModele()->setRegle("x - y"));
    EXPECT_TRUE(looksLike(picture(arc), arrowByHand("x -> y ")));
}

TEST_F(ArcView, FollowsItsDestination) {
    Vue::Noeud* c = scene.node("c", 50, 190);
    Vue::Arc* arc = scene.arc(a, b);
    arc->getModele()->setDestination(c->getModele());
    EXPECT_EQ(arc->getArrow()->getEnd(), c);
    EXPECT_TRUE(scene.isPickedAt(arc, 50, 145));
    EXPECT_FALSE(scene.isPickedAt(arc, 150, 100));
    arc->getModele()->setDestination(a->getModele());
    EXPECT_EQ(arc->getArrow()->getEnd(), a) << "now it is a loop";
    EXPECT_FALSE(scene.isPickedAt(arc, 50, 145));
}

TEST_F(ArcView, FollowsItsNodes) {
    Vue::Arc* arc = scene.arc(a, b);
    b->setPos(250, 50);
    a->setPos(50, 50);
    EXPECT_TRUE(scene.isPickedAt(arc, 150, 50));
    EXPECT_FALSE(scene.isPickedAt(arc, 150, 100));
}

TEST_F(ArcView, CurvesWhenAnotherArcRunsBackAndIsStraightOnceThatIsGone) {
    Vue::Arc* there = scene.arc(a, b);
    Vue::Noeud* c = scene.node("c", 250, 180);
    Vue::Arc* back = scene.arc(b, a);
    EXPECT_FALSE(scene.isPickedAt(there, 150, 100));
    EXPECT_FALSE(scene.isPickedAt(back, 150, 100));
    back->getModele()->setDestination(c->getModele());
    EXPECT_TRUE(scene.isPickedAt(there, 150, 100));
}

TEST_F(ArcView, IsRedrawnWhenItsArrowChanges) {
    OnScreen screen(*scene.area);
    Vue::Arc* arc = scene.arc(a, b);
    int updates = 0;
    arc->signal_updated().connect([&] { ++updates; });
    screen.takeRequestedRedraw();
    arc->getArrow()->setColorFill(0, 0, 0, 100);
    EXPECT_EQ(updates, 1);
    EXPECT_TRUE(screen.isRedrawRequested());
}

TEST_F(ArcView, IsFaintWhileItsArrowIsButForTheShaftUnderALabel) {
    Vue::Arc* arc = scene.arc(a, b);
    a->setPos(50, 100.5);
    b->setPos(250, 100.5);
    arc->getArrow()->setColorFill(0, 0, 0, 100);
    EXPECT_EQ(picture(arc).at(120, 100), (Pixel{155, 155, 155}));
    arc->getModele()->setRegle("x -> y");
    EXPECT_EQ(picture(arc).at(75, 100), black);
}

// -- picking
// ----------------------------------------------------------------------------------------------------------------

TEST_F(ArcView, TracesTheAnswerWheneverItIsAskedWhetherItIsPicked) {
    Vue::Arc* arc = scene.arc(a, b);
    scene.area->setPick(150, 100);
    const std::string before = scene.traces.text();
    EXPECT_TRUE(arc->isPicked());
    EXPECT_EQ(scene.traces.text(), before + "arrow picked : 1\n");
    scene.area->setPick(150, 120);
    EXPECT_FALSE(arc->isPicked());
    EXPECT_EQ(scene.traces.text(), before + "arrow picked : 1\narrow picked : 0\n");
}

TEST_F(ArcView, IsPickedOnItsShaftAndHeadWithAndWithoutLabel) {
    Vue::Arc* arc = scene.arc(a, b);
    for (const char* rule : {"", "x -> y"}) {
        arc->getModele()->setRegle(rule);
        EXPECT_TRUE(scene.isPickedAt(arc, 150, 100));
        EXPECT_TRUE(scene.isPickedAt(arc, 225, 95));
        EXPECT_FALSE(scene.isPickedAt(arc, 150, 90));
    }
}

TEST_F(ArcView, WritesOneLineForEveryArcThatAPressTests) {
    scene.arc(a, b);
    scene.arc(b, a);
    scene.arc(a, a);
    const auto linesOfAPress = [&](double x, double y) {
        const int before = scene.traces.countPrefix("arrow picked : ");
        sendButton(*scene.area, x, y);
        return scene.traces.countPrefix("arrow picked : ") - before;
    };
    EXPECT_EQ(linesOfAPress(150, 190), 6) << "the area asks each, then the arc picking";

    scene.dessin->signal_selectNoeud().connect([](GdkEventButton*, Vue::Noeud*) { return true; });
    EXPECT_EQ(linesOfAPress(50, 100), 3) << "a press that a node takes is not offered to arcs";
}

TEST_F(ArcView, IsNotPickedWhileItIsInvisibleEvenIfItWasBefore) {
    Vue::Arc* arc = scene.arc(a, b, "x -> y");
    ASSERT_TRUE(scene.isPickedAt(arc, 150, 100));
    arc->setVisible(false);
    EXPECT_FALSE(scene.isPickedAt(arc, 150, 100));
}

TEST_F(ArcView, IsNeitherSeenNorPickedBetweenNodesThatTouchEvenIfItWasBefore) {
    Vue::Arc* arc = scene.arc(a, b, "x -> y");
    ASSERT_TRUE(scene.isPickedAt(arc, 150, 100));
    b->setPos(90, 100);
    EXPECT_FALSE(scene.isPickedAt(arc, 150, 100));
    EXPECT_FALSE(scene.isPickedAt(arc, 70, 100));
    EXPECT_TRUE(picture(arc).isBlank());
}

// -- missing views
// ----------------------------------------------------------------------------------------------------------

TEST_F(ArcView, OfANodeWithoutAViewIsNeitherSeenNorPicked) {
    Modele::Noeud* unseen = scene.klv->addNoeud("unseen");
    Vue::Arc* in = scene.dessin->addArc(a->getModele()->addArc(unseen, nullptr));
    Vue::Arc* out = scene.dessin->addArc(unseen->addArc(a->getModele(), nullptr));
    Vue::Arc* loop = scene.dessin->addArc(unseen->addArc(unseen, nullptr));
    in->getModele()->setRegle("x -> y");
    loop->getModele()->setRegle("x -> y");
    EXPECT_EQ(in->getArrow()->getEnd(), nullptr);
    EXPECT_EQ(out->getArrow()->getBegin(), nullptr);
    for (Vue::Arc* arc : {in, out, loop}) {
        EXPECT_TRUE(picture(arc).isBlank());
        EXPECT_FALSE(scene.isPickedAt(arc, 0, 0));
        EXPECT_FALSE(scene.isPickedAt(arc, 50, 100));
    }
    sendButton(*scene.area, 50, 100);
}

TEST_F(ArcView, IsSeenOnceItsNodeHasAViewAndTheArcIsUpdated) {
    Modele::Noeud* late = scene.klv->addNoeud("late");
    Vue::Arc* arc = scene.dessin->addArc(a->getModele()->addArc(late, nullptr));
    scene.dessin->addNoeud(late, 250, 100);
    arc->getModele()->callUpdate();
    EXPECT_TRUE(scene.isPickedAt(arc, 150, 100));
}

TEST_F(ArcView, LosesItsPictureWithTheViewOfANode) {
    Vue::Arc* arc = scene.arc(a, b, "x -> y");
    Modele::Noeud* node = b->getModele();
    scene.dessin->removeNoeud(b);
    EXPECT_EQ(arc->getArrow()->getEnd(), nullptr);
    EXPECT_TRUE(picture(arc).isBlank());
    arc->getModele()->setRegle("x -> z");
    EXPECT_TRUE(picture(arc).isBlank());
    scene.dessin->addNoeud(node, 250, 100);
    arc->update();
    EXPECT_TRUE(looksLike(picture(arc), arrowByHand("x -> z ")));
}

TEST_F(ArcView, EndsWithItsModelArcAndIsTraced) {
    Vue::Arc* arc = scene.arc(a, b, "x -> y");
    int ends = 0;
    arc->signal_deleted().connect([&] { ++ends; });
    const std::string before = scene.traces.text();
    delete arc->getModele();
    EXPECT_EQ(scene.traces.text(), before + "Arc::~Arc\n");
    EXPECT_EQ(ends, 1);
    EXPECT_FALSE(b->arrowInFrom(a));
}

TEST_F(ArcView, EndsBeforeTheViewOfANodeThatEnds) {
    scene.arc(a, b, "x -> y");
    scene.arc(b, a);
    scene.arc(b, b, "x -> y");
    const std::string before = scene.traces.text();
    scene.klv->removeNoeud(b->getModele());
    EXPECT_EQ(scene.traces.text(), before +
                                       "Modele::Noeud::~Noeud\n"
                                       "Arc::~Arc\nArc::~Arc\nArc::~Arc\n"
                                       "sucide !\nremove noeud (" +
                                       address(b) + ")\nPOP !\nVue::Noeud::~Noeud ()\n");
}

}  // namespace
