// A network and its drawing come apart in any order, and every view is destroyed exactly once. Under the address
// sanitizer these tests also prove that nothing is freed twice, used afterwards, or never freed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtkmm/window.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Controleur/Controleur.h"
#include "Helpers.h"

namespace {

/// Three nodes, two of them with markings, and arcs of every kind between them: straight, both ways, parallel, loops,
/// with and without rules.
class BusyScene : public Scene {
public:
    BusyScene() {
        nodes = {node("plain", 50, 150), initialNode("marked", 250, 150, "2a b"), initialNode("empty", 150, 50, "")};
        for (Vue::Noeud* from : nodes) {
            for (Vue::Noeud* to : nodes) arcs.push_back(arc(from, to, arcs.size() % 2 == 0 ? "a -> b" : ""));
        }
        arcs.push_back(arc(nodes[0], nodes[1], "2c -> d"));
        for (Vue::Noeud* view : nodes) view->signal_deleted().connect([this] { ++nodeEnds; });
        for (Vue::Arc* view : arcs) view->signal_deleted().connect([this] { ++arcEnds; });
        picture();
        area->setPick(50, 150);
    }

    void expectEveryViewEndedOnce() const {
        EXPECT_EQ(nodeEnds, 3);
        EXPECT_EQ(arcEnds, 10);
        EXPECT_EQ(traces.count("Vue::Noeud::~Noeud ()"), 3);
        EXPECT_EQ(traces.count("Arc::~Arc"), 10);
    }

