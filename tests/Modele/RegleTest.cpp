// A rule: two multisets of its own and the text that files, labels and dialogs show.
#include "Modele/Regle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <utility>

namespace {

using Modele::Multiset;
using Modele::Regle;

TEST(Rule, CopiesBothMultisets) {
    Multiset in{{"a", 1}};
    Multiset out{{"b", 2}, {"zero", 0}};
    Regle rule(&in, &out);
    in["a"] = 5;
    out.clear();
    EXPECT_EQ(rule.getIn(), (Multiset{{"a", 1}}));
    EXPECT_EQ(rule.getOut(), (Multiset{{"b", 2}, {"zero", 0}}));
}

TEST(Rule, MayConsumeAndProduceTheSameMultiset) {
    const Multiset same{{"a", 1}};
    Regle rule(&same, &same);
    rule.addIn("a", 1);
    EXPECT_EQ(rule.getIn(), (Multiset{{"a", 2}}));
    EXPECT_EQ(rule.getOut(), (Multiset{{"a", 1}})) << "the two sides are separate copies";
}

TEST(Rule, AddsToTheCountsOfItsTwoSidesFromZero) {
    const Multiset empty;
    Regle rule(&empty, &empty);
    rule.addIn("a", 2);
    rule.addIn("a", 3);
    rule.addIn("none", 0);
    rule.addOut("b", 1);
    rule.addOut("b", -4);
    EXPECT_EQ(rule.getIn(), (Multiset{{"a", 5}, {"none", 0}}));
    EXPECT_EQ(rule.getOut(), (Multiset{{"b", -3}}));
}

TEST(Rule, GivesReferencesToItsMultisets) {
    static_assert(std::is_same_v<decltype(std::declval<Regle&>().getIn()), Multiset&>);
    static_assert(std::is_same_v<decltype(std::declval<Regle&>().getOut()), Multiset&>);
    const Multiset empty;
    Regle rule(&empty, &empty);
    rule.getIn()["a"] = 1;
    rule.getOut()["b"] = 2;
    EXPECT_EQ(rule.toString(), "a -> 2b ");
}

struct Written {
    Multiset in;
    Multiset out;
    const char* text;
};

TEST(Rule, IsWrittenAsItsLeftSideAnArrowAndItsRightSide) {
    const Written table[] = {
        {{}, {}, "-> "},
        {{{"a", 1}}, {}, "a -> "},
        {{}, {{"a", 1}}, "-> a "},
        {{{"a", 1}}, {{"c", 1}}, "a -> c "},
        {{{"b", 2}, {"a", 1}}, {{"c", 10}}, "a 2b -> 10c "},
        {{{"b", 1}, {"B", 1}, {"_", 1}, {"a9", 1}, {"a", 1}}, {}, "B _ a a9 b -> "},
        {{{"a", 0}}, {{"b", 1}}, "-> b "},
        {{{"a", 0}}, {{"b", 0}}, "-> "},
        {{{"a", -1}, {"b", 1}}, {{"c", std::numeric_limits<int>::min()}}, "b -> "},
        {{{"a", std::numeric_limits<int>::max()}}, {{"b", 2}}, "2147483647a -> 2b "},
    };
    for (const Written& rule : table) EXPECT_EQ(Regle(&rule.in, &rule.out).toString(), rule.text);
}

}  // namespace
