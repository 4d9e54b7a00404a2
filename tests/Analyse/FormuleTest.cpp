// The text that encodes a model's runs, byte for byte, and how it reaches the tool: the worked files stand in golden/,
// the rest is looked up section by section. Fake tools give the bounds and write down what they are asked.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <stdexcept>
#include <streambuf>
#include <vector>

#include "Analyse.h"
#include "Analyse/Formule.h"
#include "Helpers.h"
#include "Modele/Arc.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"
#include "common/Traces.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::ThrowsMessage;

using Bounds = std::map<std::string, int>;
using Lines = std::vector<std::string>;

constexpr std::size_t gibibyte = std::size_t{1} << 30;

std::string golden(const std::string& name) {
    return readFile(std::filesystem::path(KLV_SOURCE_DIR) / "tests/Analyse/golden" / (name + ".mona"));
}

std::string encoding(Modele::KLV* model, const Bounds& bounds) { return toFormule(model, bounds, gibibyte); }

std::string encoding(const std::string& model, const Bounds& bounds) {
    return encoding(readModel(model).get(), bounds);
}

// --- Lists of conjunctions ---

TEST(SxmRec, ListsTheWaysToPickOneOfTwo) {
    EXPECT_EQ(SxmRec("a", 2, 1), (Lines{"(x in Da1) & (x notin Da2)", "(x notin Da1) & (x in Da2)"}));
}

TEST(SxmRec, ListsMoleculesInAscendingOrderFirstWhereTheLastIsAbsent) {
    EXPECT_EQ(SxmRec("m", 3, 2), (Lines{
                                     "(x in Dm1) & (x in Dm2) & (x notin Dm3)",
                                     "(x in Dm1) & (x notin Dm2) & (x in Dm3)",
                                     "(x notin Dm1) & (x in Dm2) & (x in Dm3)",
                                 }));
}

TEST(SxmRec, ListsNothingForMoreThanThereAreOrLessThanNone) {
    EXPECT_THAT(SxmRec("a", 2, 3), IsEmpty());
    EXPECT_THAT(SxmRec("a", 2, -1), IsEmpty());
    EXPECT_THAT(SxmRec("a", 0, 1), IsEmpty());
}

TEST(SxmRec, ListsOneEmptyConjunctionForNoneOfNone) { EXPECT_EQ(SxmRec("a", 0, 0), (Lines{""})); }

TEST(SxmRec, ListsOneConjunctionForAllAndForNone) {
    EXPECT_EQ(SxmRec("a", 1, 0), (Lines{"(x notin Da1)"}));
    EXPECT_EQ(SxmRec("ab_2", 2, 2), (Lines{"(x in Dab_21) & (x in Dab_22)"}));
}

TEST(SxmRec, ListsAsManyConjunctionsAsThereAreSubsets) {
    std::vector<std::size_t> sizes;
    for (int k = 0; k <= 6; ++k) sizes.push_back(SxmRec("a", 6, k).size());
    EXPECT_THAT(sizes, ElementsAre(1u, 6u, 15u, 20u, 15u, 6u, 1u));
}

TEST(GetBit, ReadsBitsFromTheLeastSignificantOn) {
    EXPECT_EQ(getBit(6, 0), 0);
    EXPECT_EQ(getBit(6, 1), 1);
    EXPECT_EQ(getBit(6, 2), 1);
    EXPECT_EQ(getBit(6, 3), 0);
}

TEST(GetBit, TakesTheIndexModulo32) {
    EXPECT_EQ(getBit(2, 33), 1);
    EXPECT_EQ(getBit(2, 32), 0);
    EXPECT_EQ(getBit(-1, 31), 1);
    EXPECT_EQ(getBit(std::numeric_limits<int>::min(), 31), 1);
    EXPECT_EQ(getBit(std::numeric_limits<int>::min(), 63), 1);
    EXPECT_EQ(getBit(std::numeric_limits<int>::min(), 30), 0);
}

// --- The text ---

TEST(Formula, OfTheWorkedExample) {
    EXPECT_EQ(encoding("A : a; A -> B : a -> b;", {{"a", 1}, {"b", 1}}) + "ex1 p: p in Db1;",
              golden("one-initial-node"));
}

TEST(Formula, OfTwoInitialNodes) {
    EXPECT_EQ(encoding("A : a; B : 2a b; A -> B : 2a -> b; B -> B;", {{"a", 2}, {"b", 1}}),
              golden("two-initial-nodes"));
}

