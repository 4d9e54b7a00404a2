"""The editor in a real window, driven as a person drives it.

A Desktop is a private X server with a window manager and a D-Bus session of its own, so nothing that runs elsewhere on the
machine is seen or disturbed. An Editor is one run of the program on that desktop, in a fresh working directory laid out like
the build folder. Mouse and keyboard go through the X server (xdotool); what the person would read (dialogs, buttons, modes)
comes from the accessibility bus, colours come from the server's frame buffer, traces from the program's standard output.

Nothing here sleeps for a guessed time: whatever has to happen is waited for, with a deadline.
"""

import argparse
import collections
import ctypes
import itertools
import mmap
import os
import pathlib
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest

from gi.repository import GLib

DEADLINE = 20.0  # seconds; only a failing test ever waits this long

# The toolkit complains of itself when the release of a key finds the file chooser gone that its press has closed.
HARMLESS = "gtk_widget_event: assertion 'WIDGET_REALIZED_FOR_EVENT (widget, event)' failed"

paths = None  # klv, tina and source, as given on the command line


def happens(condition, seconds):
    """The first true value of `condition()` within a time, else a false one."""
    end = time.monotonic() + seconds
    while True:
        try:
            value = condition()
        except GLib.Error:
            value = None  # a widget went away while it was being looked at
        if value or time.monotonic() > end:
            return value
        time.sleep(0.01)


def wait_for(condition, what):
    """The first true value of `condition()`; fails the test when there is none in time."""
    value = happens(condition, DEADLINE)
    if not value:
        raise AssertionError("waited in vain for " + (what() if callable(what) else what))
    return value


_libc = ctypes.CDLL(None)
_PR_SET_PDEATHSIG, _PR_SET_CHILD_SUBREAPER = 1, 36


def _die_with_parent():
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL)


class Screen:
    """The picture on the display, read from the file in which the X server keeps its frame buffer (XWD format)."""

    def __init__(self, file):
        with open(file, "rb") as frame:
            self._pixels = mmap.mmap(frame.fileno(), 0, prot=mmap.PROT_READ)
        header = struct.unpack(">25I", self._pixels[:100])
        self._start = header[0] + 12 * header[19]
        self._stride = header[12]

    def colour(self, x, y):
        """(red, green, blue) of a pixel."""
        place = self._start + y * self._stride + 4 * x
        blue, green, red = self._pixels[place:place + 3]
        return red, green, blue


