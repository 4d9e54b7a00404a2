#include "Runs.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"

Word::Word(const Bounds& bounds) {
    for (const auto& [molecule, bound] : bounds) {
        for (int i = 1; i <= bound; ++i) {
            const int bit = static_cast<int>(_bits.size());
            _bits["D" + molecule + std::to_string(i)] = bit;
            _ofMolecule[molecule] |= 1u << bit;
        }
    }
    if (_bits.size() > 30) throw std::logic_error("too many molecules for an enumeration");
}

const Word::Position& Word::at(int p) const {
    static const Position empty;
    return static_cast<std::size_t>(p) < _positions.size() ? _positions[static_cast<std::size_t>(p)] : empty;
}

bool Word::in(const std::string& individual, int p) const { return ((at(p).events >> _bits.at(individual)) & 1) != 0; }

int Word::count(const std::string& molecule, int p) const {
    return __builtin_popcount(at(p).events & _ofMolecule.at(molecule));
}

bool Word::isPresent(const std::string& individual, int p) const {
    for (int y = p; y >= 0; --y) {
        if (in(individual, y)) return !isTransition(y);
    }
    return false;
}

bool Word::some(const std::function<bool(int)>& holds) const {
    for (int p = 0; p < static_cast<int>(_positions.size()) + 3; ++p) {
        if (holds(p)) return true;
    }
    return false;
}

bool Word::some(const std::function<bool(int, int)>& holds) const {
    return some([&](int q) {
        for (int p = 0; p < q; ++p) {
            if (holds(p, q)) return true;
        }
        return false;
    });
}

bool Word::all(const std::function<bool(int)>& holds) const {
    return !some([&](int p) { return !holds(p); });
}

// ---------------------------------------------------------------------------------------------------------------------

