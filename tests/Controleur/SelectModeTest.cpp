// The gestures of SELECT mode.
#include "Editing.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SelectMode : public Editing {};

TEST_F(SelectMode, IsTheModeAtTheStart) { EXPECT_EQ(controleur->getMode(), Controleur::SELECT); }

TEST_F(SelectMode, PressingAnEmptyPlaceDoesNothing) {
    node("A", 100, 100);
    const Content before = content();
    for (const guint button : {1U, 2U, 3U}) mouse->clickAt(300, 300, button);
    mouse->drag({300, 300}, {100, 100});
    EXPECT_EQ(content(), before);
}

TEST_F(SelectMode, DoubleClickingAnEmptyPlaceDoesNothing) {
    mouse->doubleClickAt(300, 300);
    EXPECT_EQ(content(), Content());
}

TEST_F(SelectMode, DraggingANodeMovesIt) {
    node("A", 100, 100);
    node("B", 300, 300);
    mouse->pressAt(105, 95);
    mouse->moveTo(125, 90);
    EXPECT_EQ(content().nodes.at("A"), plainNode(120, 95));
    mouse->moveTo(210.5, 200.25);
    EXPECT_EQ(content().nodes.at("A"), plainNode(205.5, 205.25));
    mouse->release();
    EXPECT_EQ(content().nodes.at("A"), plainNode(205.5, 205.25));
    EXPECT_EQ(content().nodes.at("B"), plainNode(300, 300));
}

TEST_F(SelectMode, AReleasedNodeStaysWhenThePointerGoesOn) {
    node("A", 100, 100);
    mouse->drag({100, 100}, {200, 150});
    mouse->moveTo(300, 300);
    EXPECT_EQ(content().nodes.at("A"), plainNode(200, 150));
}

TEST_F(SelectMode, AClickWithoutMotionLeavesTheNodeWhereItIs) {
    node("A", 100, 100);
    mouse->clickAt(110, 110);
    EXPECT_EQ(content().nodes.at("A"), plainNode(100, 100));
}

TEST_F(SelectMode, MotionBeforeThePressDoesNotMoveTheNode) {
    node("A", 100, 100);
    mouse->moveTo(500, 300);
    mouse->moveTo(100, 100);
    mouse->press();
    EXPECT_EQ(content().nodes.at("A"), plainNode(100, 100));
}

TEST_F(SelectMode, ANodeMayBeDraggedBeyondTheOrigin) {
    node("A", 30, 30);
    mouse->drag({30, 30}, {-15, -20});
    EXPECT_EQ(content().nodes.at("A"), plainNode(-15, -20));
}

TEST_F(SelectMode, ArcsFollowTheNodeThatIsDragged) {
    arc(node("A", 100, 100), node("B", 300, 100));
    EXPECT_EQ(picture().at(200, 100), black);
    mouse->drag({100, 100}, {100, 300});
    EXPECT_EQ(picture().at(200, 100), white);
    EXPECT_EQ(picture().at(200, 200), black);
}

TEST_F(SelectMode, OnlyButton1DragsANode) {
    node("A", 100, 100);
    for (const guint button : {2U, 3U}) {
        mouse->pressAt(100, 100, button);
        mouse->moveTo(200, 200);
        mouse->release(button);
    }
    EXPECT_EQ(content().nodes.at("A"), plainNode(100, 100));
}

TEST_F(SelectMode, ReleasingAnotherButtonDoesNotEndADrag) {
    node("A", 100, 100);
    mouse->pressAt(100, 100);
    mouse->release(2);
    mouse->release(3);
    mouse->moveTo(120, 100);
    EXPECT_EQ(content().nodes.at("A"), plainNode(120, 100));
    mouse->release(1);
    mouse->moveTo(150, 100);
    EXPECT_EQ(content().nodes.at("A"), plainNode(120, 100));
}

TEST_F(SelectMode, PressingWhereTwoNodesOverlapMovesTheOneThatIsFirstInTheDrawing) {
    node("first", 100, 100);
    node("second", 110, 100);
    mouse->drag({105, 100}, {205, 100});
    EXPECT_EQ(content().nodes.at("first"), plainNode(200, 100));
    EXPECT_EQ(content().nodes.at("second"), plainNode(110, 100));
    EXPECT_EQ(traces.count("Controleur::noeudSelected"), 1);
}

TEST_F(SelectMode, ANodeIsDraggedByItsMarkingsArrowToo) {
    const Modele::Multiset marking = {{"a", 1}};
    node("A", 100, 100);
    controleur->addNoeudInit("A", &marking);
    mouse->drag({80, 80}, {180, 80});  // on the arrow from the marking, 8 pixels outside the circle
    EXPECT_EQ(content().nodes.at("A").x, 200);
}

TEST_F(SelectMode, DoubleClickingANodeOpensItsMarkingOnceAndLeavesItWhereItWas) {
    node("A", 100, 100);
    Dialogs dialogs({enter("2a b")});
    mouse->doubleClickAt(110, 105);
    mouse->moveTo(300, 300);
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "multi set : ", ""}));
    EXPECT_EQ(content().nodes.at("A"), (Content::Node{100, 100, Modele::Multiset{{"a", 2}, {"b", 1}}}));
    EXPECT_EQ(content().nodes.size(), 1U);
}

