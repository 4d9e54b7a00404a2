// The picture of a node: circle, name, marking with its arrow; where it is picked and how it is saved.
#include "Vue/Noeud.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "EGD/Arc.h"
#include "EGD/Arrow.h"
#include "EGD/Text.h"
#include "Helpers.h"

bool Modele::Noeud::*initFlag();

/// No operation of the model takes the flag away again; an explicit instantiation may name a private member.
template <bool Modele::Noeud::*flag>
struct OpenFlag {
    friend bool Modele::Noeud::*initFlag() { return flag; }
};
template struct OpenFlag<&Modele::Noeud::init>;

namespace {

/// A node put together by hand: what a node at (x, y) must look like.
class ByHand {
public:
    ByHand(const std::string& name, double x, double y) : circle(x, y, 20, 360, 0), text(name, x, y, 15, "Monospace") {
        circle.setColorIn(255, 0, 0, 50);
        area.add(&circle);
        area.add(&text);
    }

    ByHand(const std::string& name, double x, double y, const std::string& markingText) : ByHand(name, x, y) {
        marking = std::make_unique<EGD::Text>(markingText, x - 40, y - 40, 15, "Monospace");
        arrow = new EGD::Arrow(marking.get(), &circle);
        area.add(marking.get());
        area.add(arrow);
    }

    Picture picture() { return Picture::of(area, 300, 200); }

    TestArea area;
    EGD::Arc circle;
    EGD::Text text;
    std::unique_ptr<EGD::Text> marking;
    EGD::Arrow* arrow = nullptr;  // goes with its ends
};

TEST(NodeView, IsACircleOfRadius20AroundItsName) {
    Scene scene;
    scene.node("cell", 100, 80);
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("cell", 100, 80).picture()));
}

TEST(NodeView, IsFaintRedInsideAndOutlinedInOpaqueBlackThreePixelsWide) {
    Scene scene;
    scene.node("", 100.5, 80.5);
    const Picture picture = scene.picture();
    EXPECT_EQ(picture.at(100, 80), (Pixel{255, 205, 205}));
    EXPECT_EQ(picture.at(120, 80), black);
    EXPECT_EQ(picture.at(80, 80), black);
    EXPECT_EQ(picture.at(100, 60), black);
    EXPECT_EQ(picture.at(117, 80), (Pixel{255, 205, 205}));
    EXPECT_EQ(picture.at(123, 80), white);
}

TEST(NodeView, DrawsItsPartsAroundTheOriginThatItIsGiven) {
    Scene scene;
    Vue::Noeud* node = scene.initialNode("cell", 5, 6, "2a b");
    const Picture picture(300, 200);
    picture.context()->translate(100, 80);
    EXPECT_TRUE(node->vDraw(scene.area, picture.context()));
    EXPECT_TRUE(looksLike(picture, ByHand("cell", 100, 80, "2a b ").picture()));
}

TEST(NodeView, IsPickedAnywhereOnItsCircleAndItsRim) {
    Scene scene;
    Vue::Noeud* node = scene.node("cell", 100, 80);
    EXPECT_TRUE(scene.isPickedAt(node, 100, 80));
    EXPECT_TRUE(scene.isPickedAt(node, 112, 92));
    EXPECT_TRUE(scene.isPickedAt(node, 121.4, 80));
    EXPECT_FALSE(scene.isPickedAt(node, 121.7, 80));
    EXPECT_FALSE(scene.isPickedAt(node, 118, 98));
    EXPECT_FALSE(scene.isPickedAt(node, 60, 40)) << "no marking, nothing to pick there";
    EXPECT_FALSE(scene.isPickedAt(node, 76, 56));
}

TEST(NodeView, KnowsItsModelNodeAndIsTracedWithItsAddress) {
    Scene scene;
    Modele::Noeud* model = scene.klv->addNoeud("a");
    Vue::Noeud* node = scene.dessin->addNoeud(model, 1, 2);
    EXPECT_EQ(node->getModele(), model);
    EXPECT_EQ(scene.traces.count("Noeud::Noeud (" + address(node) + ")"), 1);
}

TEST(NodeView, LetsArrowsEndOnTheRimOfItsCircle) {
    Scene scene;
    Vue::Noeud* node = scene.node("a", 1, 2);
    for (const double angle : {0.0, 1.0, -7.0}) EXPECT_EQ(node->getR(angle), 20);
    node->getNoeud()->setR(35);
    EXPECT_EQ(node->getR(0), 35);
}

