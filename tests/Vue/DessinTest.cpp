// The drawing of a network: which views it has, in which order they are offered a press, and what is saved of it.
#include "Vue/Dessin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Helpers.h"
#include "common/Toolkit.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// -- views of nodes
// ---------------------------------------------------------------------------------------------------------

TEST(Dessin, MakesAViewForANodeWhereItIsAsked) {
    Scene scene;
    Modele::Noeud* node = scene.klv->addNoeud("a");
    EXPECT_EQ(scene.dessin->getNoeudVue(node), nullptr);
    Vue::Noeud* view = scene.dessin->addNoeud(node, 30.5, 40);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->getPosX(), 30.5);
    EXPECT_EQ(view->getPosY(), 40);
    EXPECT_EQ(view->getModele(), node);
    EXPECT_EQ(scene.dessin->getNoeudVue(node), view);
    EXPECT_EQ(view->getArea(), scene.area);
    EXPECT_EQ(scene.dessin->getArea(), scene.area);
    EXPECT_EQ(scene.traces.text(), "Noeud::Noeud (" + address(view) + ")\n" + "add noeud (" + address(view) + ")\n");
}

TEST(Dessin, MovesTheOneViewOfANodeThatIsAddedTwiceWithAPosition) {
    Scene scene;
    Vue::Noeud* view = scene.node("a", 30, 40);
    EXPECT_EQ(scene.node("a", 50, 60), view);
    EXPECT_EQ(view->getPosX(), 50);
    EXPECT_EQ(view->getPosY(), 60);
    EXPECT_EQ(scene.traces.countPrefix("add noeud ("), 1);
    EXPECT_EQ(scene.dessin->toString(), "a(50, 60);\n");
}

TEST(Dessin, MakesAViewAtTheOriginWhenNoPositionIsGiven) {
    Scene scene;
    Vue::Noeud* view = scene.dessin->addNoeud(scene.klv->addNoeud("a"));
    EXPECT_EQ(view->getPosX(), 0);
    EXPECT_EQ(view->getPosY(), 0);
    EXPECT_EQ(scene.traces.countPrefix("add noeud ("), 1);
}

TEST(Dessin, LeavesAnExistingViewWhereItIsWhenNoPositionIsGiven) {
    Scene scene;
    Vue::Noeud* view = scene.node("a", 30, 40);
    EXPECT_EQ(scene.dessin->addNoeud(view->getModele()), view);
    EXPECT_EQ(view->getPosX(), 30);
    EXPECT_EQ(scene.traces.countPrefix("add noeud ("), 1);
}

TEST(Dessin, HasNoViewForAnUnknownNode) {
    Scene scene;
    scene.node("a", 1, 2);
    EXPECT_EQ(scene.dessin->getNoeudVue(scene.klv->addNoeud("b")), nullptr);
    EXPECT_EQ(scene.dessin->getNoeudVue(nullptr), nullptr);
    EXPECT_EQ(scene.dessin->toString(), "a(1, 2);\n") << "asking makes none";
}

TEST(Dessin, WithoutNodesIsTheEmptyText) {
    Scene scene;
    EXPECT_EQ(scene.dessin->toString(), "");
    scene.klv->removeNoeud(scene.node("a", 1, 2)->getModele());
    EXPECT_EQ(scene.dessin->toString(), "");
}

TEST(Dessin, IsTextOfAllNodesInTheirOrder) {
    Scene scene;
    scene.node("zeta", 1, 2);
    scene.node("alpha", 3.9, -4.9);
    scene.node("mid", 5, 6);
    EXPECT_EQ(scene.dessin->toString(), "zeta(1, 2);\nalpha(3, -4);\nmid(5, 6);\n");
}

