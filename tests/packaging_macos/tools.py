"""Runs the packaging scripts among tools of the test's own making, so that none of the machine's is used."""
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

from places import PACKAGING

ORDINARY = ["basename", "bash", "cat", "cp", "dirname", "env", "grep", "ls", "mkdir", "mktemp", "mv", "rm", "sleep", "tail",
            "tee"]


class Tools:
    """A folder of tools that is the scripts' whole PATH, and a folder to work in."""

    def __init__(self):
        self._folder = tempfile.TemporaryDirectory()
        self.root = Path(self._folder.name)
        self.bin = self.root / "bin"
        self.bin.mkdir()
        self.calls_file = self.root / "calls"
        for name in ORDINARY:
            (self.bin / name).symlink_to(shutil.which(name))

    def close(self):
        self._folder.cleanup()

    def add(self, name, body="true"):
        """A tool that records its arguments, one call a line, and does what the body says."""
        tool = self.bin / name
        tool.unlink(missing_ok=True)  # it may be a link to the machine's own
        tool.write_text(f'#!/bin/bash\n(IFS="|"; echo "{name}|$*") >> "{self.calls_file}"\n{body}\n')
        tool.chmod(0o755)

    def calls(self, name):
        """The recorded calls of one tool, each as its list of arguments."""
        lines = self.calls_file.read_text().splitlines() if self.calls_file.exists() else []
        return [line.split("|")[1:] for line in lines if line.split("|")[0] == name]

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
