// Any bytes as the text of a marking and of a rule, in the editor's dialogs. They are taken exactly when the few lines
// below take them, and then mean the same; what is taken is the same after writing and reading it back; what is refused
// changes nothing.
#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Multiset.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"

namespace {

using Modele::Multiset;
using Rule = std::pair<Multiset, Multiset>;

constexpr auto digits = "0123456789";
constexpr auto nameCharacters = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";

std::optional<Multiset> meaningOfMarking(const std::string& text) {
    Multiset meaning;
    std::istringstream words(text);
    for (std::string word; std::getline(words, word, ' ');) {
        if (word.empty()) continue;
        if (word.find_first_not_of(nameCharacters) != std::string::npos) return std::nullopt;
        const std::size_t nameBegin = word.find_first_not_of(digits);
        if (nameBegin == std::string::npos) return std::nullopt;
        long long count = nameBegin == 0 ? 1 : 0;
        for (std::size_t i = 0; i < nameBegin; ++i) {
            count = 10 * count + (word[i] - '0');
            if (count > INT_MAX) return std::nullopt;
        }
        int& total = meaning[word.substr(nameBegin)];
        if (total + count > INT_MAX) return std::nullopt;
        total += static_cast<int>(count);
    }
    return meaning;
}

/// The two sides of a rule that is not empty.
std::optional<Rule> meaningOfRule(const std::string& text) {
    const std::size_t arrow = text.find('-');
    if (arrow == std::string::npos || text.substr(arrow, 2) != "->") return std::nullopt;
    const auto in = meaningOfMarking(text.substr(0, arrow));
    const auto out = meaningOfMarking(text.substr(arrow + 2));
    if (!in || !out) return std::nullopt;
    return Rule{*in, *out};
}

Multiset withoutZeros(Multiset m) {
    std::erase_if(m, [](const auto& entry) { return entry.second == 0; });
    return m;
}

std::optional<Rule> ruleOf(const Modele::Arc& arc) {
    if (arc.getRegle() == nullptr) return std::nullopt;
    return Rule{arc.getRegle()->getIn(), arc.getRegle()->getOut()};
}

void expectMarkingMeansItself(const std::string& text) {
    const auto meaning = meaningOfMarking(text);
    Multiset parsed;
    EXPECT_EQ(Modele::toMap(parsed, text), meaning.has_value());

    const Multiset before = {{"before", 2}};
    Modele::KLV model;
    Modele::Noeud* const plain = model.addNoeud("plain");
    Modele::Noeud* const initial = model.addNoeud("initial", &before);
    EXPECT_EQ(plain->setInit(text), meaning.has_value());
    EXPECT_EQ(initial->setInit(text), meaning.has_value());
    EXPECT_EQ(plain->isInit(), meaning.has_value());
    EXPECT_EQ(plain->getMarquage(), meaning.value_or(Multiset{}));
    EXPECT_EQ(initial->getMarquage(), meaning.value_or(before));
    if (!meaning) return;

    EXPECT_EQ(parsed, *meaning);
    Multiset again;
    EXPECT_TRUE(Modele::toMap(again, Modele::toText(parsed)));
    EXPECT_EQ(again, withoutZeros(parsed));
}

void expectRuleMeansItself(const std::string& text) {
    const auto meaning = meaningOfRule(text);
    Modele::KLV model;
    Modele::Arc* const arc = model.addNoeud()->addArc(model.addNoeud(), nullptr);
    Modele::Arc* const ruled = model.addNoeud()->addArc(model.addNoeud(), nullptr);
    EXPECT_TRUE(ruled->setRegle("before -> 2after"));
    const auto before = ruleOf(*ruled);

    const bool isTaken = meaning.has_value() || text.empty();
    EXPECT_EQ(arc->setRegle(text), isTaken);
    EXPECT_EQ(ruled->setRegle(text), isTaken);
    EXPECT_EQ(ruleOf(*arc), meaning);
    EXPECT_EQ(ruleOf(*ruled), isTaken ? meaning : before);
    if (!meaning) return;

    EXPECT_TRUE(ruled->setRegle(arc->getRegle()->toString()));
    EXPECT_EQ(ruleOf(*ruled), Rule(withoutZeros(meaning->first), withoutZeros(meaning->second)));
}

/// Destroyed nodes write a trace line.
class NoTraces {
public:
    NoTraces() : _before(std::cout.rdbuf(nullptr)) {}
    ~NoTraces() { std::cout.rdbuf(_before); }

private:
    std::streambuf* _before;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const NoTraces quiet;
    const std::string text(reinterpret_cast<const char*>(data), size);
    expectMarkingMeansItself(text);
    expectRuleMeansItself(text);
    return 0;
}
