"""A model larger than the window: the drawing is scrolled, and points keep their coordinates."""

import editor

NODE = (255, 205, 205)


class Scrolling(editor.EditorTest):

    def setUp(self):
        super().setUp()
        self.klv = self.start()

    def open_large_model(self):
        self.klv.open(self.file("large.klv", "near(100, 100);\nfar(3000, 2000);\nnear -> far;\n\n"))

    def test_a_small_model_needs_no_scrolling(self):
        self.klv.open(self.file("small.klv", "near(100, 100);"))
        self.assertEqual(self.klv.scroll_bars(), 0)

    def test_a_far_node_can_be_scrolled_to_opened_and_dragged(self):
        self.open_large_model()
        self.assertEqual(self.klv.scroll_bars(), 2)
        self.klv.scroll_to(3000, 2000)
        self.klv.wait_colour(3000, 1988, NODE)
        self.klv.double_click(3000, 2000)
        self.klv.answer("multi set : ", "a")
        self.klv.wait_no_dialog()
        self.klv.drag((3010, 2005), (2910, 1905), (2860, 1955))
        self.klv.wait_colour(2850, 1938, NODE)
        self.assertEqual(self.klv.saved(), "near(100, 100);\nfar(2850, 1950);\nfar : a ;\nnear -> far;\n")

    def test_a_node_added_in_a_scrolled_drawing_stands_where_it_was_pressed(self):
        self.open_large_model()
        self.klv.scroll_to(2500, 1700)
        self.klv.mode("Node")
        self.klv.click(2500, 1700)
        self.klv.wait_colour(2500, 1688, NODE)
        self.assertEqual(self.klv.saved(), "near(100, 100);\nfar(3000, 2000);\nq1(2500, 1700);\n\nnear -> far;\n\n")

    def test_an_arc_joins_nodes_in_a_scrolled_drawing(self):
        self.open_large_model()
        self.klv.scroll_to(2900, 1900)
        self.klv.mode("Arc")
        self.klv.drag((3000, 2000), (2800, 1900), (2700, 1800))
        self.assertEqual(self.klv.saved(),
                         "near(100, 100);\nfar(3000, 2000);\nq1(2700, 1800);\nfar -> q1;\nnear -> far;\n\n")

    def test_the_view_stays_where_it_is_when_a_dialog_closes(self):
        self.open_large_model()
        self.klv.scroll_to(3000, 2000)
        before = self.klv.origin()
        self.klv.double_click(3000, 2000)
        self.klv.dialog("multi set : ")
        self.klv.key("Escape")
        self.klv.wait_no_dialog()
        self.assertEqual(self.klv.origin(), before)

    def test_the_drawing_grows_with_a_node_that_is_dragged_to_its_edge(self):
        self.klv.mode("Node")
        self.klv.click(900, 300)
        self.klv.drag((912, 312), (992, 312))
        editor.wait_for(lambda: self.klv.scroll_bars() == 1, "a scroll bar")

    def test_a_new_model_needs_no_scrolling_any_more(self):
        self.open_large_model()
        self.klv.key("ctrl+n")
        editor.wait_for(lambda: self.klv.scroll_bars() == 0, "no scroll bar")


if __name__ == "__main__":
    editor.main()
