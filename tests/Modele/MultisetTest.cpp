// The multiset's text, as a marking and as the sides of a rule: what is read, what is rejected, and that what
// is written reads back.
#include "Modele/Multiset.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>

#include "Helpers.h"
#include "Modele/Arc.h"
#include "Modele/Noeud.h"

namespace {

using Modele::Multiset;

/// Reads `text` in its three places: as a marking, and as each side of a rule. They agree, or the test fails.
class MultisetText : public testing::Test {
protected:
    bool accepted(const std::string& text) {
        const bool asMarking = node.setInit(text);
        EXPECT_EQ(arc->setRegle(text + "->"), asMarking) << '"' << text << "\" as a left side";
        const Multiset left = side(&Modele::Regle::getIn);
        EXPECT_EQ(arc->setRegle("->" + text), asMarking) << '"' << text << "\" as a right side";
        const Multiset right = side(&Modele::Regle::getOut);
        if (asMarking) {
            EXPECT_EQ(left, node.getMarquage()) << '"' << text << '"';
            EXPECT_EQ(right, node.getMarquage()) << '"' << text << '"';
        }
        return asMarking;
    }

    Multiset side(Multiset& (Modele::Regle::*get)()) const {
        return arc->getRegle() == nullptr ? Multiset() : (arc->getRegle()->*get)();
    }

    Modele::Noeud node{"a"};
    Modele::Arc* arc = node.addArc(&node, nullptr);
};

struct Reading {
    std::string text;
    Multiset value;
};

TEST_F(MultisetText, IsWordsOfAnOptionalCountAndAName) {
    const Reading table[] = {
        {"", {}},
        {" ", {}},
        {"     ", {}},
        {"a", {{"a", 1}}},
        {"2a", {{"a", 2}}},
        {"2a  b", {{"a", 2}, {"b", 1}}},
        {"  a ", {{"a", 1}}},
        {"a a 2a", {{"a", 4}}},
        {"a 3a", {{"a", 4}}},
        {"0a", {{"a", 0}}},
        {"0a 0a", {{"a", 0}}},
        {"0a a", {{"a", 1}}},
        {"a2", {{"a2", 1}}},
        {"3a2", {{"a2", 3}}},
        {"3a2b", {{"a2b", 3}}},
        {"007a", {{"a", 7}}},
        {"000a", {{"a", 0}}},
        {"_", {{"_", 1}}},
        {"2_a 4_9", {{"_a", 2}, {"_9", 4}}},
        {"a A", {{"A", 1}, {"a", 1}}},
        {"0x1F", {{"x1F", 0}}},
        {"1e9", {{"e9", 1}}},
    };
    for (const Reading& reading : table) {
        ASSERT_TRUE(accepted(reading.text)) << '"' << reading.text << '"';
        EXPECT_EQ(node.getMarquage(), reading.value) << '"' << reading.text << '"';
    }
}

TEST_F(MultisetText, IsRejectedWhenACountHasNoName) {
    for (const char* text : {"3", "0", "2 a", "a 2", " 3 ", "a 3 b"}) EXPECT_FALSE(accepted(text)) << text;
}

TEST_F(MultisetText, IsRejectedWhenItCarriesASign) {
    for (const char* text : {"+1a", "a+", "2+a"}) EXPECT_FALSE(accepted(text)) << text;
    for (const char* text : {"-1a", "a-", "-", "->", "2-a"}) EXPECT_FALSE(node.setInit(text)) << text;
}

TEST_F(MultisetText, SeparatesByTheSpaceAlone) {
    for (const char* text : {"a\tb", "a\nb", "a,b", "a, b", "a\rb", "a\vb", "a\fb", "\ta", "a\n", "a;"}) {
        EXPECT_FALSE(accepted(text)) << text;
    }
}

TEST_F(MultisetText, NamesAreMadeOfAsciiLettersDigitsAndUnderscoresOnly) {
    const std::string permitted = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        if (c == ' ' || c == '-') continue;  // the separator, and the sign, which would start a rule's arrow
        const std::string name = std::string("n") + c + "m";
        EXPECT_EQ(accepted(name), permitted.find(c) != std::string::npos) << "byte " << byte;
    }
    for (const char* text : {"é", "a\xE9", "2\xC3\xA9", "٣a"}) EXPECT_FALSE(accepted(text)) << text;
}

