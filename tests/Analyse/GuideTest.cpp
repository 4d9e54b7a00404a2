// The worked formulas of docs/formulas.md, read from that page: each is asked of its example with the real tools and
// has to get the answer that the page gives.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <ostream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Analyse.h"
#include "Helpers.h"
#include "common/Traces.h"

namespace {

struct WorkedFormula {
    std::string title;
    std::string example;
    std::string formula;
    std::string answer;

    friend std::ostream& operator<<(std::ostream& out, const WorkedFormula& worked) { return out << worked.title; }
};

/// What stands between the first `begin` and the next `end` of a line; nothing when they are not there.
std::string between(const std::string& line, const std::string& begin, const std::string& end) {
    const std::size_t from = line.find(begin);
    if (from == std::string::npos) return "";
    const std::size_t to = line.find(end, from + begin.size());
    return to == std::string::npos ? "" : line.substr(from + begin.size(), to - from - begin.size());
}

/// A worked formula is a heading, a line "Model: ", a block of `mona` and a line "Answer: ".
std::vector<WorkedFormula> readGuide() {
    std::istringstream page(readFile(KLV_SOURCE_DIR "/docs/formulas.md"));
    std::vector<WorkedFormula> all;
    WorkedFormula next;
    bool isInBlock = false;
    for (std::string line; std::getline(page, line);) {
        if (line == "```mona") {
            isInBlock = true;
        } else if (line == "```") {
            isInBlock = false;
        } else if (isInBlock) {
            next.formula += line + "\n";
        } else if (line.starts_with("### ")) {
            next = {line.substr(4), "", "", ""};
        } else if (line.starts_with("Model: ")) {
            next.example = between(line, "`examples/", ".klv`");
        } else if (line.starts_with("Answer: ")) {
            next.answer = between(line, "**", "**");
            all.push_back(next);
        }
    }
    return all;
}

TEST(FormulaGuide, WorksOutAtLeastSixFormulasWithBothAnswers) {
    const std::vector<WorkedFormula> all = readGuide();
    std::set<std::string> examples;
    std::set<std::string> answers;
    for (const WorkedFormula& worked : all) {
        EXPECT_FALSE(worked.formula.empty()) << worked.title;
        examples.insert(worked.example);
        answers.insert(worked.answer);
    }
    EXPECT_GE(all.size(), 6u);
    EXPECT_GE(examples.size(), 6u);
    EXPECT_THAT(answers, testing::ElementsAre("Formula is satisfiable", "Formula is unsatisfiable"));
}

class Guide : public testing::TestWithParam<WorkedFormula> {
protected:
    Guide() { directory.useBuiltInTina(); }

    std::string answerTo(const std::string& formula) const {
        const auto model = readExample(GetParam().example);
        const Traces trace;
        return isSat(model.get(), formula) ? "Formula is satisfiable" : "Formula is unsatisfiable";
    }

    WorkingDirectory directory;
};

TEST_P(Guide, GivesTheAnswerOfTheToolsToItsFormula) { EXPECT_EQ(answerTo(GetParam().formula), GetParam().answer); }

TEST_P(Guide, GivesTheAnswerOfTheToolsToItsFormulaOnOneLine) {
    std::string formula = GetParam().formula;
    std::replace(formula.begin(), formula.end(), '\n', ' ');
    EXPECT_EQ(answerTo(formula), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(To, Guide, testing::ValuesIn(readGuide()), [](const auto& worked) {
    std::string name;
    bool isNewWord = true;
    for (const char c : worked.param.title) {
        const bool isLetter = std::isalnum(static_cast<unsigned char>(c)) != 0;
        if (isLetter) name += isNewWord ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
        isNewWord = !isLetter;
    }
    return name;
});

}  // namespace
