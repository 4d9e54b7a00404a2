// What is no .klv file: every error ends the program with status 255 and says the line and the reason, whatever stands
// in the file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "Reading.h"
#include "ReferenceReader.h"
#include "common/Toolkit.h"

namespace {

using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::Not;

void expectError(const std::string& text, const std::string& error) {
    Reader reader;
    EXPECT_EXIT(reader.read(text), ExitedWithCode(255), testing::Eq(error + "\n")) << text;
}

TEST(MalformedFile, ANameAloneIsASyntaxError) {
    expectError("q ;", "line 1: syntax error");
    expectError("q", "line 1: syntax error");
    expectError("q q", "line 1: syntax error");
}

TEST(MalformedFile, APositionWithoutItsSemicolonIsReportedAtTheEndOfTheFile) {
    expectError("q(1,2)", "line 1: syntax error");
    expectError("q(1,2)\n\n", "line 3: syntax error");
}

TEST(MalformedFile, AMissingSemicolonIsReportedOnTheLineOfTheNextToken) {
    expectError("a -> b\nc(1, 2);", "line 2: syntax error");
    expectError("a -> b : x -> y\n\n\nc(1, 2);", "line 4: syntax error");
    expectError("a(1, 2) // no semicolon\nc(1, 2);", "line 2: syntax error");
    expectError("a : x\nb(1, 2);", "line 2: syntax error");
}

TEST(MalformedFile, AnArcWithoutItsSemicolonIsASyntaxError) { expectError("a -> b", "line 1: syntax error"); }

TEST(MalformedFile, AMarkingWithAnArrowInItIsASyntaxError) { expectError("q : a -> b ;", "line 1: syntax error"); }

TEST(MalformedFile, ARuleWithoutAnArrowOrWithTwoIsASyntaxError) {
    expectError("a -> b : x;", "line 1: syntax error");
    expectError("a -> b : ;", "line 1: syntax error");
    expectError("a -> b : x -> y -> z;", "line 1: syntax error");
}

TEST(MalformedFile, AnArcWithoutOneOfItsNodesIsASyntaxError) {
    expectError("-> b;", "line 1: syntax error");
    expectError("a -> ;", "line 1: syntax error");
    expectError("a -> b c;", "line 1: syntax error");
    expectError("a -> 2 b;", "line 1: syntax error");
}

TEST(MalformedFile, ACountWithoutAMoleculeIsASyntaxError) {
    expectError("q : 2;", "line 1: syntax error");
    expectError("q : 2 3 a;", "line 1: syntax error");
    expectError("a -> b : 2 -> ;", "line 1: syntax error");
    expectError("a -> b : -> 2 ;", "line 1: syntax error");
}

TEST(MalformedFile, APositionWithoutOneOfItsPartsIsASyntaxError) {
    expectError("q(1 2);", "line 1: syntax error");
    expectError("q(1,);", "line 1: syntax error");
    expectError("q(,2);", "line 1: syntax error");
    expectError("q();", "line 1: syntax error");
    expectError("q(1, 2;", "line 1: syntax error");
    expectError("q 1, 2);", "line 1: syntax error");
    expectError("(1, 2);", "line 1: syntax error");
    expectError("q(1, 2, 3);", "line 1: syntax error");
    expectError("q(x, 2);", "line 1: syntax error");
}

TEST(MalformedFile, ADeclarationThatBeginsWithANumberIsASyntaxError) {
    expectError("1(1, 2);", "line 1: syntax error");
    expectError("2a -> b;", "line 1: syntax error");
}

TEST(MalformedFile, ASemicolonAloneIsASyntaxError) {
    expectError(";", "line 1: syntax error");
    expectError("a(1, 2);;", "line 1: syntax error");
}

TEST(MalformedFile, ABraceIsASyntaxErrorWhereverItStands) {
    expectError("{", "line 1: syntax error");
    expectError("}", "line 1: syntax error");
    expectError("{}", "line 1: syntax error");
    expectError("q {", "line 1: syntax error");
    expectError("q : { a };", "line 1: syntax error");
    expectError("a -> b : {", "line 1: syntax error");
    expectError("a(1, 2);\n}", "line 2: syntax error");
}

TEST(MalformedFile, ANegativePositionIsALexicalErrorAtTheMinus) {
    expectError("q(-1, 2);", "line 1: lexical error <->");
    expectError("q(1, 2);\nq(1, -2);", "line 2: lexical error <->");
}

TEST(MalformedFile, ANegativeCountIsALexicalErrorAtTheMinus) { expectError("q : -1a;", "line 1: lexical error <->"); }

TEST(MalformedFile, AFractionIsALexicalErrorAtThePoint) { expectError("q(1.5, 2);", "line 1: lexical error <.>"); }

TEST(MalformedFile, LinesThatEndWithACarriageReturnAreALexicalError) {
    expectError("a(1, 2);\r\nb(3, 4);\r\n", "line 1: lexical error <\r>");
}

TEST(MalformedFile, ALetterBeyondAsciiIsALexicalError) {
    expectError("a(1, 2);\n\xC3\xA9(1, 2);", "line 2: lexical error <\xC3>");
}

TEST(MalformedFile, AByteOrderMarkIsALexicalError) {
    expectError(
        "\xEF\xBB\xBF"
        "a(1, 2);",
        "line 1: lexical error <\xEF>");
}

TEST(MalformedFile, ANulByteIsALexicalError) {
    expectError(std::string("a(1, 2);\n\0", 10), "line 2: lexical error <>");
}

TEST(MalformedFile, ANameOf256CharactersIsTooLong) {
    expectError(std::string(256, 'n') + "(1, 2);", "line 1: name too long");
    expectError("q : \n" + std::string(256, 'm') + ";", "line 2: name too long");
}

TEST(MalformedFile, ANumberBeyondTheIntRangeIsOutOfRange) {
    expectError("q(2147483648, 0);", "line 1: number out of range");
    expectError("q : \n\n99999999999999999999999a;", "line 3: number out of range");
}

TEST(MalformedFile, CommentsAndBlankLinesCountForTheLineOfAnError) {
    expectError("// a model\n\na(1, 2); // here\n\n// more\n?", "line 6: lexical error <?>");
}

TEST(MalformedFile, TheDeclarationsBeforeTheErrorHaveBeenApplied) {
    const Ending ending = endingOfReading("a(1, 2);\nb(3, 4);\na -> b\nc(5, 6);");
    EXPECT_EQ(ending.status, 255);
    EXPECT_EQ(ending.errors, "line 4: syntax error\n");
    std::size_t added = 0;
    for (std::size_t at = ending.output.find("add noeud ("); at != std::string::npos;
         at = ending.output.find("add noeud (", at + 1))
        ++added;
    EXPECT_EQ(added, 2U) << ending.output;
}

TEST(MalformedFile, AnErrorInTheSecondFileOfARunCountsItsOwnLines) {
    Reader reader;
    ASSERT_TRUE(reader.read("a(1, 2);\n\n\n\nb(3, 4); // no end of line"));
    EXPECT_EXIT(reader.read("a(1, 2);\n?"), ExitedWithCode(255), testing::Eq("line 2: lexical error <?>\n"));
}

// A text that has every kind of declaration, of token and of blank.
constexpr auto complete =
    "// every form\n"
    "alpha(10, 20); b2(007,4);\n"
    "\talpha -> b2 : 2x 3 y -> z; // rule\n"
    "b2->b2: -> ;alpha -> _c;\n"
    "alpha : 2x y; _c : ;\n";

TEST(MalformedFile, AFileCutAtAnyByteIsEitherReadOrRefusedWithItsLine) {
    const std::string whole = complete;
    int readable = 0;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const std::string cut = whole.substr(0, length);
        const std::string complaint = complaintAbout(cut);
        readable += complaint.empty() ? 1 : 0;
        const Ending ending = endingOfReading(cut);
        EXPECT_EQ(ending.status, complaint.empty() ? 0 : 255) << cut;
        EXPECT_EQ(ending.errors, complaint) << cut;
    }
    EXPECT_GT(readable, 20);  // inside the comments and after every ";"
}

