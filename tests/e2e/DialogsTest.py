"""The dialogs as a person meets them: what they say, which buttons they have, and how each way of leaving them counts."""

import editor

MODEL = "q1(100, 100);\nq2(300, 100);\nq1 -> q2 : a -> b ;q1 : 2a ;\n\n"


class Dialogs(editor.EditorTest):

    def setUp(self):
        super().setUp()
        self.klv = self.start()
        self.klv.open(self.file("model.klv", MODEL))

    def open_marking(self):
        self.klv.double_click(100, 105)
        return self.klv.dialog("multi set : ")

    def open_rule(self):
        self.klv.click(200, 100)
        return self.klv.dialog("Rule :")

    def test_prompts_show_the_present_text_a_cancel_and_an_ok_button(self):
        for prompt, text in (self.open_marking, "2a "), (self.open_rule, "a -> b "):
            dialog = prompt()
            self.assertEqual((dialog.entry, dialog.buttons), (text, ["Cancel", "OK"]))
            self.klv.wait_title("")
            dialog.choose("Cancel")
            self.klv.wait_no_dialog()

    def test_the_ok_button_accepts(self):
        prompt = self.open_marking()
        self.klv.write("3c")
        prompt.choose("OK")
        self.klv.wait_no_dialog()
        self.assertEqual(self.klv.saved(), MODEL.replace("2a", "3c"))

    def test_enter_accepts(self):
        self.open_rule()
        self.klv.write("a -> c")
        self.klv.key("Return")
        self.klv.wait_no_dialog()
        self.assertEqual(self.klv.saved(), MODEL.replace("a -> b", "a -> c"))

    def test_cancel_escape_and_closing_leave_everything_as_it_was(self):
        leave = (lambda dialog: dialog.choose("Cancel"), lambda _: self.klv.key("Escape"), lambda _: self.klv.close())
        for way in leave:
            for prompt in self.open_marking, self.open_rule:
                dialog = prompt()
                self.klv.write("z")
                way(dialog)
                self.klv.wait_no_dialog()
        self.assertEqual(self.klv.saved(), MODEL)
        self.assertNotIn("ERROR !!", self.klv.traces)

    def assert_syntax_error(self):
        error = self.klv.dialog("Syntaxe error !")
        self.assertEqual(error.buttons, ["Close"])
        self.klv.wait_title("Syntaxe error !")
        self.assertEqual(self.klv.traces[-1], "ERROR !!")
        error.choose("Close")
        self.klv.wait_no_dialog()

    def test_a_wrong_marking_is_refused_and_the_old_one_stays(self):
        for wrong in "a-b", "3", "a,b":
            self.open_marking()
            self.klv.answer("multi set : ", wrong)
            self.assert_syntax_error()
        self.assertEqual(self.klv.saved(), MODEL)

    def test_a_wrong_rule_is_refused_and_the_old_one_stays(self):
        for wrong in "a > b", "a", " ", "a -> b -> c":
            self.open_rule()
            self.klv.answer("Rule :", wrong)
            self.assert_syntax_error()
        self.assertEqual(self.klv.saved(), MODEL)

    def test_escape_closes_an_error(self):
        self.open_rule()
        self.klv.answer("Rule :", "a")
        self.klv.dialog("Syntaxe error !")
        self.klv.key("Escape")
        self.klv.wait_no_dialog()

    def test_the_drawing_shows_a_new_rule_and_takes_the_next_gesture(self):
        self.open_rule()
        self.klv.answer("Rule :", "")
        self.klv.wait_no_dialog()
        self.klv.drag((300, 100), (300, 250))
        self.assertEqual(self.klv.saved(), "q1(100, 100);\nq2(300, 250);\nq1 -> q2;q1 : 2a ;\n\n")


if __name__ == "__main__":
    editor.main()
