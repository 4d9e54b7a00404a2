// Random sequences of edits, against a reference that holds the same network as plain values. After every
// edit the whole network is compared with it, and every view has been told exactly what it had to be told.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "Helpers.h"
#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"

namespace {

using Modele::KLV;
using Modele::Multiset;

/// A view and the number of updates it should have received.
struct Watch {
    explicit Watch(Modele::Object* object) : view(std::make_unique<CountingView>(object)) {}

    void expectAlive() const {
        EXPECT_EQ(view->updates, updates);
        EXPECT_EQ(view->farewells, 0);
    }
    void expectGone() const {
        EXPECT_EQ(view->updates, updates);
        EXPECT_EQ(view->farewells, 1);
    }

    std::unique_ptr<CountingView> view;
    int updates = 0;
};

struct RuleValue {
    Multiset in;
    Multiset out;
};

struct NodeValue {
    Watch watch;
    bool initial = false;
    Multiset marking = {};
};

struct ArcValue {
    Watch watch;
    std::string source;
    std::string destination;
    std::optional<RuleValue> rule = {};
};

std::string written(const Multiset& m) {
    std::ostringstream text;
    for (const auto& [name, count] : m) {
        if (count == 1) text << name << ' ';
        if (count > 1) text << count << name << ' ';
    }
    return text.str();
}

std::string written(const ArcValue& arc) {
    std::string text = arc.source + " -> " + arc.destination;
    if (arc.rule) text += " : " + written(arc.rule->in) + "-> " + written(arc.rule->out);
    return text + ";";
}

class Edits {
public:
    explicit Edits(unsigned seed) : _random(seed) {}

    void step() {
        static constexpr void (Edits::*kinds[])() = {&Edits::addAutomatic,
                                                     &Edits::addNamed,
                                                     &Edits::addMarked,
                                                     &Edits::get,
                                                     &Edits::remove,
                                                     &Edits::setInitText,
                                                     &Edits::setInitWrongText,
                                                     &Edits::setInitMarking,
                                                     &Edits::setDestination,
                                                     &Edits::setRegleText,
                                                     &Edits::setRegleWrongText,
                                                     &Edits::removeRegle,
                                                     &Edits::clearNowAndThen,
                                                     &Edits::addArc,
                                                     &Edits::addArc,
                                                     &Edits::addArc};
        (this->*kinds[pick(std::size(kinds))])();
    }

    void expectAgreement() {
        expectSameNodes();
        expectSameArcs();
        expectSameMolecules();
        expectSameText();
    }

    int destroyedNodes() const { return _destroyedNodes; }

    void clear() {
        _network.clear();
        for (const auto& [arc, value] : _arcs) value.watch.expectGone();
        for (const auto& [name, value] : _nodes) value.watch.expectGone();
        _destroyedNodes += static_cast<int>(_nodes.size());
        _arcs.clear();
        _nodes.clear();
        _counter = 0;
    }

private:
    std::size_t pick(std::size_t choices) { return _random() % choices; }

    std::string pickName() {
        static const char* const names[] = {"a", "b", "c", "q0", "q1", "q2", "q3", "q10"};
        return names[pick(std::size(names))];
    }

    template <class Map>
    auto pickEntry(Map& map) {
        return std::next(map.begin(), static_cast<std::ptrdiff_t>(pick(map.size())));
    }

    Modele::Noeud* pickNode() { return _network.getNoeuds().at(pickEntry(_nodes)->first); }

    /// A multiset and a text for it, in which a molecule's count may be spread over several words.
    std::pair<Multiset, std::string> pickMultiset() {
        static const char* const molecules[] = {"x", "y", "X", "_", "x2"};
        Multiset m;
        std::string text(pick(2), ' ');
        for (std::size_t words = pick(4); words > 0; --words) {
            const std::string name = molecules[pick(std::size(molecules))];
            const std::size_t count = pick(4);
            m[name] += static_cast<int>(count);
            text += (count == 1 ? "" : std::to_string(count)) + name + std::string(1 + pick(2), ' ');
        }
        return {m, text};
    }

    void recordNode(Modele::Noeud* node) {
        const auto found = _nodes.find(node->getName());
        if (found == _nodes.end()) _nodes.emplace(node->getName(), NodeValue{Watch(node)});
    }