TEST(Formula, OfAModelWithoutArcsHasNoVariableForTransitions) {
    EXPECT_EQ(encoding("", {}), golden("nothing"));
    EXPECT_THAT(encoding("A -> B;", {}), HasSubstr("var2 T0;\n")) << "one arc has one";

    const std::string oneInitialNode = encoding("A : ;", {});
    EXPECT_THAT(oneInitialNode, HasSubstr("pred TR0(var1 x) = \n   true;\npred TR(var1 x) = \nfalse;\n"));
    EXPECT_THAT(oneInitialNode, Not(HasSubstr("var2")));
}

/// How many variables the transition codes of a model with so many arcs have.
int bitsForArcs(int arcs) {
    Modele::KLV model;
    for (int a = 0; a < arcs; ++a) model.get("A")->addArc(model.get("A"), nullptr);
    const std::string text = encoding(&model, {});
    int bits = 0;
    while (text.find("0 notin T" + std::to_string(bits) + ";\n") != std::string::npos) ++bits;
    EXPECT_EQ(text.find("(x in T" + std::to_string(bits) + ")"), std::string::npos);
    return bits;
}

TEST(Formula, HasAsManyVariablesForTransitionsAsTheLargestCodeHasBits) {
    std::map<int, int> bits;
    for (const int arcs : {0, 1, 2, 3, 4, 7, 8, 15, 16, 1023, 1024}) bits[arcs] = bitsForArcs(arcs);
    EXPECT_EQ(bits,
              (std::map<int, int>{
                  {0, 0}, {1, 1}, {2, 2}, {3, 2}, {4, 3}, {7, 3}, {8, 4}, {15, 4}, {16, 5}, {1023, 10}, {1024, 11}}));
}

TEST(Formula, GivesStartsCodesOnlyWhenThereAreSeveral) {
    EXPECT_THAT(encoding("A : ; A -> A;", {}), Not(HasSubstr("pred TR2(")));
    const std::string two = encoding("A : ; B : ; A -> A;", {});
    EXPECT_THAT(two, HasSubstr("pred TR3(var1 x) = \n   (x in T0) & (x in T1) & true;\n"));
    EXPECT_THAT(two, Not(HasSubstr("pred TR4(")));
}

TEST(Formula, WritesACodeLeastSignificantBitFirst) {
    EXPECT_THAT(encoding("A -> A; A -> B;", {}),
                HasSubstr("pred TR2(var1 x) = \n   (x notin T0) & (x in T1) & true;\n"));
}

TEST(Formula, FixesTheMarkingOfTheOnlyInitialNodeInPositionZero) {
    EXPECT_THAT(encoding("A : 2b; A -> B;", {{"a", 1}, {"b", 3}}), HasSubstr("### Premiere ligne ###\n"
                                                                             "0 notin Da1;\n"
                                                                             "0 in Db1;\n"
                                                                             "0 in Db2;\n"
                                                                             "0 notin Db3;\n"
                                                                             "######################\n"));
}

TEST(Formula, LeavesPositionZeroEmptyWithoutAndWithSeveralInitialNodes) {
    for (const char* model : {"A -> B;", "A : 2a; B : a; A -> B;"}) {
        EXPECT_THAT(encoding(model, {{"a", 2}}),
                    HasSubstr("### Premiere ligne ###\n0 notin Da1;\n0 notin Da2;\n\n######################\n"));
    }
}

TEST(Formula, LetsArcsOfTheOnlyInitialNodeStartAtPositionOne) {
    const std::string text = encoding("A : ; A -> B; B -> A;", {});
    EXPECT_THAT(text, HasSubstr("all1 x : TR1(x)\n   => TR2(x-2) | x=1 | false;\n"
                                "all1 x : TR2(x)\n   => TR1(x-2) | false;\n"
                                "all1 x : TR(x) => TR0(x+1);\n\n"));
}

TEST(Formula, LetsNoArcStartWithoutAnInitialNode) {
    const std::string text = encoding("A -> A; B -> C;", {});
    EXPECT_THAT(text, HasSubstr("all1 x : TR1(x)\n   => TR1(x-2) | false;\n"
                                "all1 x : TR2(x)\n   => false;\n"
                                "all1 x : TR(x) => TR0(x+1);\n\n"));
}