class Desktop:
    """X server, window manager and D-Bus session of this test program; one is enough for all its editors."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="klv-e2e-", dir="/tmp"))
        self._children = []
        # Services that the bus starts are not our children; those that outlive it become so, and are ended in close().
        _libc.prctl(_PR_SET_CHILD_SUBREAPER, 1)
        try:
            self._start()
        except BaseException:
            self.close()
            raise

    def _start(self):
        home = str(self.folder)
        os.environ.update(
            HOME=home, XDG_RUNTIME_DIR=home, XDG_CONFIG_HOME=home, XDG_DATA_HOME=home, XDG_CACHE_HOME=home,
            GSETTINGS_BACKEND="memory", GIO_USE_VFS="local", GIO_USE_VOLUME_MONITOR="unix", GTK_USE_PORTAL="0",
            GDK_BACKEND="x11", LC_ALL="C.UTF-8")
        # Of a sanitizer build: whose leak it is tells the function that asked for the memory. The stacks through all libraries,
        # which the tests of the widgets keep, would take three times as long as all else here.
        os.environ["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS", "") + ":malloc_context_size=2"
        os.environ["LSAN_OPTIONS"] = f"suppressions={pathlib.Path(__file__).with_name('lsan.supp')}:print_suppressions=0"
        for other in ("AT_SPI_BUS_ADDRESS", "NO_AT_BRIDGE", "GTK_MODULES", "GTK_THEME", "WAYLAND_DISPLAY", "XAUTHORITY"):
            os.environ.pop(other, None)

        display = self._run_and_read("Xvfb", "-displayfd", "{fd}", "-screen", "0", "1280x1024x24", "-fbdir", home,
                                     "-nolisten", "tcp", "-noreset")
        os.environ["DISPLAY"] = ":" + display
        self.screen = Screen(self.folder / "Xvfb_screen0")
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = self._run_and_read(
            "dbus-daemon", "--session", "--nofork", "--print-address={fd}")
        self._run("openbox")
        managed = lambda: subprocess.run(["xdotool", "get_num_desktops"], capture_output=True).returncode == 0
        wait_for(managed, "the window manager")

        import gi  # only now: the library takes display and bus from the environment
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi
        self.Atspi = Atspi
        Atspi.init()
        self.applications = Atspi.get_desktop(0)

    def _run(self, *command, **options):
        with open(self.folder / (command[0] + ".log"), "w") as log:
            self._children.append(
                subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                 preexec_fn=_die_with_parent, **options))

    def _run_and_read(self, *command):
        """Starts a server and returns the line that it writes to the descriptor {fd} once it is ready."""
        end, start = os.pipe()
        self._run(*(word.format(fd=start) for word in command), pass_fds=[start])
        os.close(start)
        with open(end) as answer:
            line = answer.readline().strip()
        if not line:
            raise RuntimeError(command[0] + " did not start: " + (self.folder / (command[0] + ".log")).read_text())
        return line

    def close(self):
        """Ends everything that was started here, and what that started."""
        for child in reversed(self._children):
            child.kill()
            child.wait()
        self._children.clear()
        end = time.monotonic() + DEADLINE
        while time.monotonic() < end:
            for orphan in _children_of_this_process():
                os.kill(orphan, signal.SIGKILL)
            try:
                os.waitpid(-1, 0)
            except ChildProcessError:
                break
        shutil.rmtree(self.folder, ignore_errors=True)


def _children_of_this_process():
    task = pathlib.Path("/proc/self/task")
    return [int(pid) for thread in task.iterdir() for pid in (thread / "children").read_text().split()]


def xdotool(*words):
    """Runs the tool and returns what it answers."""
    command = ["xdotool", *map(str, words)]
    return subprocess.run(command, check=True, timeout=DEADLINE, stdout=subprocess.PIPE, text=True).stdout.strip()


class Widget:
    """One widget as the accessibility bus shows it, or nothing."""

    def __init__(self, desktop, accessible):
        self._desktop = desktop
        self._accessible = accessible

    @property
    def name(self):
        return self._accessible.get_name()

    @property
    def role(self):
        return self._accessible.get_role_name()

    @property
    def text(self):
        return self._desktop.Atspi.Text.get_text(self._accessible, 0, -1)

    @property
    def pid(self):
        return self._accessible.get_process_id()

    def has(self, *states):
        present = self._accessible.get_state_set()
        return all(present.contains(getattr(self._desktop.Atspi.StateType, state)) for state in states)

    def children(self, anew=False):
        """The widgets in this one; `anew` forgets what is remembered of them, which lags behind on a busy machine."""
        if anew:
            self._accessible.clear_cache()
        count = self._accessible.get_child_count()
        found = (self._accessible.get_child_at_index(i) for i in range(count))
        return [Widget(self._desktop, child) for child in found if child is not None]

    def shown(self):
        """This widget and those inside it that are on the screen."""
        if not self.has("SHOWING"):
            return
        yield self
        for child in self.children():
            yield from child.shown()

    def __repr__(self):
        return repr(Dialog(self))

    def place(self):
        """(x, y, width, height) on the screen."""
        place = self._accessible.get_extents(self._desktop.Atspi.CoordType.SCREEN)
        return place.x, place.y, place.width, place.height

    def centre(self):
        x, y, width, height = self.place()
        return x + width // 2, y + height // 2


class Dialog:
    """What a dialog shows at the moment it was found."""

    def __init__(self, widget):
        shown = list(widget.shown())
        self.role = widget.role
        self.texts = [w.name for w in shown if w.role == "label"]
        self._buttons = {w.name: w for w in shown if w.role == "push button"}
        self._entries = [w for w in shown if w.role == "text"]
        self._filters = [w for w in shown if w.role == "combo box"]

    @property
    def buttons(self):
        return list(self._buttons)

    @property
    def entry(self):
        """The text in the entry."""
        return self._entries[0].text if self._entries else None

    @property
    def filter(self):
        """The file filter in force."""
        return self._filters[0].name

    @property
    def filters(self):
        """The file filters on offer."""
        return [item.name for menu in self._filters[0].children() for item in menu.children()]

    def choose(self, button):
        """Clicks a button with the mouse."""
        x, y = self._buttons[button].centre()
        xdotool("mousemove", x, y, "click", 1)

    def __repr__(self):
        return f"<{self.role} {self.texts} {self.buttons} entry {self.entry!r}>"


class Editor:
    """A running editor. Points are in the drawing area's own coordinates, which are those of saved files."""

    def __init__(self, desktop, folder, stdout=None, command=None, environment=None):
        """Without `stdout`, a descriptor, standard output is a pipe from which `traces` are collected.

        A `command` that is given becomes the editor in the end.
        """
        self._desktop = desktop
        self.folder = folder
        self._stderr = open(folder.parent / (folder.name + ".stderr"), "w+")
        self.process = subprocess.Popen(
            command or [paths.klv], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE if stdout is None else stdout, stderr=self._stderr, preexec_fn=_die_with_parent)
        self._received = bytearray()
        self._reader = threading.Thread(target=self._read, daemon=True) if stdout is None else None
        if self._reader:
            self._reader.start()
        self._application = wait_for(self._find_application, "the editor on the accessibility bus")
        self._area = wait_for(lambda: self._shown("Network"), "the drawing area")
        self._settle()

    def _read(self):
        while chunk := os.read(self.process.stdout.fileno(), 65536):
            self._received += chunk

    def _find_application(self):
        if self.process.poll() is not None:
            raise AssertionError(f"the editor ended with {self.process.returncode}: {self.stderr}")
        for application in Widget(self._desktop, self._desktop.applications).children():
            if application.pid == self.process.pid:
                return application
        return None

    def _settle(self):
        """Waits until the window manager has placed the main window and given it the keyboard."""
        wait_for(lambda: any(w.role == "frame" and w.has("ACTIVE") for w in self._windows()),
                 "the main window")
        places = collections.deque(maxlen=3)

        def stands_still():
            places.append(self._area.place())
            return len(places) == 3 and len(set(places)) == 1

        wait_for(stands_still, "the window to stand still")

    # What is seen

    def _shown(self, name):
        for window in self._windows():
            for widget in window.shown():
                if widget.name == name:
                    return widget
        return None

    def hint(self):
        """The line of advice below the drawing; empty while one line gives way to another."""
        labels = [w.name for w in self._frame().shown() if w.role == "label"]
        return labels[-1] if labels else ""

    def _windows(self):
        return self._application.children(anew=True)

    def _frame(self):
        return next(w for w in self._windows() if w.role == "frame")

    def scroll_bars(self):
        """How many scroll bars are seen."""
        return sum(w.role == "scroll bar" for w in self._frame().shown())

    def origin(self):
        """Where on the screen the point (0, 0) of the drawing is, or would be."""
        left, top, _, _ = self._area.place()
        return left, top

    def colour(self, x, y):
        """(red, green, blue) of the drawing at a point that is on the screen."""
        left, top = self.origin()
        return self._desktop.screen.colour(left + x, top + y)

    def wait_colour(self, x, y, colour):
        """Waits until the drawing has a colour there, give or take a unit of rounding."""
        wait_for(lambda: all(abs(a - b) <= 1 for a, b in zip(self.colour(x, y), colour)),
                 lambda: f"colour {colour} at {x, y}, which has {self.colour(x, y)}")

    def dialogs(self, active=False):
        """The widgets of the open dialogs: prompts, messages, questions, file choosers; or of that with the keyboard."""
        windows = [w for w in self._windows() if w.role in ("dialog", "alert", "file chooser")]
        return [w for w in windows if w.has("ACTIVE" if active else "SHOWING")]

    def _wait_dialog(self, what, is_meant):
        """Waits for a dialog that has the keyboard, of the kind that is meant."""
        find = lambda: next((d for d in map(Dialog, self.dialogs(active=True)) if is_meant(d)), None)
        return wait_for(find, lambda: f"{what}; there is {self.dialogs()}, after {self.traces[-9:]}")

    def dialog(self, *texts):
        """Waits for a dialog that has the keyboard and shows exactly these texts beside its buttons."""
        return self._wait_dialog(f"the dialog {texts}", lambda dialog: dialog.texts == [*texts])

    def chooser(self):
        """Waits for the file chooser to have the keyboard."""
        return self._wait_dialog("the file chooser", lambda dialog: dialog.role == "file chooser")

    def wait_title(self, title):
        """Waits until the window that has the keyboard has that title."""
        present = lambda: xdotool("getactivewindow", "getwindowname")
        wait_for(lambda: present() == title, lambda: f"the title {title!r}, which is {present()!r}")

    def wait_no_dialog(self):
        wait_for(lambda: not self.dialogs(), lambda: f"no dialog; there is {self.dialogs()}")
        self._settle()

    # What is written

    @property
    def output(self):
        """Standard output so far."""
        return self._received.decode()

    @property
    def traces(self):
        """The lines of standard output so far; in place of their addresses the node views have numbers, as they are made."""
        count = itertools.count(1)
        numbers = {}

        def number(match):
            made, address = match.groups()
            if made:
                numbers[address] = next(count)
            return f"{made}#{numbers[address]}"

        return re.sub(r"(Noeud::Noeud \(|)(0x[0-9a-f]+)", number, self.output).splitlines()

    def wait_traces(self, count, line):
        """Waits until a trace line has been written so many times."""
        wait_for(lambda: self.traces.count(line) >= count, lambda: f"{count} times {line!r} in {self.traces}")

    @property
    def stderr(self):
        self._stderr.seek(0)
        return self._stderr.read()

    @property
    def complaints(self):
        """The lines of standard error that count."""
        return [line for line in self.stderr.splitlines() if line and HARMLESS not in line]

    # What the person does

    def point(self, x, y):
        """Moves the mouse to a point of the drawing."""
        left, top = self.origin()
        xdotool("mousemove", left + x, top + y)

    def press(self, x, y, button=1):
        self.point(x, y)
        xdotool("mousedown", button)

    def release(self, button=1):
        xdotool("mouseup", button)

    def click(self, x, y, button=1):
        self.point(x, y)
        xdotool("click", button)

    def double_click(self, x, y):
        self.point(x, y)
        xdotool("click", "--repeat", 2, "--delay", 30, 1)

    def drag(self, start, *points):
        self.press(*start)
        for point in points:
            self.point(*point)
        self.release()

    def scroll_to(self, x, y):
        """Turns the mouse wheel until a point of the drawing is well inside the window, or the drawing ends."""
        view = next(w for w in self._frame().shown() if w.role == "viewport")
        left, top, width, height = view.place()
        xdotool("mousemove", left + width // 2, top + height // 2)
        for axis, goal, button in (0, left + width // 2 - x, 7), (1, top + height // 2 - y, 5):
            while self.origin()[axis] > goal:
                before = self.origin()
                xdotool("click", button)
                if not happens(lambda: self.origin() != before, 1):
                    break  # the end of the drawing

    def mode(self, name):
        """Clicks one of the mode buttons: Select, Arc or Node."""
        self.click_on(name)
        self.wait_mode(name)

    def wait_mode(self, name):
        wait_for(lambda: self._shown(name).has("CHECKED"), f"the mode {name}")

    def click_on(self, name):
        """Clicks the widget of that name: a tool, a menu, an item of an open menu."""
        widget = wait_for(lambda: self._shown(name), name)
        xdotool("mousemove", *widget.centre(), "click", 1)

    def open_menu(self, keys, item):
        """Opens a menu with the keyboard and waits until an item in it is seen."""
        self.key(keys)
        wait_for(lambda: self._shown(item), item)

    def menu(self, menu, item):
        """Opens a menu with the mouse and clicks an item in it."""
        self.click_on(menu)
        self.click_on(item)

    def key(self, *keys):
        xdotool("key", *keys)

    def write(self, text):
        """Types over the text of the dialog's entry."""
        self.key("ctrl+a", "BackSpace")
        xdotool("type", "--delay", 2, "--", text)
        wait_for(lambda: any(Dialog(w).entry == text for w in self.dialogs(active=True)), f"{text!r} in the entry")

    def answer(self, label, text):
        """Answers the prompt with that label by a text and Enter."""
        self.dialog(label)
        self.write(text)
        self.key("Return")

    def choose_file(self, path):
        """Types the path of a file into the open chooser, and Enter."""
        if self.chooser().entry is None:
            self.key("slash")  # brings the entry of the chooser for opening
            wait_for(lambda: self.chooser().entry == "/", "the chooser's entry")
        self.write(str(path))
        self._press_until_chooser_closes("Return")

    def leave_chooser(self):
        """Escape in the open chooser."""
        self.chooser()
        self._press_until_chooser_closes("Escape")

    def _press_until_chooser_closes(self, key):
        """A key, until the chooser takes it: while the toolkit completes a name, 100 ms after a key, Enter is lost and Escape
        ends only the completion."""
        closed = lambda: not any(w.role == "file chooser" for w in self.dialogs(active=True))
        time.sleep(0.2)
        if not self._press_until(key, closed):
            raise AssertionError(f"the file chooser does not take {key}: {self.dialogs()}")

    def _press_until(self, key, effect):
        """Presses a key up to three times and returns whether it had its effect."""
        for _ in range(3):
            self.key(key)
            if happens(effect, 4):
                return True
        return False

    def open(self, path):
        self.key("ctrl+o")
        self.choose_file(path)
        self.wait_no_dialog()

    def save_as(self, path):
        """Saves to a file that does not exist yet."""
        self.key("ctrl+shift+s")
        self.choose_file(path)
        self.wait_no_dialog()

    def saved(self):
        """The text that the editor saves at this moment."""
        path = self.folder / "saved.klv"
        path.unlink(missing_ok=True)
        self.save_as(path)
        return path.read_text()

    def close(self):
        """Closes the window that has the keyboard, through the window manager; it must have it, or the key is lost."""
        self.key("alt+F4")

    def leave(self):
        """Closes the main window and returns the program's status. A busy window manager may lose a key: then once more."""
        self.wait_no_dialog()
        self._press_until("alt+F4", lambda: self.process.poll() is not None)
        return self.wait_end()

    def wait_end(self):
        """Waits for the end of the program and returns its status, once all its output has been read."""
        status = self.process.wait(DEADLINE)
        if self._reader:
            self._reader.join(DEADLINE)
        return status

    def kill(self):
        self.process.kill()
        self.wait_end()
        if self.process.stdout:
            self.process.stdout.close()
        self._stderr.close()


class EditorTest(unittest.TestCase):
    """A test with a desktop, a working directory laid out like the build folder, and editors that end with the test."""

    desktop = None  # of all tests of a file: the accessibility library keeps to the first bus it sees

    @classmethod
    def setUpClass(cls):
        if EditorTest.desktop is None:
            EditorTest.desktop = Desktop()
            unittest.addModuleCleanup(EditorTest.desktop.close)

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(dir=self.desktop.folder))
        shutil.copy(paths.source / "IHM.glade", self.folder)
        (self.folder / "tina" / "bin").mkdir(parents=True)
        (self.folder / "tina" / "bin" / "tina").symlink_to(paths.tina)

        self._editors = []

    def start(self, **options):
        editor = Editor(self.desktop, self.folder, **options)
        self.addCleanup(editor.kill)
        self._editors.append(editor)
        return editor

    def tearDown(self):
        """Whatever was done before, the window closes, and nothing went wrong that only standard error tells."""
        for editor in self._editors:
            if editor.process.poll() is None:
                self.assertEqual(editor.leave(), 0, "\n".join(editor.complaints))
                self.assertEqual(editor.complaints, [])

    def file(self, name, text):
        """Writes a file into the working directory and returns its path."""
        path = self.folder / name
        path.write_text(text)
        return path


def main():
    """Runs the tests of the calling file with the paths given on the command line."""
    global paths
    parser = argparse.ArgumentParser()
    parser.add_argument("--klv", type=pathlib.Path, required=True)
    parser.add_argument("--tina", type=pathlib.Path, required=True)
    parser.add_argument("--source", type=pathlib.Path, required=True)
    given, others = parser.parse_known_args()
    sys.modules["editor"].paths = given
    unittest.main(argv=[sys.argv[0], "--verbose", *others], warnings="ignore")