TEST(Dessin, PutsTheLastNodeInThePlaceOfARemovedOne) {
    Scene scene;
    Vue::Noeud* first = scene.node("first", 50, 50);
    Vue::Noeud* second = scene.node("second", 50, 50);
    Vue::Noeud* third = scene.node("third", 50, 50);
    scene.klv->removeNoeud(first->getModele());
    EXPECT_EQ(scene.dessin->toString(), "third(50, 50);\nsecond(50, 50);\n");
    EXPECT_THAT(scene.dessin->noeudUnderMouse(50, 50), ElementsAre(third, second));
    scene.klv->removeNoeud(second->getModele());
    EXPECT_THAT(scene.dessin->noeudUnderMouse(50, 50), ElementsAre(third)) << "the last one simply goes";
    Vue::Noeud* fourth = scene.node("fourth", 50, 50);
    EXPECT_THAT(scene.dessin->noeudUnderMouse(50, 50), ElementsAre(third, fourth));
}

TEST(Dessin, TracesARemovalAndForgetsTheNode) {
    Scene scene;
    Vue::Noeud* view = scene.node("a", 50, 50);
    scene.node("b", 50, 50);
    Modele::Noeud* node = view->getModele();
    const std::string before = scene.traces.text();
    scene.dessin->removeNoeud(view);
    EXPECT_EQ(scene.traces.text(), before + "remove noeud (" + address(view) + ")\nPOP !\nVue::Noeud::~Noeud ()\n");
    EXPECT_EQ(scene.dessin->getNoeudVue(node), nullptr);
    EXPECT_EQ(scene.dessin->toString(), "b(50, 50);\n");
}

TEST(Dessin, TracesTheEndOfANodeOfTheModel) {
    Scene scene;
    Vue::Noeud* view = scene.node("a", 50, 50);
    const std::string before = scene.traces.text();
    scene.klv->removeNoeud(view->getModele());
    EXPECT_EQ(scene.traces.text(), before + "Modele::Noeud::~Noeud\nsucide !\nremove noeud (" + address(view) +
                                       ")\nPOP !\nVue::Noeud::~Noeud ()\n");
}

TEST(Dessin, OnlyTracesAndDestroysANodeViewThatItDoesNotHold) {
    Scene scene;
    scene.node("a", 50, 50);
    Modele::Noeud other("b");
    auto* stray = new Vue::Noeud(scene.dessin.get(), &other, 60, 60);
    int ends = 0;
    stray->signal_deleted().connect([&] { ++ends; });
    const std::string before = scene.traces.text();
    scene.dessin->removeNoeud(stray);
    EXPECT_EQ(scene.traces.text(), before + "remove noeud (" + address(stray) + ")\nVue::Noeud::~Noeud ()\n");
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(scene.dessin->toString(), "a(50, 50);\n");
}

TEST(Dessin, DestroysAnArcViewThatItDoesNotHold) {
    Scene scene;
    Vue::Noeud* a = scene.node("a", 50, 50);
    auto* stray = new Vue::Arc(scene.dessin.get(), a->getModele()->addArc(a->getModele(), nullptr));
    int ends = 0;
    stray->signal_deleted().connect([&] { ++ends; });
    scene.dessin->removeArc(stray);
    EXPECT_EQ(ends, 1);
}

TEST(Dessin, FindsTheNodesUnderThePointInItsOrder) {
    Scene scene;
    Vue::Noeud* left = scene.node("left", 50, 50);
    scene.node("away", 150, 50);
    Vue::Noeud* right = scene.node("right", 70, 50);
    EXPECT_THAT(scene.dessin->noeudUnderMouse(60, 50), ElementsAre(left, right));
    EXPECT_THAT(scene.dessin->noeudUnderMouse(35, 50), ElementsAre(left));
    EXPECT_THAT(scene.dessin->noeudUnderMouse(110, 50), IsEmpty());
    EXPECT_EQ(scene.area->getPickX(), 110);
}

// -- redraws and the area
// ---------------------------------------------------------------------------------------------------

