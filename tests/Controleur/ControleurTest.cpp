// The controller's own operations: building, the order in which events are offered, the traces, the end.
#include "Editing.h"

#include <sstream>
#include <vector>

#include "Controleur/VirtualSousControleur.h"

namespace {

using Modele::Multiset;
using testing::ElementsAre;
using testing::IsEmpty;

class ControleurOperations : public Editing {
protected:
    /// The lines written since the last call, with every address shown as "@".
    std::vector<std::string> lines() {
        const std::string all = traces.text();
        std::istringstream text(all.substr(_read));
        _read = all.size();
        std::vector<std::string> found;
        for (std::string line; std::getline(text, line);) {
            const std::size_t address = line.find("0x");
            if (address != std::string::npos) line.replace(address, line.find(')', address) - address, "@");
            found.push_back(line);
        }
        return found;
    }

private:
    std::size_t _read = 0;
};

TEST_F(ControleurOperations, TheModesHaveTheAgreedNumbers) {
    EXPECT_EQ(Controleur::SELECT, 0);
    EXPECT_EQ(Controleur::ARC, 1);
    EXPECT_EQ(Controleur::NOEUD, 2);
}

TEST_F(ControleurOperations, SetModeIsRemembered) {
    for (const Controleur::Mode mode : {Controleur::NOEUD, Controleur::ARC, Controleur::SELECT}) {
        controleur->setMode(mode);
        EXPECT_EQ(controleur->getMode(), mode);
    }
}

TEST_F(ControleurOperations, TheModelIsHandedOut) { EXPECT_EQ(controleur->getKLV(), model); }

TEST_F(ControleurOperations, ANodeWithoutANameGetsAnAutomaticOne) {
    EXPECT_EQ(controleur->addNoeud(1.5, 2.5)->getModele()->getName(), "q1");
    EXPECT_EQ(controleur->addNoeud(3, 4)->getModele()->getName(), "q2");
    EXPECT_EQ(content().nodes.at("q1"), plainNode(1.5, 2.5));
}

TEST_F(ControleurOperations, ANewNameIsANewNodeAtThePlaceGivenOrAtTheOrigin) {
    node("A", 5, 6);
    controleur->addNoeud("B");
    EXPECT_EQ(content().nodes.at("A"), plainNode(5, 6));
    EXPECT_EQ(content().nodes.at("B"), plainNode(0, 0));
}

TEST_F(ControleurOperations, AKnownNameWithAPlaceMovesTheNode) {
    Vue::Noeud* const view = node("A", 5, 6);
    EXPECT_EQ(node("A", 7, 8), view);
    EXPECT_EQ(content().nodes, (std::map<std::string, Content::Node>{{"A", plainNode(7, 8)}}));
}

TEST_F(ControleurOperations, AKnownNameWithoutAPlaceDoesNotMoveTheNode) {
    Vue::Noeud* const view = node("A", 5, 6);
    EXPECT_EQ(controleur->addNoeud("A"), view);
    EXPECT_EQ(content().nodes, (std::map<std::string, Content::Node>{{"A", plainNode(5, 6)}}));
}

TEST_F(ControleurOperations, ANodeOfTheModelWithoutAViewGetsOne) {
    model->addNoeud("A");
    node("A", 5, 6);
    EXPECT_EQ(content().nodes.at("A"), plainNode(5, 6));
}

TEST_F(ControleurOperations, AnInitialNodeIsFoundOrMadeAndMarkedWithACopy) {
    Multiset marking = {{"a", 2}};
    Vue::Noeud* const view = node("A", 5, 6);
    EXPECT_EQ(controleur->addNoeudInit("A", &marking), view);
    controleur->addNoeudInit("B", &marking);
    marking.clear();
    EXPECT_EQ(content().nodes.at("A"), (Content::Node{5, 6, Multiset{{"a", 2}}}));
    EXPECT_EQ(content().nodes.at("B"), (Content::Node{0, 0, Multiset{{"a", 2}}}));
}

TEST_F(ControleurOperations, AnArcOwnsTheRuleThatItIsGiven) {
    const Multiset in = {{"a", 1}};
    const Multiset out = {{"b", 2}};
    auto* const given = new Modele::Regle(&in, &out);
    Vue::Arc* const view = controleur->addArc(node("A", 0, 0)->getModele(), node("B", 9, 9)->getModele(), given);
    EXPECT_EQ(view->getModele()->getRegle(), given);
    EXPECT_EQ(rule(), Content::Rule(in, out));
}

TEST_F(ControleurOperations, ARemovedNodeTakesItsArcsAndAllTheirViewsAlong) {
    Vue::Noeud* const A = node("A", 100, 100);
    Vue::Noeud* const B = node("B", 300, 100);
    arc(A, B);
    arc(B, A);
    arc(A, A);
    arc(B, B);
    controleur->removeNoeud(A->getModele());
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("B", "B")));
    EXPECT_EQ(drawing->toString(), "B(300, 100);\n");
    EXPECT_EQ(traces.count("Arc::~Arc"), 3);
}

