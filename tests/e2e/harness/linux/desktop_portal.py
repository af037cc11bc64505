"""A desktop that tells applications to be light or dark."""

import pathlib
import subprocess

# The bindings belong to the system's own Python, which need not be the one that runs the tests.
PYTHON = "/usr/bin/python3"
PROGRAM = pathlib.Path(__file__).resolve().parent / "desktop_portal_program.py"
VALUES = {"none": 0, "dark": 1, "light": 2}


class DesktopPortal:
    def __init__(self, scheme):
        self._program = subprocess.Popen([PYTHON, "-B", PROGRAM], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         text=True, bufsize=1)
        self._hear("ready")
        self.ask_for(scheme)

    def ask_for(self, scheme):
        print(VALUES[scheme], file=self._program.stdin, flush=True)
        self._hear("changed")

    def _hear(self, word):
        if self._program.stdout.readline().strip() != word:
            raise AssertionError(f"the portal did not say {word}")

    def stop(self):
        self._program.terminate()
        self._program.wait(timeout=20)
        self._program.stdin.close()
        self._program.stdout.close()