Bounds Runs::boundsOf(Modele::KLV* model) {
    using State = std::pair<Modele::Noeud*, Counts>;
    std::set<State> known;
    std::vector<State> toDo;
    const auto meet = [&](Modele::Noeud* node, Counts counts) {
        std::erase_if(counts, [](const auto& entry) { return entry.second == 0; });
        const auto [state, isNew] = known.emplace(node, std::move(counts));
        if (isNew) toDo.push_back(*state);
        if (known.size() > 20'000) throw std::runtime_error("too many states");
    };

    for (Modele::Noeud* node : model->getNoeudIn()) meet(node, node->getMarquage());
    while (!toDo.empty()) {
        const auto [node, counts] = toDo.back();
        toDo.pop_back();
        for (Modele::Arc* arc : node->getOut()) {
            Counts after = counts;
            bool isPossible = true;
            if (Modele::Regle* regle = arc->getRegle(); regle != nullptr) {
                for (const auto& [molecule, n] : regle->getIn()) isPossible = (after[molecule] -= n) >= 0 && isPossible;
                for (const auto& [molecule, n] : regle->getOut()) after[molecule] += n;
            }
            if (isPossible) meet(arc->getDestination(), std::move(after));
        }
    }

    Bounds bounds;
    for (const auto& [node, counts] : known) {
        for (const auto& [molecule, n] : counts) bounds[molecule] = std::max(bounds[molecule], n);
    }
    return bounds;
}

Runs::Runs(Modele::KLV* model) : _bounds(boundsOf(model)), _transitions(1), _arcs(model->getArcs()), _empty(_bounds) {
    for (Modele::Arc* arc : _arcs) {
        Transition transition{arc->getSource(), arc->getDestination(), {}, {}};
        if (arc->getRegle() != nullptr) {
            transition.consumed = arc->getRegle()->getIn();
            transition.produced = arc->getRegle()->getOut();
        }
        _transitions.push_back(transition);
    }

    const std::vector<Modele::Noeud*> initial = model->getNoeudIn();
    if (initial.size() == 1) {
        _onlyStart = initial.front();
        _initially = initial.front()->getMarquage();
    } else {
        for (Modele::Noeud* node : initial) _transitions.push_back({nullptr, node, {}, node->getMarquage()});
    }

    _lastCode = static_cast<int>(_transitions.size()) - 1;
    while (_largestNumber < _lastCode) _largestNumber = 2 * _largestNumber + 1;
}

int Runs::codeOf(const std::string& source, const std::string& destination) const {
    for (std::size_t a = 0; a < _arcs.size(); ++a) {
        const bool isIt =
            _arcs[a]->getSource()->getName() == source && _arcs[a]->getDestination()->getName() == destination;
        if (isIt) return static_cast<int>(a) + 1;
    }
    throw std::logic_error("no arc from " + source + " to " + destination);
}

bool Runs::mayStandAt(int code, int p, const Word& word) const {
    if (code == 0) return true;
    if (p == 0 || word.isTransition(p - 1)) return false;
    if (isSpare(code)) return true;

    const Modele::Noeud* from = _transitions[static_cast<std::size_t>(code)].from;
    if (from == nullptr) return p == 1;
    if (p == 1) return from == _onlyStart;
    const int before = word.code(p - 2);
    return before != 0 && !isSpare(before) && _transitions[static_cast<std::size_t>(before)].to == from;
}

/// The sets of molecules for a position: with a transition, what it may consume; after one, what it may have produced.
std::vector<Runs::Individuals> Runs::eventChoices(int code, int p, const Word& word, Individuals present) const {
    const Individuals everything = (1u << _empty._bits.size()) - 1;
    const auto anyOf = [](Individuals of) {
        std::vector<Individuals> all{0};
        for (Individuals set = of; set != 0; set = (set - 1) & of) all.push_back(set);
        return all;
    };

    if (p == 0) {
        Individuals initial = 0;
        for (const auto& [molecule, n] : _initially) {
            for (int i = 1; i <= n; ++i) initial |= 1u << _empty._bits.at("D" + molecule + std::to_string(i));
        }
        return {initial};
    }
    if (code != 0) {
        if (isSpare(code)) return anyOf(present);
        return subsets(present, _transitions[static_cast<std::size_t>(code)].consumed);
    }
    const int before = word.code(p - 1);
    if (before == 0) return {0};
    if (isSpare(before)) return anyOf(everything & ~present);
    return subsets(everything & ~present, _transitions[static_cast<std::size_t>(before)].produced);
}

/// The subsets of `of` with exactly these counts of every kind.
std::vector<Runs::Individuals> Runs::subsets(Individuals of, const Counts& counts) const {
    std::vector<Individuals> all{0};
    for (const auto& [molecule, individuals] : _empty._ofMolecule) {
        const auto entry = counts.find(molecule);
        const int n = entry == counts.end() ? 0 : entry->second;
        std::vector<Individuals> grown;
        for (const Individuals set : all) {
            const Individuals candidates = of & individuals;
            for (Individuals part = candidates;; part = (part - 1) & candidates) {
                if (__builtin_popcount(part) == n) grown.push_back(set | part);
                if (part == 0) break;
            }
        }
        all = grown;
    }
    return all;
}

bool Runs::some(int length, const std::function<bool(const Word&)>& holds) const {
    Word word = _empty;
    return extend(word, 0, length, holds);
}

bool Runs::extend(Word& word, Individuals present, int length, const std::function<bool(const Word&)>& holds) const {
    const int p = static_cast<int>(word._positions.size());
    if (p == length) {
        // What the last transition produces would stand past the end.
        const bool endsHere = word.code(p - 1) == 0;
        return endsHere && holds(word);
    }
    for (int code = 0; code <= _largestNumber; ++code) {
        if (!mayStandAt(code, p, word)) continue;
        for (const Individuals events : eventChoices(code, p, word, present)) {
            word._positions.push_back({code, events});
            const bool found = extend(word, present ^ events, length, holds);
            word._positions.pop_back();
            if (found) return true;
        }
    }
    return false;
}
