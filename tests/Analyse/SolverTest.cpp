// What becomes of a question about runs when `mona` is missing or fails, with solvers made up for each test: whatever
// they do, there is an answer or the error "Syntaxe error", and nothing is left behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "Analyse.h"
#include "Helpers.h"
#include "common/OrdinaryUser.h"
#include "common/Traces.h"

namespace {

using testing::ThrowsMessage;

/// The same question as a text that fits into one argument of a command, and as one that does not.
class FailingSolver : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        directory.setTina("while read -r line; do :; done\necho '0 : ma*" + std::to_string(GetParam()) + "'\n");
    }

    static void leaveNoToolsButTheShell() { setenv("PATH", "bin", 1); }

    bool ask() const {
        const Traces trace;
        return isSat(model.get(), "true");
    }

    void expectASyntaxError() const {
        EXPECT_THAT([&] { ask(); }, ThrowsMessage<std::logic_error>("Syntaxe error"));
    }

    const NothingLeftBehind check;
    WorkingDirectory directory;  // restores the search path
    std::unique_ptr<Modele::KLV> model = readModel("A : a; A -> A : a -> a;");
};

INSTANTIATE_TEST_SUITE_P(To, FailingSolver, testing::Values(1, 10),
                         [](const auto& text) { return text.param == 1 ? "AShortText" : "ALongText"; });

TEST_P(FailingSolver, IsMissing) {
    directory.setTina("while read -r line; do :; done\necho '0 : ma*" + std::to_string(GetParam()) + "'\n");
    setenv("PATH", "bin", 1);
    expectASyntaxError();
}

TEST_P(FailingSolver, IsNotExecutable) {
    directory.setTina("while read -r line; do :; done\necho '0 : ma*" + std::to_string(GetParam()) + "'\n");
    setenv("PATH", "bin", 1);
    std::filesystem::create_directory("bin");
    writeFile("bin/mona", "#!/bin/sh\necho 'A satisfying example'\n");
    expectASyntaxError();
}

TEST_P(FailingSolver, PrintsNothing) {
    directory.setMona("true\n");
    expectASyntaxError();
}

TEST_P(FailingSolver, IsKilledBeforeItsVerdict) {
    directory.setMona("echo 'AUTOMATON CONSTRUCTION'\nkill -9 $$\necho 'A satisfying example'\n");
    expectASyntaxError();
}

TEST_P(FailingSolver, IsKilledAfterItsVerdictWhichCounts) {
    directory.setMona("echo 'Formula is unsatisfiable'\nkill -9 $$\n");
    EXPECT_FALSE(ask());
}

TEST_P(FailingSolver, HangsForAWhile) {
    directory.setMona("sleep 1\necho 'A satisfying example'\n");
    EXPECT_TRUE(ask());
}

TEST_P(FailingSolver, PrintsAHundredMegabytesBeforeItsVerdict) {
    directory.setMona("yes 'a line that says nothing' | head -c 100000000\necho 'A satisfying example'\n");
    EXPECT_TRUE(ask());
}

TEST_P(FailingSolver, PrintsBinary) {
    directory.setMona("head -c 3000000 /dev/urandom\nprintf '\\nFormula is unsatisfiable\\n'\n");
    EXPECT_FALSE(ask());
}

TEST_P(FailingSolver, ClosesItsInputAndItsOutputEarly) {
    directory.setMona("exec < /dev/null >&-\nsleep 0.1\necho 'A satisfying example'\n");
    expectASyntaxError();
}

TEST_P(FailingSolver, CannotBeGivenItsTextInAReadOnlyDirectory) {
    directory.setMona("echo 'A satisfying example'\n");
    std::filesystem::permissions(directory.path(), std::filesystem::perms(0555));
    const auto isASyntaxError = [&] {
        try {
            ask();
            return 1;
        } catch (const std::logic_error& error) {
            return error.what() == std::string("Syntaxe error") ? 0 : 2;
        }
    };
    EXPECT_EQ(asOrdinaryUser(isASyntaxError), 0);
    EXPECT_FALSE(std::filesystem::exists(".KLV.mona"));
    std::filesystem::permissions(directory.path(), std::filesystem::perms::owner_all);
}

}  // namespace
