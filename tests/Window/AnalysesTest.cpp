// The five questions, asked from the menu, with answers from tools that the tests make up.
#include "Analyse/Helpers.h"
#include "MainWindow.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr auto unbounded = "cat > /dev/null\necho 'not bounded'\n";

class Analyses : public WithMainWindow {
protected:
    Analyses() { main.load("A(10, 20); A -> B : a -> 2b; A : 3a;"); }

    /// Chooses the item and returns what is shown.
    DialogSeen answerTo(const std::string& item, const Dialogs::Answer& answer) {
        const Dialogs dialogs({answer});
        main.choose(item);
        return dialogs.seen().empty() ? DialogSeen() : dialogs.seen().front();
    }

    DialogSeen informationOf(const std::string& item) { return answerTo(item, accept()); }
    DialogSeen errorOf(const std::string& item) { return answerTo(item, close()); }

    /// Enters `formula` in the prompt and returns what is shown then.
    DialogSeen answerToFormula(const std::string& formula, const Dialogs::Answer& answer) {
        const Dialogs dialogs({enter(formula), answer});
        main.choose("menu_modele_checking");
        EXPECT_EQ(dialogs.seen().size(), 2U);
        EXPECT_EQ(dialogs.seen().front(), (DialogSeen{"", "Formula : ", ""}));
        return dialogs.seen().back();
    }

    static DialogSeen information(const std::string& text) { return {"Information", text}; }
    static DialogSeen failure(const std::string& text) { return {text, text}; }

    WorkingDirectory here;
};

TEST_F(Analyses, TheBoundednessOfABoundedModel) {
    here.setTina(tinaThatPrints(""));
    EXPECT_EQ(informationOf("menu_bound"), information("KLV is bounded."));
}

TEST_F(Analyses, TheBoundednessOfAnUnboundedModel) {
    here.setTina(unbounded);
    EXPECT_EQ(informationOf("menu_bound"), information("KLV is not bounded."));
}

TEST_F(Analyses, TheBoundednessWithoutAnAnalyserReadsAsBounded) {
    EXPECT_EQ(informationOf("menu_bound"), information("KLV is bounded."));
    EXPECT_EQ(informationOf("menu_pref_bound"), information("KLV is prefix bounded."));
}

TEST_F(Analyses, ThePrefixBoundednessOfAPrefixBoundedModel) {
    here.setTina(tinaThatPrints(""));
    EXPECT_EQ(informationOf("menu_pref_bound"), information("KLV is prefix bounded."));
}

TEST_F(Analyses, ThePrefixBoundednessOfAnUnboundedModel) {
    here.setTina(unbounded);
    EXPECT_EQ(informationOf("menu_pref_bound"), information("KLV is not prefix bounded."));
}

TEST_F(Analyses, ThePrefixBoundednessOfAModelThatIsOnlyBounded) {
    here.setTina("if grep -q r_m; then echo 'not bounded'; fi\n");
    EXPECT_EQ(informationOf("menu_bound"), information("KLV is bounded."));
    EXPECT_EQ(informationOf("menu_pref_bound"), information("KLV is not prefix bounded."));
}

TEST_F(Analyses, TheBoundsAreNumbersInTheOrderOfTheMolecules) {
    here.setTina(tinaThatPrints("0 : q1 mb ma*2\n1 : q2 ma*3\n"));
    EXPECT_EQ(informationOf("menu_bound_size"), information("Bound = (3, 1)"));
}

TEST_F(Analyses, TheBoundsOfAModelWithoutMoleculesAreNone) {
    here.setTina(tinaThatPrints("0 : q1\n"));
    EXPECT_EQ(informationOf("menu_bound_size"), information("Bound = ()"));
}

TEST_F(Analyses, TheBoundsOfAnUnboundedModelAreAnError) {
    here.setTina(unbounded);
    EXPECT_EQ(errorOf("menu_bound_size"), failure("KLV not bounded"));
    EXPECT_EQ(traces.count("ERROR !!"), 1);
}

TEST_F(Analyses, ThePrefixBoundIsOneNumber) {
    here.setTina(tinaThatPrints("0 : q1 p_ma r_m*2\n1 : q1 r_m*7 s_ma\n2 : r_m\n"));
    EXPECT_EQ(informationOf("menu_prefix_bound_size"), information("Prefix bound = (7)"));
}