TEST(Dessin, RedrawsTheWholeAreaOnUpdate) {
    Scene scene;
    OnScreen screen(*scene.area);
    scene.dessin->update();
    EXPECT_TRUE(screen.isRedrawRequested());
}

TEST(DessinDeathTest, HasNoModelObjectWhoseEndItCouldShare) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(Scene().dessin->sucide(), "Vue/Dessin.*virtual void Vue::Dessin::sucide\\(\\).*!\"non implémenté\"");
}

TEST(Dessin, DestroysItsArea) {
    class MortalArea : public TestArea {
    public:
        explicit MortalArea(int& ends) : _ends(ends) {}
        ~MortalArea() override { ++_ends; }

    private:
        int& _ends;
    };
    int ends = 0;
    { const Vue::Dessin dessin(new MortalArea(ends)); }
    EXPECT_EQ(ends, 1);
}

TEST(Dessin, GivesTheEventsOfItsArea) {
    Scene scene;
    std::vector<std::string> seen;
    scene.dessin->signal_buttonPressed().connect([&](GdkEventButton*) {
        seen.push_back("pressed");
        return true;
    });
    scene.dessin->signal_buttonReleased().connect([&](GdkEventButton*) {
        seen.push_back("released");
        return true;
    });
    double dx = 0;
    scene.dessin->signal_mouseMoved().connect([&](GdkEventMotion*, double x, double) {
        seen.push_back("moved");
        dx = x;
    });
    EXPECT_TRUE(sendButton(*scene.area, 5, 5));
    EXPECT_TRUE(sendButton(*scene.area, 5, 5, GDK_BUTTON_RELEASE));
    sendMotion(*scene.area, 5, 5);
    sendMotion(*scene.area, 9, 5);
    EXPECT_THAT(seen, ElementsAre("pressed", "released", "moved", "moved"));
    EXPECT_EQ(dx, 4);
}

std::pair<int, int> requestOf(const Gtk::Widget& widget) {
    int width = 0;
    int height = 0;
    widget.get_size_request(width, height);
    return {width, height};
}

TEST(Dessin, GrowsItsAreaToHoldEveryNode) {
    Scene scene;
    const auto request = [&] { return requestOf(*scene.area); };
    Vue::Noeud* a = scene.node("a", 1500, 300);
    EXPECT_GE(request().first, 1500 + 22);
    EXPECT_GE(request().second, 300 + 22);
    const int width = request().first;
    Vue::Noeud* b = scene.node("b", 10, 2000);
    EXPECT_EQ(request().first, width);
    EXPECT_GE(request().second, 2000 + 22);
    b->move(3000, 0);
    EXPECT_GE(request().first, 3010 + 22) << "also when a node is dragged";
    scene.node("c", -500, -500);
    scene.node("d", 1e9, 1e9);
    EXPECT_LT(request().first, 32768) << "within what a window can be";
    scene.klv->removeNoeud(a->getModele());
    EXPECT_GE(request().first, 3010 + 22);
    scene.klv->clear();
    EXPECT_EQ(request(), std::pair(-1, -1)) << "an empty drawing asks for nothing";
}

TEST(Dessin, NeverTakesAwayTheSizeThatItsAreaWasGivenBefore) {
    auto* area = new TestArea;
    area->set_size_request(400, 300);
    Modele::KLV klv;
    Vue::Dessin dessin(area);
    dessin.addNoeud(klv.addNoeud("a"), 10, 10);
    EXPECT_EQ(requestOf(*area), std::pair(400, 300));
    dessin.addNoeud(klv.addNoeud("b"), 10, 1000);
    EXPECT_EQ(requestOf(*area).first, 400);
    EXPECT_GE(requestOf(*area).second, 1000 + 22);
    klv.clear();
    EXPECT_EQ(requestOf(*area), std::pair(400, 300));
}

// -- presses
// ----------------------------------------------------------------------------------------------------------------

