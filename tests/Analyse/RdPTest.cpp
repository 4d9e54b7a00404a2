// The net of a model, byte for byte: what stands on each line, how nodes and transitions are numbered, and
// that the two copies of the prefix net share what they should. The larger models are compared as nets after
// reading the text back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <locale>
#include <map>
#include <set>
#include <sstream>
#include <vector>

#include "Analyse.h"
#include "Helpers.h"
#include "Modele/Arc.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"
#include "Reseau/Lecture.h"
#include "common/Traces.h"

namespace {

using Modele::Multiset;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const char* const workedExample = "A : 2a; A -> B : a -> b; B -> A;";

std::string netOf(const std::string& model) { return toRdP(readModel(model).get()); }

std::string prefixNetOf(Modele::KLV* model) {
    const Traces trace;
    return toPrefRdP(model);
}

std::string prefixNetOf(const std::string& model) { return prefixNetOf(readModel(model).get()); }

// --- The net ---

TEST(Net, OfTheWorkedExample) {
    EXPECT_EQ(netOf(workedExample),
              "net buffer\n"
              "tr t1 q1 ma*1 -> q2 mb*1 \n"
              "tr t2 q0 -> q1 ma*2 \n"
              "tr t3 q2 -> q1 \n"
              "pl q0 (1)\n");
}

TEST(Net, OfAModelWithoutNodesIsHeaderAndFooter) { EXPECT_EQ(netOf(""), "net buffer\npl q0 (1)\n"); }

TEST(Net, OfAModelWithoutInitialNodeLeavesTheTokenInTheStartPlace) {
    const std::string net = netOf("A -> B : a -> b;");
    EXPECT_EQ(net, "net buffer\ntr t1 q1 ma*1 -> q2 mb*1 \npl q0 (1)\n");
}

TEST(Net, HasAStartTransitionForEveryInitialNode) {
    EXPECT_EQ(netOf("A : a; B : ; C : 3c b;"),
              "net buffer\n"
              "tr t1 q0 -> q1 ma*1 \n"
              "tr t2 q0 -> q2 \n"
              "tr t3 q0 -> q3 mb*1 mc*3 \n"
              "pl q0 (1)\n");
}

TEST(Net, HasNothingBetweenTheSourcePlaceAndTheArrowOfAnArcWithoutRule) {
    EXPECT_EQ(netOf("A -> B;"), "net buffer\ntr t1 q1 -> q2 \npl q0 (1)\n");
}

TEST(Net, GivesAnEmptyRuleTheLineOfNoRule) { EXPECT_EQ(netOf("A -> B : -> ;"), netOf("A -> B;")); }

TEST(Net, HasTheSamePlaceOnBothSidesOfALoop) {
    EXPECT_EQ(netOf("A -> A : a -> 2a;"), "net buffer\ntr t1 q1 ma*1 -> q1 ma*2 \npl q0 (1)\n");
}

TEST(Net, KeepsTheNumberThatANodeGotAsADestination) {
    // A is q1; its destination C comes before B, the next in name order.
    EXPECT_EQ(netOf("A -> C; B -> A; C -> B;"),
              "net buffer\n"
              "tr t1 q1 -> q2 \n"
              "tr t2 q3 -> q1 \n"
              "tr t3 q2 -> q3 \n"
              "pl q0 (1)\n");
}

TEST(Net, TakesNodesInByteOrderOfTheirNames) {
    EXPECT_EQ(netOf("q10 : a; q2 : b; Z : c;"),
              "net buffer\n"
              "tr t1 q0 -> q1 mc*1 \n"
              "tr t2 q0 -> q2 ma*1 \n"
              "tr t3 q0 -> q3 mb*1 \n"
              "pl q0 (1)\n");
}

TEST(Net, NumbersTransitionsFromOneInOrderOfEmissionAStartAfterItsNodesArcs) {
    const std::string net = netOf("A : a; A -> A; A -> B; B : b; B -> A : b -> ; C : ;");
    std::istringstream lines(net);
    std::vector<std::string> names;
    std::vector<std::string> sources;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string tr;
        std::string name;
        std::string source;
        words >> tr >> name >> source;
        if (tr != "tr") continue;
        names.push_back(name);
        sources.push_back(source);
    }
    EXPECT_THAT(names, ElementsAre("t1", "t2", "t3", "t4", "t5", "t6"));
    EXPECT_THAT(sources, ElementsAre("q1", "q1", "q0", "q2", "q0", "q0"));
}

