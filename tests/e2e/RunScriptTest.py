"""run.sh starts the editor: in a window where there is a display, else served to a web browser on this machine alone.

The script runs in a tree of its own whose build folder is ready; what would build and install only says what it was asked.
"""

import os
import pathlib
import shutil
import signal
import socket
import subprocess
import urllib.request

import editor


class RunScript(editor.EditorTest):

    def setUp(self):
        super().setUp()
        self.tree = self.folder.parent / (self.folder.name + ".tree")
        self.tree.mkdir()
        shutil.copy(editor.paths.source / "run.sh", self.tree)
        shutil.copytree(editor.paths.source / "tools", self.tree / "tools")
        self.folder.rename(self.tree / "build")
        (self.tree / "build" / "klv").symlink_to(editor.paths.klv)
        (self.tree / "build" / "CMakeCache.txt").touch()
        self.program("cmake", 'echo "cmake $*"')
        self.program("dpkg-query", "echo installed")

    def program(self, name, text):
        path = self.tree / "bin" / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(f"#!/bin/sh\n{text}\n")
        path.chmod(0o755)

    def environment(self, **others):
        return dict(os.environ, PATH=f"{self.tree / 'bin'}:{os.environ['PATH']}", **others)

    def test_with_a_display_the_window_opens_after_the_build(self):
        self.folder = self.tree / "build"
        klv = self.start(command=[self.tree / "run.sh"], environment=self.environment())
        klv.mode("Node")
        klv.click(100, 100)
        klv.wait_traces(1, "add noeud (#1)")
        self.assertEqual(klv.traces[0], "cmake --build build --target klv --parallel " + str(os.cpu_count()))

    def serve(self):
        """Starts the script without a display; returns it and the address that it prints."""
        environment = self.environment()
        del environment["DISPLAY"]
        script = subprocess.Popen([self.tree / "run.sh"], env=environment, stdout=subprocess.PIPE, text=True,
                                  start_new_session=True)
        self.addCleanup(script.stdout.close)
        self.addCleanup(script.wait, editor.DEADLINE)
        self.addCleanup(self.interrupt, script)
        line = next(line for line in script.stdout if line.startswith("The editor is at "))
        editor.wait_for(lambda: self.editors_of(script), "the editor")
        return script, line.split()[-1]

    def interrupt(self, script):
        """What Ctrl+C in the terminal does."""
        if script.poll() is None:
            os.killpg(script.pid, signal.SIGINT)

    def port(self, address):
        return int(address.rstrip("/").rpartition(":")[2])

    def listening_at(self, port):
        """The local addresses, in the kernel's notation, at which that port takes connections."""
        lines = [line.split() for table in ("tcp", "tcp6") if os.path.exists(f"/proc/net/{table}")
                 for line in pathlib.Path(f"/proc/net/{table}").read_text().splitlines()[1:]]
        listening = "0A"
        return [words[1].split(":")[0] for words in lines
                if words[3] == listening and int(words[1].split(":")[1], 16) == port]

    def test_without_a_display_the_editor_is_served_to_a_browser_on_this_machine_alone(self):
        script, address = self.serve()
        self.assertRegex(address, r"^http://127\.0\.0\.1:\d+/$")
        with urllib.request.urlopen(address, timeout=editor.DEADLINE) as page:
            self.assertEqual(page.status, 200)
            self.assertIn(b"broadway", page.read())
        self.assertEqual(self.listening_at(self.port(address)), ["0100007F"])
        self.assert_window_is_sent(self.port(address))

        self.interrupt(script)
        script.wait(editor.DEADLINE)
        editor.wait_for(lambda: not self.listening_at(self.port(address)), "the end of the server")

    def assert_window_is_sent(self, port):
        """Joins the server as a browser does, and waits for more bytes than an answer without a picture has."""
        request = (f"GET /socket HTTP/1.1\r\nHost: 127.0.0.1:{port}\r\nOrigin: http://127.0.0.1:{port}\r\n"
                   "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
                   "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Protocol: broadway\r\n\r\n")
        received = b""
        with socket.create_connection(("127.0.0.1", port), timeout=editor.DEADLINE) as browser:
            browser.sendall(request.encode())
            while len(received) < 8000 and (chunk := browser.recv(65536)):
                received += chunk
        self.assertTrue(received.startswith(b"HTTP/1.1 101"), received[:100])

    def test_two_served_editors_have_addresses_of_their_own(self):
        self.assertNotEqual(self.serve()[1], self.serve()[1])

    def test_the_server_ends_with_the_editor(self):
        script, address = self.serve()
        os.kill(self.editors_of(script)[0], signal.SIGTERM)
        script.wait(editor.DEADLINE)
        editor.wait_for(lambda: not self.listening_at(self.port(address)), "the end of the server")

    def editors_of(self, script):
        children = pathlib.Path(f"/proc/{script.pid}/task/{script.pid}/children").read_text().split()
        return [int(pid) for pid in children if pathlib.Path(f"/proc/{pid}/comm").read_text().strip() == "klv"]


if __name__ == "__main__":
    editor.main()
