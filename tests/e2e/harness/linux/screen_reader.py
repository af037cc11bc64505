"""A screen reader's view of the application: its own accessibility bus, and a reader that listens on it."""

import json
import pathlib
import subprocess

from harness import places, waiting

LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
# The bindings belong to the system's own Python, which need not be the one that runs the tests.
PYTHON = "/usr/bin/python3"
PROGRAM = pathlib.Path(__file__).resolve().parent / "screen_reader_program.py"

# The world switches accessibility off for the applications that nobody reads.
ENVIRONMENT = {"GTK_A11Y": "atspi"}


class ScreenReader:
    def __init__(self):
        self._log = open(places.ROOT / "screen-reader.log", "wb")
        self._bus = subprocess.Popen([LAUNCHER, "--launch-immediately"], stdout=self._log, stderr=self._log)
        waiting.until(self._bus_is_there, "the accessibility bus")
        self._program = subprocess.Popen([PYTHON, "-B", PROGRAM], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         stderr=self._log, text=True, bufsize=1)

    @staticmethod
    def _bus_is_there():
        asked = ["dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                 "org.a11y.Bus.GetAddress"]
        return subprocess.run(asked, capture_output=True, check=False).returncode == 0

    def stop(self):
        for process in (self._program, self._bus):
            process.terminate()
            process.wait(timeout=20)
        self._program.stdin.close()
        self._program.stdout.close()
        self._log.close()

    def ask(self, *words):
        """None too when what was asked for changed under the reading."""
        print(*words, file=self._program.stdin, flush=True)
        answer = self._program.stdout.readline()
        if not answer:
            raise AssertionError(f"the screen reader ended, see {self._log.name}")
        return json.loads(answer).get("value")

    def window(self, application):
        """The window as the toolkit tells it, menu bar and view in it."""
        tree = self.ask("window", application.pid)
        return Node(tree) if tree else None

    def page(self):
        """The page as the engine tells it, from its document on."""
        tree = self.ask("page")
        return Node(tree) if tree else None

    def events(self, application, kind):
        return [one for one in self.ask("events") if one["pid"] == application.pid and one["type"].startswith(kind)]


class Node:
    """An object of the tree, and all below it."""

    def __init__(self, tree):
        self.role, self.name, self.description = tree["role"], tree["name"], tree["description"]
        self.locale, self.states, self.attributes = tree["locale"], tree["states"], tree["attributes"]
        self.left, self.top, self.width, self.height = tree["extents"] or (None,) * 4
        # List markers and embedded objects are characters of the text as well.
        self.text = (tree["text"] or "").replace("\ufffc", "").strip()
        self.children = [Node(child) for child in tree["children"]]

    def all(self):
        yield self
        for child in self.children:
            yield from child.all()

    def find(self, role):
        return [node for node in self.all() if node.role == role]

    def __repr__(self):
        return "\n".join(self._lines(0))

    def _lines(self, depth):
        yield "  " * depth + f"{self.role} {self.name!r} {self.description!r} {self.text!r} {self.attributes} {self.states}" \
            f" {self.left} {self.top} {self.width} {self.height}"
        for child in self.children:
            yield from child._lines(depth + 1)