TEST(Net, VisitsTheArcsOfANodeInTheOrderOfItsSet) {
    const auto model = readModel("A -> B : x -> ; A -> C : y -> ; A -> D : z -> ;");
    std::string expected = "net buffer\n";
    int number = 0;
    for (Modele::Arc* arc : model->getNoeuds()["A"]->getOut()) {
        ++number;
        const std::string k = std::to_string(number);
        const std::string molecule = arc->getRegle()->getIn().begin()->first;
        expected += "tr t" + k + " q1 m" + molecule + "*1 -> q" + std::to_string(number + 1) + " \n";
    }
    EXPECT_EQ(number, 3);
    EXPECT_EQ(toRdP(model.get()), expected + "pl q0 (1)\n");
}

TEST(Net, WritesEveryWeightAlsoOneAndZero) {
    EXPECT_EQ(netOf("A : 0a b; A -> A : 0c 1d -> 0e 12f;"),
              "net buffer\n"
              "tr t1 q1 mc*0 md*1 -> q1 me*0 mf*12 \n"
              "tr t2 q0 -> q1 ma*0 mb*1 \n"
              "pl q0 (1)\n");
}

TEST(Net, WritesTheEndsOfTheIntRange) {
    Modele::KLV model;
    const Multiset marking{{"a", std::numeric_limits<int>::max()}, {"b", std::numeric_limits<int>::min()}};
    model.addNoeud("A", &marking);
    EXPECT_EQ(toRdP(&model), "net buffer\ntr t1 q0 -> q1 ma*2147483647 mb*-2147483648 \npl q0 (1)\n");
}

TEST(Net, LeavesOutTheMarkingOfANodeThatIsNotInitial) {
    const auto model = readModel("A -> B;");
    model->getNoeuds()["A"]->getMarquage()["a"] = 1;
    EXPECT_EQ(toRdP(model.get()), "net buffer\ntr t1 q1 -> q2 \npl q0 (1)\n");
}

TEST(Net, CopiesMoleculeNamesUnchanged) {
    Modele::KLV model;
    const Multiset marking{{"two words", 1}, {"it's", 1}, {"a\nb", 1}};
    model.addNoeud("any name", &marking);
    EXPECT_EQ(toRdP(&model), "net buffer\ntr t1 q0 -> q1 ma\nb*1 mit's*1 mtwo words*1 \npl q0 (1)\n");
}

TEST(Net, IsNotPrinted) {
    const auto model = readModel(workedExample);
    const Traces trace;
    toRdP(model.get());
    EXPECT_EQ(trace.text(), "");
}

TEST(Net, LeavesTheModelAsItIs) {
    const auto model = readModel(workedExample);
    const std::string before = model->toString();
    toRdP(model.get());
    prefixNetOf(model.get());
    EXPECT_EQ(model->toString(), before);
    EXPECT_EQ(model->getNoeuds().size(), 2u);
}

// --- The prefix net ---

TEST(PrefixNet, OfTheWorkedExample) {
    EXPECT_EQ(prefixNetOf(workedExample),
              "net buffer\n"
              "tr t1 q1 p_ma*1 -> q2 p_mb*1 \n"
              "tr t3 q0 -> q1 p_ma*2 \n"
              "tr t4 q2 -> q1 \n"
              "tr t6 p_ma ->  s_ma r_m\n"
              "tr t7 p_mb ->  s_mb r_m\n"
              "tr t2 q1 s_ma*1 -> q2 s_mb*1 \n"
              "tr t5 q2 -> q1 \n"
              "pl q0 (1)\n");
}

TEST(PrefixNet, IsPrintedWithOneMoreEndOfLine) {
    for (const char* text : {"", workedExample}) {
        const auto model = readModel(text);
        const Traces trace;
        const std::string net = toPrefRdP(model.get());
        EXPECT_EQ(trace.text(), net + "\n");
    }
}

TEST(PrefixNet, OfAModelWithoutNodesIsHeaderAndFooter) { EXPECT_EQ(prefixNetOf(""), "net buffer\npl q0 (1)\n"); }

