#include "Helpers.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "Modele/Noeud.h"
#include "Modele/Regle.h"

namespace fs = std::filesystem;

namespace {

using Words = std::vector<std::string>;

/// The words of each declaration: names, counts with or without the name they belong to, and signs.
std::vector<Words> readDeclarations(const std::string& text) {
    std::string spaced;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 2, "//") == 0) i = std::min(text.find('\n', i), text.size() - 1);
        const bool isArrow = text.compare(i, 2, "->") == 0;
        if (isArrow) ++i;
        if (isArrow || std::string("(,):;").find(text[i]) != std::string::npos)
            spaced += isArrow ? " -> " : std::string{' ', text[i], ' '};
        else
            spaced += text[i];
    }

    std::vector<Words> declarations(1);
    std::istringstream in(spaced);
    for (std::string word; in >> word;) {
        if (word == ";")
            declarations.emplace_back();
        else
            declarations.back().push_back(word);
    }
    if (!declarations.back().empty()) throw std::runtime_error("a declaration without its end");
    declarations.pop_back();
    return declarations;
}

Modele::Multiset readMultiset(Words::const_iterator begin, Words::const_iterator end) {
    std::string text;
    for (; begin != end; ++begin) text += *begin + " ";
    Modele::Multiset molecules;
    if (!Modele::toMap(molecules, text)) throw std::runtime_error("not a multiset: " + text);
    return molecules;
}

void readDeclaration(Modele::KLV& model, const Words& words) {
    const auto arrow = std::find(words.begin() + std::min<std::ptrdiff_t>(3, std::ssize(words)), words.end(), "->");
    const std::string sign = words.size() < 2 ? "" : words[1];
    if (sign == "(") {
        model.addNoeud(words[0]);
    } else if (sign == ":") {
        const Modele::Multiset marking = readMultiset(words.begin() + 2, words.end());
        model.addNoeud(words[0], &marking);
    } else if (sign == "->" && words.size() == 3) {
        Modele::Noeud* source = model.addNoeud(words[0]);
        source->addArc(model.addNoeud(words[2]), nullptr);
    } else if (sign == "->" && words.size() > 3 && words[3] == ":" && arrow != words.end()) {
        const Modele::Multiset in = readMultiset(words.begin() + 4, arrow);
        const Modele::Multiset out = readMultiset(arrow + 1, words.end());
        Modele::Noeud* source = model.addNoeud(words[0]);
        source->addArc(model.addNoeud(words[2]), new Modele::Regle(&in, &out));
    } else {
        throw std::runtime_error("not a declaration: " + (words.empty() ? "" : words[0]));
    }
}

}  // namespace

std::unique_ptr<Modele::KLV> readModel(const std::string& text) {
    auto model = std::make_unique<Modele::KLV>();
    for (const Words& declaration : readDeclarations(text)) readDeclaration(*model, declaration);
    return model;
}

std::unique_ptr<Modele::KLV> readExample(const std::string& name) {
    return readModel(readFile(fs::path(KLV_SOURCE_DIR) / "examples" / (name + ".klv")));
}

namespace {

class Dice {
public:
    explicit Dice(unsigned seed) : _bits(seed) {}

    /// 0 to n - 1
    int below(int n) { return static_cast<int>(_bits() % static_cast<unsigned>(n)); }

    /// At most `kinds` of the molecules, each at most `count` times.
    Modele::Multiset multiset(int molecules, int kinds, int count) {
        Modele::Multiset drawn;
        for (int n = below(kinds + 1); n > 0; --n) {
            drawn[std::string(1, static_cast<char>('a' + below(molecules)))] = below(count + 1);
        }
        return drawn;
    }

private:
    std::mt19937 _bits;
};

}  // namespace

std::unique_ptr<Modele::KLV> randomModel(unsigned seed, const Sizes& sizes) {
    Dice dice(seed);
    auto model = std::make_unique<Modele::KLV>();
    std::vector<Modele::Noeud*> nodes;
    for (int n = 1 + dice.below(sizes.nodes); n > 0; --n) nodes.push_back(model->addNoeud());
    const auto anyNode = [&] { return nodes[static_cast<std::size_t>(dice.below(static_cast<int>(nodes.size())))]; };

    for (int a = dice.below(sizes.arcs + 1); a > 0; --a) {
        const Modele::Multiset in = dice.multiset(sizes.molecules, 2, sizes.rule);
        const Modele::Multiset out = dice.multiset(sizes.molecules, 2, sizes.rule);
        Modele::Noeud* source = anyNode();
        source->addArc(anyNode(), dice.below(4) == 0 ? nullptr : new Modele::Regle(&in, &out));
    }
    for (int i = dice.below(4); i > 0; --i) {
        const Modele::Multiset marking = dice.multiset(sizes.molecules, sizes.molecules, sizes.marking);
        anyNode()->setInit(&marking);
    }
    return model;
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path.string());
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const fs::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

namespace {

void writeScript(const fs::path& path, const std::string& script) {
    fs::create_directories(path.parent_path());
    writeFile(path, "#!/bin/sh\n" + script);
    fs::permissions(path, fs::perms(0755));
}

}  // namespace

WorkingDirectory::WorkingDirectory() : _before(fs::current_path()), _searchPath(std::getenv("PATH")) {
    fs::current_path(path());
    setenv("PATH", ((path() / "bin").string() + ":" + _searchPath).c_str(), 1);
}

WorkingDirectory::~WorkingDirectory() {
    setenv("PATH", _searchPath.c_str(), 1);
    fs::current_path(_before);
}

void WorkingDirectory::setTina(const std::string& script) const { writeScript(path() / "tina/bin/tina", script); }

void WorkingDirectory::setMona(const std::string& script) const { writeScript(path() / "bin/mona", script); }

void WorkingDirectory::useBuiltInTina() const {
    fs::create_directories(path() / "tina/bin");
    fs::create_symlink(KLV_TINA, path() / "tina/bin/tina");
}

namespace {

std::set<std::string> openDescriptors() {
    std::set<std::string> descriptors;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) descriptors.insert(entry.path().filename());
    return descriptors;
}

}  // namespace

NothingLeftBehind::NothingLeftBehind() : _descriptors(openDescriptors()) {}

NothingLeftBehind::~NothingLeftBehind() {
    EXPECT_EQ(openDescriptors(), _descriptors);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

std::string tinaThatPrints(const std::string& report) {
    return "cat > /dev/null\ncat <<'REPORT'\nbounded\n" + report + "REPORT\n";
}
