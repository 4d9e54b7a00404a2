"""The ways in which the program ends, and the status and the words it leaves."""

import subprocess

import editor


class Ending(editor.EditorTest):

    def test_closing_the_window_ends_the_program_with_status_0(self):
        klv = self.start()
        klv.close()
        self.assertEqual(klv.wait_end(), 0)
        self.assertEqual((klv.output, klv.stderr), ("", ""))

    def test_the_file_menu_ends_the_program_with_status_0(self):
        klv = self.start()
        klv.menu("File", "Quit")
        self.assertEqual(klv.wait_end(), 0)

    def assert_ends(self, text, message):
        klv = self.start()
        path = self.file("model.klv", text)
        klv.key("ctrl+o")
        klv.choose_file(path)
        self.assertEqual((klv.wait_end(), klv.complaints), (255, [message]))
        self.assertEqual(path.read_text(), text)
        return klv

    def test_a_lexical_error_ends_the_program_and_names_line_and_character(self):
        self.assert_ends("q(-1, 2);", "line 1: lexical error <->")

    def test_a_syntax_error_ends_the_program_after_the_declarations_before_it(self):
        klv = self.assert_ends("a(10, 20);\n\nb(30 40);\nc(50, 60);\n", "line 3: syntax error")
        self.assertEqual(klv.traces, ["Noeud::Noeud (#1)", "add noeud (#1)"])

    def test_a_missing_semicolon_is_reported_on_the_line_of_the_next_token(self):
        self.assert_ends("a(10, 20)\n// a comment\n\nb(30, 40);\n", "line 4: syntax error")

    def test_a_file_that_is_cut_ends_the_program(self):
        self.assert_ends("a(10, 20);\na -> b : x", "line 2: syntax error")

    def test_a_saved_negative_position_cannot_be_read_again(self):
        klv = self.start()
        klv.mode("Node")
        klv.click(100, 120)
        klv.drag((110, 130), (5, 130))
        klv.save_as(self.folder / "left.klv")
        klv.key("ctrl+q")
        self.assertEqual(klv.wait_end(), 0)
        self.assert_ends((self.folder / "left.klv").read_text(), "line 1: lexical error <->")

    def test_without_its_window_description_the_program_says_so_and_ends(self):
        (self.folder / "IHM.glade").unlink()
        ended = subprocess.run([editor.paths.klv], cwd=self.folder, capture_output=True, text=True, timeout=editor.DEADLINE)
        self.assertNotEqual(ended.returncode, 0)
        self.assertIn("IHM.glade", ended.stderr)

    def test_a_widget_that_its_window_description_lacks_is_named(self):
        description = self.folder / "IHM.glade"
        text = description.read_text()
        description.unlink()
        description.write_text(text.replace('id="toolSave"', 'id="other"'))
        ended = subprocess.run([editor.paths.klv], cwd=self.folder, capture_output=True, text=True, timeout=editor.DEADLINE)
        self.assertEqual(ended.returncode, 1)
        self.assertIn("klv: IHM.glade has no widget toolSave", ended.stderr)


if __name__ == "__main__":
    editor.main()
