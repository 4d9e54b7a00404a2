// The gestures of ARC mode. The node A stands at (100, 100), B at (300, 100).
#include "Editing.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class ArcMode : public Editing {
protected:
    ArcMode() { controleur->setMode(Controleur::ARC); }

    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& [name, node] : content().nodes) found.push_back(name);
        return found;
    }

    Vue::Noeud* const A = node("A", 100, 100);
    Vue::Noeud* const B = node("B", 300, 100);
};

TEST_F(ArcMode, PressingAnEmptyPlaceDoesNothing) {
    const Content before = content();
    for (const guint button : {1U, 2U, 3U}) mouse->clickAt(200, 300, button);
    mouse->drag({200, 300}, {100, 100});
    mouse->doubleClickAt(200, 300);
    EXPECT_EQ(content(), before);
}

TEST_F(ArcMode, PressingANodeStartsAnArcToATemporaryNodeAtTheNodesCentre) {
    mouse->pressAt(110, 95);
    EXPECT_THAT(names(), ElementsAre("A", "B", "q1"));
    EXPECT_EQ(content().nodes.at("q1"), plainNode(100, 100));
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "q1")));
}

TEST_F(ArcMode, ReleasingAtOnceLeavesANewOrdinaryNodeOnTopOfTheFirst) {
    mouse->clickAt(100, 100);
    EXPECT_EQ(content().nodes.at("q1"), plainNode(100, 100));
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "q1")));
}

TEST_F(ArcMode, TheTemporaryNodeFollowsThePointer) {
    mouse->pressAt(110, 95);
    mouse->moveTo(160, 145);
    EXPECT_EQ(content().nodes.at("q1"), plainNode(150, 150));
    mouse->moveTo(200, 245);
    EXPECT_EQ(content().nodes.at("q1"), plainNode(190, 250));
    EXPECT_EQ(content().nodes.at("A"), plainNode(100, 100));
}

TEST_F(ArcMode, TheTemporaryNodeAndItsArcAreFaintAndTheNodeIsEmpty) {
    mouse->pressAt(100, 100);
    mouse->moveTo(100, 300);
    const Picture now = picture();
    EXPECT_EQ(now.at(100, 200), faint);             // the arc
    EXPECT_EQ(now.at(100, 319), faint);             // the rim
    EXPECT_EQ(now.at(100, 312), white);             // inside
    EXPECT_EQ(picture().at(100, 112), nodeInside);  // A keeps its look
}

TEST_F(ArcMode, ReleasingAtAnEmptyPlaceKeepsTheTemporaryNodeAsAnOrdinaryOne) {
    mouse->drag({100, 100}, {100, 300});
    EXPECT_EQ(content().nodes.at("q1"), plainNode(100, 300));
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "q1")));
    const Picture now = picture();
    EXPECT_EQ(now.at(100, 200), black);
    EXPECT_EQ(now.at(100, 319), black);
    EXPECT_EQ(now.at(100, 312), nodeInside);
}

TEST_F(ArcMode, TheNodeThatWasKeptIsMovedAndJoinedLikeAnyOther) {
    mouse->drag({100, 100}, {100, 300});
    mouse->drag({100, 300}, {300, 100});
    EXPECT_THAT(content().arcs, UnorderedElementsAre(plainArc("A", "q1"), plainArc("q1", "B")));
    controleur->setMode(Controleur::SELECT);
    mouse->drag({100, 300}, {150, 350});
    EXPECT_EQ(content().nodes.at("q1"), plainNode(150, 350));
}

TEST_F(ArcMode, ReleasingOverAnotherNodeConnectsTheArcToItAndLeavesNoExtraNode) {
    mouse->drag({100, 100}, {300, 100});
    EXPECT_THAT(names(), ElementsAre("A", "B"));
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
    EXPECT_EQ(picture().at(200, 100), black);
    EXPECT_EQ(content().nodes.at("B"), plainNode(300, 100));
}