    void clearNowAndThen() {
        if (pick(8) == 0) clear();
    }

    void addAutomatic() {
        do ++_counter;
        while (_nodes.contains("q" + std::to_string(_counter)));
        Modele::Noeud* node = _network.addNoeud();
        ASSERT_EQ(node->getName(), "q" + std::to_string(_counter));
        recordNode(node);
    }

    void addNamed() { recordNode(_network.addNoeud(pickName())); }

    void get() { recordNode(_network.get(pickName())); }

    void addMarked() {
        const std::string name = pickName();
        const auto [marking, text] = pickMultiset();
        const bool known = _nodes.contains(name);
        recordNode(_network.addNoeud(name, &marking));
        NodeValue& value = _nodes.at(name);
        value.initial = true;
        value.marking = marking;
        if (known) ++value.watch.updates;
    }

    void remove() {
        if (_nodes.empty()) return;
        const auto victim = pickEntry(_nodes);
        _network.removeNoeud(_network.get(victim->first));
        std::erase_if(_arcs, [&](const auto& entry) {
            const ArcValue& arc = entry.second;
            if (arc.source != victim->first && arc.destination != victim->first) return false;
            arc.watch.expectGone();
            return true;
        });
        victim->second.watch.expectGone();
        _nodes.erase(victim);
        ++_destroyedNodes;
        --_counter;
    }

    void setInitText() {
        if (_nodes.empty()) return;
        Modele::Noeud* node = pickNode();
        const auto [marking, text] = pickMultiset();
        EXPECT_TRUE(node->setInit(text)) << text;
        setMarking(node, marking, 2);
    }

    void setInitMarking() {
        if (_nodes.empty()) return;
        Modele::Noeud* node = pickNode();
        const Multiset marking = pickMultiset().first;
        node->setInit(&marking);
        setMarking(node, marking, 1);
    }

    void setMarking(const Modele::Noeud* node, const Multiset& marking, int updates) {
        NodeValue& value = _nodes.at(node->getName());
        value.initial = true;
        value.marking = marking;
        value.watch.updates += updates;
    }

    void setInitWrongText() {
        if (_nodes.empty()) return;
        EXPECT_FALSE(pickNode()->setInit(pickMultiset().second + "?"));
    }

    void addArc() {
        if (_nodes.empty()) return;
        Modele::Noeud* source = pickNode();
        Modele::Noeud* destination = pickNode();
        std::optional<RuleValue> rule;
        if (pick(2) == 0) rule = RuleValue{pickMultiset().first, pickMultiset().first};
        Modele::Arc* arc = source->addArc(destination, rule ? newRegle(rule->in, rule->out) : nullptr);
        const bool isNew =
            _arcs.emplace(arc, ArcValue{Watch(arc), source->getName(), destination->getName(), rule}).second;
        EXPECT_TRUE(isNew);
    }

    void setDestination() {
        if (_arcs.empty()) return;
        const auto entry = pickEntry(_arcs);
        Modele::Noeud* destination = pickNode();
        entry->first->setDestination(destination);
        ArcValue& value = entry->second;
        if (value.destination != destination->getName()) ++value.watch.updates;
        value.destination = destination->getName();
    }

    void setRegleText() {
        if (_arcs.empty()) return;
        const auto entry = pickEntry(_arcs);
        const auto [in, left] = pickMultiset();
        const auto [out, right] = pickMultiset();
        EXPECT_TRUE(entry->first->setRegle(left + "->" + right)) << left << "->" << right;
        entry->second.rule = RuleValue{in, out};
        ++entry->second.watch.updates;
    }

    void setRegleWrongText() {
        if (_arcs.empty()) return;
        static const char* const wrongMiddles[] = {" ", "-", ">", "- >", "->3 ", "-> ->"};
        const std::string text =
            pickMultiset().second + wrongMiddles[pick(std::size(wrongMiddles))] + pickMultiset().second;
        EXPECT_FALSE(pickEntry(_arcs)->first->setRegle(text)) << text;
    }

    void removeRegle() {
        if (_arcs.empty()) return;
        const auto entry = pickEntry(_arcs);
        EXPECT_TRUE(entry->first->setRegle(""));
        entry->second.rule.reset();
        ++entry->second.watch.updates;
    }

