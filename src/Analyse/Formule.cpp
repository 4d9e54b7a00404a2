// One description of the text serves two sinks: Length, which only counts, and Text, which writes what was
// counted into a buffer of that size. They differ where the text is exponential, in the count predicates:
// their length has a closed form.
#include "Analyse/Formule.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Analyse.h"
#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"

using Modele::Multiset;

namespace {

using Bounds = std::map<std::string, int>;

[[noreturn]] void throwTooLarge() { throw std::logic_error("Formula too large"); }

class Sink {
public:
    Sink() = default;
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    virtual ~Sink() = default;

    virtual void append(std::string_view piece) = 0;

    /// For each k from 0 to `bound` the predicate that exactly k of the molecules 1 to `bound` of a kind are
    /// present at x, as the alternatives of SxmRec in their order.
    virtual void appendCountPredicates(const std::string& molecule, int bound) = 0;
};

Sink& operator<<(Sink& out, std::string_view piece) {
    out.append(piece);
    return out;
}

Sink& operator<<(Sink& out, std::integral auto n) {
    std::array<char, 24> digits;
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), n).ptr;
    return out << std::string_view(digits.data(), end);
}

constexpr std::string_view conjunction = " & ";
constexpr std::string_view indent = "   ";
constexpr std::string_view alternative = " | \n";
constexpr std::string_view endOfPredicate = ";\n\n";

void appendCountPredicateHead(Sink& out, const std::string& molecule, int k) {
    out << "pred S" << k << molecule << "(var1 x) = \n";
}

// ---------------------------------------------------------------------------------------------------------------------

/// Counts the bytes of a text and throws once they pass the limit.
class Length : public Sink {
public:
    explicit Length(std::size_t limit) : _limit(limit) {}

    std::size_t bytes() const { return _bytes; }
    void append(std::string_view piece) override { add(piece.size()); }
    void appendCountPredicates(const std::string& molecule, int bound) override;

private:
    void add(std::size_t bytes) {
        if (bytes > _limit - _bytes) throwTooLarge();
        _bytes += bytes;
    }

    std::size_t _limit;
    std::size_t _bytes = 0;
};

// Every subset of the molecules is one alternative: 2^bound of them, in which every molecule is absent as
// often as present.
void Length::appendCountPredicates(const std::string& molecule, int bound) {
    const std::size_t alternatives = std::size_t{1} << bound;
    const std::size_t predicates = static_cast<std::size_t>(bound) + 1;
    Length subset(_limit);
    subset << indent;
    for (int i = 1; i <= bound; ++i) subset << (i == 1 ? "" : conjunction) << "(x in D" << molecule << i << ")";
    const std::size_t negations = alternatives / 2 * static_cast<std::size_t>(bound);

    add(alternatives * subset.bytes() + negations * std::string_view("not").size());
    add((alternatives - predicates) * alternative.size() + predicates * endOfPredicate.size());
    for (int k = 0; k <= bound; ++k) appendCountPredicateHead(*this, molecule, k);
}

// ---------------------------------------------------------------------------------------------------------------------

/// Writes into a buffer that has room for the whole text from the start.
class Text : public Sink {
public:
    explicit Text(std::size_t length) { _text.reserve(length); }

    std::string take() { return std::move(_text); }
    void append(std::string_view piece) override { _text += piece; }
    void appendCountPredicates(const std::string& molecule, int bound) override;

private:
    std::string _text;
};

std::uint64_t lowest(int bits) { return (std::uint64_t{1} << bits) - 1; }

/// The next larger number with as many bits set; `set` is not 0 (HAKMEM, item 175).
std::uint64_t nextOfSameSize(std::uint64_t set) {
    const std::uint64_t last = set & (~set + 1);
    const std::uint64_t carried = set + last;
    return carried | (((set ^ carried) / last) >> 2);
}

// With bit i of a number standing for molecule i+1, the order of SxmRec is that of the numbers.
void Text::appendCountPredicates(const std::string& molecule, int bound) {
    std::vector<std::array<std::string, 2>> memberships;  // of each molecule: absent, present
    for (int i = 1; i <= bound; ++i) {
        const std::string variable = "D" + molecule + std::to_string(i);
        std::array<std::string, 2> membership;
        for (std::string& text : membership) text = i == 1 ? "" : conjunction;
        membership[0].append("(x notin ").append(variable).append(")");
        membership[1].append("(x in ").append(variable).append(")");
        memberships.push_back(membership);
    }

    for (int k = 0; k <= bound; ++k) {
        appendCountPredicateHead(*this, molecule, k);
        const std::uint64_t last = lowest(k) << (bound - k);
        for (std::uint64_t set = lowest(k);; set = nextOfSameSize(set)) {
            _text += indent;
            for (std::uint64_t rest = set; const auto& membership : memberships) {
                _text += membership[rest & 1];
                rest >>= 1;
            }
            if (set == last) break;
            _text += alternative;
        }
        _text += endOfPredicate;
    }
}

