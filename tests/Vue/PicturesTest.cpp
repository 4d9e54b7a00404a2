// Pictures of whole networks, compared with those in reference/.
#include <gtest/gtest.h>

#include "EGD/Arc.h"
#include "EGD/Arrow.h"
#include "Helpers.h"

namespace {

TEST(Picture, OfANetworkWithEverythingIsTheReference) {
    Scene scene;
    Vue::Noeud* source = scene.initialNode("s", 70, 140, "2a b");
    Vue::Noeud* middle = scene.node("mid", 240, 140);
    Vue::Noeud* loop = scene.node("loop", 400, 140);
    Vue::Noeud* empty = scene.initialNode("e", 240, 270, "");
    Vue::Noeud* touching = scene.node("t", 275, 285);
    scene.arc(source, middle, "2a -> c");
    scene.arc(middle, source, "c ->");
    scene.arc(middle, loop);
    scene.arc(loop, loop, "b -> 3b");
    scene.arc(empty, middle, "-> x");
    scene.arc(empty, touching, "never -> seen");
    scene.arc(loop, touching);
    EXPECT_TRUE(matchesReference(scene.picture(460, 320), "Vue", "network"));
}

TEST(Picture, OfAnArcBeingDrawnIsTheReference) {
    Scene scene;
    Vue::Noeud* from = scene.node("q1", 40, 50);
    Vue::Noeud* temporary = scene.node("q2", 180, 80);
    temporary->getNoeud()->setColorFill(0, 0, 0, 50)->setColorIn(0, 0, 0, 0);
    scene.arc(from, temporary)->getArrow()->setColorFill(0, 0, 0, 50);
    EXPECT_TRUE(matchesReference(scene.picture(220, 120), "Vue", "arc-being-drawn"));
}

}  // namespace
