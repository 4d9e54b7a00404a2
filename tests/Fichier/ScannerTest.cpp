// The scanner, token by token.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include "Lecture.h"
#include "Reading.h"
#include "bison.hpp"
#include "common/Toolkit.h"

namespace {

constexpr int arrow = '>';

/// A token with its value and the line it stands on.
struct Token {
    int code;
    std::string text = {};
    int integer = 0;
    int line = 1;
    friend bool operator==(const Token&, const Token&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Token& token) {
        return out << token.code << " \"" << token.text << "\" " << token.integer << " on line " << token.line;
    }
};

Token name(const std::string& text, int line = 1) { return {NAME, text, 0, line}; }
Token number(int value, int line = 1) { return {INT, "", value, line}; }
Token sign(int code, int line = 1) { return {code, "", 0, line}; }

/// A stream that reads `text`, which must outlive it.
std::FILE* streamOf(const std::string& text) {
    return fmemopen(const_cast<char*>(text.data()), text.size(), "r");  // the stream only reads
}

std::vector<Token> scan(const std::string& text) {
    std::FILE* const stream = streamOf(text);
    lineNumber = 1;
    restartScanner(stream);
    std::vector<Token> tokens;
    for (int code = yylex(); code != 0; code = yylex()) {
        Token token = sign(code, lineNumber);
        if (code == NAME) token.text = yylval.str;
        if (code == INT) token.integer = yylval.integer;
        tokens.push_back(token);
    }
    std::fclose(stream);
    return tokens;
}

using Tokens = std::vector<Token>;

void expectError(const std::string& text, const std::string& message) {
    EXPECT_EXIT(scan(text), testing::ExitedWithCode(255), testing::Eq(message + "\n")) << text;
}

TEST(Scanner, AnEmptyTextHasNoToken) { EXPECT_EQ(scan(""), Tokens()); }

TEST(Scanner, TheTokensHaveTheAgreedCodes) {
    EXPECT_EQ(INT, 258);
    EXPECT_EQ(NAME, 259);
    EXPECT_EQ(scan("(),:;{}->"),
              Tokens({sign(40), sign(41), sign(44), sign(58), sign(59), sign(123), sign(125), sign(62)}));
}

TEST(Scanner, DigitsAreANumber) {
    EXPECT_EQ(scan("0 7 42 1234567890"), Tokens({number(0), number(7), number(42), number(1234567890)}));
}

TEST(Scanner, LeadingZerosDoNotChangeANumber) {
    EXPECT_EQ(scan("007 00 000 0010"), Tokens({number(7), number(0), number(0), number(10)}));
}

TEST(Scanner, ThousandsOfLeadingZerosDoNotChangeANumber) {
    const std::string zeros(20000, '0');
    EXPECT_EQ(scan(zeros + "12"), Tokens({number(12)}));
    EXPECT_EQ(scan(zeros), Tokens({number(0)}));
    EXPECT_EQ(scan(zeros + "2147483647"), Tokens({number(INT_MAX)}));
    EXPECT_EQ(scan(zeros + "a"), Tokens({number(0), name("a")}));
}

TEST(Scanner, TheLargestNumberIsTheLargestInt) { EXPECT_EQ(scan("2147483647"), Tokens({number(INT_MAX)})); }

TEST(Scanner, ANumberBeyondTheIntRangeIsAnError) {
    expectError("2147483648", "line 1: number out of range");
    expectError("4294967296", "line 1: number out of range");
    expectError("9999999999", "line 1: number out of range");
    expectError("10000000000", "line 1: number out of range");
    expectError("9223372036854775808", "line 1: number out of range");
    expectError("\n\n18446744073709551616", "line 3: number out of range");
    expectError(std::string(20000, '0') + "2147483648", "line 1: number out of range");
    expectError(std::string(20000, '9'), "line 1: number out of range");
}

TEST(Scanner, ANameBeginsWithALetterOrAnUnderscoreAndGoesOnWithDigitsToo) {
    EXPECT_EQ(scan("a Z _ q1 a_2 _0 Ab9_z"),
              Tokens({name("a"), name("Z"), name("_"), name("q1"), name("a_2"), name("_0"), name("Ab9_z")}));
}

TEST(Scanner, EveryLetterMayStandInAName) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789";
    EXPECT_EQ(scan(letters), Tokens({name(letters)}));
}

TEST(Scanner, NamesDifferByCase) { EXPECT_EQ(scan("abc ABC"), Tokens({name("abc"), name("ABC")})); }

TEST(Scanner, ANameOf255CharactersIsRead) {
    const std::string longest(255, 'n');
    EXPECT_EQ(scan(longest), Tokens({name(longest)}));
    EXPECT_EQ(scan(longest + "(" + longest + ";"), Tokens({name(longest), sign('('), name(longest), sign(';')}));
}

TEST(Scanner, ANameOf256CharactersIsTooLong) {
    expectError(std::string(256, 'n'), "line 1: name too long");
    expectError("a\n" + std::string(257, '_'), "line 2: name too long");
    expectError(std::string(100000, 'n'), "line 1: name too long");
}