// ---------------------------------------------------------------------------------------------------------------------

/// The model as the text needs it, arcs and initial nodes numbered from 0. Owns nothing of the model.
class Encoding {
public:
    Encoding(Modele::KLV* model, const Bounds& bounds);

    void write(Sink& out) const;

private:
    void writeVariables(Sink& out) const;
    void writeCodePredicates(Sink& out) const;
    void writeInitialisation(Sink& out) const;
    void writeOrder(Sink& out) const;
    void writeEffects(Sink& out) const;
    void writeEffect(Sink& out, int code, const Multiset& consumed, const Multiset& produced) const;
    void writeColours(Sink& out) const;
    void writeConsumption(Sink& out) const;

    int codeOfArc(std::size_t arc) const { return static_cast<int>(arc) + 1; }
    int codeOfStart(std::size_t start) const { return static_cast<int>(_arcs.size() + start) + 1; }
    std::string whatMayPrecedeArcsFrom(const Modele::Noeud* node) const;

    const Bounds& _bounds;
    std::vector<Modele::Arc*> _arcs;
    std::vector<Modele::Noeud*> _initial;
    bool _hasStarts;  // with a single initial node, a run begins there without a transition
    int _lastCode;
    int _bits;
    std::unordered_map<const Modele::Noeud*, std::vector<int>> _codesInto;  // the transitions that lead into a node
};

Encoding::Encoding(Modele::KLV* model, const Bounds& bounds)
    : _bounds(bounds), _arcs(model->getArcs()), _initial(model->getNoeudIn()), _hasStarts(_initial.size() >= 2) {
    _lastCode = static_cast<int>(_arcs.size() + (_hasStarts ? _initial.size() : 0));
    _bits = static_cast<int>(std::bit_width(static_cast<unsigned>(_lastCode)));

    for (std::size_t a = 0; a < _arcs.size(); ++a) _codesInto[_arcs[a]->getDestination()].push_back(codeOfArc(a));
    if (!_hasStarts) return;
    for (std::size_t i = 0; i < _initial.size(); ++i) _codesInto[_initial[i]].push_back(codeOfStart(i));
}

void Encoding::write(Sink& out) const {
    writeVariables(out);
    out << "###############\n"
           "## FONCTIONS ##\n"
           "###############\n\n";
    writeCodePredicates(out);
    for (const auto& [molecule, bound] : _bounds) out.appendCountPredicates(molecule, bound);
    writeInitialisation(out);
    writeOrder(out);
    writeEffects(out);
    writeColours(out);
    writeConsumption(out);
}

void Encoding::writeVariables(Sink& out) const {
    out << "###############\n"
           "## Variables ##\n"
           "###############\n\n";
    for (const auto& [molecule, bound] : _bounds) {
        out << "### Molecule " << molecule << " ###\nvar2 ";
        for (int i = 1; i <= bound; ++i) out << (i == 1 ? "" : ", ") << "D" << molecule << i;
        out << ";\n\n";
    }

    out << "### Codage des transition en binaire ###\n";
    if (_bits > 0) {
        out << "var2 ";
        for (int j = 0; j < _bits; ++j) out << (j == 0 ? "" : ", ") << "T" << j;
        out << ";\n";
    }
    out << "\n";
}

void Encoding::writeCodePredicates(Sink& out) const {
    for (int code = 0; code <= _lastCode; ++code) {
        out << "pred TR" << code << "(var1 x) = \n" << indent;
        for (int j = 0; j < _bits; ++j)
            out << (getBit(code, j) == 1 ? "(x in T" : "(x notin T") << j << ")" << conjunction;
        out << "true;\n";
    }

    out << "pred TR(var1 x) = \n";
    for (int j = 0; j < _bits; ++j) out << "(x in T" << j << ") | ";
    out << "false;\n";
}

int countOf(const Multiset& molecules, const std::string& molecule) {
    const auto entry = molecules.find(molecule);
    return entry == molecules.end() ? 0 : entry->second;
}

void Encoding::writeInitialisation(Sink& out) const {
    out << "####################\n"
           "## Initialisation ##\n"
           "####################\n\n"
           "### T[0] = 0 ###\n";
    for (int j = 0; j < _bits; ++j) out << "0 notin T" << j << ";\n";
    out << "\n### Premiere ligne ###\n";

    const bool startsAtOnce = _initial.size() == 1;
    for (const auto& [molecule, bound] : _bounds) {
        const std::int64_t present = startsAtOnce ? countOf(_initial.front()->getMarquage(), molecule) : 0;
        for (std::int64_t i = 1; i <= present; ++i) out << "0 in D" << molecule << i << ";\n";
        for (std::int64_t i = present + 1; i <= bound; ++i) out << "0 notin D" << molecule << i << ";\n";
    }
    if (!startsAtOnce) out << "\n";
}