TEST(PrefixNet, MovesNothingWhenThereAreNoMolecules) {
    EXPECT_EQ(prefixNetOf("A : ; A -> B;"),
              "net buffer\n"
              "tr t1 q1 -> q2 \n"
              "tr t3 q0 -> q1 \n"
              "tr t2 q1 -> q2 \n"
              "pl q0 (1)\n");
}

TEST(PrefixNet, MovesTheMoleculesOfInitialMarkingsAlsoWithoutArcs) {
    EXPECT_EQ(prefixNetOf("A : b a;"),
              "net buffer\n"
              "tr t1 q0 -> q1 p_ma*1 p_mb*1 \n"
              "tr t2 p_ma ->  s_ma r_m\n"
              "tr t3 p_mb ->  s_mb r_m\n"
              "pl q0 (1)\n");
}

TEST(PrefixNet, NumbersAnArcsTwoLinesOneAfterTheOtherAndPutsTheFirstCopyFirst) {
    EXPECT_EQ(prefixNetOf("A -> B; B -> C; C : c;"),
              "net buffer\n"
              "tr t1 q1 -> q2 \n"
              "tr t3 q2 -> q3 \n"
              "tr t5 q0 -> q3 p_mc*1 \n"
              "tr t6 p_mc ->  s_mc r_m\n"
              "tr t2 q1 -> q2 \n"
              "tr t4 q2 -> q3 \n"
              "pl q0 (1)\n");
}

TEST(PrefixNet, GivesAnArcWithoutRuleTheSameLineInBothCopiesButForItsNumber) {
    const std::string net = prefixNetOf("A : a; A -> A : a -> ; B -> A;");
    EXPECT_THAT(net, HasSubstr("\ntr t4 q2 -> q1 \n"));
    EXPECT_THAT(net, HasSubstr("\ntr t5 q2 -> q1 \n"));
}

TEST(PrefixNet, DoesNotMoveAMoleculeThatOnlyMarksANodeThatIsNotInitial) {
    const auto model = readModel("A -> B : a -> ; C : ;");
    model->getNoeuds()["B"]->getMarquage()["hidden"] = 1;
    EXPECT_THAT(prefixNetOf(model.get()), HasSubstr("tr t4 p_ma ->  s_ma r_m\n"));
    EXPECT_THAT(prefixNetOf(model.get()), Not(HasSubstr("hidden")));
}

TEST(PrefixNet, MovesEveryKindOnceInByteOrderOfItsName) {
    const std::string net = prefixNetOf("A : b; A -> A : b -> a Z; A -> B : a -> b;");
    std::istringstream lines(net);
    std::vector<std::string> moved;
    for (std::string line; std::getline(lines, line);) {
        const auto at = line.find(" ->  s_m");
        if (at == std::string::npos) continue;
        moved.push_back(line.substr(at + 8));
    }
    EXPECT_THAT(moved, ElementsAre("Z r_m", "a r_m", "b r_m"));
}

// --- Read back ---

using Side = std::map<std::string, std::int64_t>;

Side sideOf(const Reseau::Net& net, const Reseau::Creux& tokens) {
    Side side;
    for (const Reseau::Poids& token : tokens) side[net.places[token.place]] = token.compte;
    return side;
}

using Transitions = std::multiset<std::pair<Side, Side>>;

Transitions readTransitions(const std::string& text) {
    const Reseau::Net net = Reseau::lire(text, "net");
    Transitions transitions;
    for (const Reseau::Transition& t : net.transitions) transitions.emplace(sideOf(net, t.pre), sideOf(net, t.post));
    return transitions;
}

/// What the transitions of a model's net are to be, straight from the model; places of nodes under the nodes'
/// names.
class ExpectedNet {
public:
    explicit ExpectedNet(Modele::KLV* model) : _model(model) {}

    Transitions plain() const {
        Transitions all;
        for (Modele::Arc* arc : _model->getArcs()) all.insert(transition(arc, "m"));
        for (Modele::Noeud* node : _model->getNoeudIn()) all.insert(start(node, "m"));
        return all;
    }

