// Boundedness and bounds with the built-in analyser: on models whose answer is plain to see, on the examples, which
// state theirs in their first lines, and on random models against an exploration that shares nothing with the analyser.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <vector>

#include "Analyse.h"
#include "Helpers.h"
#include "Modele/Arc.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"
#include "Reseau/Lecture.h"
#include "Reseau/Reseau.h"
#include "common/Traces.h"

namespace {

using testing::ThrowsMessage;

using Bounds = std::map<std::string, int>;

// --- Models whose answers are plain to see ---

class BoundsOf : public testing::Test {
protected:
    BoundsOf() { directory.useBuiltInTina(); }

    void expectBounds(const std::string& text, const Bounds& bounds) {
        const auto model = readModel(text);
        EXPECT_TRUE(isBounded(model.get())) << text;
        EXPECT_EQ(getBound(model.get()), bounds) << text;
    }

    void expectUnbounded(const std::string& text) {
        const auto model = readModel(text);
        const Traces trace;
        EXPECT_FALSE(isBounded(model.get())) << text;
        EXPECT_FALSE(isPrefBounded(model.get())) << text;
        EXPECT_THAT([&] { getBound(model.get()); }, ThrowsMessage<std::logic_error>("KLV not bounded"));
        EXPECT_THAT([&] { getPrefixBound(model.get()); }, ThrowsMessage<std::logic_error>("KLV not prefix bounded"));
    }

    void expectPrefixBound(const std::string& text, const Bounds& bound) {
        const auto model = readModel(text);
        const Traces trace;
        EXPECT_TRUE(isPrefBounded(model.get())) << text;
        EXPECT_EQ(getPrefixBound(model.get()), bound) << text;
    }

