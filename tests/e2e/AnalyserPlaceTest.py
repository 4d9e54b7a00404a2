"""The build puts its own analyser where the editor looks for it, and never over an analyser of the user's."""

import pathlib
import subprocess
import tempfile
import unittest

import editor


class AnalyserPlace(unittest.TestCase):

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="klv-place-")
        self.addCleanup(folder.cleanup)
        self.built = pathlib.Path(folder.name) / "built"
        self.place = pathlib.Path(folder.name) / "build" / "tina" / "bin" / "tina"

    def build(self, text):
        self.built.write_text(text)
        self.built.chmod(0o755)
        self.put()

    def put(self):
        script = editor.paths.source / "cmake" / "PutAnalyserInPlace.cmake"
        subprocess.run(["cmake", f"-DBUILT={self.built}", f"-DPLACE={self.place}", "-P", script], check=True,
                       capture_output=True, timeout=editor.DEADLINE)

    def users(self, text):
        self.place.parent.mkdir(parents=True, exist_ok=True)
        self.place.unlink(missing_ok=True)
        self.place.write_text(text)

    def assert_in_place(self, text):
        self.assertEqual(self.place.read_text(), text)

    def test_the_first_build_puts_its_analyser_in_place_and_it_can_be_run(self):
        self.build("first")
        self.assert_in_place("first")
        self.assertEqual(self.place.stat().st_mode & 0o777, 0o755)

    def test_a_later_build_replaces_the_analyser_of_an_earlier_one(self):
        self.build("first")
        self.build("second")
        self.assert_in_place("second")

    def test_an_unchanged_analyser_is_not_written_again(self):
        self.build("first")
        before = self.place.stat()
        self.put()
        after = self.place.stat()
        self.assertEqual((after.st_ino, after.st_mtime_ns), (before.st_ino, before.st_mtime_ns))

    def test_an_analyser_that_was_there_before_the_first_build_stays(self):
        self.users("mine")
        self.build("first")
        self.build("second")
        self.assert_in_place("mine")

    def test_an_analyser_that_replaced_the_built_in_one_stays(self):
        self.build("first")
        self.users("mine")
        self.put()
        self.build("second")
        self.assert_in_place("mine")

    def test_a_link_to_an_analyser_elsewhere_stays_a_link(self):
        mine = self.built.with_name("mine")
        mine.write_text("mine")
        self.build("first")
        self.place.unlink()
        self.place.symlink_to(mine)
        self.build("second")
        mine.unlink()  # as on a disk that is not there today
        self.build("third")
        self.assertEqual(self.place.readlink(), mine)

    def test_the_built_in_analyser_comes_back_when_the_users_own_is_removed(self):
        self.build("first")
        self.users("mine")
        self.put()
        self.place.unlink()
        self.put()
        self.assert_in_place("first")


if __name__ == "__main__":
    editor.main()