TEST(Formula, NumbersTheArcsInTheModelsOrder) {
    const auto model = readModel("A : ; A -> B : x -> ; A -> C : y -> ; B -> A : z -> ;");
    const std::vector<Modele::Arc*> arcs = model->getArcs();
    ASSERT_EQ(arcs.size(), 3u);
    const std::string text = encoding(model.get(), {{"x", 1}, {"y", 1}, {"z", 1}});
    for (std::size_t a = 0; a < arcs.size(); ++a) {
        const std::string used = arcs[a]->getRegle()->getIn().begin()->first;
        std::string effect = "all1 x : TR" + std::to_string(a + 1) + "(x)\n   => ";
        for (const char* molecule : {"x", "y", "z"}) {
            effect += (used == molecule ? "S1" : "S0") + std::string(molecule) + "(x) & S0" + molecule + "(x+1) & ";
        }
        EXPECT_THAT(text, HasSubstr(effect + "true;\n"));
    }
}

TEST(Formula, IgnoresMoleculesWithoutABound) {
    const std::string text = encoding("A : a never; A -> B : a never -> never2;", {{"a", 1}});
    EXPECT_THAT(text, Not(HasSubstr("never")));
    EXPECT_THAT(text, HasSubstr("=> S1a(x) & S0a(x+1) & true;\n"));
}

TEST(Formula, NamesACountBeyondTheBoundThoughNoSuchPredicateExists) {
    const std::string text = encoding("A : a; A -> B : 5a -> ;", {{"a", 1}});
    EXPECT_THAT(text, HasSubstr("=> S5a(x) & S0a(x+1) & true;\n"));
    EXPECT_THAT(text, Not(HasSubstr("pred S5a")));
}

TEST(Formula, ListsTheMoleculesOfAMarkingBeyondItsBound) {
    EXPECT_THAT(encoding("A : 3a;", {{"a", 1}}), HasSubstr("0 in Da1;\n0 in Da2;\n0 in Da3;\n####"));
}

TEST(Formula, TakesAnArcWithoutRuleToUseAndMakeNothing) {
    const Bounds bounds{{"a", 1}};
    EXPECT_THAT(encoding("A : a; A -> B;", bounds), HasSubstr("all1 x : TR1(x)\n   => S0a(x) & S0a(x+1) & true;\n"));
    EXPECT_EQ(encoding("A : a; A -> B;", bounds), encoding("A : a; A -> B : -> ;", bounds));
}

TEST(Formula, ListsInItsCountPredicatesWhatSxmRecLists) {
    for (const int bound : {1, 2, 3, 9, 10, 12}) {
        std::string expected = "false;\n";
        for (int k = 0; k <= bound; ++k) {
            expected += "pred S" + std::to_string(k) + "mol(var1 x) = \n";
            const Lines alternatives = SxmRec("mol", bound, k);
            for (std::size_t i = 0; i < alternatives.size(); ++i) {
                expected += "   " + alternatives[i] + (i + 1 < alternatives.size() ? " | " : ";") + "\n";
            }
            expected += "\n";
        }
        // Compared outside the matcher, which would print megabytes.
        EXPECT_NE(encoding("", {{"mol", bound}}).find(expected + "####################\n## Initialisation ##"),
                  std::string::npos)
            << "bound " << bound;
    }
}

// --- Its length ---

void expectLengthIsKnown(Modele::KLV* model, const Bounds& bounds) {
    const std::string text = encoding(model, bounds);
    EXPECT_EQ(toFormule(model, bounds, text.size()), text);
    EXPECT_THAT([&] { toFormule(model, bounds, text.size() - 1); },
                ThrowsMessage<std::logic_error>("Formula too large"));
}

TEST(FormulaLength, IsKnownToTheByteBeforeTheTextIsBuilt) {
    const auto model = readModel("A : 2a; B : b; A -> B : a -> mol; B -> A : 12mol -> ; A -> A;");
    expectLengthIsKnown(model.get(), {});
    for (int bound = 1; bound <= 13; ++bound) {
        expectLengthIsKnown(model.get(), {{"mol", bound}});
        expectLengthIsKnown(model.get(), {{"a", bound}, {"b", 14 - bound}, {"mol", 1}});
    }
}

TEST(FormulaLength, IsKnownForRandomModels) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        const auto model = randomModel(seed, {.nodes = 8, .arcs = 40, .molecules = 5, .rule = 3, .marking = 3});
        const int bound = 1 + static_cast<int>(seed % 7);
        expectLengthIsKnown(model.get(), {{"a", bound}, {"c", 8 - bound}});
    }
}