TEST_F(ArcMode, TheNodeAtTheEndOwnsTheArcAsAnIncomingOne) {
    mouse->drag({100, 100}, {300, 100});
    controleur->removeNoeud(B->getModele());
    EXPECT_THAT(content().arcs, IsEmpty());
}

TEST_F(ArcMode, OverAnotherNodeTheArcSnapsToItAndTheTemporaryNodeIsHidden) {
    mouse->pressAt(100, 100);
    mouse->moveTo(200, 180);
    mouse->moveTo(290, 110);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
    EXPECT_THAT(names(), ElementsAre("A", "B", "q1"));
    const Picture now = picture();
    EXPECT_EQ(now.at(200, 100), black);
    EXPECT_EQ(now.at(290, 129), white);  // no rim of a node at (290, 110)
}

TEST_F(ArcMode, LeavingTheOtherNodeBringsTheTemporaryNodeBack) {
    mouse->pressAt(100, 100);
    mouse->moveTo(300, 100);
    mouse->moveTo(300, 300);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "q1")));
    EXPECT_EQ(content().nodes.at("q1"), plainNode(300, 300));
    const Picture now = picture();
    EXPECT_EQ(now.at(200, 200), faint);
    EXPECT_EQ(now.at(300, 319), faint);
    EXPECT_EQ(now.at(200, 100), white);
    mouse->release();
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "q1")));
    EXPECT_EQ(picture().at(300, 319), black);
}

TEST_F(ArcMode, TheArcMaySnapAndLeaveAsOftenAsThePointerDoes) {
    mouse->pressAt(100, 100);
    for (int i = 0; i < 3; ++i) {
        mouse->moveTo(300, 100);
        EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
        mouse->moveTo(200, 300);
        EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "q1")));
    }
    mouse->moveTo(300, 100);
    mouse->release();
    EXPECT_THAT(names(), ElementsAre("A", "B"));
}

TEST_F(ArcMode, AnyMotionOverThePressedNodeSnapsToItAndReleasingThereMakesALoop) {
    mouse->pressAt(100, 100);
    mouse->moveTo(101, 100);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "A")));
    mouse->release();
    EXPECT_THAT(names(), ElementsAre("A", "B"));
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "A")));
}

TEST_F(ArcMode, TheTemporaryNodeReappearsWhenThePointerLeavesThePressedNode) {
    mouse->pressAt(100, 100);
    mouse->moveTo(110, 100);
    mouse->moveTo(200, 100);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "q1")));
    EXPECT_EQ(picture().at(200, 119), faint);
    mouse->moveTo(300, 100);
    mouse->release();
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
}

TEST_F(ArcMode, ASnappedArcStaysOnItsNodeUntilThePointerHasLeftAllOthers) {
    node("C", 330, 100);
    mouse->pressAt(100, 100);
    mouse->moveTo(200, 200);
    mouse->moveTo(290, 100);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
    mouse->moveTo(340, 100);  // on C alone
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
    mouse->moveTo(400, 200);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "q1")));
    mouse->moveTo(340, 100);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "C")));
}

TEST_F(ArcMode, WhereTwoNodesOverlapTheArcSnapsToTheFirstInTheDrawing) {
    node("C", 310, 100);
    mouse->drag({100, 100}, {305, 100});
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
}

TEST_F(ArcMode, WhereTwoNodesOverlapTheArcLeavesTheFirstInTheDrawing) {
    node("C", 110, 100);
    mouse->drag({105, 100}, {300, 100});
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
}

TEST_F(ArcMode, AnArcMaySnapToTheMarkingOfANode) {
    const Modele::Multiset marking = {{"a", 1}};
    controleur->addNoeudInit("B", &marking);
    mouse->drag({100, 100}, {280, 80});  // on the arrow from the marking, outside the circle
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
}

