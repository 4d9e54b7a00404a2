// Lists by number against what they were made of.
#include "Reseau/Listes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Reseau::Listes;

namespace {

using Textes = std::vector<std::string>;

Textes textes(const Listes<std::string>& listes, std::size_t i) { return {listes[i].begin(), listes[i].end()}; }

TEST(ListesTest, EachEntryStandsInItsListInTheOrderGiven) {
    const Listes<std::string> listes(4, {{2, "c"}, {0, "a"}, {2, "b"}, {3, "d"}, {2, "c"}});
    EXPECT_EQ(textes(listes, 0), Textes{"a"});
    EXPECT_EQ(textes(listes, 1), Textes{});
    EXPECT_EQ(textes(listes, 2), (Textes{"c", "b", "c"}));
    EXPECT_EQ(textes(listes, 3), Textes{"d"});
}

TEST(ListesTest, WithoutEntriesEveryListIsEmpty) {
    const Listes<std::string> listes(3, {});
    for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(listes[i].empty());
}

}  // namespace
