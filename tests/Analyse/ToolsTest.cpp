// What the tools are given and what is read of their answers, with analysers made up for each test: the
// command line, standard input, how often each runs, and that no way in which a tool can fail ends the
// program that asked.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <vector>

#include "Analyse.h"
#include "Helpers.h"
#include "Modele/Noeud.h"
#include "common/OrdinaryUser.h"
#include "common/Traces.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::ThrowsMessage;
using testing::UnorderedElementsAre;

using Bounds = std::map<std::string, int>;

// --- The shell ---

TEST(Shell, ReturnsWhatTheCommandPrintedAndNoneOfItsComplaints) {
    EXPECT_EQ(execShell("echo one; echo two >&2; echo three"), "one\nthree\n");
}

TEST(Shell, ReturnsTheOutputOfACommandThatFails) { EXPECT_EQ(execShell("echo so far; exit 3"), "so far\n"); }

TEST(Shell, ReturnsNothingForACommandThatPrintsNothing) { EXPECT_EQ(execShell("true"), ""); }

TEST(Shell, ReturnsNothingForACommandThatDoesNotExist) { EXPECT_EQ(execShell("/no/such/program 2> /dev/null"), ""); }

TEST(Shell, ReturnsALastLineWithoutItsEnd) { EXPECT_EQ(execShell("printf 'a\\nb'"), "a\nb"); }

TEST(Shell, ReturnsLinesLongerThanItsBufferWhole) {
    for (const int length : {1022, 1023, 1024, 1025, 2046, 2047, 5000}) {
        const std::string line(static_cast<std::size_t>(length), 'x');
        EXPECT_EQ(execShell("echo " + line), line + "\n");
    }
}

TEST(Shell, ReturnsMegabytes) {
    const std::string output = execShell("yes 0123456789abcde | head -c 8000000");
    EXPECT_EQ(output.size(), 8'000'000u);
    EXPECT_EQ(output.substr(0, 32), "0123456789abcde\n0123456789abcde\n");
}

TEST(Shell, LosesWhatFollowsAZeroByteInItsPieceOfALine) {
    EXPECT_EQ(execShell(R"(printf 'kept\0lost\nkept too\n\0lost\nand this')"), "keptkept too\nand this");
}

TEST(Shell, ReadsPiecesOf1023BytesSoThatAZeroByteHidesNoMore) {
    const std::string piece(1022, 'x');
    EXPECT_EQ(execShell("printf '" + piece + R"(\0kept\n')"), piece + "kept\n");
}

TEST(Shell, ReturnsBytesThatAreNoText) { EXPECT_EQ(execShell(R"(printf '\377\001\200\n')"), "\377\001\200\n"); }

/// The longest command that fits into an argument of 128 KiB, and its neighbours.
std::vector<std::size_t> lengthsAroundTheLongestArgument() {
    const std::size_t limit = 128 * 1024;
    return {limit - 2, limit - 1, limit, limit + 1, 3 * limit};
}

TEST(Shell, RunsCommandsOfAnyLength) {
    const std::string begin = "printf %s '";
    const std::string end = "' | wc -c";
    for (const std::size_t length : lengthsAroundTheLongestArgument()) {
        const std::size_t argument = length - begin.size() - end.size();
        EXPECT_EQ(execShell(begin + std::string(argument, 'x') + end), std::to_string(argument) + "\n");
    }
}