TEST_F(ArcMode, ASecondArcBetweenTheSameNodesIsAnArcOfItsOwn) {
    mouse->drag({100, 100}, {300, 100});
    mouse->drag({100, 100}, {300, 100});
    mouse->drag({300, 100}, {100, 100});
    EXPECT_THAT(content().arcs, UnorderedElementsAre(plainArc("A", "B"), plainArc("A", "B"), plainArc("B", "A")));
}

TEST_F(ArcMode, ReleasingAtOnceLeavesANewNodeAlsoAfterAnArcThatSnapped) {
    mouse->drag({100, 100}, {300, 100});
    mouse->clickAt(300, 100);
    EXPECT_EQ(content().nodes.at("q1"), plainNode(300, 100));
    EXPECT_THAT(content().arcs, UnorderedElementsAre(plainArc("A", "B"), plainArc("B", "q1")));
}

TEST_F(ArcMode, TheNameOfADroppedTemporaryNodeIsFreeAgain) {
    mouse->drag({100, 100}, {300, 100});
    mouse->drag({100, 100}, {100, 300});
    EXPECT_THAT(names(), ElementsAre("A", "B", "q1"));
}

TEST_F(ArcMode, NoNodeIsMoved) {
    mouse->drag({100, 100}, {100, 300});
    EXPECT_EQ(content().nodes.at("A"), plainNode(100, 100));
}

TEST_F(ArcMode, OnlyButton1StartsAnArc) {
    const Content before = content();
    for (const guint button : {2U, 3U}) {
        mouse->pressAt(100, 100, button);
        mouse->moveTo(200, 200);
        mouse->release(button);
    }
    EXPECT_EQ(content(), before);
}

TEST_F(ArcMode, ReleasingAnotherButtonDoesNotEndTheArc) {
    mouse->pressAt(100, 100);
    mouse->moveTo(200, 200);
    mouse->release(2);
    mouse->release(3);
    EXPECT_EQ(picture().at(150, 150), faint);
    mouse->moveTo(300, 100);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
}

TEST_F(ArcMode, ADoubleClickOnANodeStartsAnArcOnEachPressAndOpensNoDialog) {
    const Dialogs dialogs({});
    mouse->doubleClickAt(100, 100);
    EXPECT_THAT(names(), ElementsAre("A", "B", "q1", "q2"));
    EXPECT_THAT(content().arcs, UnorderedElementsAre(plainArc("A", "q1"), plainArc("A", "q2")));
    EXPECT_EQ(content().nodes.at("q2"), plainNode(100, 100));
    EXPECT_EQ(markingOf("A"), std::nullopt);
}

TEST_F(ArcMode, PressingAnArcWithAnyButtonOpensItsRuleAndStartsNone) {
    arc(A, B);
    Dialogs dialogs({enter("x -> 1y"), enter("x -> 2y"), enter("x -> 3y")});
    for (const guint button : {1U, 2U, 3U}) mouse->clickAt(200, 100, button);
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "Rule :", ""}, DialogSeen{"", "Rule :", "x -> y "},
                                            DialogSeen{"", "Rule :", "x -> 2y "}));
    EXPECT_EQ(rule(), Content::Rule({{"x", 1}}, {{"y", 3}}));
    EXPECT_THAT(names(), ElementsAre("A", "B"));
}

TEST_F(ArcMode, AnArcThatWasDrawnIsEditedByAClick) {
    mouse->drag({100, 100}, {300, 100});
    Dialogs dialogs({enter("a -> b")});
    mouse->clickAt(200, 100);
    EXPECT_EQ(rule(), Content::Rule({{"a", 1}}, {{"b", 1}}));
}

TEST_F(ArcMode, KeysDoNothing) {
    mouse->pressAt(100, 100);
    mouse->moveTo(200, 200);
    const Content before = content();
    for (const guint keyval : {GDK_KEY_Escape, GDK_KEY_Delete, GDK_KEY_a}) key(keyval);
    EXPECT_EQ(content(), before);
    mouse->release();
    EXPECT_EQ(content(), before);
}

}  // namespace