TEST(FormulaLength, HasALimitForAnyBound) {
    const auto model = readModel("A : a;");
    for (const int bound : {22, 25, 29, 30, 31, 32, 63, 64, 65, 1000, std::numeric_limits<int>::max()}) {
        EXPECT_THAT(
            [&] {
                encoding(model.get(), {{"a", bound}});
            },
            ThrowsMessage<std::logic_error>("Formula too large"))
            << "bound " << bound;
    }
}

TEST(FormulaLength, HasALimitForMarkingsThatFakeBoundsAllow) {
    const auto model = readModel("A : 2147483647a;");
    EXPECT_THAT([&] { encoding(model.get(), {{"a", 1}}); }, ThrowsMessage<std::logic_error>("Formula too large"));
}

TEST(FormulaLength, AddsUpOverManyMoleculesThatEachStayBelowTheLimit) {
    Bounds bounds;
    for (int i = 0; i < 8; ++i) bounds["m" + std::to_string(i)] = 19;  // about 150 MB each
    Modele::KLV model;
    EXPECT_THAT([&] { encoding(&model, bounds); }, ThrowsMessage<std::logic_error>("Formula too large"));
}

// --- The run of the tool ---

class Satisfiability : public testing::Test {
protected:
    Satisfiability() { directory.setTina(tinaThatPrints("0 : q1 ma\n1 : q2 mb\n")); }

    /// mona that writes down its command line and the file that it is to read, and answers.
    void setMonaThatAnswers(const std::string& answer) const {
        directory.setMona("echo \"$@\" >> calls\ncp .KLV.mona given\ncat <<'ANSWER'\n" + answer + "\nANSWER\n");
    }

    void expectSyntaxError(const std::string& formula = "true") {
        const Traces trace;
        EXPECT_THAT([&] { isSat(model.get(), formula); }, ThrowsMessage<std::logic_error>("Syntaxe error"));
    }

    WorkingDirectory directory;
    std::unique_ptr<Modele::KLV> model = readModel("A : a; A -> B : a -> b;");
};

TEST_F(Satisfiability, HandsTheWorkedExampleToTheToolAndLeavesItInPlace) {
    setMonaThatAnswers("A satisfying example of least length (2) is:");
    const Traces trace;
    EXPECT_TRUE(isSat(model.get(), "ex1 p: p in Db1"));
    EXPECT_EQ(trace.text(), golden("one-initial-node") + "\n");
    EXPECT_EQ(readFile(".KLV.mona"), golden("one-initial-node") + "\n") << "echo ends the line";
    EXPECT_EQ(readFile("given"), golden("one-initial-node") + "\n");
    EXPECT_EQ(readFile("calls"), "-q .KLV.mona\n");
}

TEST_F(Satisfiability, AddsNothingForAnEmptyFormula) {
    setMonaThatAnswers("A satisfying example");
    const std::string text = encoding(model.get(), {{"a", 1}, {"b", 1}});
    const Traces trace;
    EXPECT_TRUE(isSat(model.get(), ""));
    EXPECT_EQ(trace.text(), text + "\n");
    EXPECT_EQ(readFile(".KLV.mona"), text + "\n");
}

TEST_F(Satisfiability, ReplacesWhatAnEarlierQuestionLeft) {
    setMonaThatAnswers("A satisfying example");
    writeFile(".KLV.mona", std::string(1'000'000, 'x'));
    const Traces trace;
    isSat(model.get(), "");
    EXPECT_EQ(readFile(".KLV.mona"), trace.text());
}

TEST_F(Satisfiability, GoesByTheToolsVerdict) {
    const Traces trace;
    const std::vector<std::pair<std::string, bool>> answers = {
        {"Formula is unsatisfiable\n\nA counter-example of least length (0) is:", false},
        {"A counter-example of least length (0) is:\nx\n\nA satisfying example of least length (1) is:", true},
        {"Formula is valid\n\nA satisfying example of least length (0) is:", true},
        {"A satisfying example\nFormula is unsatisfiable", false},
    };
    for (const auto& [answer, verdict] : answers) {
        setMonaThatAnswers(answer);
        EXPECT_EQ(isSat(model.get(), "true"), verdict) << answer;
    }
}

TEST_F(Satisfiability, IsASyntaxErrorWithoutAVerdict) {
    for (const char* answer :
         {"", "Error: syntax error", "Formula is valid", "a satisfying example", "out of memory"}) {
        setMonaThatAnswers(answer);
        expectSyntaxError();
    }
}