TEST(Shell, GivesALongCommandTheEffectThatItHasWhenShort) {
    const std::vector<std::string> commands = {
        R"(echo 'tab\tback\\slash\0101 \q
"quoted" $HOME `x` # no comment'; )", "echo to nobody >&2; ",          "echo -n no end of line; ",
        "x=2; echo $((x + 3)); ",          "echo 'cut here\\c and lost'; ", "read line; echo \"read: $line\"; ",
        "ls -l /proc/self/fd | wc -l; ",   "echo unbalanced ' ; ",
    };
    for (const std::string& command : commands) {
        const std::string padding = ": " + std::string(200'000, 'x');
        const std::string silent = "exec < /dev/null 2> /dev/null; ";
        EXPECT_EQ(execShell(silent + command + padding), execShell(silent + command + ": x")) << command;
    }
}

TEST(Shell, LeavesStandardInputToALongCommand) {
    const WorkingDirectory directory;
    writeFile("input", "from outside\n");
    const int before = dup(STDIN_FILENO);
    const int input = open("input", O_RDONLY);
    dup2(input, STDIN_FILENO);
    const std::string output = execShell("cat; : " + std::string(200'000, 'x'));
    dup2(before, STDIN_FILENO);
    close(before);
    close(input);
    EXPECT_EQ(output, "from outside\n");
}

TEST(Shell, LeavesNoDescriptorAndNoChildBehind) {
    const NothingLeftBehind check;
    execShell("echo short");
    execShell("echo long; : " + std::string(200'000, 'x'));
    execShell("kill -9 $$");
}

TEST(Shell, HandsItsCommandsNoDescriptorOfItsOwn) {
    // Descriptor 3 of ls is the directory that it reads; the pipe of `ls | tr` is its standard output.
    const std::string list = "ls /proc/self/fd | tr '\\n' ' '";
    const std::string plain = execShell(list);
    const std::string inside = execShell(list + "; : " + std::string(200'000, 'x'));
    EXPECT_EQ(inside, plain);
}

TEST(Shell, ReturnsNothingWhenNoPipeCanBeOpened) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const int next = dup(STDIN_FILENO);
    close(next);
    const rlimit none{static_cast<rlim_t>(next), before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const std::string ofShort = execShell("echo short");
    const std::string ofLong = execShell("echo long; : " + std::string(200'000, 'x'));
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(ofShort, "");
    EXPECT_EQ(ofLong, "");
    EXPECT_EQ(execShell("echo short"), "short\n");
}

TEST(Shell, AnswersAlsoWhereChildrenAreNotWaitedFor) {
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    const std::string output = execShell("echo heard; exit 1");
    std::signal(SIGCHLD, before);
    EXPECT_EQ(output, "heard\n");
}

// --- The analyser: what it is given ---

/// Writes down how it is called and what it reads, each run in a file of its own: run1, run2, ...
const char* const recorder = R"(
n=1
while [ -e run$n ]; do n=$((n + 1)); done
{ echo "$0" "$@"; cat; } > run$n
)";

class Analyser : public testing::Test {
protected:
    std::vector<std::string> runs() const {
        std::vector<std::string> all;
        for (int n = 1; std::filesystem::exists("run" + std::to_string(n)); ++n) {
            all.push_back(readFile("run" + std::to_string(n)));
        }
        return all;
    }

    /// What the recorder writes down for a question about a net: the command, the net, and the end of line of
    /// echo.
    static std::string verdictRun(const std::string& net) { return "./tina/bin/tina -C -a -g\n" + net + "\n"; }
    static std::string boundRun(const std::string& net) { return "./tina/bin/tina -C -g\n" + net + "\n"; }

    std::string net() const { return toRdP(model.get()); }
    std::string prefixNet() const {
        const Traces trace;
        return toPrefRdP(model.get());
    }

    const NothingLeftBehind check;
    WorkingDirectory directory;
    std::unique_ptr<Modele::KLV> model = readModel("A : 2a; A -> B : a -> b; B -> A;");
};

TEST_F(Analyser, IsAskedForTheVerdictOnceByTheBoundednessQuestion) {
    directory.setTina(recorder);
    EXPECT_TRUE(isBounded(model.get()));
    EXPECT_THAT(runs(), ElementsAre(verdictRun(net())));
}

TEST_F(Analyser, IsAskedForTheVerdictOfBothNetsByThePrefixQuestion) {
    directory.setTina(recorder);
    const Traces trace;
    EXPECT_TRUE(isPrefBounded(model.get()));
    EXPECT_THAT(runs(), ElementsAre(verdictRun(net()), verdictRun(prefixNet())));
}

TEST_F(Analyser, IsAskedForTheVerdictAndThenForTheMarkingsByTheBoundQuestion) {
    directory.setTina(recorder);
    EXPECT_THAT(getBound(model.get()), IsEmpty());
    EXPECT_THAT(runs(), ElementsAre(verdictRun(net()), boundRun(net())));
}

TEST_F(Analyser, IsAskedThreeTimesByThePrefixBoundQuestion) {
    directory.setTina(recorder);
    const Traces trace;
    EXPECT_THAT(getPrefixBound(model.get()), IsEmpty());
    EXPECT_THAT(runs(), ElementsAre(verdictRun(net()), verdictRun(prefixNet()), boundRun(prefixNet())));
}

TEST_F(Analyser, GetsItsNetThroughTheShellsEcho) {
    // The analyser stands last in a pipeline: its parent is the shell, whose own command line is the command.
    directory.setTina("tr '\\0' '\\n' < /proc/$PPID/cmdline > command\n");
    isBounded(model.get());
    EXPECT_EQ(readFile("command"), "sh\n-c\necho '" + net() + "' | ./tina/bin/tina -C -a -g\n");
    getBound(model.get());
    EXPECT_EQ(readFile("command"), "sh\n-c\necho '" + net() + "' | ./tina/bin/tina -C -g\n");
}

TEST_F(Analyser, GetsANetThatIsTooLongForOneArgument) {
    directory.setTina(recorder);
    for (int i = 0; i < 10'000; ++i) model->addNoeud();
    for (const auto& [name, node] : model->getNoeuds()) node->addArc(model->get("A"), nullptr);
    ASSERT_GT(net().size(), 128u * 1024);
    EXPECT_TRUE(isBounded(model.get()));
    EXPECT_THAT(runs(), ElementsAre(verdictRun(net())));
}

TEST_F(Analyser, PrintsItsComplaintsWhereTheyAreNotRead) {
    directory.setTina("echo not bounded >&2\n");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(isBounded(model.get()));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "not bounded\n");
}

TEST_F(Analyser, OfThePlainQuestionsPrintsNothing) {
    directory.setTina("echo bounded\n");
    const Traces trace;
    isBounded(model.get());
    getBound(model.get());
    EXPECT_EQ(trace.text(), "");
}

TEST_F(Analyser, OfThePrefixQuestionsPrintsTheNetEveryTimeItIsBuilt) {
    directory.setTina("echo bounded\n");
    const std::string net = prefixNet();
    const Traces trace;
    isPrefBounded(model.get());
    EXPECT_EQ(trace.text(), net + "\n");
    getPrefixBound(model.get());
    EXPECT_EQ(trace.text(), net + "\n" + net + "\n" + net + "\n");
}

// --- The analyser: its verdict ---

TEST_F(Analyser, SaysNotBoundedAnywhereInItsOutput) {
    for (const char* report : {"not bounded", "first\nsecond: the net is not bounded, alas\nthird", "xnot boundedx"}) {
        directory.setTina(std::string("echo '") + report + "'\n");
        EXPECT_FALSE(isBounded(model.get())) << report;
    }
}

TEST_F(Analyser, SaysAnythingElseAndTheModelIsBounded) {
    for (const char* report :
         {"bounded", "", "not  bounded", "Not bounded", "notbounded", "not\nbounded", "unbounded"}) {
        directory.setTina(std::string("echo '") + report + "'\n");
        EXPECT_TRUE(isBounded(model.get())) << report;
    }
}

TEST_F(Analyser, SaysNotBoundedOfTheNetAndIsNotAskedAboutThePrefixNet) {
    directory.setTina(std::string(recorder) + "echo not bounded\n");
    const Traces trace;
    EXPECT_FALSE(isPrefBounded(model.get()));
    EXPECT_EQ(runs().size(), 1u);
    EXPECT_EQ(trace.text(), "");
}

TEST_F(Analyser, SaysNotBoundedOfThePrefixNetAlone) {
    directory.setTina("if grep -q r_m; then echo not bounded; else echo bounded; fi\n");
    const Traces trace;
    EXPECT_TRUE(isBounded(model.get()));
    EXPECT_FALSE(isPrefBounded(model.get()));
    EXPECT_THAT([&] { getPrefixBound(model.get()); }, ThrowsMessage<std::logic_error>("KLV not prefix bounded"));
    EXPECT_NO_THROW(getBound(model.get()));
}

TEST_F(Analyser, SaysNotBoundedAndIsNotAskedForTheBound) {
    directory.setTina(std::string(recorder) + "echo not bounded\n");
    EXPECT_THAT([&] { getBound(model.get()); }, ThrowsMessage<std::logic_error>("KLV not bounded"));
    EXPECT_EQ(runs().size(), 1u);
    EXPECT_THAT([&] { getPrefixBound(model.get()); }, ThrowsMessage<std::logic_error>("KLV not prefix bounded"));
    EXPECT_EQ(runs().size(), 2u);
}

// --- The analyser: its markings ---

class Report : public Analyser {
protected:
    Bounds boundsIn(const std::string& report) {
        directory.setTina(tinaThatPrints(report));
        return getBound(model.get());
    }
    Bounds prefixBoundsIn(const std::string& report) {
        const Traces trace;
        directory.setTina(tinaThatPrints(report));
        return getPrefixBound(model.get());
    }
};

TEST_F(Report, WithoutACountMeansOneMolecule) {
    EXPECT_EQ(boundsIn("0 : mab\n"), (Bounds{{"ab", 1}}));
    EXPECT_EQ(boundsIn("0 : mab*12\n"), (Bounds{{"ab", 12}}));
}

TEST_F(Report, RaisesTheCountsOfItsMarkingLines) {
    EXPECT_EQ(boundsIn("12 : q2 ma*3 mb\n"), (Bounds{{"a", 3}, {"b", 1}}));
    EXPECT_EQ(boundsIn("0 : ma*2\n1 : ma*5 mb*2\n2 : ma*3 mb\n3 : q1\n"), (Bounds{{"a", 5}, {"b", 2}}));
}

TEST_F(Report, IsReadAfterTheFirstColonOfEveryLineThatHasOne) {
    EXPECT_EQ(boundsIn("ma*9 mb*9\nma : mb\nmc*5:md*4 : me\n"), (Bounds{{"b", 1}, {"d", 4}, {"e", 1}}));
}

TEST_F(Report, IsSplitAtSingleBlanksOnly) {
    EXPECT_EQ(boundsIn("0 :   ma*2   mb*3  \n1 :\n2 : \n"), (Bounds{{"a", 2}, {"b", 3}}));
    EXPECT_EQ(boundsIn("0 : mc\tmd\n"), (Bounds{{"c\tmd", 1}}));
    EXPECT_EQ(boundsIn("0 : ma,mb\n"), (Bounds{{"a,mb", 1}}));
}

TEST_F(Report, CountsAnyWordWithAnMAfterAColonAsAMolecule) {
    EXPECT_EQ(boundsIn("remark: many markings found\n"), (Bounds{{"any", 1}, {"arkings", 1}}));
    EXPECT_EQ(boundsIn("0 : q1 p_ma r_m s_mb Ma am\n"), Bounds{});
    EXPECT_EQ(boundsIn("0 : m\n"), (Bounds{{"", 1}}));
}

TEST_F(Report, SplitsNameAndCountAtTheFirstStar) { EXPECT_EQ(boundsIn("0 : ma*2*7\n"), (Bounds{{"a", 2}})); }

TEST_F(Report, HasNoMarkedMoleculeAndTheTableIsEmpty) {
    EXPECT_EQ(boundsIn("0 : q0\n1 : q1\n"), Bounds{});
    EXPECT_EQ(boundsIn(""), Bounds{});
    EXPECT_EQ(boundsIn("0 : ma*0\n"), Bounds{});
}

TEST_F(Report, LacksItsLastEndOfLine) {
    directory.setTina("cat > /dev/null\nprintf 'bounded\\n0 : ma*4'\n");
    EXPECT_EQ(getBound(model.get()), (Bounds{{"a", 4}}));
}

TEST_F(Report, HasCountsBeyondTheIntRangeAndTheyStopAtItsEnd) {
    constexpr int largest = std::numeric_limits<int>::max();
    EXPECT_EQ(boundsIn("0 : ma*2147483647 mb*2147483648 mc*99999999999999999999999\n"),
              (Bounds{{"a", largest}, {"b", largest}, {"c", largest}}));
    EXPECT_EQ(boundsIn("0 : ma*-99999999999999999999999 mb*-3\n"), Bounds{});
    EXPECT_EQ(prefixBoundsIn("0 : r_m*2147483648\n"), (Bounds{{"", largest}}));
}

TEST_F(Report, HasCountsThatAreNoNumbersAndNothingIsThrown) {
    EXPECT_EQ(boundsIn("0 : ma*w mb* mc** md*2x\n"), (Bounds{{"d", 2}}));
}

TEST_F(Report, OfThePrefixNetHoldsItsOnlyBoundUnderTheEmptyName) {
    EXPECT_EQ(prefixBoundsIn("0 : q1 p_ma*2\n1 : q1 p_ma s_ma r_m\n2 : q1 r_m*2 s_ma*2\n"), (Bounds{{"", 2}}));
    EXPECT_EQ(prefixBoundsIn("0 : r_m\n"), (Bounds{{"", 1}}));
}

TEST_F(Report, OfAPrefixNetWithoutMoleculesGivesAnEmptyTable) {
    EXPECT_EQ(prefixBoundsIn("0 : q0\n1 : q1\n"), Bounds{});
}

TEST_F(Report, OfThePrefixNetIsReadForWordsThatBeginWithTheCountingPlace) {
    EXPECT_EQ(prefixBoundsIn("0 : ma*7 r_ r_mab*3 r_ma xr_m*9\n"), (Bounds{{"ab", 3}, {"a", 1}}));
}

// --- The analyser: how it can fail ---

class FailingAnalyser : public Analyser {
protected:
    /// With every answer lost, all questions get the answer of an empty report.
    void expectNoAnswer() {
        testing::internal::CaptureStderr();
        const Traces trace;
        EXPECT_TRUE(isBounded(model.get()));
        EXPECT_TRUE(isPrefBounded(model.get()));
        EXPECT_EQ(getBound(model.get()), Bounds{});
        EXPECT_EQ(getPrefixBound(model.get()), Bounds{});
        complaint = testing::internal::GetCapturedStderr();
    }

    /// So many arcs that the net fills any pipe before an analyser that does not read it is done.
    void growTheModel() {
        for (int i = 0; i < 20'000; ++i) model->get("A")->addArc(model->get("B"), nullptr);
    }

    std::string complaint;
};

TEST_F(FailingAnalyser, IsMissing) {
    expectNoAnswer();
    EXPECT_THAT(complaint, HasSubstr("./tina/bin/tina"));
}

TEST_F(FailingAnalyser, IsNotExecutable) {
    directory.setTina("echo not bounded\n");
    std::filesystem::permissions("tina/bin/tina", std::filesystem::perms::owner_read);
    expectNoAnswer();
    EXPECT_THAT(complaint, HasSubstr("ermission denied"));
}

TEST_F(FailingAnalyser, IsADirectory) {
    std::filesystem::create_directories("tina/bin/tina");
    expectNoAnswer();
}

TEST_F(FailingAnalyser, PrintsNothing) {
    directory.setTina("cat > /dev/null\n");
    expectNoAnswer();
}

TEST_F(FailingAnalyser, ExitsWithAnError) {
    directory.setTina("exit 2\n");
    expectNoAnswer();
}

TEST_F(FailingAnalyser, DiesBeforeItPrints) {
    directory.setTina("kill -9 $$\n");
    expectNoAnswer();
}

TEST_F(FailingAnalyser, DiesHalfWayAndWhatItPrintedCounts) {
    directory.setTina("cat > /dev/null\necho bounded\necho '0 : ma*2'\nprintf '1 : ma*'\nkill -9 $$\n");
    EXPECT_EQ(getBound(model.get()), (Bounds{{"a", 2}}));
}

TEST_F(FailingAnalyser, ClosesItsInputBeforeALongNetIsRead) {
    ASSERT_EQ(std::signal(SIGPIPE, SIG_DFL), SIG_DFL) << "nothing here depends on an ignored SIGPIPE";
    growTheModel();
    directory.setTina("exec < /dev/null\necho bounded\necho '0 : ma*2'\n");
    EXPECT_EQ(getBound(model.get()), (Bounds{{"a", 2}}));
    EXPECT_TRUE(isBounded(model.get()));
}

TEST_F(FailingAnalyser, EndsBeforeALongNetIsRead) {
    growTheModel();
    directory.setTina("exit 1\n");
    expectNoAnswer();
}

TEST_F(FailingAnalyser, PrintsMegabytesBeforeItReadsALongNet) {
    growTheModel();
    directory.setTina("yes '0 : q1 ma*3 mb' | head -n 400000\ncat > /dev/null\n");
    EXPECT_EQ(getBound(model.get()), (Bounds{{"a", 3}, {"b", 1}}));
}

TEST_F(FailingAnalyser, HangsForAWhile) {
    directory.setTina("cat > /dev/null\nsleep 1\necho '0 : ma*3'\n");
    EXPECT_EQ(getBound(model.get()), (Bounds{{"a", 3}}));
}

TEST_F(FailingAnalyser, PrintsAHundredMegabytes) {
    directory.setTina("cat > /dev/null\nyes 'a line that says nothing' | head -c 100000000\necho '0 : ma*3'\n");
    EXPECT_EQ(getBound(model.get()), (Bounds{{"a", 3}}));
}

TEST_F(FailingAnalyser, IsAskedInAReadOnlyDirectory) {
    directory.setTina("cat > /dev/null\necho '0 : ma*3'\n");
    std::filesystem::permissions(directory.path(), std::filesystem::perms(0555));
    EXPECT_EQ(asOrdinaryUser([&] { return getBound(model.get()).at("a"); }), 3);
    std::filesystem::permissions(directory.path(), std::filesystem::perms::owner_all);
}

TEST_F(FailingAnalyser, PrintsBinary) {
    directory.setTina(R"(cat > /dev/null
printf '\377\376\0not bounded\n'
printf '0 : ma*3 \0 mb*4\n1 : m\303\251*2\n')");
    EXPECT_TRUE(isBounded(model.get())) << "what follows a zero byte on its line is not read";
    EXPECT_EQ(getBound(model.get()), (Bounds{{"a", 3}, {"\303\251", 2}}))
        << "the zero byte takes the rest of its line with it, its end included";
}

TEST_F(FailingAnalyser, PrintsRandomBytes) {
    directory.setTina("cat > /dev/null\nhead -c 3000000 /dev/urandom\n");
    EXPECT_TRUE(isBounded(model.get()));
    EXPECT_NO_THROW(getBound(model.get()));
}

}  // namespace