/// Two overlapping nodes, and an arc between two others; writes down who is offered a press. A name in `takers` takes
/// it.
class Presses : public testing::Test {
protected:
    Presses() {
        scene.dessin->signal_selectNoeud().connect([this](GdkEventButton* event, Vue::Noeud* node) {
            events.push_back(event);
            return offer(node->getModele()->getName());
        });
        scene.dessin->signal_selectArc().connect([this](GdkEventButton* event, Vue::Arc* arc) {
            events.push_back(event);
            return offer(arc == ab ? "ab" : "another arc");
        });
        scene.dessin->signal_buttonPressed().connect([this](GdkEventButton*) { return offer("controller"); });
    }

    bool offer(const std::string& name) {
        offered.push_back(name);
        return std::find(takers.begin(), takers.end(), name) != takers.end();
    }

    std::vector<std::string> press(double x, double y) {
        offered.clear();
        sendButton(*scene.area, x, y);
        return offered;
    }

    Scene scene;
    Vue::Noeud* low = scene.node("low", 50, 50);
    Vue::Noeud* high = scene.node("high", 60, 50);
    Vue::Noeud* a = scene.node("a", 50, 150);
    Vue::Noeud* b = scene.node("b", 250, 150);
    Vue::Arc* ab = scene.arc(a, b);
    std::vector<std::string> takers;
    std::vector<std::string> offered;
    std::vector<GdkEventButton*> events;
};

TEST_F(Presses, WhereTwoNodesOverlapAreOfferedToTheEarlierAndThenToTheLater) {
    EXPECT_THAT(press(55, 50), ElementsAre("low", "high", "controller"));
    takers = {"high"};
    EXPECT_THAT(press(55, 50), ElementsAre("low", "high")) << "a press that is taken goes no further";
    takers = {"low"};
    EXPECT_THAT(press(55, 50), ElementsAre("low"));
}

