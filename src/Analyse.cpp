#include "Analyse.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <limits>
#include <locale>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "Analyse/Formule.h"
#include "Analyse/Rapport.h"
#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "Modele/Regle.h"

using Modele::Multiset;

// ---------------------------------------------------------------------------------------------------------------------
// The two nets
// ---------------------------------------------------------------------------------------------------------------------

namespace {

/// The numbers of the nodes, 1, 2, ..., in the order in which they are first asked for; a node's control place is "q"
/// and its number.
class Numbers {
public:
    explicit Numbers(Modele::KLV* model) { _numbers.reserve(model->getNoeuds().size()); }

    int of(const Modele::Noeud* node) {
        int& number = _numbers[node];
        if (number == 0) number = static_cast<int>(_numbers.size());
        return number;
    }

private:
    std::unordered_map<const Modele::Noeud*, int> _numbers;
};

constexpr std::size_t longestInt = std::numeric_limits<int>::digits10 + 2;

char* put(char* at, int n) {
    if (n < 0 || n > 9) return std::to_chars(at, at + longestInt, n).ptr;
    *at = static_cast<char>('0' + n);  // like most counts
    return at + 1;
}

template <typename Literal>
char* put(char* at, const Literal& literal) {
    return std::copy_n(literal, std::size(literal) - 1, at);
}

/// Appends literals and numbers as one piece, put together on the stack: a net consists of little else.
template <typename... Parts>
void append(std::string& net, const Parts&... parts) {
    std::array<char, (sizeof(Parts) + ...) + sizeof...(Parts) * longestInt> piece;
    char* end = piece.data();
    ((end = put(end, parts)), ...);
    net.append(piece.data(), end);
}

/// "NAME*COUNT " for every entry, also a count of 1 or 0. `counter` stands before the name of every molecule's place.
void appendMolecules(std::string& net, std::string_view counter, const Multiset& molecules) {
    for (const auto& [name, count] : molecules) {
        net += counter;
        net += name;
        append(net, "*", count, " ");
    }
}

void appendArc(std::string& net, int transition, int source, int destination, Modele::Regle* regle,
               std::string_view counter) {
    append(net, "tr t", transition, " q", source, " ");
    if (regle != nullptr) appendMolecules(net, counter, regle->getIn());
    append(net, "-> q", destination, " ");
    if (regle != nullptr) appendMolecules(net, counter, regle->getOut());
    net += '\n';
}

void appendStart(std::string& net, int transition, int destination, const Multiset& marking, std::string_view counter) {
    append(net, "tr t", transition, " q0 -> q", destination, " ");
    appendMolecules(net, counter, marking);
    net += '\n';
}

/// Given a hash of its own, the library's set hashes from the first name on; it would search a small set of strings
/// from end to end.
struct NameHash {
    std::size_t operator()(std::string_view name) const noexcept { return std::hash<std::string_view>{}(name); }
};

using Names = std::unordered_set<std::string_view, NameHash>;

void insertNames(Names& names, const Multiset& molecules) {
    for (const auto& [name, count] : molecules) names.insert(name);
}

constexpr std::string_view netHeader = "net buffer\n";
constexpr std::string_view netFooter = "pl q0 (1)\n";

}  // namespace

std::string toRdP(Modele::KLV* model) {
    Numbers numbers(model);
    int transition = 1;
    std::string net(netHeader);

    for (const auto& [name, node] : model->getNoeuds()) {
        const int source = numbers.of(node);
        for (Modele::Arc* arc : node->getOut()) {
            appendArc(net, transition++, source, numbers.of(arc->getDestination()), arc->getRegle(), "m");
        }
        if (node->isInit()) appendStart(net, transition++, source, node->getMarquage(), "m");
    }
    net += netFooter;
    return net;
}

std::string toPrefRdP(Modele::KLV* model) {
    Numbers numbers(model);
    int transition = 1;
    Names molecules;
    std::string net(netHeader);
    std::string secondCopy;

    for (const auto& [name, node] : model->getNoeuds()) {
        const int source = numbers.of(node);
        for (Modele::Arc* arc : node->getOut()) {
            const int destination = numbers.of(arc->getDestination());
            Modele::Regle* regle = arc->getRegle();
            appendArc(net, transition++, source, destination, regle, "p_m");
            appendArc(secondCopy, transition++, source, destination, regle, "s_m");
            if (regle == nullptr) continue;
            insertNames(molecules, regle->getIn());
            insertNames(molecules, regle->getOut());
        }
        if (node->isInit()) {
            appendStart(net, transition++, source, node->getMarquage(), "p_m");
            insertNames(molecules, node->getMarquage());
        }
    }
    for (const std::string_view molecule : std::set<std::string_view>(molecules.begin(), molecules.end())) {
        append(net, "tr t", transition++, " p_m");
        net += molecule;
        net += " ->  s_m";
        net += molecule;
        net += " r_m\n";
    }
    net += secondCopy;
    net += netFooter;

    std::cout << net << std::endl;
    return net;
}

std::string toString(int n) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());  // the toolkit makes the user's locale the default one
    stream << n;
    return stream.str();
}

// ---------------------------------------------------------------------------------------------------------------------
// The shell
// ---------------------------------------------------------------------------------------------------------------------

