#include "Reseau/Texte.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace {

using Reseau::Large;
using Reseau::Texte;

template <class... Mots>
std::string texte(const Mots&... mots) {
    Texte t;
    (t << ... << mots);
    return std::move(t).prendre();
}

TEST(TexteTest, WordsCharactersAndNumbersFollowEachOther) {
    EXPECT_EQ(texte("a*", 3, ' ', std::string("b"), '*', std::uint32_t{40}, '\n'), "a*3 b*40\n");
}

TEST(TexteTest, NumbersOfEveryWidthAreWhole) {
    EXPECT_EQ(texte(0), "0");
    EXPECT_EQ(texte(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(texte(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    const Large immense = Large{1'000'000'000'000'000'000} * 1'000'000;
    EXPECT_EQ(texte(immense), "1000000000000000000000000");
    EXPECT_EQ(texte(-immense - 7), "-1000000000000000000000007");
    EXPECT_EQ(texte(Large{0}), "0");
}

}  // namespace
