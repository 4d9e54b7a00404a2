"""The window without a mouse: accelerators, mnemonics, and keys that must do nothing."""

import editor

MODEL = "q1(100, 100);\nq2(300, 100);\nq1 -> q2 : a -> b ;q1 : 2a ;\n\n"


class Keyboard(editor.EditorTest):

    def setUp(self):
        super().setUp()
        self.klv = self.start()

    def open_model(self):
        self.klv.open(self.file("model.klv", MODEL))

    def leave_chooser(self, accept):
        self.assertEqual(self.klv.chooser().buttons[-1], accept)
        self.klv.key("Escape")
        self.klv.wait_no_dialog()

    def test_control_n_starts_an_empty_model(self):
        self.open_model()
        self.klv.key("ctrl+n")
        self.assertEqual(self.klv.saved(), "")

    def test_control_o_opens_and_control_s_and_control_shift_s_save(self):
        for keys, accept in ("ctrl+o", "Open"), ("ctrl+s", "Save As"), ("ctrl+shift+s", "Save As"):
            self.klv.key(keys)
            self.leave_chooser(accept)

    def test_control_q_quits(self):
        self.klv.key("ctrl+q")
        self.assertEqual(self.klv.wait_end(), 0)
        self.assertEqual(self.klv.stderr, "")

    def test_the_file_menu_and_its_items_have_mnemonics(self):
        self.open_model()
        for letter, accept in ("o", "Open"), ("a", "Save As"):
            self.klv.open_menu("alt+f", "New")
            self.klv.key(letter)
            self.leave_chooser(accept)
        self.klv.open_menu("alt+f", "New")
        self.klv.key("s")
        self.klv.dialog("Replace file ?")
        self.klv.key("alt+y")
        self.klv.wait_no_dialog()
        self.klv.open_menu("alt+f", "New")
        self.klv.key("n")
        self.assertEqual(self.klv.saved(), "")
        self.klv.open_menu("alt+f", "New")
        self.klv.key("q")
        self.assertEqual(self.klv.wait_end(), 0)

    def test_the_analyses_menu_and_its_items_have_mnemonics(self):
        answers = ("b", "KLV is bounded."), ("u", "Bound = ()"), ("p", "KLV is prefix bounded."), \
                  ("r", "Prefix bound = ()"), ("f", "Formula : ")
        for letter, text in answers:
            self.klv.open_menu("alt+a", "Compute bounds")
            self.klv.key(letter)
            self.klv.dialog(text)
            self.klv.key("Escape")
            self.klv.wait_no_dialog()

    def test_the_help_menu_tells_about_the_program_as_often_as_asked(self):
        for _ in range(2):
            self.klv.open_menu("alt+h", "About")
            self.klv.key("a")
            editor.wait_for(lambda: self.klv.dialogs(active=True), "the about dialog")
            self.assertIn("KLV editor", editor.Dialog(self.klv.dialogs()[0]).texts)
            self.klv.key("Escape")
            self.klv.wait_no_dialog()

    def test_the_mode_buttons_have_mnemonics_and_a_line_of_advice_each(self):
        for letter, mode, advice in ("r", "Arc", "Drag from a node"), ("d", "Node", "Click an empty place"), \
                                    ("l", "Select", "Drag a node to move it"):
            self.klv.key("alt+" + letter)
            self.klv.wait_mode(mode)
            editor.wait_for(lambda: self.klv.hint().startswith(advice), lambda: f"{advice}, not {self.klv.hint()}")

    def test_the_file_tools_have_mnemonics(self):
        self.klv.key("alt+o")
        self.leave_chooser("Open")
        self.klv.key("alt+s")
        self.leave_chooser("Save As")
        self.open_model()
        self.klv.key("alt+n")
        self.klv.wait_title("KLV editor")
        self.assertEqual(self.klv.saved(), "")

    def test_other_keys_change_nothing_in_any_mode(self):
        self.open_model()
        for mode in "Arc", "Node", "Select":
            self.klv.mode(mode)
            self.klv.point(100, 105)
            self.klv.key("Delete", "BackSpace", "Insert", "a", "1", "space", "Return", "Escape", "ctrl+z", "ctrl+a")
        self.klv.key("alt+l")
        self.klv.wait_mode("Select")
        self.assertEqual(self.klv.saved(), MODEL)


if __name__ == "__main__":
    editor.main()