    WorkingDirectory directory;
};

TEST_F(BoundsOf, ModelsInWhichNothingIsEverPresentAreEmpty) {
    expectBounds("", {});
    expectBounds("A : ;", {});
    expectBounds("A -> B : -> a;", {});
    expectBounds("A : ; A -> B : a -> 2a;", {});
    expectPrefixBound("A : ; A -> B;", {});
}

TEST_F(BoundsOf, MarkingsCountFromTheStart) {
    expectBounds("A : 3a b;", {{"a", 3}, {"b", 1}});
    expectBounds("A : 3a; B : 5a 2b;", {{"a", 5}, {"b", 2}});
    expectBounds("A : 0a b;", {{"b", 1}});
}

TEST_F(BoundsOf, RulesMoveMolecules) {
    expectBounds("A : 2a; A -> B : a -> b; B -> A;", {{"a", 2}, {"b", 2}});
    expectBounds("A : 4a; A -> A : 2a -> b; A -> A : b -> c;", {{"a", 4}, {"b", 2}, {"c", 2}});
}

TEST_F(BoundsOf, ARuleThatNeedsMoreThanThereIsNeverActs) { expectBounds("A : 2a; A -> B : 3a -> b;", {{"a", 2}}); }

TEST_F(BoundsOf, AMoleculeMadeOnEveryRoundHasNone) {
    expectUnbounded("A : ; A -> A : -> a;");
    expectUnbounded("A : a; A -> B : a -> 2a; B -> A;");
}

TEST_F(BoundsOf, ALoopBehindAnArcThatNeverActsDoesNoHarm) {
    expectBounds("A : a; A -> B : 2a -> ; B -> B : -> c;", {{"a", 1}});
}

TEST_F(BoundsOf, LargeCountsAreExact) {
    expectBounds("A : 2000000000a; A -> B : a -> 2147483647b;", {{"a", 2000000000}, {"b", 2147483647}});
}

TEST_F(BoundsOf, CountsBeyondTheIntRangeStopAtItsEnd) {
    expectBounds("A : 2147483647a; A -> B : -> a;", {{"a", 2147483647}});
}

TEST_F(BoundsOf, PrefixesAreTheMoleculesThatCanLeaveThem) {
    expectPrefixBound("A : 2a;", {{"", 2}});
    expectPrefixBound("A : a; A -> B : a -> b;", {{"", 1}});
    // An a, then a b made from another: each can leave before it is used.
    expectPrefixBound("A : 2a; A -> A : a -> b;", {{"", 2}});
}

TEST_F(BoundsOf, PrefixesHaveNoneWhereMoleculesComeOutOfNothingForEver) {
    const auto model = readModel("A : ; A -> B : -> a; B -> A : a -> ;");
    const Traces trace;
    EXPECT_TRUE(isBounded(model.get()));
    EXPECT_FALSE(isPrefBounded(model.get()));
    EXPECT_EQ(getBound(model.get()), (Bounds{{"a", 1}}));
    EXPECT_THAT([&] { getPrefixBound(model.get()); }, ThrowsMessage<std::logic_error>("KLV not prefix bounded"));
}

TEST_F(BoundsOf, AModelWhoseNetIsTooLongForOneArgumentAreFoundAllTheSame) {
    // A ring of 1,500 nodes that makes one molecule a round, hands it on, and on its last arc loses it.
    const std::string a(60, 'a');
    std::string text = "n0 : ; n0 -> n1 : -> " + a + "; n1499 -> n0 : " + a + " -> ;";
    for (int i = 1; i < 1499; ++i) {
        text += "n" + std::to_string(i) + " -> n" + std::to_string(i + 1) + " : " + a + " -> " + a + ";";
    }
    const auto model = readModel(text);
    ASSERT_GT(toRdP(model.get()).size(), 128u * 1024);
    EXPECT_EQ(getBound(model.get()), (Bounds{{a, 1}}));

    model->get("n0")->addArc(model->get("n1"), nullptr)->setRegle("-> 2" + a);
    EXPECT_FALSE(isBounded(model.get()));
}

// --- Random models against an exploration ---

using Counts = std::map<std::string, long>;
using State = std::pair<std::string, Counts>;  // where the token is, and what is present
using Successors = std::function<std::vector<State>(const State&)>;

/// Adds (or, with factor -1, takes) molecules named with a prefix; false when there are not enough.
bool change(Counts& counts, const std::string& prefix, const Modele::Multiset& molecules, int factor) {
    for (const auto& [name, n] : molecules) {
        if (n == 0) continue;
        long& count = counts[prefix + name];
        count += factor * n;
        if (count < 0) return false;
        if (count == 0) counts.erase(prefix + name);
    }
    return true;
}

void addMoves(std::vector<State>& all, const State& state, Modele::Noeud* node, const std::string& prefix) {
    for (Modele::Arc* arc : node->getOut()) {
        State next{arc->getDestination()->getName(), state.second};
        Modele::Regle* regle = arc->getRegle();
        if (regle != nullptr && !change(next.second, prefix, regle->getIn(), -1)) continue;
        if (regle != nullptr) change(next.second, prefix, regle->getOut(), 1);
        all.push_back(next);
    }
}

void addStarts(std::vector<State>& all, Modele::KLV* model, const std::string& prefix) {
    for (Modele::Noeud* node : model->getNoeudIn()) {
        State next{node->getName(), {}};
        change(next.second, prefix, node->getMarquage(), 1);
        all.push_back(next);
    }
}

/// What a model does: "" is where the token is before the start.
Successors walkOf(Modele::KLV* model) {
    return [=](const State& state) {
        std::vector<State> next;
        if (state.first.empty())
            addStarts(next, model, "m");
        else
            addMoves(next, state, model->get(state.first), "m");
        return next;
    };
}

/// What the prefix question lets a model do: a molecule may at any time leave the first half of the run for the second,
/// and is counted.
Successors prefixWalkOf(Modele::KLV* model) {
    return [=](const State& state) {
        std::vector<State> next;
        if (state.first.empty()) {
            addStarts(next, model, "p_m");
            return next;
        }
        addMoves(next, state, model->get(state.first), "p_m");
        addMoves(next, state, model->get(state.first), "s_m");
        for (const auto& [name, count] : state.second) {
            if (!name.starts_with("p_m")) continue;
            State moved = state;
            change(moved.second, "p_m", {{name.substr(3), 1}}, -1);
            change(moved.second, "s_m", {{name.substr(3), 1}}, 1);
            change(moved.second, "r_m", {{"", 1}}, 1);
            next.push_back(moved);
        }
        return next;
    };
}

bool strictlyCovers(const State& large, const State& small) {
    if (large.first != small.first || large.second == small.second) return false;
    for (const auto& [name, count] : small.second) {
        const auto entry = large.second.find(name);
        if (entry == large.second.end() || entry->second < count) return false;
    }
    return true;
}

struct Exploration {
    bool isBounded = true;
    Counts largest;
    std::size_t states = 1;
};

/// Visits every state, breadth first, until none is left or one strictly covers a state that it was reached from: then
/// the way between them can be repeated for ever. One of the two happens (an infinite tree has an infinite path, and
/// that has such a pair: Dickson). Nothing when there are more than `limit` states.
std::optional<Exploration> explore(const Successors& successors, std::size_t limit) {
    struct Node {
        State state;
        std::size_t parent;
    };
    std::vector<Node> nodes{{{"", {}}, 0}};
    std::set<State> known{nodes.front().state};
    Exploration result;
    for (std::size_t n = 0; n < nodes.size(); ++n) {
        for (const State& next : successors(nodes[n].state)) {
            if (!known.insert(next).second) continue;
            for (std::size_t ancestor = n;; ancestor = nodes[ancestor].parent) {
                if (strictlyCovers(next, nodes[ancestor].state)) return Exploration{false, {}, nodes.size()};
                if (ancestor == 0) break;
            }
            for (const auto& [name, count] : next.second) result.largest[name] = std::max(result.largest[name], count);
            nodes.push_back({next, n});
            if (nodes.size() > limit) return std::nullopt;
        }
    }
    result.states = nodes.size();
    return result;
}

/// The same two answers from the analyser, without the molecule places that are never marked.
Exploration analyse(const std::string& text) {
    const Reseau::Net net = Reseau::lire(text, "net");
    Exploration result{Reseau::analyser(net, {.verdictSeul = true}).bornee, {}, 0};
    const Reseau::Rapport report = Reseau::analyser(net, {});
    EXPECT_EQ(report.bornee, result.isBounded) << "one question, two answers";
    if (!report.bornee) return result;
    for (std::size_t p = 0; p < net.places.size(); ++p) {
        if (net.places[p].front() != 'q' && report.bornes[p] > 0) result.largest[net.places[p]] = report.bornes[p];
    }
    return result;
}

void expectSameAnswers(const std::string& net, const Exploration& exploration, const std::string& model) {
    const Exploration analysis = analyse(net);
    ASSERT_EQ(analysis.isBounded, exploration.isBounded) << model << net;
    ASSERT_EQ(analysis.largest, exploration.largest) << model << net;
}

struct Tally {
    int bounded = 0;
    int unbounded = 0;
    std::size_t states = 0;