TEST_F(Analyses, ThePrefixBoundOfAModelWithoutMoleculesIsNone) {
    here.setTina(tinaThatPrints("0 : q1\n"));
    EXPECT_EQ(informationOf("menu_prefix_bound_size"), information("Prefix bound = ()"));
}

TEST_F(Analyses, ThePrefixBoundOfAnUnboundedModelIsAnError) {
    here.setTina(unbounded);
    EXPECT_EQ(errorOf("menu_prefix_bound_size"), failure("KLV not prefix bounded"));
}

TEST_F(Analyses, ASatisfiableFormula) {
    here.setTina(tinaThatPrints("0 : q1 ma mb\n"));
    here.setMona("echo 'A satisfying example of least length is: ...'\n");
    EXPECT_EQ(answerToFormula("true", accept()), information("Formula is satisfiable"));
}

TEST_F(Analyses, AnUnsatisfiableFormula) {
    here.setTina(tinaThatPrints("0 : q1 ma mb\n"));
    here.setMona("echo 'Formula is unsatisfiable'\n");
    EXPECT_EQ(answerToFormula("false", accept()), information("Formula is unsatisfiable"));
}

TEST_F(Analyses, AFormulaWithoutAVerdictIsAnError) {
    here.setTina(tinaThatPrints("0 : q1 ma mb\n"));
    here.setMona("echo 'parse error'\n");
    EXPECT_EQ(answerToFormula("((", close()), failure("Syntaxe error"));
}

TEST_F(Analyses, AFormulaOverAnUnboundedModelIsAnError) {
    here.setTina(unbounded);
    EXPECT_EQ(answerToFormula("true", close()), failure("KLV not bounded"));
}

TEST_F(Analyses, TheConfirmedFormulaReachesTheTool) {
    here.setTina(tinaThatPrints("0 : q1 ma mb\n"));
    here.setMona("cat .KLV.mona > seen\necho 'Formula is unsatisfiable'\n");
    answerToFormula("ex1 x: x = 3 & x notin {}", accept());
    EXPECT_THAT(readFile("seen"), HasSubstr("ex1 x: x = 3 & x notin {};\n"));
}

TEST_F(Analyses, AConfirmedEmptyFormulaAsksAboutTheModelAlone) {
    here.setTina(tinaThatPrints("0 : q1 ma mb\n"));
    here.setMona("cat .KLV.mona > seen\necho 'A satisfying example of least length is: ...'\n");
    EXPECT_EQ(answerToFormula("", accept()), information("Formula is satisfiable"));
    const std::string model = readFile("seen");
    answerToFormula("true", accept());
    EXPECT_EQ(readFile("seen"), model.substr(0, model.size() - 1) + "true;\n");
}

TEST_F(Analyses, ACancelledFormulaRunsNothingAndShowsNothing) {
    here.setTina("touch tina-was-run\n");
    here.setMona("touch mona-was-run\n");
    const Dialogs dialogs({enter("true", cancel()), enter("true", closeWindow)});
    main.choose("menu_modele_checking");
    main.choose("menu_modele_checking");
    EXPECT_EQ(dialogs.seen().size(), 2U);
    EXPECT_FALSE(std::filesystem::exists("tina-was-run"));
    EXPECT_FALSE(std::filesystem::exists("mona-was-run"));
    EXPECT_FALSE(std::filesystem::exists(".KLV.mona"));
}

TEST_F(Analyses, NoQuestionChangesTheModel) {
    here.setTina(tinaThatPrints("0 : q1 ma mb\n"));
    here.setMona("echo 'Formula is unsatisfiable'\n");
    const std::string before = main.text();
    for (const char* item : {"menu_bound", "menu_pref_bound", "menu_bound_size", "menu_prefix_bound_size"}) {
        informationOf(item);
    }
    answerToFormula("true", accept());
    EXPECT_EQ(main.text(), before);
}

TEST_F(Analyses, TheBuiltInAnalyserAnswersForTheModelOnTheScreen) {
    here.useBuiltInTina();
    EXPECT_EQ(informationOf("menu_bound"), information("KLV is bounded."));
    EXPECT_EQ(informationOf("menu_bound_size"), information("Bound = (3, 2)"));
    main.load("A -> A : -> a; A : ;");
    EXPECT_EQ(informationOf("menu_bound"), information("KLV is not bounded."));
}

}  // namespace
