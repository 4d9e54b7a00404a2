"""The five analyses in the real window, with the built-in net analyser and the real mona.

The models of examples/ state their answers in their first comments; the window has to give the same ones.
"""

import re

import editor

BOUNDED, BOUND = "Check boundedness", "Compute bounds"
PREFIX_BOUNDED, PREFIX_BOUND = "Check prefix boundedness", "Compute prefix bound"
FORMULA = "Check a formula…"


class AnalysesTest(editor.EditorTest):

    def setUp(self):
        super().setUp()
        self.klv = self.start()

    def close(self, answer, title, button):
        dialog = self.klv.dialog(answer)
        self.assertEqual(dialog.buttons, [button])
        self.klv.wait_title(title)
        dialog.choose(button)
        self.klv.wait_no_dialog()

    def assert_answer(self, item, answer):
        """An answer comes as information, the others as an error."""
        self.klv.menu("Analyses", item)
        self.close_answer(answer)

    def assert_verdict(self, formula, answer):
        self.klv.menu("Analyses", FORMULA)
        self.assertEqual(self.klv.dialog("Formula : ").entry, "")
        self.klv.answer("Formula : ", formula)
        self.close_answer(answer)

    def close_answer(self, answer):
        if answer in ("KLV not bounded", "KLV not prefix bounded", "Syntaxe error"):
            self.close(answer, answer, "Close")
        else:
            self.close(answer, "Information", "OK")


class Examples(AnalysesTest):

    def assert_answers_stated_by(self, name):
        path = editor.paths.source / "examples" / (name + ".klv")
        comment = "".join(re.findall(r"^// (.*)\n", path.read_text(), re.M))
        self.klv.open(path)
        for bounded, bound, word in (BOUNDED, BOUND, ""), (PREFIX_BOUNDED, PREFIX_BOUND, "prefix "):
            if f"KLV is {word}bounded." in comment:
                self.assert_answer(bounded, f"KLV is {word}bounded.")
                self.assert_answer(bound, re.search(f"{word}bound = \\([0-9, ]*\\)", comment, re.I).group())
            else:
                self.assertIn(f"KLV is not {word}bounded.", comment)
                self.assert_answer(bounded, f"KLV is not {word}bounded.")
                self.assert_answer(bound, f"KLV not {word}bounded")

    def test_dining_philosophers(self):
        self.assert_answers_stated_by("dining-philosophers")

    def test_gene_expression(self):
        self.assert_answers_stated_by("gene-expression")

    def test_membrane_pump(self):
        self.assert_answers_stated_by("membrane-pump")

    def test_michaelis_menten(self):
        self.assert_answers_stated_by("michaelis-menten")

    def test_mutual_exclusion(self):
        self.assert_answers_stated_by("mutual-exclusion")

    def test_predator_prey(self):
        self.assert_answers_stated_by("predator-prey")

    def test_producer_consumer(self):
        self.assert_answers_stated_by("producer-consumer")

    def test_readers_writers(self):
        self.assert_answers_stated_by("readers-writers")

    def test_sir_epidemic(self):
        self.assert_answers_stated_by("sir-epidemic")

    def test_stop_and_wait(self):
        self.assert_answers_stated_by("stop-and-wait")

    def test_toggle_switch(self):
        self.assert_answers_stated_by("toggle-switch")

    def test_traffic_light(self):
        self.assert_answers_stated_by("traffic-light")

    def test_vending_machine(self):
        self.assert_answers_stated_by("vending-machine")

    def test_water_synthesis(self):
        self.assert_answers_stated_by("water-synthesis")


