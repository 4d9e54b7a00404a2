// The gestures of NOEUD mode.
#include "Editing.h"

namespace {

using testing::ElementsAre;

class NodeMode : public Editing {
protected:
    NodeMode() { controleur->setMode(Controleur::NOEUD); }
};

TEST_F(NodeMode, PressingAnEmptyPlaceMakesANodeThere) {
    mouse->pressAt(120.5, 80.25);
    EXPECT_EQ(content().nodes, (std::map<std::string, Content::Node>{{"q1", plainNode(120.5, 80.25)}}));
    mouse->release();
    EXPECT_EQ(content().nodes.size(), 1U);
}

TEST_F(NodeMode, EveryPressOnAnEmptyPlaceMakesANodeWithTheNextName) {
    mouse->clickAt(100, 100);
    mouse->clickAt(200, 100);
    mouse->clickAt(300, 100);
    EXPECT_EQ(drawing->toString(), "q1(100, 100);\nq2(200, 100);\nq3(300, 100);\n");
}

TEST_F(NodeMode, ANewNodeGetsANameThatIsNotInUse) {
    node("q1", 300, 300);
    node("q3", 400, 300);
    mouse->clickAt(100, 100);
    mouse->clickAt(200, 100);
    EXPECT_TRUE(content().nodes.contains("q2"));
    EXPECT_TRUE(content().nodes.contains("q4"));
}

TEST_F(NodeMode, OnlyButton1MakesANode) {
    mouse->clickAt(100, 100, 2);
    mouse->clickAt(200, 100, 3);
    mouse->moveTo(300, 100);
    mouse->send(GDK_2BUTTON_PRESS, 1);
    mouse->send(GDK_3BUTTON_PRESS, 1);
    EXPECT_EQ(content(), Content());
}

TEST_F(NodeMode, ANewNodeDoesNotFollowThePointerUntilItIsPressedItself) {
    mouse->drag({100, 100}, {200, 200});
    EXPECT_EQ(content().nodes.at("q1"), plainNode(100, 100));
}

TEST_F(NodeMode, DraggingANodeMovesItAndMakesNoOther) {
    node("A", 100, 100);
    mouse->drag({95, 105}, {195, 155});
    EXPECT_EQ(content().nodes, (std::map<std::string, Content::Node>{{"A", plainNode(200, 150)}}));
}

TEST_F(NodeMode, PressingANodeMakesNoOtherThere) {
    node("A", 100, 100);
    mouse->clickAt(100, 100);
    EXPECT_EQ(content().nodes.size(), 1U);
}

TEST_F(NodeMode, AnotherButtonOnANodeDoesNothing) {
    node("A", 100, 100);
    for (const guint button : {2U, 3U}) {
        mouse->pressAt(100, 100, button);
        mouse->moveTo(150, 150);
        mouse->release(button);
    }
    EXPECT_EQ(content().nodes, (std::map<std::string, Content::Node>{{"A", plainNode(100, 100)}}));
}

TEST_F(NodeMode, DoubleClickingANodeOpensItsMarkingAndMakesNoOther) {
    node("A", 100, 100);
    Dialogs dialogs({enter("a")});
    mouse->doubleClickAt(105, 100);
    mouse->moveTo(300, 300);
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "multi set : ", ""}));
    EXPECT_EQ(content().nodes, (std::map<std::string, Content::Node>{{"A", {100, 100, Modele::Multiset{{"a", 1}}}}}));
}

TEST_F(NodeMode, DoubleClickingAnEmptyPlaceMakesOneNodeAndOpensItsMarking) {
    Dialogs dialogs({enter("a")});
    mouse->doubleClickAt(100, 100);
    EXPECT_EQ(content().nodes, (std::map<std::string, Content::Node>{{"q1", {100, 100, Modele::Multiset{{"a", 1}}}}}));
}

TEST_F(NodeMode, PressingAnArcOpensItsRuleAndThenMakesANodeThere) {
    arc(node("A", 100, 100), node("B", 300, 100));
    std::size_t nodesDuringTheDialog = 0;
    Dialogs dialogs({enter("x -> y", [&](Gtk::Dialog& dialog) {
        nodesDuringTheDialog = model->getNoeuds().size();
        return accept()(dialog);
    })});
    mouse->clickAt(200, 100);
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "Rule :", ""}));
    EXPECT_EQ(nodesDuringTheDialog, 2U);
    EXPECT_EQ(rule(), Content::Rule({{"x", 1}}, {{"y", 1}}));
    EXPECT_EQ(content().nodes.at("q1"), plainNode(200, 100));
}

TEST_F(NodeMode, PressingAnArcMakesANodeAlthoughItsRuleIsCancelled) {
    arc(node("A", 100, 100), node("B", 300, 100), "x -> y");
    Dialogs dialogs({cancel()});
    mouse->clickAt(200, 100);
    EXPECT_EQ(rule(), Content::Rule({{"x", 1}}, {{"y", 1}}));
    EXPECT_EQ(content().nodes.at("q1"), plainNode(200, 100));
}

TEST_F(NodeMode, PressingAnArcWithAnotherButtonOpensItsRuleAndMakesNoNode) {
    arc(node("A", 100, 100), node("B", 300, 100));
    Dialogs dialogs({cancel(), cancel()});
    mouse->clickAt(200, 100, 2);
    mouse->clickAt(200, 100, 3);
    EXPECT_EQ(content().nodes.size(), 2U);
}

TEST_F(NodeMode, KeysDoNothing) {
    node("A", 100, 100);
    const Content before = content();
    for (const guint keyval : {GDK_KEY_Delete, GDK_KEY_BackSpace, GDK_KEY_Escape, GDK_KEY_n}) key(keyval);
    EXPECT_EQ(content(), before);
}

}  // namespace
