"""Runs the packaging scripts among tools of the test's own making, so that none of the machine's is used."""
import os
import subprocess
import sys
import tempfile
from pathlib import Path

from places import PACKAGING

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "shared"))
from recording_tools import RecordingTools  # noqa: E402  (what several folders of tests use)

ORDINARY = ["basename", "bash", "cat", "cp", "dirname", "env", "grep", "ls", "mkdir", "mktemp", "mv", "rm", "sleep", "tail",
            "tee"]


class Tools(RecordingTools):
    """Beside the tools a folder to work in."""

    def __init__(self):
        self._folder = tempfile.TemporaryDirectory()
        self.root = Path(self._folder.name)
        super().__init__(self.root, ORDINARY)

    def close(self):
        self._folder.cleanup()

    def run(self, script, *arguments, **settings):
        environment = {"PATH": str(self.bin), "HOME": str(self.root), "TMPDIR": str(self.root), **settings}
        return subprocess.run([PACKAGING / script, *map(str, arguments)], env=environment, cwd=self.root,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=30)

    def folder(self, name):
        path = self.root / name
        os.makedirs(path)
        return path

    def file(self, name):
        path = self.root / name
        path.write_text("")
        return path