namespace {

/// Linux hands a program no argument longer than this, final zero included (MAX_ARG_STRLEN), and a shell
/// command is one.
constexpr std::size_t longestArgument = std::size_t{128} * 1024;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

struct ClosePipe {
    void operator()(std::FILE* pipe) const { pclose(pipe); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;
using Pipe = std::unique_ptr<std::FILE, ClosePipe>;

/// A nameless file in memory that holds `text`, null when there is no room for it.
File makeMemoryFile(const std::string& text) {
    const int descriptor = memfd_create("klv-command", MFD_CLOEXEC);
    if (descriptor < 0) return nullptr;
    File file(fdopen(descriptor, "w"));
    if (file == nullptr) {
        close(descriptor);
        return nullptr;
    }
    if (std::fwrite(text.data(), 1, text.size(), file.get()) != text.size() || std::fflush(file.get()) != 0)
        return nullptr;
    return file;
}

/// Where another process of this user finds the open file.
std::string pathOf(std::FILE* file) {
    return "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(fileno(file));
}

std::string outputOf(const std::string& command) {
    std::string output;
    const Pipe pipe(popen(command.c_str(), "re"));
    if (pipe == nullptr) return output;

    std::array<char, 1024> line;
    while (std::feof(pipe.get()) == 0 && std::ferror(pipe.get()) == 0) {
        if (std::fgets(line.data(), line.size(), pipe.get()) != nullptr) output += line.data();
    }
    return output;
}

}  // namespace

std::string execShell(std::string command) {
    if (command.size() < longestArgument) return outputOf(command);

    // The same shell runs the same command, read from a file instead of an argument.
    const File script = makeMemoryFile(command);
    if (script == nullptr) return "";
    return outputOf("exec /bin/sh " + pathOf(script.get()));
}

// ---------------------------------------------------------------------------------------------------------------------
// Boundedness and bounds
// ---------------------------------------------------------------------------------------------------------------------

namespace {

std::string runTina(const std::string& net, const std::string& options) {
    return execShell("echo '" + net + "' | ./tina/bin/tina " + options);
}

bool saysBounded(const std::string& report) { return report.find("not bounded") == std::string::npos; }

}  // namespace

bool isBounded(Modele::KLV* model) { return saysBounded(runTina(toRdP(model), "-C -a -g")); }

bool isPrefBounded(Modele::KLV* model) {
    return isBounded(model) && saysBounded(runTina(toPrefRdP(model), "-C -a -g"));
}

std::map<std::string, int> getBound(Modele::KLV* model) {
    if (!isBounded(model)) throw std::logic_error("KLV not bounded");
    return readBounds(runTina(toRdP(model), "-C -g"), "m");
}

std::map<std::string, int> getPrefixBound(Modele::KLV* model) {
    if (!isPrefBounded(model)) throw std::logic_error("KLV not prefix bounded");
    return readBounds(runTina(toPrefRdP(model), "-C -g"), "r_m");
}

// ---------------------------------------------------------------------------------------------------------------------
// Satisfiability
// ---------------------------------------------------------------------------------------------------------------------

namespace {

void appendConjunctions(std::vector<std::string>& all, std::vector<std::string> heads, const std::string& tail) {
    for (std::string& conjunction : heads) {
        if (!conjunction.empty()) conjunction += " & ";
        conjunction += tail;
        all.push_back(std::move(conjunction));
    }
}

/// Longer texts are not built.
constexpr std::size_t longestText = std::size_t{1} << 30;

/// Runs `mona` on the encoding of the model followed by the question, and leaves both in ".KLV.mona".
std::string runMona(const std::string& encoding, const std::string& question) {
    const std::string begin = "echo '";
    const std::string decide = ".KLV.mona && mona -q .KLV.mona";
    const std::string end = "' > " + decide;
    if (begin.size() + encoding.size() + question.size() + end.size() < longestArgument) {
        return execShell(begin + encoding + question + end);
    }

    // The shell would hold a long text several times over. Its echo changes nothing in an encoding, so that
    // this part can be written here; the question may hold backslashes, which it does change.
    std::ofstream file(".KLV.mona", std::ios::binary);
    file << encoding;
    file.close();
    if (!file) return "";
    return execShell(begin + question + "' >> " + decide);
}

}  // namespace

std::vector<std::string> SxmRec(std::string molecule, int n, int k) {
    if (k > n || k < 0) return {};
    if (n == 0) return {""};

    const std::string variable = "D" + molecule + toString(n);
    std::vector<std::string> all;
    appendConjunctions(all, SxmRec(molecule, n - 1, k), "(x notin " + variable + ")");
    appendConjunctions(all, SxmRec(molecule, n - 1, k - 1), "(x in " + variable + ")");
    return all;
}

int getBit(int value, int index) { return (value >> (static_cast<unsigned>(index) % 32)) & 1; }

bool isSat(Modele::KLV* model, std::string formula) {
    if (!formula.empty()) formula += ';';
    const std::size_t room = longestText - std::min(longestText, formula.size());
    const std::string encoding = toFormule(model, getBound(model), room);
    std::cout << encoding << formula << std::endl;

    if (formula.find('\'') != std::string::npos) throw std::logic_error("Syntaxe error");
    const std::string answer = runMona(encoding, formula);
    if (answer.find("Formula is unsatisfiable") != std::string::npos) return false;
    if (answer.find("A satisfying example") != std::string::npos) return true;
    throw std::logic_error("Syntaxe error");
}