TEST_F(MultisetText, IsNotCutAtAZeroByte) {
    EXPECT_FALSE(accepted(std::string("a\0b", 3)));
    EXPECT_FALSE(accepted(std::string("a\0", 2)));
    EXPECT_FALSE(accepted(std::string("\0", 1)));
}

TEST_F(MultisetText, ReadsCountsUpToTheEndOfTheIntRangeAndNoFurther) {
    EXPECT_TRUE(accepted("2147483646a"));
    EXPECT_TRUE(accepted("2147483647a"));
    EXPECT_EQ(node.getMarquage(), (Multiset{{"a", std::numeric_limits<int>::max()}}));
    EXPECT_TRUE(accepted("000000000000000000002147483647a")) << "leading zeros do not count";
    EXPECT_EQ(node.getMarquage(), (Multiset{{"a", std::numeric_limits<int>::max()}}));
    for (const char* text : {"2147483648a", "02147483648a", "4294967295a", "4294967296a", "4294967297a",
                             "9223372036854775807a", "18446744073709551617a", "99999999999999999999999999a"}) {
        EXPECT_FALSE(accepted(text)) << text;
    }
}

TEST_F(MultisetText, AccumulatesUpToTheEndOfTheIntRangeAndNoFurther) {
    for (const char* text : {"2147483646a a", "a 2147483646a", "2147483647a 0a", "1073741823a 1073741823a a"}) {
        EXPECT_TRUE(accepted(text)) << text;
        EXPECT_EQ(node.getMarquage(), (Multiset{{"a", std::numeric_limits<int>::max()}})) << text;
    }
    for (const char* text :
         {"2147483647a a", "a 2147483647a", "2147483647a 2147483647a", "1073741824a 1073741824a", "2147483647a 0a a"}) {
        EXPECT_FALSE(accepted(text)) << text;
    }
    EXPECT_TRUE(accepted("2147483647a 2147483647b")) << "every molecule has a range of its own";
}

TEST_F(MultisetText, OfAMillionWordsIsReadInOneGo) {
    std::string text;
    for (int i = 0; i < 1'000'000; ++i) text += "a ";
    EXPECT_TRUE(accepted(text));
    EXPECT_EQ(node.getMarquage(), (Multiset{{"a", 1'000'000}}));
}

TEST(MultisetParser, AddsToWhatTheMultisetHolds) {
    Multiset m{{"a", 2}, {"b", 1}, {"debt", -1}};
    EXPECT_TRUE(Modele::toMap(m, "3a c debt"));
    EXPECT_EQ(m, (Multiset{{"a", 5}, {"b", 1}, {"c", 1}, {"debt", 0}}));
}

TEST(MultisetParser, ReachesFromTheLowestToTheHighestCount) {
    Multiset m{{"a", std::numeric_limits<int>::min()}};
    EXPECT_TRUE(Modele::toMap(m, "2147483647a a 2147483647a"));
    EXPECT_EQ(m, (Multiset{{"a", std::numeric_limits<int>::max()}}));
}

TEST(MultisetParser, LeavesWhatStoodBeforeTheFirstWrongWord) {
    Multiset m;
    EXPECT_FALSE(Modele::toMap(m, "2a b ? c"));
    EXPECT_EQ(m, (Multiset{{"a", 2}, {"b", 1}}));
}

TEST(MultisetParser, AddsNothingForTheWrongWordItself) {
    for (const char* text : {"3", "a?", "2147483648a", "-a"}) {
        Multiset m;
        EXPECT_FALSE(Modele::toMap(m, text)) << text;
        EXPECT_THAT(m, testing::IsEmpty()) << text;
    }
}

TEST(MultisetParser, ReadsBackWhateverIsWrittenExceptCountsBelowOne) {
    const std::string alphabet = "aZ_09b";
    std::mt19937 random(20);
    for (int round = 0; round < 1000; ++round) {
        Multiset written;
        Multiset positive;
        for (auto size = random() % 8; size > 0; --size) {
            std::string name(1, alphabet[random() % 3]);
            for (auto length = random() % 4; length > 0; --length) name += alphabet[random() % alphabet.size()];
            const int count = static_cast<int>(random() % 2 == 0 ? random() % 4 : random() >> 1) - 1;
            written[name] = count;
        }
        for (const auto& [name, count] : written) {
            if (count > 0) positive[name] = count;
        }
        Multiset read;
        ASSERT_TRUE(Modele::toMap(read, Modele::toText(written))) << Modele::toText(written);
        ASSERT_EQ(read, positive) << Modele::toText(written);
    }
}

}  // namespace