TEST(NodeView, IsRedrawnWheneverAPartChanges) {
    Scene scene;
    OnScreen screen(*scene.area);
    Vue::Noeud* node = scene.node("a", 50, 50);
    int updates = 0;
    node->signal_updated().connect([&] { ++updates; });
    screen.takeRequestedRedraw();

    node->getNoeud()->setColorFill(0, 0, 0, 100);
    EXPECT_EQ(updates, 1);
    EXPECT_TRUE(screen.isRedrawRequested());
    node->getNoeud()->setColorIn(0, 0, 0, 100);
    EXPECT_EQ(updates, 2);
    node->getNoeud()->setWidthLine(1);
    EXPECT_EQ(updates, 3);
    node->move(1, 1);
    EXPECT_EQ(updates, 4);
}

TEST(NodeView, ReturnsToItsOrdinaryLook) {
    Scene scene;
    Vue::Noeud* node = scene.node("a", 50, 50);
    const Picture before = scene.picture();
    node->getNoeud()->setColorFill(0, 0, 0, 100)->setColorIn(0, 0, 0, 0)->setWidthLine(7);
    EXPECT_FALSE(looksLike(scene.picture(), before));
    node->setDefault();
    EXPECT_TRUE(looksLike(scene.picture(), before));
}

// -- the marking
// ------------------------------------------------------------------------------------------------------------

TEST(NodeViewOfAnInitialNode, ShowsTheMarkingUpToTheLeftWithAnArrowIntoTheCircle) {
    Scene scene;
    scene.initialNode("cell", 100, 80, "2a b");
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("cell", 100, 80, "2a b ").picture()));
}

TEST(NodeViewOfAnInitialNode, ShowsNamesAscendingWithCountsOtherThanOneAndATrailingBlank) {
    Scene scene;
    Vue::Noeud* node = scene.node("n", 100, 80);
    const Modele::Multiset marking{{"B", 1}, {"A", 3}};
    node->getModele()->setInit(&marking);
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("n", 100, 80, "3A B ").picture()));
}

TEST(NodeViewOfAnInitialNode, LeavesOutCountsOfZeroAndLess) {
    Scene scene;
    Vue::Noeud* node = scene.node("n", 100, 80);
    const Modele::Multiset marking{{"a", 0}, {"b", -3}, {"c", 2}};
    node->getModele()->setInit(&marking);
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("n", 100, 80, "2c ").picture()));
}

TEST(NodeViewOfAnInitialNode, WithAnEmptyMarkingOrOnlyZeroCountsShowsAnEmptyLabelWithItsArrow) {
    for (const Modele::Multiset& marking : {Modele::Multiset{}, Modele::Multiset{{"a", 0}}}) {
        Scene scene;
        Vue::Noeud* node = scene.node("n", 100, 80);
        const Picture plain = scene.picture();
        node->getModele()->setInit(&marking);
        EXPECT_TRUE(looksLike(scene.picture(), ByHand("n", 100, 80, "").picture()));
        EXPECT_FALSE(looksLike(scene.picture(), plain));
        EXPECT_TRUE(scene.isPickedAt(node, 76, 56)) << "the arrow";
    }
}

TEST(NodeViewOfAnInitialNode, FollowsTheMarking) {
    Scene scene;
    Vue::Noeud* node = scene.initialNode("n", 100, 80, "a");
    node->getModele()->setInit("b c");
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("n", 100, 80, "b c ").picture()));
    node->getModele()->setInit("");
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("n", 100, 80, "").picture()));
    EXPECT_FALSE(node->getModele()->setInit("not a multiset!"));
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("n", 100, 80, "").picture()));
    node->getModele()->getMarquage()["d"] = 4;
    node->getModele()->callUpdate();
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("n", 100, 80, "4d ").picture()));
}

TEST(NodeViewOfAnInitialNode, MovesAsAWhole) {
    Scene scene;
    Vue::Noeud* node = scene.initialNode("n", 100, 80, "a");
    node->move(50, 20);
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("n", 150, 100, "a ").picture()));
    EXPECT_TRUE(scene.isPickedAt(node, 126, 76));
    EXPECT_FALSE(scene.isPickedAt(node, 76, 56));
}

TEST(NodeViewOfAnInitialNode, IsPickedByAClickOnTheArrowOfItsMarkingAndNotByItsLetters) {
    Scene scene;
    Vue::Noeud* node = scene.initialNode("n", 100, 80, "MMM");
    // From (60, 40) to (100, 80): the shaft runs from 10 to 36.6 along the diagonal.
    const auto alongDiagonal = [&](double k) { return scene.isPickedAt(node, 60 + k * M_SQRT1_2, 40 + k * M_SQRT1_2); };
    EXPECT_FALSE(alongDiagonal(9.5));
    EXPECT_TRUE(alongDiagonal(10.5));
    EXPECT_TRUE(alongDiagonal(25));
    EXPECT_TRUE(alongDiagonal(36));
    EXPECT_TRUE(scene.isPickedAt(node, 100 - 20 * M_SQRT1_2 - 13, 80 - 20 * M_SQRT1_2)) << "the head's arm";
    EXPECT_FALSE(scene.isPickedAt(node, 60, 40)) << "letters leave no path to pick";
    EXPECT_THAT(scene.dessin->noeudUnderMouse(77, 57), testing::ElementsAre(node));
}