class Questions(AnalysesTest):

    def test_an_empty_model_is_bounded_and_has_no_bounds(self):
        self.assert_answer(BOUNDED, "KLV is bounded.")
        self.assert_answer(BOUND, "Bound = ()")
        self.assert_answer(PREFIX_BOUNDED, "KLV is prefix bounded.")
        self.assert_answer(PREFIX_BOUND, "Prefix bound = ()")

    def test_a_model_drawn_by_hand_is_answered_for(self):
        self.klv.mode("Node")
        self.klv.double_click(150, 150)
        self.klv.answer("multi set : ", "2a")
        self.klv.wait_no_dialog()
        self.klv.mode("Arc")
        self.klv.drag((150, 150), (350, 150))
        self.klv.mode("Select")
        self.klv.click(250, 150)
        self.klv.answer("Rule :", "a -> 3b")
        self.klv.wait_no_dialog()
        self.assert_answer(BOUND, "Bound = (2, 3)")
        self.assert_answer(PREFIX_BOUND, "Prefix bound = (4)")  # of the two a one becomes three b, and all are moved
        self.assert_verdict("ex1 p: S3b(p)", "Formula is satisfiable")
        self.assert_verdict("ex1 p, q: p < q & S3b(p) & S3b(q)", "Formula is unsatisfiable")

    def test_an_unbounded_model_has_no_bounds_and_takes_no_formula(self):
        self.klv.open(self.file("model.klv", "q(150, 200);q -> q : -> a ;q : ;"))
        self.assert_answer(BOUNDED, "KLV is not bounded.")
        self.assert_answer(BOUND, "KLV not bounded")
        self.assert_answer(PREFIX_BOUNDED, "KLV is not prefix bounded.")
        self.assert_answer(PREFIX_BOUND, "KLV not prefix bounded")
        self.assert_verdict("", "KLV not bounded")
        self.assertFalse((self.folder / ".KLV.mona").exists())

    def open_small_model(self):
        self.klv.open(self.file("model.klv", "A(100, 100);B(300, 100);A -> B : a -> b ;A : a ;"))

    def test_formulas_are_decided_by_mona(self):
        self.open_small_model()
        self.assert_verdict("ex1 p: p in Da1 & p+1 in Db1", "Formula is satisfiable")
        self.assert_verdict("ex1 p: p in Da1 & p in Db1", "Formula is unsatisfiable")

    def test_an_empty_formula_asks_for_a_run_at_all(self):
        self.open_small_model()
        self.assert_verdict("", "Formula is satisfiable")
        self.assertTrue((self.folder / ".KLV.mona").read_text().endswith("z notin Db1 ) );\n\n"))

    def test_formulas_that_cannot_be_read_are_refused(self):
        self.open_small_model()
        for wrong in "ex1 p:", "p in Dz1", "S2a(0)":
            self.assert_verdict(wrong, "Syntaxe error")

    def test_a_formula_can_run_no_command(self):
        self.open_small_model()
        self.assert_verdict("true' > mine; touch 'mine", "Syntaxe error")
        self.assertFalse((self.folder / "mine").exists())

    def test_a_prompt_for_a_formula_that_is_left_runs_and_shows_nothing(self):
        self.open_small_model()
        before = self.klv.output
        for leave in (lambda prompt: prompt.choose("Cancel"), lambda _: self.klv.key("Escape"), lambda _: self.klv.close()):
            self.klv.menu("Analyses", FORMULA)
            prompt = self.klv.dialog("Formula : ")
            self.klv.write("true")
            leave(prompt)
            self.klv.wait_no_dialog()
        self.assertFalse((self.folder / ".KLV.mona").exists())
        self.assertEqual(self.klv.output, before)

    def test_a_question_about_an_example_is_answered_as_its_formula_page_says(self):
        self.klv.open(editor.paths.source / "examples" / "water-synthesis.klv")
        twice = "all1 x: TR0(x) | TR1(x) | TR2(x); ex1 p, q: p<q & S2H2O(p) & S2H2O(q)"
        self.assert_verdict(twice, "Formula is satisfiable")
        self.assert_verdict(twice.replace("p, q:", "p, q, r: q<r & S2H2O(r) &"), "Formula is unsatisfiable")

    def test_the_analyses_leave_the_model_as_it_was(self):
        path = editor.paths.source / "examples" / "mutual-exclusion.klv"
        self.klv.open(path)
        self.klv.save_as(self.folder / "before.klv")
        for item in BOUNDED, BOUND, PREFIX_BOUNDED, PREFIX_BOUND:
            self.klv.menu("Analyses", item)
            editor.wait_for(lambda: self.klv.dialogs(active=True), "the answer")
            self.klv.key("Return")
            self.klv.wait_no_dialog()
        self.klv.save_as(self.folder / "after.klv")
        self.assertEqual((self.folder / "after.klv").read_text(), (self.folder / "before.klv").read_text())

    def test_an_analyser_of_the_users_own_is_the_one_that_is_asked(self):
        analyser = self.folder / "tina" / "bin" / "tina"
        analyser.unlink()
        analyser.write_text('#!/bin/sh\necho "$@" >> asked\ncat >> asked\necho "1 : q1 ma*41 mb"\n')
        analyser.chmod(0o755)
        self.open_small_model()
        self.assert_answer(BOUND, "Bound = (41, 1)")
        net = "net buffer\ntr t1 q1 ma*1 -> q2 mb*1 \ntr t2 q0 -> q1 ma*1 \npl q0 (1)\n\n"
        self.assertEqual((self.folder / "asked").read_text(), "-C -a -g\n" + net + "-C -g\n" + net)

    def test_a_missing_analyser_reads_as_bounded(self):
        (self.folder / "tina" / "bin" / "tina").unlink()
        self.klv.open(self.file("model.klv", "q(150, 200);q -> q : -> a ;q : ;"))
        self.assert_answer(BOUNDED, "KLV is bounded.")
        self.assert_answer(BOUND, "Bound = ()")
        self.assertIn("tina", self.klv.stderr)
        self.klv.close()
        self.assertEqual(self.klv.wait_end(), 0)


if __name__ == "__main__":
    editor.main()
