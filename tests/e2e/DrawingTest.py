"""Drawing a network with the mouse: every gesture of the three modes, and what is saved of it."""

import editor

WHITE = (255, 255, 255)
BLACK = (0, 0, 0)
FAINT = (205, 205, 205)  # the outline of the node at the free end of an arc being drawn
NODE = (255, 205, 205)  # the inside of a node


class Drawing(editor.EditorTest):

    def setUp(self):
        super().setUp()
        self.klv = self.start()

    def draw_nodes(self, *points):
        self.klv.mode("Node")
        for point in points:
            self.klv.click(*point)

    def draw_arc(self, start, end):
        self.klv.mode("Arc")
        self.klv.drag(start, end)

    def assert_saved(self, text):
        self.assertEqual(self.klv.saved(), text)

    # Nodes

    def test_a_press_in_node_mode_adds_a_node_at_that_point(self):
        self.klv.mode("Node")
        self.klv.wait_colour(100, 105, WHITE)
        self.klv.click(100, 120)
        self.klv.click(317, 251)
        self.klv.wait_colour(100, 105, NODE)
        self.klv.wait_colour(80, 120, BLACK)
        self.assert_saved("q1(100, 120);\nq2(317, 251);\n\n\n")

    def test_only_the_first_mouse_button_adds_a_node(self):
        self.klv.mode("Node")
        self.klv.click(100, 120, button=2)
        self.klv.click(200, 120, button=3)
        self.assert_saved("")

    def test_a_press_on_empty_ground_in_select_and_arc_mode_does_nothing(self):
        self.klv.click(100, 120)
        self.klv.mode("Arc")
        self.klv.click(100, 120)
        self.assert_saved("")

    def test_dragging_a_node_in_select_mode_moves_it_by_as_much_as_the_mouse(self):
        self.draw_nodes((100, 120))
        self.klv.mode("Select")
        self.klv.drag((107, 110), (200, 200), (407, 310))
        self.klv.wait_colour(400, 305, NODE)
        self.assert_saved("q1(400, 320);\n\n")

    def test_dragging_a_node_in_node_mode_moves_it_and_adds_none(self):
        self.draw_nodes((100, 120))
        self.klv.drag((110, 112), (310, 212))
        self.assert_saved("q1(300, 220);\n\n")

    def test_a_node_dragged_beyond_the_origin_is_saved_with_a_negative_position(self):
        self.draw_nodes((100, 120))
        self.klv.mode("Select")
        self.klv.drag((110, 120), (50, 50), (5, 20))
        self.assert_saved("q1(-5, 20);\n\n")

    def test_other_buttons_drag_nothing(self):
        self.draw_nodes((100, 120))
        self.klv.mode("Select")
        self.klv.press(100, 120, button=3)
        self.klv.point(300, 120)
        self.klv.release(button=3)
        self.assert_saved("q1(100, 120);\n\n")

    def test_where_nodes_overlap_the_older_one_is_dragged(self):
        self.draw_nodes((100, 120))
        self.klv.click(125, 120)  # beside the first one, which it covers in part
        self.klv.mode("Select")
        self.klv.drag((112, 120), (112, 320))
        self.assert_saved("q1(100, 320);\nq2(125, 120);\n\n\n")

    # Arcs

    def test_an_arc_released_over_another_node_joins_it_and_leaves_no_extra_node(self):
        self.draw_nodes((100, 100), (300, 100))
        self.draw_arc((100, 100), (300, 100))
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq1 -> q2;\n\n")

    def test_an_arc_released_over_empty_ground_ends_in_a_new_node(self):
        self.draw_nodes((100, 100))
        self.draw_arc((104, 97), (304, 297))  # the new node keeps the distance at which the first one was seized
        self.klv.wait_colour(300, 285, NODE)
        self.assert_saved("q1(100, 100);\nq2(300, 300);\nq1 -> q2;\n\n")

    def test_an_arc_released_over_its_own_node_is_a_loop(self):
        self.draw_nodes((100, 200))
        self.draw_arc((100, 200), (104, 203))
        self.assert_saved("q1(100, 200);\nq1 -> q1;\n")

    def test_an_arc_that_is_not_moved_leaves_a_new_node_on_top_of_the_old_one(self):
        self.draw_nodes((100, 200))
        self.klv.mode("Arc")
        self.klv.click(100, 200)
        self.assert_saved("q1(100, 200);\nq2(100, 200);\nq1 -> q2;\n\n")

    def test_a_double_click_in_arc_mode_starts_an_arc_on_each_press(self):
        self.draw_nodes((100, 200))
        self.klv.mode("Arc")
        self.klv.double_click(100, 200)
        *positions, arcs, _, _ = self.klv.saved().split("\n")[:-1]
        self.assertEqual(positions, ["q1(100, 200);", "q2(100, 200);", "q3(100, 200);"])
        self.assertEqual(sorted(arcs.split(";")), ["", "q1 -> q2", "q1 -> q3"])

    def test_an_arc_being_drawn_is_faint_until_it_reaches_a_node(self):
        self.draw_nodes((100, 100), (300, 100))
        self.klv.mode("Arc")
        self.klv.press(100, 100)
        self.klv.point(200, 250)
        self.klv.wait_colour(220, 250, FAINT)
        self.klv.point(300, 100)
        self.klv.wait_colour(220, 250, WHITE)
        self.klv.wait_colour(275, 100, BLACK)
        self.klv.release()
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq1 -> q2;\n\n")

    def test_an_arc_that_left_a_node_again_can_end_in_another_one(self):
        self.draw_nodes((100, 100), (300, 100), (300, 300))
        self.klv.mode("Arc")
        self.klv.press(100, 100)
        self.klv.point(300, 100)
        self.klv.wait_colour(275, 100, BLACK)
        self.klv.point(200, 250)
        self.klv.wait_colour(220, 250, FAINT)
        self.klv.point(300, 300)
        self.klv.wait_colour(220, 250, WHITE)
        self.klv.release()
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq3(300, 300);\nq1 -> q3;\n\n\n")

    def test_an_arc_stays_on_its_node_while_the_mouse_passes_straight_onto_another_one(self):
        self.draw_nodes((100, 100), (300, 100))
        self.klv.click(335, 100)  # beside the second one, which it covers in part
        self.klv.mode("Arc")
        self.klv.press(100, 100)
        self.klv.point(300, 100)
        self.klv.wait_colour(275, 100, BLACK)
        self.klv.point(345, 100)
        self.klv.release()
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq3(335, 100);\nq1 -> q2;\n\n\n")

    def test_a_node_that_is_dragged_takes_its_arcs_along(self):
        self.draw_nodes((100, 100), (300, 100))
        self.draw_arc((100, 100), (300, 100))
        self.klv.wait_colour(150, 99, BLACK)
        self.klv.mode("Select")
        self.klv.drag((300, 100), (300, 200), (100, 300))
        self.klv.wait_colour(150, 99, WHITE)
        self.klv.wait_colour(99, 200, BLACK)

    # Markings

    def test_a_double_click_on_a_node_opens_its_marking_once_and_leaves_it_where_it_is(self):
        self.draw_nodes((100, 120))
        self.klv.mode("Select")
        self.klv.double_click(108, 114)
        self.klv.answer("multi set : ", "b 2a")
        self.klv.wait_no_dialog()
        self.assert_saved("q1(100, 120);\nq1 : 2a b ;\n")

    def test_a_double_click_on_a_node_opens_its_marking_in_node_mode_too(self):
        self.draw_nodes((100, 120))
        self.klv.double_click(100, 120)
        self.klv.answer("multi set : ", "")
        self.klv.wait_no_dialog()
        self.assert_saved("q1(100, 120);\nq1 : ;\n")

    def test_a_double_click_on_the_arrow_of_a_marking_opens_it_again(self):
        self.draw_nodes((200, 220))
        self.klv.double_click(200, 220)
        self.klv.answer("multi set : ", "0c 3b a a")
        self.klv.wait_no_dialog()
        self.klv.wait_colour(176, 196, BLACK)
        self.klv.mode("Select")
        self.klv.double_click(176, 196)
        self.assertEqual(self.klv.dialog("multi set : ").entry, "2a 3b ")
        self.klv.key("Return")
        self.klv.wait_no_dialog()
        self.assert_saved("q1(200, 220);\nq1 : 2a 3b ;\n")

    # Rules

    def draw_joined_nodes(self):
        self.draw_nodes((100, 100), (300, 100))
        self.draw_arc((100, 100), (300, 100))
        self.klv.mode("Select")

    def give_rule(self, x, y, rule, before="", button=1):
        self.klv.click(x, y, button)
        self.assertEqual(self.klv.dialog("Rule :").entry, before)
        self.klv.answer("Rule :", rule)
        self.klv.wait_no_dialog()

    def test_a_click_on_the_shaft_of_an_arc_opens_its_rule(self):
        self.draw_joined_nodes()
        self.give_rule(200, 100, "2a b->c")
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq1 -> q2 : 2a b -> c ;\n\n")

    def test_a_click_on_the_shaft_of_a_labelled_arc_opens_its_rule(self):
        self.draw_joined_nodes()
        self.give_rule(200, 100, "a -> b")
        self.give_rule(180, 100, "c -> d", before="a -> b ")
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq1 -> q2 : c -> d ;\n\n")

    def test_a_click_on_the_head_of_an_arc_opens_its_rule(self):
        self.draw_joined_nodes()
        self.give_rule(275, 105, "->")
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq1 -> q2 : -> ;\n\n")

    def test_any_button_and_any_mode_opens_the_rule_of_an_arc(self):
        self.draw_joined_nodes()
        self.give_rule(200, 100, "a -> ", button=3)
        self.klv.mode("Arc")
        self.give_rule(180, 100, "b -> ", before="a -> ")
        self.klv.mode("Node")
        self.give_rule(220, 100, "c -> ", before="b -> ", button=2)
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq1 -> q2 : c -> ;\n\n")

    def test_a_press_on_an_arc_in_node_mode_opens_its_rule_and_then_adds_a_node_there(self):
        self.draw_joined_nodes()
        self.klv.mode("Node")
        self.give_rule(210, 100, "a -> b")
        self.klv.wait_colour(210, 85, NODE)
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq3(210, 100);\nq1 -> q2 : a -> b ;\n\n\n")

    def test_each_of_two_opposite_arcs_is_picked_on_its_own_curve(self):
        self.draw_joined_nodes()
        self.draw_arc((300, 100), (100, 100))
        self.klv.mode("Select")
        self.give_rule(200, 115, "a -> ")
        self.give_rule(200, 85, "-> b")
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq1 -> q2 : a -> ;\nq2 -> q1 : -> b ;\n")

    def test_an_empty_answer_removes_the_rule(self):
        self.draw_joined_nodes()
        self.give_rule(200, 100, "a -> b")
        self.give_rule(180, 100, "", before="a -> b ")
        self.assert_saved("q1(100, 100);\nq2(300, 100);\nq1 -> q2;\n\n")


if __name__ == "__main__":
    editor.main()