void Encoding::writeOrder(Sink& out) const {
    out << "######################\n"
           "## Ordre transition ##\n"
           "######################\n\n";
    const Modele::Noeud* source = nullptr;
    std::string precedents;
    for (std::size_t a = 0; a < _arcs.size(); ++a) {
        if (_arcs[a]->getSource() != source) {  // arcs come source by source
            source = _arcs[a]->getSource();
            precedents = whatMayPrecedeArcsFrom(source);
        }
        out << "all1 x : TR" << codeOfArc(a) << "(x)\n   => " << precedents << "false;\n";
    }
    if (_hasStarts) {
        for (std::size_t i = 0; i < _initial.size(); ++i) out << "all1 x : TR" << codeOfStart(i) << "(x) => x=1;\n";
    }
    out << "all1 x : TR(x) => TR0(x+1);\n\n";
}

std::string Encoding::whatMayPrecedeArcsFrom(const Modele::Noeud* node) const {
    std::string precedents;
    if (const auto codes = _codesInto.find(node); codes != _codesInto.end()) {
        for (const int code : codes->second) precedents += "TR" + std::to_string(code) + "(x-2) | ";
    }
    if (!_hasStarts && node->isInit()) precedents += "x=1 | ";
    return precedents;
}

void Encoding::writeEffects(Sink& out) const {
    out << "##################################\n"
           "## Action des transitions : PC1 ##\n"
           "##################################\n\n";
    const Multiset nothing;
    for (std::size_t a = 0; a < _arcs.size(); ++a) {
        Modele::Regle* regle = _arcs[a]->getRegle();
        writeEffect(out, codeOfArc(a), regle == nullptr ? nothing : regle->getIn(),
                    regle == nullptr ? nothing : regle->getOut());
    }
    if (_hasStarts) {
        for (std::size_t i = 0; i < _initial.size(); ++i) {
            writeEffect(out, codeOfStart(i), nothing, _initial[i]->getMarquage());
        }
    }

    out << "all1 x: TR0(x) & TR0(x+1)\n   => ";
    for (const auto& [molecule, bound] : _bounds) out << "S0" << molecule << "(x+1) & ";
    out << "true;\n\n";
}

void Encoding::writeEffect(Sink& out, int code, const Multiset& consumed, const Multiset& produced) const {
    out << "all1 x : TR" << code << "(x)\n   => ";
    for (const auto& [molecule, bound] : _bounds) {
        out << "S" << countOf(consumed, molecule) << molecule << "(x) & ";
        out << "S" << countOf(produced, molecule) << molecule << "(x+1) & ";
    }
    out << "true;\n";
}

void Encoding::writeColours(Sink& out) const {
    out << "#########################################################\n"
           "## On a jamais deux molécules de la même couleur : PC2 ##\n"
           "#########################################################\n\n";
    for (const auto& [molecule, bound] : _bounds) {
        for (int i = 1; i <= bound; ++i) {
            out << "all1 x, y: (x<y & x in D" << molecule << i << " & y in D" << molecule << i
                << " & TR0(x) & TR0(y))\n";
            out << "   => ex1 z: (x < z & z < y & z in D" << molecule << i << " & TR(z));\n";
        }
    }
}

void Encoding::writeConsumption(Sink& out) const {
    out << "################################################\n"
           "## On consomme des molécules existantes : PC3 ##\n"
           "################################################\n\n";
    for (const auto& [molecule, bound] : _bounds) {
        for (int i = 1; i <= bound; ++i) {
            out << "all1 x: x in D" << molecule << i << " & TR(x)\n";
            out << "   => (ex1 y: y<x & y in D" << molecule << i << " & TR0(y) & ( all1 z: y<z & z<x => z notin D"
                << molecule << i << " ) );\n";
        }
    }
}

}  // namespace

std::string toFormule(Modele::KLV* model, const Bounds& bounds, std::size_t limit) {
    // 2^30 alternatives of several bytes are past every limit; with fewer, no length below can overflow.
    if (std::any_of(bounds.begin(), bounds.end(), [](const auto& bound) { return bound.second >= 30; }))
        throwTooLarge();

    const Encoding encoding(model, bounds);
    Length length(limit);
    encoding.write(length);
    Text text(length.bytes());
    encoding.write(text);
    return text.take();
}
