"""New, Open, Save and Save as in the real window, with the toolkit's own file chooser."""

import os
import socket

import editor

MODEL = """cell(150, 200);
gut(420, 200);
out(420, 380);
cell -> gut : 2a b -> 3c ;cell : 4a 2b ;
gut -> out : -> ;
out : ;
"""


class Files(editor.EditorTest):

    def setUp(self):
        super().setUp()
        self.klv = self.start()

    def draw_a_node(self, x, y):
        self.klv.mode("Node")
        self.klv.click(x, y)

    def replace(self, answer):
        question = self.klv.dialog("Replace file ?")
        self.assertEqual(question.buttons, ["No", "Yes"])
        self.klv.wait_title("Replace file ?")
        question.choose(answer)

    def close_error(self, text):
        error = self.klv.dialog(text)
        self.assertEqual(error.buttons, ["Close"])
        self.klv.wait_title(text)
        error.choose("Close")

    def leave_chooser(self):
        self.klv.leave_chooser()
        self.klv.wait_no_dialog()

    # Save as

    def test_what_was_drawn_and_saved_is_found_as_it_was_after_a_restart(self):
        self.draw_a_node(120, 140)
        self.klv.click(400, 140)
        self.klv.double_click(400, 300)  # adds a node by its first press, then opens it
        self.klv.answer("multi set : ", "5x y")
        self.klv.wait_no_dialog()
        self.klv.mode("Arc")
        self.klv.drag((120, 140), (400, 140))
        self.klv.drag((400, 140), (260, 140), (120, 140))
        self.klv.click(260, 119)
        self.klv.answer("Rule :", "x -> 2y")
        self.klv.wait_no_dialog()
        self.klv.save_as(self.folder / "first.klv")
        text = (self.folder / "first.klv").read_text()
        self.assertEqual(text, "q1(120, 140);\nq2(400, 140);\nq3(400, 300);\n"
                               "q1 -> q2;\nq2 -> q1 : x -> 2y ;\nq3 : 5x y ;\n")
        self.klv.key("ctrl+q")
        self.assertEqual(self.klv.wait_end(), 0)

        again = self.start()
        again.open(self.folder / "first.klv")
        again.save_as(self.folder / "second.klv")
        self.assertEqual((self.folder / "second.klv").read_text(), text)

    def test_a_name_without_a_dot_gets_the_extension_of_the_klv_filter(self):
        self.draw_a_node(120, 140)
        self.klv.save_as(self.folder / "model")
        self.assertEqual((self.folder / "model.klv").read_text(), "q1(120, 140);\n\n")
        self.assertFalse((self.folder / "model").exists())
        self.klv.wait_title("model.klv - KLV editor")

    def test_a_name_with_a_dot_anywhere_in_its_path_is_taken_as_typed(self):
        self.klv.save_as(self.folder / "my.model")
        self.assertTrue((self.folder / "my.model").exists())
        (self.folder / "a.b").mkdir()
        self.klv.save_as(self.folder / "a.b" / "model")
        self.assertTrue((self.folder / "a.b" / "model").exists())

    def test_the_filter_for_any_files_adds_no_extension(self):
        self.klv.key("ctrl+shift+s")
        self.klv.chooser()
        self.klv.click_on("KLV files")
        self.klv.click_on("Any files")
        editor.wait_for(lambda: self.klv.chooser().filter == "Any files", "the other filter")
        self.klv.choose_file(self.folder / "model")
        self.klv.wait_no_dialog()
        self.assertTrue((self.folder / "model").exists())

    def test_the_choosers_have_the_klv_filter_first_and_one_for_any_files(self):
        for keys, accept in ("ctrl+o", "Open"), ("ctrl+shift+s", "Save As"):
            self.klv.key(keys)
            chooser = self.klv.chooser()
            self.klv.wait_title("Please choose a file")
            self.assertEqual((chooser.filter, chooser.filters), ("KLV files", ["KLV files", "Any files"]))
            self.assertEqual(chooser.buttons[-2:], ["Cancel", accept])
            self.leave_chooser()

    def test_leaving_the_chooser_saves_nothing(self):
        self.draw_a_node(120, 140)
        before = os.listdir(self.folder)
        self.klv.key("ctrl+s")
        self.klv.chooser().choose("Cancel")
        self.klv.wait_no_dialog()
        self.klv.key("ctrl+s")
        self.klv.chooser()
        self.klv.write(str(self.folder / "model.klv"))
        self.leave_chooser()
        self.assertEqual(os.listdir(self.folder), before)

    def test_declining_to_replace_a_file_shows_the_chooser_again(self):
        path = self.file("old.klv", "// mine\n")
        self.draw_a_node(120, 140)
        self.klv.key("ctrl+shift+s")
        self.klv.choose_file(path)
        self.replace("No")
        self.klv.choose_file(self.folder / "new.klv")
        self.klv.wait_no_dialog()
        self.assertEqual(path.read_text(), "// mine\n")
        self.assertEqual((self.folder / "new.klv").read_text(), "q1(120, 140);\n\n")

    def test_agreeing_to_replace_a_file_replaces_it(self):
        path = self.file("old.klv", "// mine\n")
        self.draw_a_node(120, 140)
        self.klv.key("ctrl+shift+s")
        self.klv.choose_file(path)
        self.replace("Yes")
        self.klv.wait_no_dialog()
        self.assertEqual(path.read_text(), "q1(120, 140);\n\n")

    def test_closing_the_question_declines(self):
        path = self.file("old.klv", "// mine\n")
        self.klv.key("ctrl+shift+s")
        self.klv.choose_file(path)
        self.klv.dialog("Replace file ?")
        self.klv.close()
        self.leave_chooser()
        self.assertEqual(path.read_text(), "// mine\n")

    def test_a_file_that_cannot_be_written_shows_the_error_and_the_chooser_again(self):
        path = self.folder / "device.klv"
        path.symlink_to("/dev/full")
        self.draw_a_node(120, 140)
        self.klv.key("ctrl+shift+s")
        self.klv.choose_file(path)
        self.replace("Yes")
        self.close_error("Write data error.")
        self.leave_chooser()
        self.assertTrue(path.is_char_device())
        self.assertEqual(self.klv.traces[-1], "ERROR !!")

    # Save

    def test_save_without_a_file_is_save_as(self):
        self.draw_a_node(120, 140)
        self.klv.key("ctrl+s")
        self.klv.choose_file(self.folder / "model")
        self.klv.wait_no_dialog()
        self.assertEqual((self.folder / "model.klv").read_text(), "q1(120, 140);\n\n")

    def test_save_asks_before_it_replaces_the_file_of_the_model(self):
        path = self.file("model.klv", MODEL)
        self.klv.open(path)
        self.klv.drag((420, 380), (520, 480))
        self.klv.key("ctrl+s")
        self.replace("Yes")
        self.klv.wait_no_dialog()
        self.assertEqual(path.read_text(), MODEL.replace("out(420, 380)", "out(520, 480)"))

    def test_declining_on_save_is_a_save_error(self):
        path = self.file("model.klv", MODEL)
        self.klv.open(path)
        self.klv.drag((420, 380), (520, 480))
        self.klv.key("ctrl+s")
        self.replace("No")
        self.close_error("Save error.")
        self.klv.wait_no_dialog()
        self.assertEqual(path.read_text(), MODEL)

    def test_a_save_that_cannot_be_written_tells_both_errors(self):
        path = self.file("model.klv", MODEL)
        self.klv.open(path)
        path.unlink()
        path.mkdir()
        self.klv.key("ctrl+s")
        self.replace("Yes")
        self.close_error("Write data error.")
        self.close_error("Save error.")
        self.klv.wait_no_dialog()
        self.assertEqual(self.klv.traces[-2:], ["ERROR !!"] * 2)

    def test_new_forgets_the_model_and_its_file(self):
        path = self.file("model.klv", MODEL)
        self.klv.open(path)
        self.klv.wait_title("model.klv - KLV editor")
        self.klv.key("ctrl+n")
        self.klv.wait_title("KLV editor")
        self.klv.key("ctrl+s")
        self.klv.choose_file(self.folder / "empty")
        self.klv.wait_no_dialog()
        self.assertEqual((self.folder / "empty.klv").read_text(), "")
        self.assertEqual(path.read_text(), MODEL)

    # Open

    def test_a_file_saved_again_is_the_same_to_the_byte(self):
        self.klv.open(self.file("model.klv", MODEL))
        self.assertEqual(self.klv.saved(), MODEL)

    def test_opening_a_second_file_replaces_the_first_model(self):
        self.klv.open(self.file("first.klv", MODEL))
        self.klv.open(self.file("second.klv", "a(50, 60);b(150, 60);a->b// no newline at the end\n;"))
        self.assertEqual(self.klv.saved(), "a(50, 60);\nb(150, 60);\na -> b;\n\n")

    def test_a_comment_without_a_newline_at_the_end_does_not_hide_the_next_file(self):
        self.klv.open(self.file("first.klv", "a(50, 60); // the end"))
        self.klv.open(self.file("second.klv", "b(150, 60);"))
        self.assertEqual(self.klv.saved(), "b(150, 60);\n\n")

    def test_a_file_that_cannot_be_opened_is_an_error_and_leaves_everything_as_it_was(self):
        self.klv.open(self.file("model.klv", MODEL))
        path = self.folder / "line.klv"
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(str(path))
            self.klv.key("ctrl+o")
            self.klv.choose_file(path)
            self.close_error("Load file error")
            self.klv.wait_no_dialog()
        self.klv.wait_title("model.klv - KLV editor")
        self.assertEqual(self.klv.saved(), MODEL)

    def test_a_missing_file_is_an_error_and_leaves_everything_as_it_was(self):
        self.klv.open(self.file("model.klv", MODEL))
        self.klv.key("ctrl+o")
        self.klv.choose_file(self.folder / "missing.klv")
        self.close_error("Load file error")
        self.klv.wait_no_dialog()
        self.klv.wait_title("model.klv - KLV editor")
        self.assertEqual(self.klv.saved(), MODEL)

    def test_leaving_the_chooser_opens_nothing(self):
        self.klv.open(self.file("model.klv", MODEL))
        self.klv.key("ctrl+o")
        self.leave_chooser()
        self.assertEqual(self.klv.saved(), MODEL)


if __name__ == "__main__":
    editor.main()