TEST_F(Satisfiability, IsASyntaxErrorWhenTheToolFails) {
    testing::internal::CaptureStderr();
    for (const char* script : {"exit 1\n", "kill -9 $$\n", "echo 'A satisfying example' >&2\n", ""}) {
        directory.setMona(script);
        expectSyntaxError();
    }
    std::filesystem::permissions("bin/mona", std::filesystem::perms::owner_read);
    setenv("PATH", (directory.path() / "bin").c_str(), 1);
    expectSyntaxError();
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("mona"));
}

TEST_F(Satisfiability, IsASyntaxErrorWhenTheToolIsMissing) {
    std::filesystem::create_directories("cat-only");
    std::filesystem::create_symlink("/bin/cat", "cat-only/cat");
    setenv("PATH", (directory.path() / "cat-only").c_str(), 1);
    testing::internal::CaptureStderr();
    expectSyntaxError();
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("mona: not found"));
}

TEST_F(Satisfiability, ReadsPastMegabytesToTheVerdict) {
    directory.setMona("yes noise | head -c 5000000\necho A satisfying example\nyes noise | head -c 5000000\n");
    const Traces trace;
    EXPECT_TRUE(isSat(model.get(), "true"));
}

TEST_F(Satisfiability, IsNotAskedOfAnUnboundedModel) {
    directory.setTina("echo not bounded\n");
    setMonaThatAnswers("A satisfying example");
    const Traces trace;
    EXPECT_THAT([&] { isSat(model.get(), "true"); }, ThrowsMessage<std::logic_error>("KLV not bounded"));
    EXPECT_EQ(trace.text(), "");
    EXPECT_FALSE(std::filesystem::exists(".KLV.mona"));
    EXPECT_FALSE(std::filesystem::exists("calls"));
}

TEST_F(Satisfiability, RunsNoShellOnAFormulaWithASingleQuote) {
    setMonaThatAnswers("A satisfying example");
    const std::string attack = "true'; touch broken; echo '";
    const Traces trace;
    EXPECT_THAT([&] { isSat(model.get(), attack); }, ThrowsMessage<std::logic_error>("Syntaxe error"));
    EXPECT_THAT(trace.text(), EndsWith(attack + ";\n")) << "it is refused after the trace";
    EXPECT_FALSE(std::filesystem::exists("broken"));
    EXPECT_FALSE(std::filesystem::exists("calls"));
    EXPECT_FALSE(std::filesystem::exists(".KLV.mona"));
}

TEST_F(Satisfiability, PassesWhatTheShellWouldExpandUnchanged) {
    setMonaThatAnswers("A satisfying example");
    const std::string formula = "\"$HOME\" `touch broken` $(touch broken) ! & | ; > broken < * ? ~ # {a,b} \r\n\t -n";
    const Traces trace;
    EXPECT_TRUE(isSat(model.get(), formula));
    EXPECT_EQ(readFile(".KLV.mona"), encoding(model.get(), {{"a", 1}, {"b", 1}}) + formula + ";\n");
    EXPECT_FALSE(std::filesystem::exists("broken"));
}

TEST_F(Satisfiability, NeverRunsTheToolWhenItsFileCannotBeWritten) {
    setMonaThatAnswers("A satisfying example");
    std::filesystem::create_directory(".KLV.mona");
    testing::internal::CaptureStderr();
    expectSyntaxError();
    const std::string complaint = testing::internal::GetCapturedStderr();
    directory.setTina(tinaThatPrints("0 : ma*12\n"));
    expectSyntaxError();
    EXPECT_THAT(complaint, HasSubstr(".KLV.mona"));
    EXPECT_FALSE(std::filesystem::exists("calls"));
}

// --- Texts longer than one argument ---

class LongFormula : public Satisfiability {
protected:
    LongFormula() {
        directory.setTina(tinaThatPrints("0 : ma*10\n"));
        setMonaThatAnswers("Formula is unsatisfiable");
    }
    std::string text() const { return encoding(model.get(), {{"a", 10}}); }
};

