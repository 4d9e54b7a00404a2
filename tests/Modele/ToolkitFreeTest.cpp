// This test program links the model and nothing else of the editor. The model is to be usable so, without a
// screen: no library of the toolkit may have come along.
#include <gtest/gtest.h>

#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "common/LoadedLibraries.h"

namespace {

TEST(Model, LinksWithoutAnyLibraryOfTheToolkit) {
    Modele::KLV network;
    Modele::Noeud* a = network.addNoeud();
    ASSERT_TRUE(a->addArc(a, nullptr)->setRegle("x -> 2y"));
    ASSERT_TRUE(a->setInit("x"));
    ASSERT_EQ(network.toString(), "q1 -> q1 : x -> 2y ;q1 : x ;\n");
    expectNoLibraryOfTheToolkit();
}

}  // namespace