    Transitions prefix() const {
        Transitions all;
        std::set<std::string> kinds;
        for (Modele::Arc* arc : _model->getArcs()) {
            all.insert(transition(arc, "p_m"));
            all.insert(transition(arc, "s_m"));
            if (arc->getRegle() == nullptr) continue;
            for (const auto& [name, count] : arc->getRegle()->getIn()) kinds.insert(name);
            for (const auto& [name, count] : arc->getRegle()->getOut()) kinds.insert(name);
        }
        for (Modele::Noeud* node : _model->getNoeudIn()) {
            all.insert(start(node, "p_m"));
            for (const auto& [name, count] : node->getMarquage()) kinds.insert(name);
        }
        for (const std::string& kind : kinds) all.insert({{{"p_m" + kind, 1}}, {{"r_m", 1}, {"s_m" + kind, 1}}});
        return all;
    }

private:
    static void add(Side& side, const std::string& counter, const Multiset& molecules) {
        for (const auto& [name, count] : molecules) {
            if (count != 0) side[counter + name] = count;
        }
    }

    static std::pair<Side, Side> transition(Modele::Arc* arc, const std::string& counter) {
        Side in{{"node " + arc->getSource()->getName(), 1}};
        Side out{{"node " + arc->getDestination()->getName(), 1}};
        if (arc->getRegle() != nullptr) {
            add(in, counter, arc->getRegle()->getIn());
            add(out, counter, arc->getRegle()->getOut());
        }
        return {in, out};
    }

    static std::pair<Side, Side> start(Modele::Noeud* node, const std::string& counter) {
        Side out{{"node " + node->getName(), 1}};
        add(out, counter, node->getMarquage());
        return {{{"q0", 1}}, out};
    }

    Modele::KLV* _model;
};

/// Puts the nodes' names in place of "q1", "q2", ..., which are numbered by first encounter.
Transitions named(const Transitions& transitions, Modele::KLV* model) {
    std::map<std::string, std::string> names;
    const auto meet = [&](const std::string& node) {
        for (const auto& [place, name] : names) {
            if (name == "node " + node) return;
        }
        names["q" + std::to_string(names.size() + 1)] = "node " + node;
    };
    for (const auto& [name, node] : model->getNoeuds()) {
        meet(name);
        for (Modele::Arc* arc : node->getOut()) meet(arc->getDestination()->getName());
    }

    const auto rename = [&](const Side& side) {
        Side renamed;
        for (const auto& [place, count] : side) renamed[names.contains(place) ? names[place] : place] = count;
        return renamed;
    };
    Transitions all;
    for (const auto& [in, out] : transitions) all.emplace(rename(in), rename(out));
    return all;
}

TEST(BothNets, ReadBackAsTheTransitionsOfTheModel) {
    for (unsigned seed = 0; seed < 500; ++seed) {
        const auto model = randomModel(seed, {.nodes = 6, .arcs = 10, .molecules = 4, .rule = 3, .marking = 3});
        const ExpectedNet expected(model.get());
        ASSERT_EQ(named(readTransitions(toRdP(model.get())), model.get()), expected.plain()) << model->toString();
        ASSERT_EQ(named(readTransitions(prefixNetOf(model.get())), model.get()), expected.prefix())
            << model->toString();
    }
}

// --- Numbers ---

TEST(ToString, WritesAnIntInDecimal) {
    EXPECT_EQ(toString(0), "0");
    EXPECT_EQ(toString(12), "12");
    EXPECT_EQ(toString(-7), "-7");
    EXPECT_EQ(toString(std::numeric_limits<int>::max()), "2147483647");
    EXPECT_EQ(toString(std::numeric_limits<int>::min()), "-2147483648");
}

class GroupsThousands : public std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(ToString, AndBothNetsWriteNumbersWithoutTheLocalesGrouping) {
    const auto model = readModel("A : 1234567a;");
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new GroupsThousands));
    std::ostringstream grouped;
    grouped << 1234567;
    const std::string text = toString(1234567);
    const std::string net = toRdP(model.get());
    const std::string prefixNet = prefixNetOf(model.get());
    std::locale::global(before);

    ASSERT_EQ(grouped.str(), "1.234.567") << "the locale does group";
    EXPECT_EQ(text, "1234567");
    EXPECT_THAT(net, HasSubstr("ma*1234567 "));
    EXPECT_THAT(prefixNet, HasSubstr("p_ma*1234567 "));
}

}  // namespace