TEST_F(LongFormula, ReachesTheToolLikeAShortOne) {
    ASSERT_GT(text().size(), 128u * 1024);
    for (const std::string question : {"", "ex1 p: p in Da1;"}) {
        const Traces trace;
        EXPECT_FALSE(isSat(model.get(), question.substr(0, question.size() - (question.empty() ? 0 : 1))));
        EXPECT_TRUE(trace.text() == text() + question + "\n");
        EXPECT_TRUE(readFile(".KLV.mona") == text() + question + "\n") << "the question: " << question;
        EXPECT_EQ(readFile(".KLV.mona"), readFile("given"));
    }
    EXPECT_EQ(readFile("calls"), "-q .KLV.mona\n-q .KLV.mona\n");
}

TEST_F(LongFormula, IsAQuestionOfAnyLength) {
    const std::string question = "true" + std::string(300'000, ' ') + "& true";
    const Traces trace;
    EXPECT_FALSE(isSat(model.get(), question));
    EXPECT_TRUE(readFile("given") == text() + question + ";\n");
    directory.setTina(tinaThatPrints("0 : ma\n"));
    EXPECT_FALSE(isSat(model.get(), question));
    EXPECT_TRUE(readFile("given") == encoding(model.get(), {{"a", 1}}) + question + ";\n");
}

TEST_F(LongFormula, HasItsBackslashesReadByEchoAsInAShortOne) {
    const std::string question = R"(Da1\Db1 \\ \t \0101 \\\\ T0 \ T1\c lost)";
    const Traces trace;
    isSat(model.get(), question);
    const std::string inLong = readFile(".KLV.mona").substr(text().size());
    directory.setTina(tinaThatPrints("0 : ma\n"));
    isSat(model.get(), question);
    const std::string inShort = readFile(".KLV.mona").substr(encoding(model.get(), {{"a", 1}}).size());
    EXPECT_EQ(inLong, inShort);
    EXPECT_EQ(inShort, execShell("echo '" + question + ";'"));
}

TEST_F(LongFormula, IsRefusedWithASingleQuote) {
    expectSyntaxError("'");
    EXPECT_FALSE(std::filesystem::exists(".KLV.mona"));
}

TEST_F(LongFormula, HasTheSameEffectAroundTheLongestArgument) {
    const std::string begin = "echo '";
    const std::string end = "' > .KLV.mona && mona -q .KLV.mona";
    const std::string encoded = encoding(model.get(), {{"a", 1}});
    directory.setTina(tinaThatPrints("0 : ma\n"));
    for (const std::size_t length : {131070u, 131071u, 131072u, 131073u}) {
        const std::string question = std::string(length - begin.size() - encoded.size() - 1 - end.size(), ' ');
        const Traces trace;
        EXPECT_FALSE(isSat(model.get(), question));
        EXPECT_TRUE(readFile("given") == encoded + question + ";\n") << "a command of " << length << " bytes";
    }
}

TEST_F(LongFormula, IsRefusedBeyondAGibibyteBeforeAnythingIsBuilt) {
    for (const char* bound : {"23", "30", "40", "1000000", "99999999999999999999"}) {
        directory.setTina(tinaThatPrints(std::string("0 : ma*") + bound + "\n"));
        const Traces trace;
        const auto before = std::chrono::steady_clock::now();
        EXPECT_THAT([&] { isSat(model.get(), "true"); }, ThrowsMessage<std::logic_error>("Formula too large"));
        EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
        EXPECT_EQ(trace.text(), "");
        EXPECT_FALSE(std::filesystem::exists(".KLV.mona"));
        EXPECT_FALSE(std::filesystem::exists("calls"));
    }
}

/// Swallows what is written to it, as a terminal does.
class Terminal : public std::streambuf {
    int overflow(int c) override { return c; }
    std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

/// The most memory that this process has used, in bytes.
std::size_t peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word != "VmHWM:") continue;
        std::size_t kilobytes = 0;
        status >> kilobytes;
        return kilobytes * 1024;
    }
    throw std::runtime_error("no VmHWM");
}

TEST_F(LongFormula, OfManyMegabytesIsHeldLessThanTwice) {
    directory.setTina(tinaThatPrints("0 : ma*18\n"));
    directory.setMona("wc -c < .KLV.mona > size\necho A satisfying example\n");
    Terminal terminal;
    std::streambuf* before = std::cout.rdbuf(&terminal);
    const std::size_t memoryBefore = peakMemory();
    EXPECT_TRUE(isSat(model.get(), "true"));
    const std::size_t used = peakMemory() - memoryBefore;
    std::cout.rdbuf(before);

    const std::size_t size = std::stoul(readFile("size"));
    EXPECT_GT(size, 50u << 20);
    EXPECT_LT(used, 2 * size);
}

}  // namespace