TEST_F(Presses, OutsideEveryNodeAndArcReachTheControllerAlone) {
    EXPECT_THAT(press(150, 100), ElementsAre("controller"));
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(Presses, OnAnArcAreOfferedToItBeforeTheController) {
    EXPECT_THAT(press(150, 150), ElementsAre("ab", "controller"));
    takers = {"ab"};
    EXPECT_THAT(press(150, 150), ElementsAre("ab"));
}

TEST_F(Presses, AreOfferedToNodesBeforeArcs) {
    scene.node("over", 150, 150);
    EXPECT_THAT(press(150, 150), ElementsAre("over", "ab", "controller"));
    takers = {"over"};
    EXPECT_THAT(press(150, 150), ElementsAre("over"));
}

TEST_F(Presses, ReachTheAreasOwnDrawingsFirst) {
    scene.area->setPick(0, 0);
    takers = {"low"};
    scene.dessin->signal_selectNoeud().connect([this](GdkEventButton* event, Vue::Noeud*) {
        EXPECT_EQ(scene.area->getPickX(), event->x) << "the pick point is that of the press";
        return false;
    });
    press(55, 50);
}

/// A circle that, pressed, has something looked for in another place.
class Distraction : public EGD::Arc {
public:
    Distraction(double x, double y) : EGD::Arc(x, y, 30, 360, 0) { setColorIn(0, 0, 255, 255); }

    void buttonPressed(GdkEventButton*) override { getArea()->setPick(0, 0); }
};

TEST_F(Presses, AreOfferedToNodesWhateverTheAreasOwnDrawingsLookFor) {
    Distraction distraction(55, 50);
    scene.area->add(&distraction);
    EXPECT_THAT(press(55, 50), ElementsAre("low", "high", "controller"));
}

TEST_F(Presses, AreOfferedToArcsWhateverTheHandlersOfNodesLookFor) {
    scene.node("over", 150, 150);
    scene.dessin->signal_selectNoeud().connect([&](GdkEventButton*, Vue::Noeud*) {
        EXPECT_THAT(scene.dessin->noeudUnderMouse(50, 150), ElementsAre(a));
        return false;
    });
    EXPECT_THAT(press(150, 150), ElementsAre("over", "ab", "controller"));
}

TEST_F(Presses, HandOverTheirEvent) {
    auto event = buttonEvent(50, 50, GDK_2BUTTON_PRESS, 3);
    GdkEvent whole = {};
    whole.button = event;
    gboolean taken = FALSE;
    g_signal_emit_by_name(scene.area->gobj(), "button-press-event", &whole, &taken);
    EXPECT_THAT(events, testing::Each(reinterpret_cast<GdkEventButton*>(&whole)));
    EXPECT_EQ(events.size(), 2U) << "any button, any kind of press";
}

TEST_F(Presses, OnCrossingArcsAreOfferedToThemByAddress) {
    Vue::Noeud* c = scene.node("c", 150, 60);
    Vue::Noeud* d = scene.node("d", 150, 240);
    std::vector<Vue::Arc*> arcs = {ab, scene.arc(c, d), scene.arc(c, d)};
    std::sort(arcs.begin(), arcs.end(), std::less<>());
    std::vector<Vue::Arc*> seen;
    scene.dessin->signal_selectArc().connect([&](GdkEventButton*, Vue::Arc* arc) {
        seen.push_back(arc);
        return seen.size() == 2;
    });
    press(150, 150);
    EXPECT_THAT(seen, ElementsAre(arcs[0], arcs[1])) << "the last handler's answer counts";
}

TEST_F(Presses, OnReleaseAreOfferedToNobody) {
    sendButton(*scene.area, 50, 50, GDK_BUTTON_RELEASE);
    EXPECT_THAT(offered, IsEmpty());
}

TEST_F(Presses, MayRemoveTheNodeUnderThem) {
    scene.dessin->signal_selectNoeud().connect([&](GdkEventButton*, Vue::Noeud* node) {
        scene.klv->removeNoeud(node->getModele());
        return false;
    });
    EXPECT_THAT(press(55, 50), ElementsAre("low", "high", "controller"));
    EXPECT_THAT(press(55, 50), ElementsAre("controller"));
}

TEST_F(Presses, MayRemoveANodeBeforeItsTurn) {
    scene.dessin->signal_selectNoeud().connect([&, isFirst = true](GdkEventButton*, Vue::Noeud*) mutable {
        if (isFirst) scene.klv->removeNoeud(high->getModele());
        isFirst = false;
        return false;
    });
    EXPECT_THAT(press(55, 50), ElementsAre("low", "controller"));
}

TEST_F(Presses, MayAddNodesThatAreNotOfferedThem) {
    scene.dessin->signal_selectNoeud().connect([&](GdkEventButton*, Vue::Noeud*) {
        scene.node("new " + std::to_string(offered.size()), 55, 50);
        return false;
    });
    EXPECT_THAT(press(55, 50), ElementsAre("low", "high", "controller"));
}

TEST_F(Presses, MayRemoveEveryNode) {
    scene.dessin->signal_selectNoeud().connect([&](GdkEventButton*, Vue::Noeud*) {
        scene.klv->clear();
        return false;
    });
    EXPECT_THAT(press(55, 50), ElementsAre("low", "controller"));
    EXPECT_EQ(scene.dessin->toString(), "");
}

TEST_F(Presses, MayRemoveTheArcUnderThemAndThoseToCome) {
    Vue::Noeud* c = scene.node("c", 150, 60);
    Vue::Noeud* d = scene.node("d", 150, 240);
    scene.arc(c, d);
    int offers = 0;
    scene.dessin->signal_selectArc().connect([&](GdkEventButton*, Vue::Arc*) {
        ++offers;
        scene.klv->removeNoeud(a->getModele());
        scene.klv->removeNoeud(c->getModele());
        return false;
    });
    press(150, 150);
    EXPECT_EQ(offers, 1);
    EXPECT_EQ(offered.back(), "controller");
}

}  // namespace
