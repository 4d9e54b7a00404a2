// Loading one file after another: what is opened, what is cleared and what is left behind.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "Lecture.h"
#include "Reading.h"
#include "common/Toolkit.h"

namespace {

namespace fs = std::filesystem;

/// A network that already holds a model.
class Loading : public testing::Test {
protected:
    void SetUp() override { reader.read("old(1, 2); old : 2x; old -> older : x -> y;"); }

    /// Asserts that nothing happens.
    void expectRefused(const std::string& path) {
        const Content before = contentOf(reader);
        const Traces traces;
        EXPECT_FALSE(reader.controleur.parser(path));
        EXPECT_EQ(traces.text(), "");
        EXPECT_EQ(contentOf(reader), before);
    }

    Folder folder;
    Reader reader;
};

TEST_F(Loading, AFileReplacesTheModelAndItsDrawing) {
    ASSERT_TRUE(reader.read("new(3, 4);"));
    EXPECT_EQ(reader.model->getNoeuds().size(), 1U);
    EXPECT_EQ(reader.drawing->toString(), "new(3, 4);\n");
}

TEST_F(Loading, AnEmptyFileEmptiesTheModel) {
    ASSERT_TRUE(reader.read(""));
    EXPECT_EQ(contentOf(reader), Content());
    EXPECT_EQ(reader.controleur.toString(), "");
}

TEST_F(Loading, AutomaticNamesStartAnewWithTheFile) {
    reader.controleur.addNoeud(0, 0);
    reader.read("");
    EXPECT_EQ(reader.controleur.addNoeud(0, 0)->getModele()->getName(), "q1");
}

TEST_F(Loading, AutomaticNamesSkipTheNamesOfTheFile) {
    reader.read("q1(1, 2); q3(3, 4);");
    EXPECT_EQ(reader.controleur.addNoeud(0, 0)->getModele()->getName(), "q2");
    EXPECT_EQ(reader.controleur.addNoeud(0, 0)->getModele()->getName(), "q4");
}

TEST_F(Loading, AFileThatDoesNotExistIsRefusedAndNothingChanges) {
    expectRefused(folder / "missing.klv");
    expectRefused("");
}

TEST_F(Loading, APathThroughAFileIsRefusedAndNothingChanges) { expectRefused(folder.write("file", "") + "/model.klv"); }

TEST_F(Loading, ADirectoryIsRefusedAndNothingChanges) {
    expectRefused(folder.path());
    expectRefused("/");
}

TEST_F(Loading, ALinkToNothingIsRefusedAndNothingChanges) {
    fs::create_symlink(folder / "missing.klv", folder / "link.klv");
    expectRefused(folder / "link.klv");
}

TEST_F(Loading, ALinkToAFileIsFollowed) {
    fs::create_symlink(folder.write("model.klv", "linked(5, 6);"), folder / "link.klv");
    ASSERT_TRUE(reader.controleur.parser(folder / "link.klv"));
    EXPECT_EQ(reader.drawing->toString(), "linked(5, 6);\n");
}

TEST_F(Loading, ANameOfAFileMayHoldAnyByte) {
    const std::string path = folder.write("a b'\"\n\xFF.klv", "odd(5, 6);");
    ASSERT_TRUE(reader.controleur.parser(path));
    EXPECT_EQ(reader.drawing->toString(), "odd(5, 6);\n");
}

TEST_F(Loading, TheSecondFileIsReadFromItsBeginningAlthoughTheFirstHadNoLastNewline) {
    ASSERT_TRUE(reader.read("a(1, 2);"));
    ASSERT_TRUE(reader.read("b(3, 4);"));
    EXPECT_EQ(reader.drawing->toString(), "b(3, 4);\n");
}

TEST_F(Loading, TheSecondFileIsReadFromItsBeginningAlthoughTheFirstEndedInAComment) {
    ASSERT_TRUE(reader.read("a(1, 2); // the end"));
    ASSERT_TRUE(reader.read("b(3, 4);\nc(5, 6);"));
    EXPECT_EQ(reader.drawing->toString(), "b(3, 4);\nc(5, 6);\n");
}

TEST_F(Loading, ALongFileAfterAShortOneAndAShortOneAfterALongOneAreReadWhole) {
    std::string text;
    for (int i = 0; i < 5000; ++i) text += "node" + std::to_string(i) + "(1, 2);\n";
    ASSERT_TRUE(reader.read(text));
    EXPECT_EQ(reader.drawing->toString(), text);
    ASSERT_TRUE(reader.read("a(1, 2);"));
    EXPECT_EQ(reader.drawing->toString(), "a(1, 2);\n");
    ASSERT_TRUE(reader.read(text));
    EXPECT_EQ(reader.drawing->toString(), text);
}

TEST_F(Loading, LinesAreCountedFromOneInEveryFile) {
    reader.read("\n\n\n");
    EXPECT_EQ(lineNumber, 4);
    reader.read("\n");
    EXPECT_EQ(lineNumber, 2);
    reader.read("");
    EXPECT_EQ(lineNumber, 1);
}

TEST_F(Loading, AfterwardsTheScannerHasNoInput) { EXPECT_EQ(yyin, nullptr); }

TEST_F(Loading, TheControllerThatReadsReceivesTheModel) {
    EXPECT_EQ(glob_controleur, &reader.controleur);
    Reader other;
    ASSERT_TRUE(other.read("b(3, 4);"));
    EXPECT_EQ(glob_controleur, &other.controleur);
    EXPECT_EQ(other.drawing->toString(), "b(3, 4);\n");
    EXPECT_EQ(reader.model->getNoeuds().size(), 2U);
}

TEST_F(Loading, TheTracesTellTheOldNodesGoingAndTheNewOnesComing) {
    const Traces traces;
    ASSERT_TRUE(reader.read("a -> b;"));
    EXPECT_EQ(traces.count("Modele::Noeud::~Noeud"), 2);
    EXPECT_EQ(traces.count("sucide !"), 2);
    EXPECT_EQ(traces.count("POP !"), 2);
    EXPECT_EQ(traces.countPrefix("remove noeud ("), 2);
    EXPECT_EQ(traces.count("Vue::Noeud::~Noeud ()"), 2);
    EXPECT_EQ(traces.count("Arc::~Arc"), 1);
    EXPECT_EQ(traces.countPrefix("Noeud::Noeud ("), 2);
    EXPECT_EQ(traces.countPrefix("add noeud ("), 2);
    EXPECT_LT(traces.text().rfind("Vue::Noeud::~Noeud ()"), traces.text().find("add noeud ("));
}

TEST_F(Loading, AModelBuiltWithoutTheDrawingIsShownNodeByNodeAndArcByArc) {
    Network network;
    Modele::Noeud* const a = network.model->addNoeud("a");
    Modele::Noeud* const b = network.model->addNoeud("b");
    Modele::Arc* const arc = a->addArc(b, nullptr);
    network.controleur.chargeNoeud(a, 12, 34);
    network.controleur.chargeArc(arc);
    EXPECT_EQ(network.drawing->toString(), "a(12, 34);\nb(0, 0);\n");
    EXPECT_EQ(network.model->getArcs().size(), 1U);
    network.controleur.chargeNoeud(a, -5, 6);
    EXPECT_EQ(network.drawing->toString(), "a(-5, 6);\nb(0, 0);\n");
}

TEST_F(Loading, AnArcBuiltWithoutTheDrawingBringsItsSourceAndThenItsDestination) {
    Network network;
    Modele::Noeud* const destination = network.model->addNoeud("a");
    network.controleur.chargeArc(network.model->addNoeud("b")->addArc(destination, nullptr));
    EXPECT_EQ(network.drawing->toString(), "b(0, 0);\na(0, 0);\n");
}

}  // namespace