    std::vector<Vue::Noeud*> nodes;
    std::vector<Vue::Arc*> arcs;
    int nodeEnds = 0;
    int arcEnds = 0;
};

TEST(NetworkAndDrawing, ComeApartWhenTheDrawingGoesFirst) {
    BusyScene scene;
    scene.dessin.reset();
    scene.expectEveryViewEndedOnce();
    scene.klv->addNoeud("marked")->setInit("a");
    scene.klv.reset();
    scene.expectEveryViewEndedOnce();
}

TEST(NetworkAndDrawing, ComeApartWhenTheModelGoesFirst) {
    BusyScene scene;
    scene.klv.reset();
    scene.expectEveryViewEndedOnce();
    EXPECT_TRUE(scene.picture().isBlank());
    EXPECT_EQ(scene.dessin->toString(), "");
    scene.dessin.reset();
    scene.expectEveryViewEndedOnce();
}

TEST(NetworkAndDrawing, ComeApartWhenTheModelIsClearedAndFilledAgain) {
    BusyScene scene;
    scene.klv->clear();
    scene.expectEveryViewEndedOnce();
    Vue::Noeud* again = scene.initialNode("again", 50, 50, "a");
    scene.arc(again, again, "a -> b");
    EXPECT_TRUE(scene.isPickedAt(again, 50, 50));
}

TEST(NetworkAndDrawing, ComeApartWhenNodesGoOneByOne) {
    for (const std::size_t last : {0U, 1U, 2U}) {
        BusyScene scene;
        for (std::size_t i = 1; i <= 3; ++i) {
            scene.klv->removeNoeud(scene.nodes[(last + i) % 3]->getModele());
            scene.picture();
            scene.area->setPick(150, 150);
        }
        scene.expectEveryViewEndedOnce();
    }
}

TEST(NetworkAndDrawing, ComeApartWhenTheViewsOfNodesGoWhileThoseOfArcsLive) {
    for (const bool modelFirst : {true, false}) {
        BusyScene scene;
        for (Vue::Noeud* node : scene.nodes) {
            scene.dessin->removeNoeud(node);
            scene.picture();
            scene.area->setPick(150, 150);
        }
        EXPECT_EQ(scene.nodeEnds, 3);
        EXPECT_EQ(scene.arcEnds, 0);
        for (Vue::Arc* arc : scene.arcs) EXPECT_FALSE(arc->isPicked());
        if (modelFirst) {
            scene.klv.reset();
        } else {
            scene.dessin.reset();
        }
        scene.expectEveryViewEndedOnce();
    }
}

TEST(NetworkAndDrawing, ComeApartWhenTheViewsOfArcsGoBeforeTheirArcs) {
    BusyScene scene;
    for (Vue::Arc* arc : scene.arcs) scene.dessin->removeArc(arc);
    EXPECT_EQ(scene.arcEnds, 10);
    EXPECT_EQ(scene.klv->getArcs().size(), 10U) << "the model keeps its arcs";
    for (Modele::Arc* arc : scene.klv->getArcs()) arc->setRegle("x -> y");
    scene.klv.reset();
    scene.expectEveryViewEndedOnce();
}

TEST(NetworkAndDrawing, ComeApartWhenArcsAreDestroyedByTheirEnds) {
    BusyScene scene;
    for (Vue::Arc* arc : scene.arcs) delete arc->getModele();
    EXPECT_EQ(scene.arcEnds, 10);
    EXPECT_EQ(scene.nodeEnds, 0);
}

TEST(NetworkAndDrawing, ComeApartWhenTheAreaStandsInAWindow) {
    Gtk::Window window;
    BusyScene scene;
    window.add(*scene.area);
    scene.dessin.reset();
    EXPECT_EQ(window.get_child(), nullptr);
    scene.expectEveryViewEndedOnce();
}

TEST(NetworkAndDrawing, ComeApartInRandomOrders) {
    for (unsigned int seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        BusyScene scene;
        const auto anyNode = [&]() -> Modele::Noeud* {
            auto& all = scene.klv->getNoeuds();
            if (all.empty()) return nullptr;
            return std::next(all.begin(), static_cast<std::ptrdiff_t>(random() % all.size()))->second;
        };
        for (int step = 0; step < 6; ++step) {
            Modele::Noeud* node = anyNode();
            if (node == nullptr) break;
            switch (random() % 6) {
                case 0:
                    scene.klv->removeNoeud(node);
                    break;
                case 1:
                    if (Vue::Noeud* view = scene.dessin->getNoeudVue(node)) scene.dessin->removeNoeud(view);
                    break;
                case 2:
                    if (!node->getOut().empty()) delete *node->getOut().begin();
                    break;
                case 3:
                    node->setInit("x 2y");
                    break;
                case 4:
                    for (Modele::Arc* arc : scene.klv->getArcs()) arc->setDestination(node);
                    break;
                default:
                    for (Modele::Arc* arc : scene.klv->getArcs()) arc->setRegle(step % 2 == 0 ? "" : "x -> y");
            }
            scene.picture();
            scene.area->setPick(150, 100);
            sendButton(*scene.area, 150, 100);
        }
        if (random() % 2 == 0) {
            scene.dessin.reset();
            scene.klv.reset();
        } else {
            scene.klv.reset();
            scene.dessin.reset();
        }
        scene.expectEveryViewEndedOnce();
    }
}

TEST(NetworkAndDrawing, GoTogetherWithTheirController) {
    BusyScene scene;
    const std::string before = scene.traces.text();
    delete new Controleur(nullptr, scene.klv.release(), scene.dessin.release());
    scene.expectEveryViewEndedOnce();
    EXPECT_EQ(scene.traces.text().find("~Controleur()...\n", before.size()), before.size());
    EXPECT_TRUE(scene.traces.text().ends_with("~Controleur() : ok\n"));
}

TEST(NetworkAndDrawing, GoTogetherWithTheirControllerInTheMiddleOfAGesture) {
    for (const auto mode : {Controleur::SELECT, Controleur::ARC, Controleur::NOEUD}) {
        BusyScene scene;
        TestArea* area = scene.area;
        auto controleur = std::make_unique<Controleur>(nullptr, scene.klv.release(), scene.dessin.release());
        controleur->setMode(mode);
        sendButton(*area, 50, 150);
        sendMotion(*area, 50, 150);
        sendMotion(*area, 240, 150);
        controleur.reset();
        EXPECT_EQ(scene.nodeEnds, 3);
        EXPECT_EQ(scene.arcEnds, 10);
    }
}

TEST(View, UnlinksFromAModelObjectThatOutlivesIt) {
    Scene scene;
    Modele::Noeud node("n");
    scene.dessin->removeNoeud(scene.dessin->addNoeud(&node, 1, 2));
    node.setInit("a");
    EXPECT_EQ(scene.traces.count("sucide !"), 0);
    Vue::Noeud* again = scene.dessin->addNoeud(&node, 100, 80);
    node.setInit("a b");
    EXPECT_TRUE(again->getModele()->isInit());
}

TEST(View, OfADrawingThatIsGoneIsForgottenByItsModel) {
    const Traces traces;
    Modele::Noeud node("n");
    {
        Vue::Dessin dessin(new TestArea);
        dessin.addNoeud(&node, 1, 2);
        node.setInit("a");
    }
    EXPECT_TRUE(node.setInit("b"));
    Vue::Dessin other(new TestArea);
    EXPECT_NE(other.addNoeud(&node, 1, 2), nullptr);
}

}  // namespace
