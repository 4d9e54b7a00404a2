// This test program links the analyses, the model and the net analyser's library, and nothing else of the editor: the
// analyses are to be usable without a screen, so that no library of the toolkit may have come along.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <link.h>

#include <string>
#include <vector>

#include "Analyse.h"
#include "Helpers.h"
#include "common/Traces.h"

namespace {

using testing::Contains;
using testing::HasSubstr;

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

TEST(Analyses, LinkWithoutAnyLibraryOfTheToolkit) {
    const WorkingDirectory directory;
    directory.useBuiltInTina();
    const auto model = readModel("A : a; A -> B : a -> b;");
    const Traces trace;
    ASSERT_TRUE(isPrefBounded(model.get()));
    ASSERT_TRUE(isSat(model.get(), "ex1 p: p in Db1"));

    const std::vector<std::string> libraries = loadedLibraries();
    ASSERT_THAT(libraries, Contains(HasSubstr("libstdc++"))) << "the list is a real one";
    for (const char* toolkit : {"gtk", "gdk", "glib", "gobject", "gio", "cairo", "pango", "atk", "sigc", "libX11"}) {
        EXPECT_THAT(libraries, Not(Contains(HasSubstr(toolkit))));
    }
}

}  // namespace
