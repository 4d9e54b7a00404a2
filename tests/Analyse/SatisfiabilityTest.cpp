// The answers of the real tools, question by question: what a person reads off the model, what an enumeration of its
// runs finds and what `mona` says of the encoding have to be the same.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <vector>

#include "Analyse.h"
#include "Helpers.h"
#include "Modele/Arc.h"
#include "Modele/Regle.h"
#include "Runs.h"
#include "common/Traces.h"

namespace {

using testing::ThrowsMessage;

enum Verdict { UNSATISFIABLE, SATISFIABLE };

/// "Da1 is there at p": it has appeared and not been consumed since.
std::string isPresent(const std::string& individual) {
    return "(ex1 y: y<=p & y in " + individual + " & TR0(y) & (all1 z: y<z & z<=p => z notin " + individual + "))";
}

class SatisfiabilityOf : public testing::Test {
protected:
    SatisfiabilityOf() { directory.useBuiltInTina(); }

    /// @param positions how many positions the enumeration tries: enough for every run, or, where a run may go on for
    /// ever, for
    ///               all that the questions speak of
    void useModel(const std::string& text, int positions) {
        model = readModel(text);
        runs = std::make_unique<Runs>(model.get());
        length = positions;
        const Traces trace;
        ASSERT_EQ(getBound(model.get()), runs->bounds());
    }

    int arc(const std::string& source, const std::string& destination) const {
        return runs->codeOf(source, destination);
    }

    std::string TR(const std::string& source, const std::string& destination) const {
        return "TR" + std::to_string(arc(source, destination));
    }

    /// All positions have code 0 or that of a transition.
    std::string noSpareCode() const {
        std::string text = "(all1 p: TR0(p)";
        for (int code = 1; code <= runs->lastCode(); ++code) text += " | TR" + std::to_string(code) + "(p)";
        return text + ")";
    }

    bool hasNoSpareCode(const Word& word) const {
        return word.all([&](int p) { return word.code(p) <= runs->lastCode(); });
    }

    void expect(Verdict verdict, const std::string& formula, const std::function<bool(const Word&)>& holds) {
        EXPECT_EQ(runs->some(length, holds), verdict == SATISFIABLE) << "by enumeration: " << formula;
        const Traces trace;
        EXPECT_EQ(isSat(model.get(), formula), verdict == SATISFIABLE) << "by the tool: " << formula;
    }