TEST(MalformedFile, AFileWithAnyByteReplacedIsEitherReadOrRefusedWithItsLine) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> byte(0, 255);
    for (std::size_t at = 0; at < std::string(complete).size(); ++at) {
        std::string damaged = complete;
        damaged[at] = static_cast<char>(byte(random));
        const std::string complaint = complaintAbout(damaged);
        const Ending ending = endingOfReading(damaged);
        EXPECT_EQ(ending.status, complaint.empty() ? 0 : 255) << damaged;
        EXPECT_EQ(ending.errors, complaint) << damaged;
    }
}

TEST(MalformedFile, GarbageIsRefusedWithItsLine) {
    std::mt19937 random(2);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int file = 0; file < 50; ++file) {
        std::string garbage(1000, ' ');
        for (char& c : garbage) c = static_cast<char>(byte(random));
        const Ending ending = endingOfReading(garbage);
        EXPECT_EQ(ending.status, 255);
        EXPECT_EQ(ending.errors, complaintAbout(garbage));
    }
}

TEST(MalformedFile, AnySequenceOfTokensIsEitherReadOrRefusedWithItsLine) {
    const std::vector<std::string> tokens = {
        "a",     "b", "3",       "->",     "(",      ",",    ")",        ":",       ";",       "\n",
        "//c\n", "{", "a(1, 2)", "a -> b", ": x ->", ": 2x", "a(1, 2);", "b : 2x;", "a -> b;", "c -> d : x -> 2y z;\n",
        "e : ;"};
    std::mt19937 random(3);
    std::uniform_int_distribution<std::size_t> token(0, tokens.size() - 1);
    std::uniform_int_distribution<int> count(1, 5);
    int readable = 0;
    for (int file = 0; file < 200; ++file) {
        std::string text;
        for (int i = count(random); i > 0; --i) text += tokens[token(random)] + " ";
        const std::string complaint = complaintAbout(text);
        readable += complaint.empty() ? 1 : 0;
        const Ending ending = endingOfReading(text);
        EXPECT_EQ(ending.status, complaint.empty() ? 0 : 255) << text;
        EXPECT_EQ(ending.errors, complaint) << text;
    }
    EXPECT_GT(readable, 10);
    EXPECT_LT(readable, 190);
}

}  // namespace
