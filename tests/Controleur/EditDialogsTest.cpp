// The two dialogs that edit a rule and a marking.
#include "Editing.h"

namespace {

using Modele::Multiset;
using testing::ElementsAre;

class EditDialogs : public Editing {
protected:
    Vue::Noeud* marked(const std::string& name, const Multiset& marking) {
        node(name, 100, 100);
        return controleur->addNoeudInit(name, &marking);
    }

    /// Edits the rule of an arc that starts with `before`.
    void editRule(const std::string& before, const Dialogs::Answer& answer) {
        const Dialogs dialogs({answer});
        controleur->editArc(arc(node("A", 100, 100), node("B", 300, 100), before));
    }

    /// Whether the whole area is about to be painted again.
    bool isRedrawRequested() const {
        cairo_region_t* const region = gdk_window_get_update_area(area->get_window()->gobj());
        if (region == nullptr) return false;
        const cairo_rectangle_int_t whole = {0, 0, area->get_allocated_width(), area->get_allocated_height()};
        const bool isWhole = cairo_region_contains_rectangle(region, &whole) == CAIRO_REGION_OVERLAP_IN;
        cairo_region_destroy(region);
        return isWhole;
    }

    /// Answers, after everything has been painted that was to be painted.
    static Dialogs::Answer afterPainting(const Dialogs::Answer& answer) {
        return [answer](Gtk::Dialog& dialog) {
            settle();
            return answer(dialog);
        };
    }
};

const DialogSeen syntaxError{"Syntaxe error !", "Syntaxe error !"};

TEST_F(EditDialogs, TheRuleDialogStartsEmptyForAnArcWithoutARule) {
    Dialogs dialogs({cancel()});
    controleur->editArc(arc(node("A", 100, 100), node("B", 300, 100)));
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "Rule :", ""}));
    EXPECT_EQ(rule(), noRule);
}

TEST_F(EditDialogs, TheRuleDialogStartsWithTheRule) {
    Dialogs dialogs({cancel()});
    controleur->editArc(arc(node("A", 100, 100), node("B", 300, 100), "b 2a -> c"));
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "Rule :", "2a b -> c "}));
}

TEST_F(EditDialogs, TheRuleDialogStartsWithAnArrowForAnEmptyRule) {
    Dialogs dialogs({accept()});
    controleur->editArc(arc(node("A", 100, 100), node("B", 300, 100), "->"));
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "Rule :", "-> "}));
    EXPECT_EQ(rule(), Content::Rule());
}

TEST_F(EditDialogs, AnAcceptedRuleIsSet) {
    editRule("", enter("a 2b -> c"));
    EXPECT_EQ(rule(), Content::Rule({{"a", 1}, {"b", 2}}, {{"c", 1}}));
}

TEST_F(EditDialogs, AnAcceptedRuleReplacesTheOldOne) {
    editRule("x -> y", enter("a -> "));
    EXPECT_EQ(rule(), Content::Rule({{"a", 1}}, {}));
}

TEST_F(EditDialogs, ARuleAcceptedUnchangedStaysTheSame) {
    editRule("2a b -> 3c", accept());
    EXPECT_EQ(rule(), Content::Rule({{"a", 2}, {"b", 1}}, {{"c", 3}}));
}

TEST_F(EditDialogs, AnEmptyRuleTextRemovesTheRule) {
    editRule("x -> y", enter(""));
    EXPECT_EQ(rule(), noRule);
}

TEST_F(EditDialogs, EnterInTheEntryAcceptsTheRule) {
    editRule("", enter("a -> b", pressKey(GDK_KEY_Return)));
    EXPECT_EQ(rule(), Content::Rule({{"a", 1}}, {{"b", 1}}));
}

TEST_F(EditDialogs, EnterOnTheKeypadAcceptsTheRuleToo) {
    editRule("", enter("a -> b", pressKey(GDK_KEY_KP_Enter)));
    EXPECT_EQ(rule(), Content::Rule({{"a", 1}}, {{"b", 1}}));
}