    int models() const { return bounded + unbounded; }
    void count(const Exploration& exploration) {
        ++(exploration.isBounded ? bounded : unbounded);
        states += exploration.states;
    }
    void expectVariety() const {
        EXPECT_GT(bounded, models() / 10);
        EXPECT_GT(unbounded, models() / 10);
        EXPECT_GT(states / static_cast<std::size_t>(models()), 15u) << "states of a model";
    }
};

/// Ten thousand models in four parts, each from a seed of its own on.
class BoundsOfRandomModels : public testing::TestWithParam<unsigned> {};

INSTANTIATE_TEST_SUITE_P(FromSeed, BoundsOfRandomModels, testing::Values(0u, 100'000u, 200'000u, 300'000u));

TEST_P(BoundsOfRandomModels, AreThoseOfAnExploration) {
    Tally tally;
    for (unsigned seed = GetParam(); tally.models() < 2'500; ++seed) {
        const auto model = randomModel(seed, {.nodes = 4, .arcs = 14, .molecules = 4, .rule = 2, .marking = 4});
        if (model->getNoeudIn().empty()) continue;
        const auto exploration = explore(walkOf(model.get()), 1000);
        if (!exploration.has_value() || exploration->states < 8) continue;
        expectSameAnswers(toRdP(model.get()), *exploration, model->toString());
        if (HasFatalFailure()) return;
        tally.count(*exploration);
    }
    tally.expectVariety();
}

TEST_P(BoundsOfRandomModels, ArePrefixBoundsOfAnExploration) {
    Tally tally;
    const Traces trace;
    for (unsigned seed = GetParam(); tally.models() < 500; ++seed) {
        const auto model = randomModel(seed, {.nodes = 3, .arcs = 6, .molecules = 3, .rule = 2, .marking = 4});
        if (model->getNoeudIn().empty()) continue;
        const auto exploration = explore(prefixWalkOf(model.get()), 1000);
        if (!exploration.has_value() || exploration->states < 4) continue;
        expectSameAnswers(toPrefRdP(model.get()), *exploration, model->toString());
        if (HasFatalFailure()) return;
        tally.count(*exploration);
    }
    tally.expectVariety();
}

TEST_F(BoundsOf, RandomModelsAreThoseOfAnExplorationAlsoThroughTheShell) {
    const Traces trace;
    for (unsigned seed = 0; seed < 50; ++seed) {
        const auto model = randomModel(seed, {.nodes = 4, .arcs = 6, .molecules = 3, .rule = 2, .marking = 3});
        const auto walk = explore(walkOf(model.get()), 2000);
        const auto prefixWalk = explore(prefixWalkOf(model.get()), 5000);
        if (!walk.has_value() || !prefixWalk.has_value()) continue;

        ASSERT_EQ(isBounded(model.get()), walk->isBounded) << model->toString();
        ASSERT_EQ(isPrefBounded(model.get()), prefixWalk->isBounded) << model->toString();
        if (!prefixWalk->isBounded) continue;
        Bounds expected;
        for (const auto& [name, count] : walk->largest) expected[name.substr(1)] = static_cast<int>(count);
        EXPECT_EQ(getBound(model.get()), expected) << model->toString();
        expected.clear();
        if (prefixWalk->largest.contains("r_m")) expected[""] = static_cast<int>(prefixWalk->largest.at("r_m"));
        EXPECT_EQ(getPrefixBound(model.get()), expected) << model->toString();
    }
}

}  // namespace