TEST_F(ControleurOperations, ClearLeavesNothing) {
    Vue::Noeud* const A = node("A", 100, 100);
    arc(A, node("B", 300, 100), "a -> b");
    arc(A, A);
    controleur->clear();
    EXPECT_EQ(content(), Content());
    EXPECT_EQ(controleur->toString(), "");
    EXPECT_TRUE(picture().isBlank());
    controleur->clear();
    EXPECT_EQ(content(), Content());
}

TEST_F(ControleurOperations, KeysAreDeclinedInEveryMode) {
    for (const Controleur::Mode mode : {Controleur::SELECT, Controleur::ARC, Controleur::NOEUD}) {
        controleur->setMode(mode);
        for (const guint keyval : {GDK_KEY_Delete, GDK_KEY_Escape, GDK_KEY_Return, GDK_KEY_q}) key(keyval);
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Who is offered an event, and the traces that tell it
// ---------------------------------------------------------------------------------------------------------------------

class EventOrder : public ControleurOperations {
protected:
    /// Of a handler that was connected after the controller's own.
    int pressesLeftOver() const { return _leftOver; }

private:
    void SetUp() override {
        area->signal_button_press_event().connect([this](GdkEventButton*) {
            ++_leftOver;
            return false;
        });
    }

    int _leftOver = 0;
};

TEST_F(EventOrder, APressOnAnEmptyPlaceIsLeftOverInEveryMode) {
    for (const Controleur::Mode mode : {Controleur::SELECT, Controleur::ARC, Controleur::NOEUD}) {
        controleur->setMode(mode);
        mouse->clickAt(300, 300 + 50 * mode);
    }
    EXPECT_EQ(pressesLeftOver(), 3);
}

TEST_F(EventOrder, APressOnANodeIsUsedUp) {
    node("A", 100, 100);
    for (const Controleur::Mode mode : {Controleur::SELECT, Controleur::NOEUD, Controleur::ARC}) {
        controleur->setMode(mode);
        mouse->clickAt(100, 100);
    }
    EXPECT_EQ(pressesLeftOver(), 0);
}

TEST_F(EventOrder, APressOnAnArcIsLeftOverAfterItsDialog) {
    arc(node("A", 100, 100), node("B", 300, 100));
    const Dialogs dialogs({cancel()});
    mouse->clickAt(200, 100);
    EXPECT_EQ(pressesLeftOver(), 1);
}

TEST_F(EventOrder, ADoubleClickOnANodeIsLeftOverAfterItsDialog) {
    node("A", 100, 100);
    const Dialogs dialogs({cancel()});
    mouse->doubleClickAt(100, 100);
    EXPECT_EQ(pressesLeftOver(), 1);
}

TEST_F(EventOrder, APressOnAnEmptyPlaceWritesNothing) {
    node("A", 100, 100);
    lines();
    mouse->clickAt(300, 300);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(EventOrder, APressAndAReleaseOnANodeWriteOneLine) {
    node("A", 100, 100);
    lines();
    mouse->clickAt(100, 100);
    EXPECT_THAT(lines(), ElementsAre("Controleur::noeudSelected"));
}

TEST_F(EventOrder, EveryNodeUnderADeclinedPressWritesItsLine) {
    node("A", 100, 100);
    node("B", 110, 100);
    node("C", 300, 100);
    lines();
    mouse->clickAt(105, 100, 3);
    EXPECT_THAT(lines(), ElementsAre("Controleur::noeudSelected", "Controleur::noeudSelected"));
}

TEST_F(EventOrder, TheAreaAndThenTheDrawingTestAnArcOnEveryPressAndTheAreaOnEveryRelease) {
    arc(node("A", 100, 100), node("B", 300, 100));
    lines();
    mouse->pressAt(300, 300);
    EXPECT_THAT(lines(), ElementsAre("arrow picked : 0", "arrow picked : 0"));
    mouse->release();
    EXPECT_THAT(lines(), ElementsAre("arrow picked : 0"));
}

TEST_F(EventOrder, APressThatANodeTakesIsNotOfferedToArcs) {
    arc(node("A", 100, 100), node("B", 300, 100));
    lines();
    mouse->pressAt(100, 100);
    EXPECT_THAT(lines(), ElementsAre("arrow picked : 0", "Controleur::noeudSelected"));
}

TEST_F(EventOrder, APressOnAnArcIsTracedByTheAreaTheDrawingAndTheController) {
    arc(node("A", 100, 100), node("B", 300, 100));
    lines();
    const Dialogs dialogs({cancel()});
    mouse->pressAt(200, 100);
    EXPECT_THAT(lines(), ElementsAre("arrow picked : 1", "arrow picked : 1", "Controleur::arcSelected"));
}

TEST_F(EventOrder, ANodeThatDeclinesAPressIsAskedBeforeTheArcBelow) {
    arc(node("A", 100, 100), node("B", 300, 100));
    node("C", 200, 100);
    lines();
    const Dialogs dialogs({cancel()});
    mouse->pressAt(200, 100, 3);
    EXPECT_THAT(lines(), ElementsAre("arrow picked : 1", "Controleur::noeudSelected", "arrow picked : 1",
                                     "Controleur::arcSelected"));
}

TEST_F(EventOrder, TheNodeMadeByAPressOnAnArcComesAfterItsDialog) {
    arc(node("A", 100, 100), node("B", 300, 100));
    controleur->setMode(Controleur::NOEUD);
    lines();
    const Dialogs dialogs({enter("?"), press(Gtk::RESPONSE_CLOSE)});
    mouse->pressAt(200, 100);
    EXPECT_THAT(lines(), ElementsAre("arrow picked : 1", "arrow picked : 1", "Controleur::arcSelected", "ERROR !!",
                                     "Noeud::Noeud (@)", "add noeud (@)"));
}

TEST_F(EventOrder, MotionWritesNothingWhetherANodeOrAnArcFollows) {
    node("A", 100, 100);
    mouse->pressAt(100, 100);
    lines();
    mouse->moveTo(150, 150);
    mouse->release();
    controleur->setMode(Controleur::ARC);
    mouse->pressAt(150, 150);
    lines();
    mouse->moveTo(155, 150);
    mouse->moveTo(300, 300);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(EventOrder, DrawingAnArcToAnotherNodeWritesTheTemporaryNodesLife) {
    node("A", 100, 100);
    node("B", 300, 100);
    controleur->setMode(Controleur::ARC);
    lines();
    mouse->pressAt(100, 100);
    EXPECT_THAT(lines(), ElementsAre("Controleur::noeudSelected", "Noeud::Noeud (@)", "add noeud (@)"));
    mouse->moveTo(300, 100);
    EXPECT_THAT(lines(), IsEmpty());
    mouse->release();
    EXPECT_THAT(lines(), ElementsAre("arrow picked : 0", "Modele::Noeud::~Noeud", "sucide !", "remove noeud (@)",
                                     "POP !", "Vue::Noeud::~Noeud ()"));
}

TEST_F(EventOrder, ClearingWritesEachNodesEndInTheOrderOfTheNames) {
    Vue::Noeud* const B = node("B", 300, 100);
    arc(B, node("A", 100, 100));
    lines();
    controleur->clear();
    EXPECT_THAT(lines(), ElementsAre("Modele::Noeud::~Noeud", "Arc::~Arc", "sucide !", "remove noeud (@)", "POP !",
                                     "Vue::Noeud::~Noeud ()", "Modele::Noeud::~Noeud", "sucide !", "remove noeud (@)",
                                     "POP !", "Vue::Noeud::~Noeud ()"));
}

// ---------------------------------------------------------------------------------------------------------------------
// Gestures in general
// ---------------------------------------------------------------------------------------------------------------------

class AGesture : public VirtualSousControleur {
public:
    using VirtualSousControleur::getVue;
    using VirtualSousControleur::VirtualSousControleur;
};

TEST_F(ControleurOperations, AGestureThatDefinesNothingLetsEveryEventPassAndDoesNothing) {
    Vue::Noeud* const A = node("A", 100, 100);
    Vue::Arc* const loop = arc(A, A);
    const Content before = content();
    lines();
    for (const Controleur::Mode mode : {Controleur::SELECT, Controleur::ARC, Controleur::NOEUD}) {
        controleur->setMode(mode);
        AGesture gesture(controleur.get());
        for (const GdkEventType type : {GDK_BUTTON_PRESS, GDK_2BUTTON_PRESS, GDK_BUTTON_RELEASE}) {
            GdkEventButton event = buttonEvent(100, 100, type);
            EXPECT_FALSE(gesture.noeudSelected(&event, A));
            EXPECT_FALSE(gesture.arcSelected(&event, loop));
            EXPECT_FALSE(gesture.buttonPressed(&event));
            EXPECT_FALSE(gesture.buttonReleased(&event));
        }
        GdkEventMotion motion = motionEvent(100, 100);
        EXPECT_FALSE(gesture.mouseMoved(&motion, 7, 7));
        GdkEventKey key = {};
        EXPECT_FALSE(gesture.keyPressed(&key));
        gesture.modeChanged();
    }
    EXPECT_EQ(content(), before);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(ControleurOperations, AGestureKnowsTheDrawing) { EXPECT_EQ(AGesture(controleur.get()).getVue(), drawing); }

TEST_F(ControleurOperations, NoGestureDeletesANodeOrAnArc) {
    for (const Controleur::Mode mode : {Controleur::SELECT, Controleur::ARC, Controleur::NOEUD}) {
        controleur->clear();
        arc(node("A", 100, 100), node("B", 300, 100));
        controleur->setMode(mode);
        const std::size_t prompts = mode == Controleur::ARC ? 3 : 4;
        const Dialogs dialogs(std::vector<Dialogs::Answer>(prompts, cancel()));
        for (const guint button : {1U, 2U, 3U}) {
            mouse->clickAt(100, 100, button);
            mouse->clickAt(200, 100, button);
        }
        mouse->doubleClickAt(300, 100);
        for (const guint keyval : {GDK_KEY_Delete, GDK_KEY_BackSpace}) key(keyval);
        mouse->drag({100, 100}, {300, 100});
        mouse->drag({300, 100}, {300, 300});
        EXPECT_EQ(dialogs.seen().size(), prompts);
        EXPECT_THAT(content().nodes, testing::IsSupersetOf({testing::Key("A"), testing::Key("B")}));
        EXPECT_THAT(content().arcs, testing::Contains(plainArc("A", "B")));
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// The end
// ---------------------------------------------------------------------------------------------------------------------

TEST_F(ControleurOperations, DestroyingAnEmptyControllerWritesTwoLines) {
    controleur.reset();
    EXPECT_THAT(lines(), ElementsAre("~Controleur()...", "~Controleur() : ok"));
}

TEST_F(ControleurOperations, DestroyingTheControllerReleasesTheViewsAndThenTheModel) {
    Vue::Noeud* const A = node("A", 100, 100);
    Vue::Noeud* const B = node("B", 300, 100);
    const Multiset marking = {{"a", 1}};
    controleur->addNoeudInit("A", &marking);
    arc(A, B, "a -> b");
    arc(B, A);
    arc(A, A);
    lines();
    controleur.reset();
    const std::vector<std::string> written = lines();
    ASSERT_FALSE(written.empty());
    EXPECT_EQ(written.front(), "~Controleur()...");
    EXPECT_EQ(written.back(), "~Controleur() : ok");
    const auto count = [&](const char* line) { return std::count(written.begin(), written.end(), line); };
    EXPECT_EQ(count("Arc::~Arc"), 3);
    EXPECT_EQ(count("Vue::Noeud::~Noeud ()"), 2);
    EXPECT_EQ(count("Modele::Noeud::~Noeud"), 2);
    EXPECT_EQ(count("sucide !"), 0);  // the views went first
    EXPECT_EQ(written.size(), 9U);
}

TEST_F(ControleurOperations, AControllerWithoutAWindowBuildsAndGoes) {
    {
        Network network;
        network.controleur.addNoeud("A", 1, 2);
        EXPECT_EQ(network.drawing->toString(), "A(1, 2);\n");
    }
    EXPECT_EQ(traces.count("~Controleur() : ok"), 1);
}

}  // namespace