TEST(NodeViewOfAPlainNode, HasNoMarkingAfterAnUpdateEither) {
    Scene scene;
    Vue::Noeud* node = scene.node("n", 100, 80);
    const Picture before = scene.picture();
    node->update();
    EXPECT_TRUE(looksLike(scene.picture(), before));
}

TEST(NodeViewOfAPlainNode, ThatWasInitialHasNoMarkingUntilItIsInitialAgain) {
    Scene scene;
    Vue::Noeud* node = scene.initialNode("n", 100, 80, "a");
    node->getModele()->*initFlag() = false;
    node->update();
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("n", 100, 80).picture()));
    EXPECT_FALSE(scene.isPickedAt(node, 76, 56));
    node->getModele()->setInit("2b");
    EXPECT_TRUE(looksLike(scene.picture(), ByHand("n", 100, 80, "2b ").picture()));
    EXPECT_TRUE(scene.isPickedAt(node, 76, 56));
}

// -- invisible nodes
// --------------------------------------------------------------------------------------------------------

TEST(InvisibleNodeView, IsNotPickedNorAreItsPartsEvenIfTheyWereBefore) {
    struct Part {
        const char* name;
        double x;
        double y;
    };
    for (const Part& part : {Part{"circle", 100, 80}, Part{"rim", 121, 80}, Part{"marking's arrow", 77, 57}}) {
        SCOPED_TRACE(part.name);
        Scene scene;
        Vue::Noeud* node = scene.initialNode("n", 100, 80, "a");
        ASSERT_TRUE(scene.isPickedAt(node, part.x, part.y));
        node->setVisible(false);
        EXPECT_FALSE(scene.isPickedAt(node, part.x, part.y));
        EXPECT_FALSE(node->getNoeud()->isPicked());
        EXPECT_TRUE(scene.dessin->noeudUnderMouse(part.x, part.y).empty());
        EXPECT_TRUE(scene.area->underMouse(part.x, part.y).empty());
        EXPECT_TRUE(scene.picture().isBlank());
        node->setVisible(true);
        EXPECT_TRUE(scene.isPickedAt(node, part.x, part.y));
    }
}

// -- the text of its position
// -----------------------------------------------------------------------------------------------

TEST(NodeViewText, IsTheNameAndThePositionTruncatedTowardsZero) {
    Scene scene;
    EXPECT_EQ(scene.node("cell", 120.7, -4.2)->toString(), "cell(120, -4);\n");
    EXPECT_EQ(scene.node("other", -0.9, 10.99)->toString(), "other(0, 10);\n");
    EXPECT_EQ(scene.node("third", -7.999, 0)->toString(), "third(-7, 0);\n");
}

TEST(NodeViewText, FollowsTheMoves) {
    Scene scene;
    Vue::Noeud* node = scene.node("a", 1, 2);
    node->move(0.4, 0.4);
    node->move(0.4, 0.4);
    EXPECT_EQ(node->toString(), "a(1, 2);\n");
    node->move(0.4, 0.4);
    EXPECT_EQ(node->toString(), "a(2, 3);\n");
}

TEST(NodeViewText, StaysWithinWhatTheReaderTakesHoweverFarTheNodeIs) {
    Scene scene;
    const std::string most = std::to_string(std::numeric_limits<int>::max());
    const std::string least = std::to_string(std::numeric_limits<int>::min());
    EXPECT_EQ(scene.node("a", 1e300, -1e300)->toString(), "a(" + most + ", " + least + ");\n");
}

// -- the link with the model
// ------------------------------------------------------------------------------------------------

TEST(NodeView, IsToldOfEveryChangeByItsModelNode) {
    Scene scene;
    Modele::Noeud node("n");
    Vue::Noeud* first = scene.dessin->addNoeud(&node, 100, 80);
    node.setInit("a");
    EXPECT_TRUE(scene.isPickedAt(first, 76, 56));
}

TEST(NodeView, AnnouncesItsEndWhenItsModelNodeDies) {
    Scene scene;
    Vue::Noeud* node = scene.initialNode("n", 100, 80, "a");
    int ends = 0;
    node->signal_deleted().connect([&] { ++ends; });
    scene.klv->removeNoeud(node->getModele());
    EXPECT_EQ(ends, 1);
    EXPECT_TRUE(scene.picture().isBlank());
}

}  // namespace