TEST_F(EditDialogs, ACancelledRuleStaysAsItWas) {
    editRule("x -> y", enter("a -> b", cancel()));
    EXPECT_EQ(rule(), Content::Rule({{"x", 1}}, {{"y", 1}}));
}

TEST_F(EditDialogs, ARuleDialogThatIsClosedOrEscapedChangesNothing) {
    Vue::Arc* const edited = arc(node("A", 100, 100), node("B", 300, 100), "x -> y");
    Dialogs dialogs({enter("a -> b", closeWindow), enter("a -> b", pressKey(GDK_KEY_Escape))});
    controleur->editArc(edited);
    controleur->editArc(edited);
    EXPECT_EQ(rule(), Content::Rule({{"x", 1}}, {{"y", 1}}));
}

TEST_F(EditDialogs, AWrongRuleIsToldAndChangesNothing) {
    Vue::Arc* const edited = arc(node("A", 100, 100), node("B", 300, 100), "x -> y");
    for (const std::string wrong : {" ", "a", "a > b", "a - > b", "a -> b -> c", "2 -> ", "-1a -> b", "a,b -> c",
                                    "99999999999a -> b", "é -> b"}) {
        SCOPED_TRACE(wrong);
        Dialogs dialogs({enter(wrong), press(Gtk::RESPONSE_CLOSE)});
        controleur->editArc(edited);
        ASSERT_EQ(dialogs.seen().size(), 2U);
        EXPECT_EQ(dialogs.seen()[1], syntaxError);
        EXPECT_EQ(rule(), Content::Rule({{"x", 1}}, {{"y", 1}}));
    }
    EXPECT_EQ(traces.count("ERROR !!"), 10);
}

TEST_F(EditDialogs, TheMarkingDialogStartsEmptyForANodeThatIsNotInitial) {
    Dialogs dialogs({cancel()});
    controleur->editNoeud(node("A", 100, 100));
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "multi set : ", ""}));
    EXPECT_EQ(markingOf("A"), std::nullopt);
}

TEST_F(EditDialogs, TheMarkingDialogStartsWithTheMarkingWithoutItsZeros) {
    Dialogs dialogs({cancel()});
    controleur->editNoeud(marked("N", {{"B", 1}, {"A", 2}, {"C", 0}}));
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "multi set : ", "2A B "}));
}

TEST_F(EditDialogs, TheMarkingDialogStartsEmptyWhenAllCountsAreZero) {
    Dialogs dialogs({cancel()});
    controleur->editNoeud(marked("N", {{"A", 0}, {"B", 0}}));
    EXPECT_THAT(dialogs.seen(), ElementsAre(DialogSeen{"", "multi set : ", ""}));
    EXPECT_EQ(markingOf("N"), (Multiset{{"A", 0}, {"B", 0}}));
}

TEST_F(EditDialogs, AMarkingAcceptedUnchangedStaysTheSame) {
    const Dialogs dialogs({accept()});
    controleur->editNoeud(marked("N", {{"B", 1}, {"A", 2}}));
    EXPECT_EQ(markingOf("N"), (Multiset{{"A", 2}, {"B", 1}}));
}

TEST_F(EditDialogs, AcceptingTheEmptyTextMakesTheNodeInitial) {
    const Dialogs dialogs({accept()});
    controleur->editNoeud(node("A", 100, 100));
    EXPECT_EQ(markingOf("A"), Multiset());
}

TEST_F(EditDialogs, AnAcceptedMarkingReplacesTheOldOne) {
    const Dialogs dialogs({enter("3c  c")});
    controleur->editNoeud(marked("N", {{"a", 1}}));
    EXPECT_EQ(markingOf("N"), (Multiset{{"c", 4}}));
}

TEST_F(EditDialogs, EnterInTheEntryAcceptsTheMarking) {
    const Dialogs dialogs({enter("2a", pressKey(GDK_KEY_Return))});
    controleur->editNoeud(node("A", 100, 100));
    EXPECT_EQ(markingOf("A"), (Multiset{{"a", 2}}));
}