TEST_F(SelectMode, TheNodeIsNotDraggedWhileTheReleaseOfADoubleClickIsLostToTheDialog) {
    node("A", 100, 100);
    Dialogs dialogs({cancel()});
    mouse->clickAt(100, 100);
    mouse->press();
    mouse->send(GDK_2BUTTON_PRESS, 1);
    mouse->moveTo(300, 300);
    EXPECT_EQ(content().nodes.at("A"), plainNode(100, 100));
}

TEST_F(SelectMode, TheNodeIsLetGoBeforeItsMarkingIsAskedFor) {
    node("A", 100, 100);
    mouse->moveTo(100, 100);
    const Dialogs dialogs({[this](Gtk::Dialog& dialog) {
        sendMotion(*area, 300, 300);  // past the dialog's grab
        return cancel()(dialog);
    }});
    mouse->doubleClickAt(100, 100);
    EXPECT_EQ(content().nodes.at("A"), plainNode(100, 100));
}

TEST_F(SelectMode, DoubleClickingWhereTwoNodesOverlapOpensTheMarkingOfEachInTheDrawingsOrder) {
    node("first", 100, 100);
    node("second", 110, 100);
    Dialogs dialogs({enter("a"), enter("b")});
    mouse->doubleClickAt(105, 100);
    EXPECT_EQ(markingOf("first"), (Modele::Multiset{{"a", 1}}));
    EXPECT_EQ(markingOf("second"), (Modele::Multiset{{"b", 1}}));
}

TEST_F(SelectMode, ADoubleClickWithAnotherButtonOpensTheMarkingToo) {
    node("A", 100, 100);
    Dialogs dialogs({enter("a"), enter("b")});
    mouse->doubleClickAt(100, 100, 2);
    EXPECT_EQ(markingOf("A"), (Modele::Multiset{{"a", 1}}));
    mouse->doubleClickAt(100, 100, 3);
    EXPECT_EQ(markingOf("A"), (Modele::Multiset{{"b", 1}}));
}

TEST_F(SelectMode, ATripleClickOpensTheMarkingOnce) {
    node("A", 100, 100);
    Dialogs dialogs({cancel()});
    mouse->doubleClickAt(100, 100);
    mouse->press();
    mouse->send(GDK_3BUTTON_PRESS, 1);
    mouse->release();
    EXPECT_EQ(dialogs.seen().size(), 1U);
}

TEST_F(SelectMode, PressingAnArcWithAnyButtonOpensItsRule) {
    arc(node("A", 100, 100), node("B", 300, 100), "x -> y");
    Dialogs dialogs({enter("x -> 1y"), enter("x -> 2y"), enter("x -> 3y")});
    for (const guint button : {1U, 2U, 3U}) mouse->clickAt(200, 100, button);
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "Rule :", "x -> y "}, DialogSeen{"", "Rule :", "x -> y "},
                                            DialogSeen{"", "Rule :", "x -> 2y "}));
    EXPECT_EQ(rule(), Content::Rule({{"x", 1}}, {{"y", 3}}));
    EXPECT_EQ(content().nodes.size(), 2U);
}

TEST_F(SelectMode, TheSecondPressOfADoubleClickOnAnArcAddsNoDialog) {
    arc(node("A", 100, 100), node("B", 300, 100));
    const Dialogs dialogs({});
    mouse->moveTo(200, 100);
    mouse->send(GDK_2BUTTON_PRESS, 1);
    EXPECT_EQ(rule(), noRule);
}

TEST_F(SelectMode, TheThirdPressOfATripleClickOnAnArcOpensItsRule) {
    arc(node("A", 100, 100), node("B", 300, 100));
    const Dialogs dialogs({enter("x -> y")});
    mouse->moveTo(200, 100);
    mouse->send(GDK_3BUTTON_PRESS, 1);
    EXPECT_EQ(rule(), Content::Rule({{"x", 1}}, {{"y", 1}}));
}

TEST_F(SelectMode, PressingAnArcDragsNothing) {
    arc(node("A", 100, 100), node("B", 300, 100));
    Dialogs dialogs({cancel()});
    mouse->drag({200, 100}, {250, 250});
    EXPECT_EQ(content().nodes.at("A"), plainNode(100, 100));
    EXPECT_EQ(content().nodes.at("B"), plainNode(300, 100));
}

TEST_F(SelectMode, PressingANodeThatAnArcCrossesMovesTheNodeAndOpensNoRule) {
    arc(node("A", 100, 100), node("B", 300, 100));
    node("C", 200, 100);
    mouse->drag({200, 100}, {200, 200});
    EXPECT_EQ(content().nodes.at("C"), plainNode(200, 200));
}

TEST_F(SelectMode, PressingWhereTwoArcsCrossOpensBothRules) {
    arc(node("A", 100, 100), node("B", 300, 300), "a -> ");
    arc(node("C", 300, 100), node("D", 100, 300), "b -> ");
    Dialogs dialogs({cancel(), cancel()});
    mouse->clickAt(200, 200);
    std::vector<std::string> entries;
    for (const DialogSeen& seen : dialogs.seen()) entries.push_back(seen.entry);
    EXPECT_THAT(entries, testing::UnorderedElementsAre("a -> ", "b -> "));
}

TEST_F(SelectMode, KeysDoNothing) {
    arc(node("A", 100, 100), node("B", 300, 100));
    const Content before = content();
    mouse->pressAt(100, 100);
    for (const guint keyval : {GDK_KEY_Delete, GDK_KEY_BackSpace, GDK_KEY_Escape, GDK_KEY_a, GDK_KEY_Return})
        key(keyval);
    mouse->release();
    EXPECT_EQ(content(), before);
}

}  // namespace
