// The examples: each says what it shows, opens, survives being saved, reads well on screen, and gets from the analyses
// the answers that its comment promises.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "Analyse.h"
#include "Controleur/Controleur.h"
#include "EGD/EasyDrawingArea.h"
#include "Modele/Arc.h"
#include "Modele/KLV.h"
#include "Modele/Noeud.h"
#include "Vue/Dessin.h"
#include "Vue/Noeud.h"
#include "common/Folder.h"

namespace {

using testing::Contains;
using testing::Each;
using testing::Ge;
using testing::Le;
using testing::MatchesRegex;
using testing::SizeIs;

namespace fs = std::filesystem;

std::vector<std::string> examples() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(KLV_SOURCE_DIR "/examples"))
        names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

/// The declarations of a file's text, in an order that does not depend on where the arcs lie in memory.
std::multiset<std::string> declarations(const std::string& text) {
    std::multiset<std::string> found;
    std::istringstream stream(text);
    for (std::string one; std::getline(stream, one, ';');) {
        one.erase(0, one.find_first_not_of('\n'));
        if (!one.empty()) found.insert(one);
    }
    return found;
}

/// "PREFIX(1, 2)" with the values of `bounds`.
std::string written(const std::string& prefix, const std::map<std::string, int>& bounds) {
    std::string values;
    for (const auto& [molecule, count] : bounds) values += (values.empty() ? "" : ", ") + std::to_string(count);
    return prefix + "(" + values + ")";
}

class Example : public testing::TestWithParam<std::string> {
protected:
    Example() {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            if (line.rfind("//", 0) != 0) break;
            comment.push_back(line);
        }
        loaded = controller->parser(path);
    }

    const std::string path = KLV_SOURCE_DIR "/examples/" + GetParam() + ".klv";
    Modele::KLV* const network = new Modele::KLV;
    Vue::Dessin* const drawing = new Vue::Dessin(new EGD::EasyDrawingArea);
    const std::unique_ptr<Controleur> controller = std::make_unique<Controleur>(nullptr, network, drawing);
    std::vector<std::string> comment;
    bool loaded = false;
};

TEST_P(Example, SaysFirstWhatItShows) {
    ASSERT_THAT(comment, SizeIs(Ge(3U)));
    EXPECT_THAT(comment.front(), MatchesRegex("// [A-Z].{40,}"));
    EXPECT_THAT(comment, Each(SizeIs(Le(120U))));
}

TEST_P(Example, IsTheSameAfterBeingSavedAndOpenedAgain) {
    ASSERT_TRUE(loaded);
    const std::string saved = controller->toString();
    EXPECT_THAT(declarations(saved), SizeIs(Ge(4U)));

    const Folder folder;
    ASSERT_TRUE(controller->parser(folder.write("copy.klv", saved)));
    EXPECT_EQ(declarations(controller->toString()), declarations(saved));
}

// A window of 1000 x 700 shows all of it: names within their circles, room for markings and loops, and no arrow that
// lies on another one.
TEST_P(Example, ReadsWellInANewWindow) {
    std::vector<std::pair<double, double>> places;
    for (const auto& [name, node] : network->getNoeuds()) {
        EXPECT_LE(name.size(), 4U) << name;
        const Vue::Noeud* view = drawing->getNoeudVue(node);
        const double x = view->getPosX();
        const double y = view->getPosY();
        EXPECT_TRUE(x >= 130 && x <= 870 && y >= 120 && y <= 500) << name;
        for (const auto& [otherX, otherY] : places) EXPECT_GE(std::hypot(x - otherX, y - otherY), 190) << name;
        places.emplace_back(x, y);
    }
    std::set<std::pair<const void*, const void*>> ends;
    for (Modele::Arc* arc : network->getArcs())
        EXPECT_TRUE(ends.emplace(arc->getSource(), arc->getDestination()).second) << arc->toString();
}

TEST_P(Example, GetsTheAnswersThatItsCommentPromises) {
    fs::current_path(KLV_BINARY_DIR);  // where the net analyser is found
    if (isBounded(network)) {
        const std::string bounds = written("// KLV is bounded. Bound = ", getBound(network));
        std::string molecules;
        for (const auto& [molecule, count] : getBound(network)) molecules += (molecules.empty() ? "" : ", ") + molecule;
        EXPECT_THAT(comment, Contains(bounds + " for " + molecules + "."));
    } else {
        EXPECT_THAT(comment, Contains("// KLV is not bounded."));
    }
    if (isPrefBounded(network)) {
        const std::string bound = written("// KLV is prefix bounded. Prefix bound = ", getPrefixBound(network));
        EXPECT_THAT(comment, Contains(bound + "."));
    } else {
        EXPECT_THAT(comment, Contains("// KLV is not prefix bounded."));
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Example, testing::ValuesIn(examples()), [](const auto& file) {
    std::string name = file.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
