// Gestures that do not end as they should: the mode changes, a release is lost, the model goes.
#include "Editing.h"
#include "common/Folder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class InterruptedGesture : public Editing {
protected:
    void startArc() {
        controleur->setMode(Controleur::ARC);
        mouse->pressAt(100, 100);
        mouse->moveTo(200, 200);
    }

    /// Goes on as if nothing had happened.
    void finish() {
        mouse->moveTo(220, 220);
        mouse->moveTo(300, 100);
        mouse->release();
        mouse->moveTo(10, 10);
        picture();
    }

    Vue::Noeud* const A = node("A", 100, 100);
    Vue::Noeud* const B = node("B", 300, 100);
};

TEST_F(InterruptedGesture, ADragGoesOnWhenTheModeChanges) {
    mouse->pressAt(100, 100);
    for (const Controleur::Mode mode : {Controleur::ARC, Controleur::NOEUD, Controleur::SELECT, Controleur::ARC}) {
        controleur->setMode(mode);
    }
    mouse->moveTo(150, 150);
    EXPECT_EQ(content().nodes.at("A"), plainNode(150, 150));
    mouse->release();
    mouse->moveTo(200, 200);
    EXPECT_EQ(content().nodes.at("A"), plainNode(150, 150));
    EXPECT_THAT(content().arcs, IsEmpty());
}

TEST_F(InterruptedGesture, AnArcGoesOnWhenTheModeChangesAndTheNextReleaseFinishesIt) {
    startArc();
    controleur->setMode(Controleur::NOEUD);
    controleur->setMode(Controleur::SELECT);
    mouse->moveTo(150, 250);
    EXPECT_EQ(content().nodes.at("q1"), plainNode(150, 250));
    mouse->moveTo(300, 100);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
    mouse->release();
    EXPECT_EQ(content().nodes.size(), 2U);
    mouse->drag({300, 100}, {310, 110});
    EXPECT_EQ(content().nodes.at("B"), plainNode(310, 110));
}

TEST_F(InterruptedGesture, ANodeAndAnArcMayFollowThePointerTogether) {
    startArc();
    controleur->setMode(Controleur::SELECT);
    mouse->moveTo(300, 100);
    mouse->press();
    mouse->moveTo(320, 100);
    EXPECT_EQ(content().nodes.at("B"), plainNode(320, 100));
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
    mouse->release();
    EXPECT_EQ(content().nodes.size(), 2U);
    mouse->moveTo(200, 200);
    EXPECT_EQ(content().nodes.at("B"), plainNode(320, 100));
}

TEST_F(InterruptedGesture, ADragWhoseReleaseIsLostEndsWithTheNextRelease) {
    mouse->pressAt(100, 100);
    mouse->moveTo(150, 150);
    mouse->moveTo(200, 200);
    mouse->pressAt(200, 200);
    mouse->release();
    mouse->moveTo(300, 300);
    EXPECT_EQ(content().nodes.at("A"), plainNode(200, 200));
}

TEST_F(InterruptedGesture, ADragWhoseReleaseIsLostPassesOnToTheNextNodeThatIsPressed) {
    mouse->pressAt(100, 100);
    mouse->moveTo(100, 300);
    mouse->moveTo(300, 100);  // A is now over B, and first in the drawing
    mouse->release();
    mouse->drag({300, 100}, {100, 100});
    EXPECT_EQ(content().nodes.at("A"), plainNode(100, 100));
    EXPECT_EQ(content().nodes.at("B"), plainNode(300, 100));
}

TEST_F(InterruptedGesture, AnArcWhoseReleaseIsLostStaysWithItsNodeWhenTheNextOneStarts) {
    controleur->setMode(Controleur::ARC);
    mouse->pressAt(120, 100);
    mouse->moveTo(220, 300);
    mouse->press();  // on the rim of the temporary node
    EXPECT_THAT(content().arcs, UnorderedElementsAre(plainArc("A", "q1"), plainArc("q1", "q2")));
    mouse->moveTo(320, 300);
    mouse->release();
    EXPECT_EQ(content().nodes.at("q1"), plainNode(200, 300));
    EXPECT_EQ(content().nodes.at("q2"), plainNode(300, 300));
    EXPECT_EQ(picture().at(200, 312), nodeInside);
    EXPECT_EQ(picture().at(300, 312), nodeInside);
}

TEST_F(InterruptedGesture, AnArcWhoseReleaseIsLostGoesOnAfterAPressOnNothing) {
    startArc();
    mouse->press();
    mouse->release(3);
    mouse->moveTo(300, 100);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
}

TEST_F(InterruptedGesture, ASnappedArcWhoseReleaseIsLostStaysOnItsNodeWhenTheNextOneStarts) {
    startArc();
    mouse->moveTo(300, 100);
    mouse->press();
    EXPECT_EQ(content().nodes.size(), 3U);
    EXPECT_THAT(content().arcs, UnorderedElementsAre(plainArc("A", "B"), plainArc("B", "q1")));
    mouse->moveTo(300, 300);
    mouse->release();
    EXPECT_THAT(content().arcs, UnorderedElementsAre(plainArc("A", "B"), plainArc("B", "q1")));
    EXPECT_EQ(picture().at(300, 319), black);
}