    WorkingDirectory directory;
    std::unique_ptr<Modele::KLV> model;
    std::unique_ptr<Runs> runs;
    int length = 0;
};

// One arc, one initial node: the run is over after one transition.
TEST_F(SatisfiabilityOf, AChain) {
    useModel("A : a; A -> B : a -> b;", 7);
    expect(SATISFIABLE, "", [](const Word&) { return true; });
    expect(SATISFIABLE, "ex1 p: p in Db1", [](const Word& r) { return r.some([&](int p) { return r.in("Db1", p); }); });
    expect(UNSATISFIABLE, "ex1 p: p in Da1 & p in Db1",
           [](const Word& r) { return r.some([&](int p) { return r.in("Da1", p) && r.in("Db1", p); }); });
    expect(SATISFIABLE, "~ex1 p: TR(p)",
           [](const Word& r) { return r.all([&](int p) { return !r.isTransition(p); }); });
    expect(UNSATISFIABLE, "ex1 p: 1<p & TR1(p)",
           [](const Word& r) { return r.some([&](int p) { return 1 < p && r.code(p) == 1; }); });
    expect(UNSATISFIABLE, "0 notin Da1", [](const Word& r) { return !r.in("Da1", 0); });
    expect(SATISFIABLE, "Db1 = {2}",
           [](const Word& r) { return r.all([&](int p) { return r.in("Db1", p) == (p == 2); }); });
    expect(UNSATISFIABLE, "ex1 p: " + isPresent("Da1") + " & " + isPresent("Db1"),
           [](const Word& r) { return r.some([&](int p) { return r.isPresent("Da1", p) && r.isPresent("Db1", p); }); });
    expect(SATISFIABLE, "all1 p: " + isPresent("Da1"),
           [](const Word& r) { return r.all([&](int p) { return r.isPresent("Da1", p); }); });
}

// A cycle of two arcs: code 3 is left over, and with it transitions that no rule binds.
TEST_F(SatisfiabilityOf, ACycleWithASpareCode) {
    useModel("A : 2a; A -> B : a -> b; B -> A;", 8);
    const int back = arc("B", "A");
    expect(SATISFIABLE, "", [](const Word&) { return true; });
    expect(SATISFIABLE, "ex1 p: TR1(p) & ex1 q: p<q & TR1(q)",
           [](const Word& r) { return r.some([&](int p, int q) { return r.code(p) == 1 && r.code(q) == 1; }); });
    expect(UNSATISFIABLE, "ex1 p: TR1(p) & TR1(p+2)",
           [](const Word& r) { return r.some([&](int p) { return r.code(p) == 1 && r.code(p + 2) == 1; }); });
    expect(SATISFIABLE, "ex1 p: " + TR("B", "A") + "(p)",
           [=](const Word& r) { return r.some([&](int p) { return r.code(p) == back; }); });
    expect(SATISFIABLE, "ex1 p: S2b(p)",
           [](const Word& r) { return r.some([&](int p) { return r.count("b", p) == 2; }); });
    expect(UNSATISFIABLE, noSpareCode() + " & ex1 p: S2b(p)",
           [&](const Word& r) { return hasNoSpareCode(r) && r.some([&](int p) { return r.count("b", p) == 2; }); });
    expect(SATISFIABLE, noSpareCode() + " & ex1 p: " + isPresent("Db1") + " & " + isPresent("Db2"), [&](const Word& r) {
        return hasNoSpareCode(r) && r.some([&](int p) { return r.isPresent("Db1", p) && r.isPresent("Db2", p); });
    });
    expect(SATISFIABLE, "ex1 p: TR(p) & ~TR1(p) & ~TR2(p)",
           [](const Word& r) { return r.some([&](int p) { return r.code(p) == 3; }); });
    expect(UNSATISFIABLE, "ex1 p: p in T0 & p in T1 & p+1 in T0",
           [](const Word& r) { return r.some([&](int p) { return r.code(p) == 3 && r.code(p + 1) % 2 == 1; }); });
    expect(UNSATISFIABLE, noSpareCode() + " & ex1 p: S2a(p) & TR(p)", [&](const Word& r) {
        return hasNoSpareCode(r) && r.some([&](int p) { return r.count("a", p) == 2 && r.isTransition(p); });
    });
}

// Three arcs: every code is a transition's. Molecules go round, so that runs need not end.
TEST_F(SatisfiabilityOf, ACycleWithAnExit) {
    useModel("A : 2a; A -> B : a -> b; B -> A : b -> a; B -> C;", 11);
    const int out = arc("A", "B");
    const int back = arc("B", "A");
    const int exit = arc("B", "C");
    const std::string everyBIsConsumed = "(all1 p: p in Db1 & TR0(p) => ex1 q: p<q & q in Db1 & TR(q))";
    const auto isEveryBConsumed = [](const Word& r) {
        return !r.some([&](int p) {
            return r.in("Db1", p) && !r.isTransition(p) && r.all([&](int q) { return q <= p || !r.in("Db1", q); });
        });
    };

    expect(SATISFIABLE, "ex1 p, q: p<q & " + TR("A", "B") + "(p) & " + TR("A", "B") + "(q)",
           [=](const Word& r) { return r.some([&](int p, int q) { return r.code(p) == out && r.code(q) == out; }); });
    expect(UNSATISFIABLE, "ex1 p: " + TR("B", "A") + "(p) & " + TR("B", "C") + "(p+2)",
           [=](const Word& r) { return r.some([&](int p) { return r.code(p) == back && r.code(p + 2) == exit; }); });
    expect(UNSATISFIABLE, "ex1 p, q: p<q & " + TR("B", "C") + "(p) & TR(q)",
           [=](const Word& r) { return r.some([&](int p, int q) { return r.code(p) == exit && r.isTransition(q); }); });
    expect(SATISFIABLE, "ex1 p: " + TR("B", "C") + "(p) & ~(ex1 q: p<q & TR(q))", [=](const Word& r) {
        return r.some(
            [&](int p) { return r.code(p) == exit && r.all([&](int q) { return q <= p || !r.isTransition(q); }); });
    });
    expect(UNSATISFIABLE, "~" + noSpareCode(), [&](const Word& r) { return !hasNoSpareCode(r); });
    expect(UNSATISFIABLE, "ex1 p: ~" + isPresent("Da1") + " & ~" + isPresent("Da2"), [](const Word& r) {
        return r.some([&](int p) { return !r.isPresent("Da1", p) && !r.isPresent("Da2", p); });
    });
    expect(SATISFIABLE, "(ex1 p: p in Db1) & " + everyBIsConsumed,
           [=](const Word& r) { return r.some([&](int p) { return r.in("Db1", p); }) && isEveryBConsumed(r); });
    expect(UNSATISFIABLE, "(ex1 p: " + TR("B", "C") + "(p)) & " + everyBIsConsumed,
           [=](const Word& r) { return r.some([&](int p) { return r.code(p) == exit; }) && isEveryBConsumed(r); });
    expect(SATISFIABLE, "Da1 = {0} & ex1 p: TR(p)", [](const Word& r) {
        return r.all([&](int p) { return r.in("Da1", p) == (p == 0); }) &&
               r.some([&](int p) { return r.isTransition(p); });
    });
    expect(UNSATISFIABLE, "Da1 = {0} & Da2 = {0} & ex1 p: TR(p)", [](const Word& r) {
        return r.all([&](int p) { return r.in("Da1", p) == (p == 0) && r.in("Da2", p) == (p == 0); }) &&
               r.some([&](int p) { return r.isTransition(p); });
    });
}

TEST_F(SatisfiabilityOf, AModelWithoutInitialNode) {
    useModel("A -> B : a -> b; B -> B : -> c; C -> A;", 9);
    expect(SATISFIABLE, "", [](const Word&) { return true; });
    expect(UNSATISFIABLE, "ex1 p: TR(p)",
           [](const Word& r) { return r.some([&](int p) { return r.isTransition(p); }); });
    expect(UNSATISFIABLE, "1 in T0", [](const Word& r) { return r.code(1) % 2 == 1; });
    expect(SATISFIABLE, "all1 p: TR0(p)", [](const Word& r) { return r.all([&](int p) { return r.code(p) == 0; }); });
}

TEST_F(SatisfiabilityOf, AModelWithoutNodes) {
    useModel("", 5);
    expect(SATISFIABLE, "", [](const Word&) { return true; });
    expect(UNSATISFIABLE, "ex1 p: TR(p)",
           [](const Word& r) { return r.some([&](int p) { return r.isTransition(p); }); });
    expect(UNSATISFIABLE, "false", [](const Word&) { return false; });
}

// Codes: 1 is the arc, 2 and 3 are the starts in A and in B; none is left over.
TEST_F(SatisfiabilityOf, TwoInitialNodes) {
    useModel("A : a; B : 2a; A -> B : a -> 2a;", 9);
    expect(SATISFIABLE, "", [](const Word&) { return true; });
    expect(SATISFIABLE, "TR2(1) & S1a(2)", [](const Word& r) { return r.code(1) == 2 && r.count("a", 2) == 1; });
    expect(UNSATISFIABLE, "TR2(1) & S2a(2)", [](const Word& r) { return r.code(1) == 2 && r.count("a", 2) == 2; });
    expect(SATISFIABLE, "TR3(1) & S2a(2)", [](const Word& r) { return r.code(1) == 3 && r.count("a", 2) == 2; });
    expect(UNSATISFIABLE, "TR1(1)", [](const Word& r) { return r.code(1) == 1; });
    expect(SATISFIABLE, "TR1(3)", [](const Word& r) { return r.code(3) == 1; });
    expect(UNSATISFIABLE, "TR3(1) & ex1 p: TR1(p)",
           [](const Word& r) { return r.code(1) == 3 && r.some([&](int p) { return r.code(p) == 1; }); });
    expect(UNSATISFIABLE, "ex1 p: 1<p & (TR2(p) | TR3(p))",
           [](const Word& r) { return r.some([&](int p) { return 1 < p && r.code(p) >= 2; }); });
    expect(SATISFIABLE, "~ex1 p: TR(p)",
           [](const Word& r) { return r.all([&](int p) { return !r.isTransition(p); }); });
    expect(UNSATISFIABLE, "0 in Da1", [](const Word& r) { return r.in("Da1", 0); });
    expect(SATISFIABLE, "TR2(1) & ex1 p: " + isPresent("Da1") + " & " + isPresent("Da2"), [](const Word& r) {
        return r.code(1) == 2 && r.some([&](int p) { return r.isPresent("Da1", p) && r.isPresent("Da2", p); });
    });
}

TEST_F(SatisfiabilityOf, ThreeInitialNodesAndNoArc) {
    useModel("A : a; B : b; C : ;", 7);
    expect(SATISFIABLE, "TR3(1)", [](const Word& r) { return r.code(1) == 3; });
    expect(SATISFIABLE, "ex1 p: p in Db1", [](const Word& r) { return r.some([&](int p) { return r.in("Db1", p); }); });
    expect(UNSATISFIABLE, "(ex1 p: p in Da1) & (ex1 p: p in Db1)", [](const Word& r) {
        return r.some([&](int p) { return r.in("Da1", p); }) && r.some([&](int p) { return r.in("Db1", p); });
    });
    expect(UNSATISFIABLE, "TR3(1) & ex1 p: p in Da1",
           [](const Word& r) { return r.code(1) == 3 && r.some([&](int p) { return r.in("Da1", p); }); });
}

// Two arcs and two starts: codes 5 to 7 are left over.
TEST_F(SatisfiabilityOf, TwoInitialNodesWithSpareCodes) {
    useModel("A : a; B : ; A -> B : a -> ; B -> A : -> a;", 8);
    const int use = arc("A", "B");
    expect(UNSATISFIABLE, "ex1 p: " + TR("A", "B") + "(p) & " + TR("A", "B") + "(p+2)",
           [=](const Word& r) { return r.some([&](int p) { return r.code(p) == use && r.code(p + 2) == use; }); });
    expect(SATISFIABLE, "ex1 p: p in T0 & p in T2",
           [](const Word& r) { return r.some([&](int p) { return (r.code(p) & 5) == 5; }); });
    expect(UNSATISFIABLE, noSpareCode() + " & ex1 p: p in T0 & p in T2",
           [&](const Word& r) { return hasNoSpareCode(r) && r.some([&](int p) { return (r.code(p) & 5) == 5; }); });
    expect(SATISFIABLE, noSpareCode() + " & ex1 p: " + TR("A", "B") + "(p) & " + TR("B", "A") + "(p+2)",
           [&](const Word& r) {
               return hasNoSpareCode(r) &&
                      r.some([&](int p) { return r.code(p) == use && r.code(p + 2) == arc("B", "A"); });
           });
    expect(UNSATISFIABLE, noSpareCode() + " & 3 in Da1 & TR4(1)",
           [&](const Word& r) { return hasNoSpareCode(r) && r.in("Da1", 3) && r.code(1) == 4; });
    expect(SATISFIABLE, "3 in Da1 & TR3(1)", [](const Word& r) { return r.in("Da1", 3) && r.code(1) == 3; });
}

// --- Formulas that are not one line of logic ---

TEST_F(SatisfiabilityOf, AFormulaMayDefineItsOwnPredicates) {
    useModel("A : a; A -> B : a -> b;", 7);
    const auto bAppears = [](const Word& r) { return r.some([&](int p) { return r.in("Db1", p); }); };
    expect(SATISFIABLE, "pred here(var1 p, var2 D) = p in D & TR0(p); ex1 p: here(p, Db1)", bAppears);
    expect(SATISFIABLE, "pred here(var1 p) =\n p in Db1; # on several lines\nex1 p:\n\there(p)", bAppears);
}

TEST_F(SatisfiabilityOf, AFormulaMayBeSeveralOfWhichAllHold) {
    useModel("A : a; A -> B : a -> b;", 7);
    expect(SATISFIABLE, "2 in Db1; 1 in Da1", [](const Word& r) { return r.in("Db1", 2) && r.in("Da1", 1); });
    expect(UNSATISFIABLE, "2 in Db1; 1 notin Da1", [](const Word& r) { return r.in("Db1", 2) && !r.in("Da1", 1); });
}

TEST_F(SatisfiabilityOf, AFormulaThatTheToolCannotReadIsASyntaxError) {
    model = readModel("A : a; A -> B : a -> b;");
    const Traces trace;
    for (const char* formula :
         {"ex1 p", "p in Da1", "ex1 p: p in Dc1", "ex1 p: S2a(p)", ")", ";;", "true; false)", "true # no end"}) {
        EXPECT_THAT([&] { isSat(model.get(), formula); }, ThrowsMessage<std::logic_error>("Syntaxe error")) << formula;
    }
}

TEST_F(SatisfiabilityOf, ARuleThatUsesMoreThanTheBoundIsASyntaxError) {
    model = readModel("A : a; A -> B : 5a -> ;");
    const Traces trace;
    EXPECT_THAT([&] { isSat(model.get(), ""); }, ThrowsMessage<std::logic_error>("Syntaxe error"));
}

TEST_F(SatisfiabilityOf, AnUnboundedModelIsNotAsked) {
    model = readModel("A : ; A -> A : -> a;");
    const Traces trace;
    EXPECT_THAT([&] { isSat(model.get(), ""); }, ThrowsMessage<std::logic_error>("KLV not bounded"));
}

TEST_F(SatisfiabilityOf, ATextTooLongForOneArgumentIsAskedLikeAnyOther) {
    model = readModel("A : 10a; A -> B : 10a -> ;");
    const Traces trace;
    EXPECT_TRUE(isSat(model.get(), "ex1 p: S10a(p) & TR(p)"));
    EXPECT_GT(readFile(".KLV.mona").size(), 128u * 1024);
    EXPECT_FALSE(isSat(model.get(), "ex1 p: S9a(p)"));
}

// --- At random ---

/// Questions that make sense of any model, about its first molecule kind if it has one.
struct Question {
    std::string formula;
    std::function<bool(const Word&)> holds;
};

std::vector<Question> questionsAbout(const Runs& runs) {
    const auto stands = [](int code) {
        return [=](const Word& r) { return r.some([&](int p) { return r.code(p) == code; }); };
    };
    std::vector<Question> questions{{"", [](const Word&) { return true; }}};
    for (int code = 1; code <= runs.lastCode(); ++code) {
        questions.push_back({"ex1 p: TR" + std::to_string(code) + "(p)", stands(code)});
    }
    if (runs.lastCode() > 0)
        questions.push_back({"3 in T0 & TR(5)", [](const Word& r) { return r.code(3) % 2 == 1 && r.isTransition(5); }});
    if (runs.bounds().empty()) return questions;

    const auto& [molecule, bound] = *runs.bounds().begin();
    const std::string first = "D" + molecule + "1";
    const std::string most = "S" + std::to_string(bound) + molecule;
    questions.push_back({"ex1 p: 0<p & p in " + first + " & TR0(p)", [first = first](const Word& r) {
                             return r.some([&](int p) { return 0 < p && r.in(first, p) && !r.isTransition(p); });
                         }});
    questions.push_back({"ex1 p: TR(p) & " + most + "(p)", [molecule = molecule, bound = bound](const Word& r) {
                             return r.some([&](int p) { return r.isTransition(p) && r.count(molecule, p) == bound; });
                         }});
    questions.push_back({"TR(1) & ex1 p: 1<p & ~" + isPresent(first), [first](const Word& r) {
                             return r.isTransition(1) && r.some([&](int p) { return 1 < p && !r.isPresent(first, p); });
                         }});
    return questions;
}

/// Whether an enumeration of the runs is soon done: few molecules, no rule that no reachable marking could serve.
bool isSmall(Modele::KLV* model, const Bounds& bounds) {
    int individuals = 0;
    for (const auto& [molecule, bound] : bounds) individuals += bound;
    for (Modele::Arc* arc : model->getArcs()) {
        if (arc->getRegle() == nullptr) continue;
        for (const auto* side : {&arc->getRegle()->getIn(), &arc->getRegle()->getOut()}) {
            for (const auto& [molecule, n] : *side) {
                if (bounds.contains(molecule) && n > bounds.at(molecule)) return false;
            }
        }
    }
    return individuals <= 3;
}

TEST_F(SatisfiabilityOf, RandomModelsIsThatOfTheirRunsOneByOne) {
    const Traces trace;
    int asked = 0;
    int satisfiable = 0;
    for (unsigned seed = 0; asked < 100; ++seed) {
        model = randomModel(seed, {.nodes = 3, .arcs = 4, .molecules = 2, .rule = 2, .marking = 2});
        try {
            runs = std::make_unique<Runs>(model.get());
        } catch (const std::runtime_error&) {
            continue;  // unbounded
        }
        if (!isSmall(model.get(), runs->bounds())) continue;
        ASSERT_EQ(getBound(model.get()), runs->bounds()) << model->toString();
        for (const Question& question : questionsAbout(*runs)) {
            const bool expected = runs->some(9, question.holds);
            ASSERT_EQ(isSat(model.get(), question.formula), expected) << question.formula << "\n" << model->toString();
            ++asked;
            satisfiable += expected ? 1 : 0;
        }
    }
    EXPECT_GT(satisfiable, asked / 4);
    EXPECT_LT(satisfiable, asked * 9 / 10);
}

}  // namespace
