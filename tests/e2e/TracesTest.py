"""The trace lines of a whole session, one by one and in their order, and how they reach whoever reads them.

Each part of the session stands beside the lines it writes. A pick asks every arc, so every press and release writes
"arrow picked" lines: the drawing area asks first, then, when no node took the press, the picking of arcs.
"""

import os

import editor

NODE_ADDED = ["Noeud::Noeud ({0})", "add noeud ({0})"]
NODE_REMOVED = ["sucide !", "remove noeud ({0})", "POP !", "Vue::Noeud::~Noeud ()"]
NET = ["net buffer", "tr t1 q1 p_ma*1 -> q2 p_mb*1 ", "tr t3 q0 -> q1 p_ma*2 ", "tr t4 p_ma ->  s_ma r_m",
       "tr t5 p_mb ->  s_mb r_m", "tr t2 q1 s_ma*1 -> q2 s_mb*1 ", "pl q0 (1)", ""]


def lines(*parts):
    return [line for part in parts for line in ([part] if isinstance(part, str) else part)]


def of(node, trace):
    return [line.format(f"#{node}") for line in trace]


class Traces(editor.EditorTest):

    def setUp(self):
        super().setUp()
        self.klv = self.start()
        self.expected = []

    def expect(self, *parts):
        """The next lines that are written, and no others."""
        self.expected += lines(*parts)
        editor.wait_for(lambda: len(self.klv.traces) >= len(self.expected),
                        lambda: f"{self.expected} after {self.klv.traces}")
        self.assertEqual(self.klv.traces, self.expected)

    def answer(self, label, text):
        self.klv.answer(label, text)
        self.klv.wait_no_dialog()

    def test_a_session_writes_its_trace_lines_in_their_order(self):
        self.klv.mode("Node")
        self.klv.click(100, 100)
        self.expect(of(1, NODE_ADDED))
        self.klv.click(300, 100)
        self.expect(of(2, NODE_ADDED))

        # An arc from the first node to the second one: a third one is made for its free end, and goes again.
        self.klv.mode("Arc")
        self.klv.press(100, 100)
        self.expect("Controleur::noeudSelected", of(3, NODE_ADDED))
        self.klv.point(300, 100)
        self.klv.release()
        self.expect("arrow picked : 0", "Modele::Noeud::~Noeud", of(3, NODE_REMOVED))

        # The rule of the arc. The release goes to the dialog, not to the drawing.
        self.klv.mode("Select")
        self.klv.click(200, 100)
        self.expect("arrow picked : 1", "arrow picked : 1", "Controleur::arcSelected")
        self.answer("Rule :", "a -> b")
        self.klv.click(180, 100)
        self.expect("arrow picked : 1", "arrow picked : 1", "Controleur::arcSelected")
        self.klv.answer("Rule :", "wrong")
        self.klv.dialog("Syntaxe error !")
        self.klv.key("Escape")
        self.klv.wait_no_dialog()
        self.expect("ERROR !!")

        # A press that meets nothing, and a drag.
        self.klv.click(200, 300)
        self.expect(["arrow picked : 0"] * 3)
        self.klv.drag((300, 100), (320, 150), (300, 120))
        self.expect("arrow picked : 0", "Controleur::noeudSelected", "arrow picked : 0")

        # The marking: two presses that are taken, and the double click that nobody takes.
        self.klv.double_click(100, 100)
        self.expect(["arrow picked : 0", "Controleur::noeudSelected", "arrow picked : 0"],
                    ["arrow picked : 0", "Controleur::noeudSelected"],
                    ["arrow picked : 0", "Controleur::noeudSelected"])
        self.answer("multi set : ", "2a")
        self.expect("arrow picked : 0")

        # Only the prefix questions and the formulas write what they give to the tools.
        for item, text in ("Check boundedness", "KLV is bounded."), ("Compute bounds", "Bound = (2, 1)"):
            self.klv.menu("Analyses", item)
            self.klv.dialog(text)
            self.klv.key("Escape")
            self.klv.wait_no_dialog()
        self.expect()
        self.klv.menu("Analyses", "Check prefix boundedness")
        self.klv.dialog("KLV is prefix bounded.")
        self.klv.key("Escape")
        self.klv.wait_no_dialog()
        self.expect(NET)

        # Saving says nothing; opening destroys the nodes by their names, each with its arcs, and makes the new ones.
        path = self.folder / "model.klv"
        self.klv.save_as(path)
        self.expect()
        self.klv.open(path)
        self.expect("Modele::Noeud::~Noeud", "Arc::~Arc", of(1, NODE_REMOVED),
                    "Modele::Noeud::~Noeud", of(2, NODE_REMOVED), of(4, NODE_ADDED), of(5, NODE_ADDED))

    def test_what_a_file_declares_is_traced_declaration_by_declaration(self):
        self.klv.open(self.file("model.klv", "a -> b : x -> ;\nc(10, 20);\nc(30, 40);\nb : x ;\n"))
        self.expect(of(1, NODE_ADDED), of(2, NODE_ADDED), of(3, NODE_ADDED))
        self.klv.key("ctrl+n")
        self.expect("Modele::Noeud::~Noeud", "Arc::~Arc", of(1, NODE_REMOVED),
                    "Modele::Noeud::~Noeud", of(2, NODE_REMOVED), "Modele::Noeud::~Noeud", of(3, NODE_REMOVED))

    def test_the_text_of_a_formula_question_is_traced_and_left_in_its_file(self):
        self.klv.open(self.file("model.klv", "A(100, 100);B(300, 100);A -> B : a -> b ;A : a ;"))
        before = self.klv.output
        self.klv.menu("Analyses", "Check a formula…")
        self.klv.answer("Formula : ", "ex1 p: p in Db1")
        self.klv.dialog("Formula is satisfiable")
        traced = self.klv.output[len(before):]
        self.assertTrue(traced.startswith("###############\n## Variables ##\n###############\n\n### Molecule a ###\n"))
        self.assertTrue(traced.endswith("z notin Db1 ) );\nex1 p: p in Db1;\n"))
        self.assertEqual((self.folder / ".KLV.mona").read_text(), traced)
        self.klv.key("Escape")
        self.klv.wait_no_dialog()

    def test_a_trace_reaches_a_pipe_at_once(self):
        self.klv.mode("Node")
        self.klv.press(100, 100)
        self.expect(of(1, NODE_ADDED))
        self.klv.release()

    def test_closing_the_window_writes_no_further_trace(self):
        self.klv.open(self.file("model.klv", "a(100, 100);b(300, 100);a -> b;"))
        self.expect(of(1, NODE_ADDED), of(2, NODE_ADDED))
        self.klv.close()
        self.assertEqual(self.klv.wait_end(), 0)
        self.assertEqual(self.klv.traces, self.expected)


class NoReader(editor.EditorTest):

    def test_an_editor_whose_traces_nobody_reads_any_more_goes_on(self):
        reader, writer = os.pipe()
        os.close(reader)
        klv = self.start(stdout=writer)
        os.close(writer)
        klv.mode("Node")
        klv.click(100, 100)
        klv.click(300, 100)
        self.assertEqual(klv.saved(), "q1(100, 100);\nq2(300, 100);\n\n\n")

    def test_an_editor_whose_reader_goes_away_in_between_goes_on(self):
        reader, writer = os.pipe()
        klv = self.start(stdout=writer)
        os.close(writer)
        klv.mode("Node")
        klv.click(100, 100)
        with open(reader) as pipe:
            self.assertTrue(pipe.readline().startswith("Noeud::Noeud ("))
            self.assertTrue(pipe.readline().startswith("add noeud ("))
        klv.click(300, 100)
        self.assertEqual(klv.saved(), "q1(100, 100);\nq2(300, 100);\n\n\n")


if __name__ == "__main__":
    editor.main()