TEST_F(InterruptedGesture, AReleaseWithoutAPressDoesNothing) {
    const Content before = content();
    for (const Controleur::Mode mode : {Controleur::SELECT, Controleur::ARC, Controleur::NOEUD}) {
        controleur->setMode(mode);
        mouse->moveTo(100, 100);
        mouse->release();
        mouse->moveTo(200, 200);
    }
    EXPECT_EQ(content(), before);
}

TEST_F(InterruptedGesture, TheModelMayBeEmptiedWhileANodeIsDragged) {
    mouse->pressAt(100, 100);
    mouse->moveTo(120, 120);
    controleur->clear();
    finish();
    EXPECT_EQ(content(), Content());
}

TEST_F(InterruptedGesture, TheModelMayBeEmptiedWhileAnArcIsDrawn) {
    startArc();
    controleur->clear();
    finish();
    EXPECT_EQ(content(), Content());
}

TEST_F(InterruptedGesture, TheModelMayBeEmptiedWhileAnArcIsSnapped) {
    startArc();
    mouse->moveTo(300, 100);
    controleur->clear();
    finish();
    EXPECT_EQ(content(), Content());
}

TEST_F(InterruptedGesture, AfterTheModelWasEmptiedTheNextArcStartsAfresh) {
    startArc();
    mouse->moveTo(300, 100);
    controleur->clear();
    mouse->release();
    node("C", 100, 100);
    mouse->pressAt(100, 100);
    mouse->moveTo(100, 300);
    EXPECT_EQ(picture().at(100, 200), faint);
    mouse->release();
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("C", "q1")));
    EXPECT_EQ(picture().at(100, 319), black);
}

TEST_F(InterruptedGesture, AFileMayBeLoadedWhileANodeIsDragged) {
    const Folder folder;
    const std::string path = folder.write("model.klv", "A(100, 100); C(300, 300);");
    mouse->pressAt(100, 100);
    ASSERT_TRUE(controleur->parser(path));
    finish();
    EXPECT_EQ(drawing->toString(), "A(100, 100);\nC(300, 300);\n");
}

TEST_F(InterruptedGesture, AFileMayBeLoadedWhileAnArcIsDrawn) {
    const Folder folder;
    const std::string path = folder.write("model.klv", "A(100, 100); C(300, 100);");
    startArc();
    ASSERT_TRUE(controleur->parser(path));
    finish();
    EXPECT_EQ(drawing->toString(), "A(100, 100);\nC(300, 100);\n");
    EXPECT_THAT(content().arcs, IsEmpty());
}

TEST_F(InterruptedGesture, TheSourceOfAnArcMayGoWhileItIsDrawn) {
    startArc();
    controleur->removeNoeud(A->getModele());
    finish();
    EXPECT_THAT(content().arcs, IsEmpty());
    EXPECT_EQ(content().nodes.size(), 2U);
}

TEST_F(InterruptedGesture, TheNodeThatAnArcIsSnappedToMayGo) {
    startArc();
    mouse->moveTo(300, 100);
    controleur->removeNoeud(B->getModele());
    finish();
    EXPECT_THAT(content().arcs, IsEmpty());
}

TEST_F(InterruptedGesture, TheTemporaryNodeMayGo) {
    startArc();
    controleur->removeNoeud(model->get("q1"));
    finish();
    EXPECT_EQ(content().nodes.size(), 2U);
    EXPECT_THAT(content().arcs, IsEmpty());
}

TEST_F(InterruptedGesture, TheTemporaryNodeMayGoWhileItIsHidden) {
    startArc();
    mouse->moveTo(300, 100);
    controleur->removeNoeud(model->get("q1"));
    finish();
    EXPECT_EQ(content().nodes.size(), 2U);
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("A", "B")));
}

TEST_F(InterruptedGesture, ANodeThatWasDraggedBeforeMayGoWhileAnotherIsDragged) {
    mouse->clickAt(100, 100);
    mouse->pressAt(300, 100);
    controleur->removeNoeud(A->getModele());
    mouse->moveTo(330, 140);
    EXPECT_EQ(content().nodes.at("B"), plainNode(330, 140));
}

TEST_F(InterruptedGesture, AnArcThatWasDrawnBeforeMayGoWhileAnotherIsDrawn) {
    startArc();
    mouse->release();
    mouse->pressAt(300, 100);
    controleur->removeNoeud(model->get("q1"));
    mouse->moveTo(300, 300);
    mouse->release();
    EXPECT_EQ(content().nodes.at("q2"), plainNode(300, 300));
    EXPECT_THAT(content().arcs, ElementsAre(plainArc("B", "q2")));
}

TEST_F(InterruptedGesture, TheControllerMayGoWhileANodeIsDragged) {
    mouse->pressAt(100, 100);
    controleur.reset();
    EXPECT_EQ(traces.count("~Controleur() : ok"), 1);
}

TEST_F(InterruptedGesture, TheControllerMayGoWhileAnArcIsDrawn) {
    startArc();
    mouse->moveTo(300, 100);
    controleur.reset();
    EXPECT_EQ(traces.count("~Controleur() : ok"), 1);
}

}  // namespace
