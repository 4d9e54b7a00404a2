// The runs of a model one by one, from what a run is and not from the text given to the tool: an enumeration of all
// words up to a length, for tests that ask whether some run has a property.
//
// A word gives every position a transition code, 0 for none, and the set of molecules that appear there (where no
// transition stands) or are consumed there (where one stands). The codes beyond the last transition's that the binary
// numbers leave over are transitions as well, which no rule binds: they may stand anywhere and consume and produce at
// will.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Modele {
class Arc;
class KLV;
class Noeud;
}  // namespace Modele

using Bounds = std::map<std::string, int>;

/// A finite word, followed by empty positions for ever.
class Word {
public:
    explicit Word(const Bounds& bounds);

    int code(int p) const { return at(p).code; }
    bool isTransition(int p) const { return code(p) != 0; }
    /// Whether the individual, such as "Da1", appears or is consumed at p.
    bool in(const std::string& individual, int p) const;
    /// How many individuals of a kind do.
    int count(const std::string& molecule, int p) const;
    /// Whether the individual has appeared up to p and not been consumed since.
    bool isPresent(const std::string& individual, int p) const;

    /// Whether some position, or two in this order, have a property. Positions past the end are tried, too.
    bool some(const std::function<bool(int)>& holds) const;
    bool some(const std::function<bool(int, int)>& holds) const;
    bool all(const std::function<bool(int)>& holds) const;

private:
    friend class Runs;

    using Individuals = unsigned;  // a bit each
    struct Position {
        int code = 0;
        Individuals events = 0;
    };

    const Position& at(int p) const;

    std::map<std::string, int> _bits;                // of the individuals, by name
    std::map<std::string, Individuals> _ofMolecule;  // by kind
    std::vector<Position> _positions;
};

class Runs {
public:
    /// @param model must outlive the object
    explicit Runs(Modele::KLV* model);

    /// The largest count of every kind that is ever present, counted by walking the model. Throws std::runtime_error
    /// when there are too many states: the model is then most likely unbounded.
    static Bounds boundsOf(Modele::KLV* model);

    int codeOf(const std::string& source, const std::string& destination) const;
    int lastCode() const { return _lastCode; }
    const Bounds& bounds() const { return _bounds; }

    /// Whether one of the runs whose events lie on the first `length` positions satisfies `holds`.
    bool some(int length, const std::function<bool(const Word&)>& holds) const;

private:
    using Individuals = Word::Individuals;
    using Counts = std::map<std::string, int>;

    struct Transition {
        const Modele::Noeud* from;  ///< null: only at position 1
        const Modele::Noeud* to;
        Counts consumed;
        Counts produced;
    };

    bool isSpare(int code) const { return code > _lastCode; }
    bool mayStandAt(int code, int p, const Word& word) const;
    std::vector<Individuals> eventChoices(int code, int p, const Word& word, Individuals present) const;
    std::vector<Individuals> subsets(Individuals of, const Counts& counts) const;
    bool extend(Word& word, Individuals present, int length, const std::function<bool(const Word&)>& holds) const;

    Bounds _bounds;
    std::vector<Transition> _transitions;  // by code; that of code 0 is unused
    std::vector<Modele::Arc*> _arcs;
    const Modele::Noeud* _onlyStart = nullptr;
    Counts _initially;
    int _lastCode = 0;
    int _largestNumber = 0;  // that the bits of a code can hold
    Word _empty;
};