TEST_F(EditDialogs, AMarkingThatIsCancelledClosedOrEscapedStaysAsItWas) {
    Vue::Noeud* const edited = marked("N", {{"a", 1}});
    const Dialogs dialogs({enter("b", cancel()), enter("b", closeWindow), enter("b", pressKey(GDK_KEY_Escape))});
    for (int i = 0; i < 3; ++i) controleur->editNoeud(edited);
    EXPECT_EQ(markingOf("N"), (Multiset{{"a", 1}}));
}

TEST_F(EditDialogs, AWrongMarkingIsToldAndChangesNothing) {
    Vue::Noeud* const edited = marked("N", {{"a", 1}});
    for (const std::string wrong : {"3", "a\tb", "a, b", "-1a", "a-", "2147483648a", "2147483647a a", "é"}) {
        SCOPED_TRACE(wrong);
        Dialogs dialogs({enter(wrong), press(Gtk::RESPONSE_CLOSE)});
        controleur->editNoeud(edited);
        ASSERT_EQ(dialogs.seen().size(), 2U);
        EXPECT_EQ(dialogs.seen()[1], syntaxError);
        EXPECT_EQ(markingOf("N"), (Multiset{{"a", 1}}));
    }
    EXPECT_EQ(traces.count("ERROR !!"), 8);
}

TEST_F(EditDialogs, AWrongMarkingDoesNotMakeANodeInitial) {
    const Dialogs dialogs({enter("?"), closeWindow});
    controleur->editNoeud(node("A", 100, 100));
    EXPECT_EQ(markingOf("A"), std::nullopt);
}

TEST_F(EditDialogs, AnAnswerForAnArcThatHasGoneMeanwhileIsForgotten) {
    for (const char* answer : {"a -> b", "no rule"}) {
        editRule("x -> y", [&](Gtk::Dialog& dialog) {
            controleur->clear();
            return enter(answer)(dialog);
        });
        EXPECT_EQ(content(), Content());
    }
}

TEST_F(EditDialogs, AnAnswerForANodeThatHasGoneMeanwhileIsForgotten) {
    for (const char* answer : {"2a", "no marking!"}) {
        const Dialogs dialogs({[&](Gtk::Dialog& dialog) {
            controleur->clear();
            return enter(answer)(dialog);
        }});
        controleur->editNoeud(node("A", 100, 100));
        EXPECT_EQ(content(), Content());
    }
}

TEST_F(EditDialogs, AfterEitherDialogTheWholeAreaIsPaintedAgain) {
    Vue::Noeud* const edited = marked("N", {{"a", 1}});
    Vue::Arc* const loop = arc(edited, edited, "x -> y");
    const Dialogs dialogs(
        {afterPainting(cancel()), afterPainting(cancel()), afterPainting(accept()), afterPainting(accept())});
    for (int i = 0; i < 2; ++i) {
        controleur->editNoeud(edited);
        EXPECT_TRUE(isRedrawRequested());
        settle();
        controleur->editArc(loop);
        EXPECT_TRUE(isRedrawRequested());
        settle();
    }
}

TEST_F(EditDialogs, TheNewRuleAndTheNewMarkingAreShown) {
    Vue::Noeud* const edited = node("A", 100, 100);
    Vue::Arc* const edge = arc(edited, node("B", 300, 100));
    const Picture before = picture();
    const Dialogs dialogs({enter("a -> b"), enter(""), enter("m")});
    controleur->editArc(edge);
    EXPECT_GT(picture().countDifferingPixels(before, 0), 0);
    controleur->editArc(edge);
    EXPECT_EQ(picture().countDifferingPixels(before, 0), 0);
    controleur->editNoeud(edited);
    EXPECT_EQ(picture().at(80, 80), black);  // the arrow from the marking
}

}  // namespace
