"""Tools of a test's own making, among which a script runs so that none of the machine's is used."""

import shutil


class RecordingTools:
    """A folder that is the script's whole PATH: some of the machine's tools, and such as record how they are called."""

    def __init__(self, root, ordinary, preamble=""):
        """Of the machine's tools those of ordinary names; the preamble stands before the body of every other one."""
        self.bin = root / "bin"
        self.calls_file = root / "calls"
        self._preamble = preamble
        self.bin.mkdir()
        for name in ordinary:
            (self.bin / name).symlink_to(shutil.which(name))

    def add_tool(self, name, body="true"):
        """Records its arguments, one call a line, and does what the body says."""
        tool = self.bin / name
        tool.unlink(missing_ok=True)  # it may be a link to the machine's own
        tool.write_text(f'#!/bin/bash\n(IFS="|"; echo "{name}|$*") >> "{self.calls_file}"\n{self._preamble}{body}\n')
        tool.chmod(0o755)

    def calls(self, name):
        """The recorded calls of one tool, each as its list of arguments."""
        lines = self.calls_file.read_text().splitlines() if self.calls_file.exists() else []
        return [line.split("|")[1:] for line in lines if line.split("|")[0] == name]
