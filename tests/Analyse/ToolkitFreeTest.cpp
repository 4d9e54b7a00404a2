// This test program links the analyses, the model and the net analyser's library, and nothing else of the editor: the
// analyses are to be usable without a screen, so that no library of the toolkit may have come along.
#include <gtest/gtest.h>

#include "Analyse.h"
#include "Helpers.h"
#include "common/LoadedLibraries.h"
#include "common/Traces.h"

namespace {

TEST(Analyses, LinkWithoutAnyLibraryOfTheToolkit) {
    const WorkingDirectory directory;
    directory.useBuiltInTina();
    const auto model = readModel("A : a; A -> B : a -> b;");
    const Traces trace;
    ASSERT_TRUE(isPrefBounded(model.get()));
    ASSERT_TRUE(isSat(model.get(), "ex1 p: p in Db1"));
    expectNoLibraryOfTheToolkit();
}

}  // namespace