TEST(Scanner, ANumberAndTheNameThatFollowsItAreTwoTokens) {
    EXPECT_EQ(scan("2a"), Tokens({number(2), name("a")}));
    EXPECT_EQ(scan("2 a"), scan("2a"));
    EXPECT_EQ(scan("0a 00_ 007b7"), Tokens({number(0), name("a"), number(0), name("_"), number(7), name("b7")}));
    EXPECT_EQ(scan("1234567890x"), Tokens({number(1234567890), name("x")}));
}

TEST(Scanner, TheDigitsOfANameBelongToTheName) { EXPECT_EQ(scan("a2"), Tokens({name("a2")})); }

TEST(Scanner, TokensNeedNoBlanksBetweenThem) {
    EXPECT_EQ(scan("a->b:2x->y;"), Tokens({name("a"), sign(arrow), name("b"), sign(':'), number(2), name("x"),
                                           sign(arrow), name("y"), sign(';')}));
}

TEST(Scanner, SpacesAndTabsAreSkipped) { EXPECT_EQ(scan(" \t a\t\t  b \t"), Tokens({name("a"), name("b")})); }

TEST(Scanner, EveryNewlineCountsALine) {
    EXPECT_EQ(scan("a\nb\n\n c\n"), Tokens({name("a", 1), name("b", 2), name("c", 4)}));
    EXPECT_EQ(lineNumber, 5);
}

TEST(Scanner, ACommentGoesToTheEndOfItsLine) {
    EXPECT_EQ(scan("a // b ; -> {\nc//\n///\nd"), Tokens({name("a", 1), name("c", 2), name("d", 4)}));
}

TEST(Scanner, ACommentMayHoldAnyCharacterButANewline) {
    std::string everything = "//";
    for (int c = 0; c < 256; ++c) {
        if (c != '\n') everything += static_cast<char>(c);
    }
    EXPECT_EQ(scan(everything + "\na"), Tokens({name("a", 2)}));
}

TEST(Scanner, ACommentMayEndWithTheFile) {
    EXPECT_EQ(scan("a // the end"), Tokens({name("a")}));
    EXPECT_EQ(scan("//"), Tokens());
}

TEST(Scanner, ACommentThatEndsWithTheFileDoesNotReachIntoTheNextOne) {
    scan("a // the end");
    EXPECT_EQ(scan("b"), Tokens({name("b")}));
    scan("//");
    EXPECT_EQ(scan("c ; d"), Tokens({name("c"), sign(';'), name("d")}));
}

TEST(Scanner, AFileThatWasNotReadToItsEndDoesNotReachIntoTheNextOne) {
    const std::string left = "a b c // d";
    std::FILE* const stream = streamOf(left);
    restartScanner(stream);
    ASSERT_EQ(yylex(), NAME);
    std::fclose(stream);
    EXPECT_EQ(scan("e"), Tokens({name("e")}));
}

TEST(Scanner, EveryCharacterOutsideTheRulesIsALexicalErrorThatShowsIt) {
    const std::string accepted = "_{}();,: \t\n";
    int errors = 0;
    for (int code = 0; code < 256; ++code) {
        const char c = static_cast<char>(code);
        const bool isAlphanumeric = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (isAlphanumeric || accepted.find(c) != std::string::npos) continue;
        ++errors;
        const std::string shown = c == '\0' ? "" : std::string(1, c);
        const Ending ending = endingOf([&] { scan(std::string("a\nb") + c); });
        EXPECT_EQ(ending.status, 255) << code;
        EXPECT_EQ(ending.errors, "line 2: lexical error <" + shown + ">\n") << code;
    }
    EXPECT_EQ(errors, 256 - 62 - 11);
}

TEST(Scanner, ALoneMinusIsALexicalError) {
    expectError("-", "line 1: lexical error <->");
    expectError("a - > b", "line 1: lexical error <->");
    expectError("a -\n> b", "line 1: lexical error <->");
    expectError("q(-5", "line 1: lexical error <->");
    expectError("--", "line 1: lexical error <->");
}

TEST(Scanner, ALoneGreaterThanIsALexicalError) { expectError("a > b", "line 1: lexical error <>>"); }

TEST(Scanner, ALoneSlashIsALexicalError) {
    expectError("a / b", "line 1: lexical error </>");
    expectError("/\n/", "line 1: lexical error </>");
    expectError("/", "line 1: lexical error </>");
    expectError("/*", "line 1: lexical error </>");
}

TEST(Scanner, ACarriageReturnIsALexicalError) { expectError("a\n;\r\n", "line 2: lexical error <\r>"); }

TEST(Scanner, ANameOrANumberEndsBeforeACharacterThatIsNotAscii) {
    expectError("caf\xC3\xA9", "line 1: lexical error <\xC3>");
}

TEST(Scanner, ANulByteIsALexicalErrorThatShowsNothing) {
    expectError(std::string("a\0b", 3), "line 1: lexical error <>");
}

}  // namespace
