// This test program links the model and nothing else of the editor. The model is to be usable so, without a
// screen: no library of the toolkit may have come along.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <link.h>

#include <string>
#include <vector>

#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"

namespace {

std::vector<std::string> loadedLibraries() {
    std::vector<std::string> libraries;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* found) {
            static_cast<std::vector<std::string>*>(found)->emplace_back(info->dlpi_name);
            return 0;
        },
        &libraries);
    return libraries;
}

TEST(Model, LinksWithoutAnyLibraryOfTheToolkit) {
    Modele::KLV network;
    Modele::Noeud* a = network.addNoeud();
    ASSERT_TRUE(a->addArc(a, nullptr)->setRegle("x -> 2y"));
    ASSERT_TRUE(a->setInit("x"));
    ASSERT_EQ(network.toString(), "q1 -> q1 : x -> 2y ;q1 : x ;\n");

    const std::vector<std::string> libraries = loadedLibraries();
    ASSERT_THAT(libraries, testing::Contains(testing::HasSubstr("libstdc++"))) << "the list is a real one";
    for (const std::string& library : libraries) {
        for (const char* toolkit :
             {"gtk", "gdk", "glib", "gobject", "gio", "cairo", "pango", "atk", "sigc", "libX11"}) {
            EXPECT_THAT(library, testing::Not(testing::HasSubstr(toolkit)));
        }
    }
}

}  // namespace