    void expectSameNodes() {
        std::vector<std::string> initial;
        ASSERT_EQ(_network.getNoeuds().size(), _nodes.size());
        for (const auto& [name, value] : _nodes) {
            SCOPED_TRACE("node " + name);
            ASSERT_TRUE(_network.getNoeuds().contains(name));
            Modele::Noeud* node = _network.getNoeuds().at(name);
            EXPECT_EQ(node->getName(), name);
            EXPECT_EQ(node->isInit(), value.initial);
            EXPECT_EQ(node->getMarquage(), value.marking);
            value.watch.expectAlive();
            if (value.initial) initial.push_back(name);
        }
        std::vector<std::string> listed;
        for (const Modele::Noeud* node : _network.getNoeudIn()) listed.push_back(node->getName());
        EXPECT_EQ(listed, initial);
    }

    void expectSameArcs() {
        std::vector<Modele::Arc*> expected;
        for (const auto& [name, node] : _network.getNoeuds()) {
            for (const auto& [arc, value] : _arcs) {  // by address, as in the node's set
                if (value.source == name) expected.push_back(arc);
            }
        }
        ASSERT_EQ(_network.getArcs(), expected);
        for (const auto& [arc, value] : _arcs) {
            SCOPED_TRACE("arc " + written(value));
            EXPECT_EQ(arc->getSource(), _network.getNoeuds().at(value.source));
            EXPECT_EQ(arc->getDestination(), _network.getNoeuds().at(value.destination));
            ASSERT_EQ(arc->getRegle() != nullptr, value.rule.has_value());
            if (value.rule) {
                EXPECT_EQ(arc->getRegle()->getIn(), value.rule->in);
                EXPECT_EQ(arc->getRegle()->getOut(), value.rule->out);
            }
            value.watch.expectAlive();
        }
    }

    void expectSameMolecules() {
        Multiset expected;
        const auto add = [&](const Multiset& m) {
            for (const auto& [name, count] : m) expected[name] = -1;
        };
        for (const auto& [name, value] : _nodes) add(value.marking);
        for (const auto& [arc, value] : _arcs) {
            if (!value.rule) continue;
            add(value.rule->in);
            add(value.rule->out);
        }
        EXPECT_EQ(_network.getMolecules(), expected);
    }

    void expectSameText() {
        std::string expected;
        for (const auto& [name, node] : _nodes) {
            for (const auto& [arc, value] : _arcs) {
                if (value.source == name) expected += written(value);
            }
            if (node.initial) expected += name + " : " + written(node.marking) + ";";
            expected += "\n";
        }
        EXPECT_EQ(_network.toString(), expected);
    }

    std::mt19937 _random;
    KLV _network;
    std::map<std::string, NodeValue> _nodes;
    std::map<Modele::Arc*, ArcValue> _arcs;
    int _counter = 0;
    int _destroyedNodes = 0;
};

/// While it lives, what the model traces is collected instead of written.
class Traces {
public:
    Traces() : _before(std::cout.rdbuf(_collected.rdbuf())) {}
    ~Traces() { std::cout.rdbuf(_before); }
    Traces(const Traces&) = delete;
    Traces& operator=(const Traces&) = delete;

    std::string text() const { return _collected.str(); }

private:
    std::ostringstream _collected;
    std::streambuf* _before;
};

TEST(RandomEdits, LeaveTheNetworkAsAReferenceOfPlainValues) {
    constexpr unsigned sequences = 2000;
    constexpr int steps = 40;
    for (unsigned seed = 0; seed < sequences; ++seed) {
        const Traces traces;
        Edits edits(seed);
        for (int step = 0; step < steps; ++step) {
            SCOPED_TRACE("sequence " + std::to_string(seed) + ", step " + std::to_string(step));
            edits.step();
            edits.expectAgreement();
            if (HasFailure()) return;
        }
        edits.clear();
        std::string expectedTraces;
        for (int i = 0; i < edits.destroyedNodes(); ++i) expectedTraces += "Modele::Noeud::~Noeud\n";
        ASSERT_EQ(traces.text(), expectedTraces) << "sequence " << seed;
    }
}

}  // namespace
