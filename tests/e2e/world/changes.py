"""Changes to a machine that has no private world to offer, each with its way back.

Every way back may be gone twice: a run can be killed between it and the journal's line about it. What is found changed by
somebody else meanwhile stays as it is.
"""

import os.path
import pathlib
import subprocess

BEGIN, END = "# begin of Ovra Tessel Lumora's test hosts", "# end of Ovra Tessel Lumora's test hosts"


class ToolFailed(Exception):
    """A tool of the system did not do what it was asked for; its own words say why."""


def run(*words, stdin=b"", check=True):
    """The tool's output. stdin: bytes that it reads."""
    command = [str(word) for word in words]
    try:
        done = subprocess.run(command, input=stdin, capture_output=True, check=False)
    except OSError as error:
        raise ToolFailed(f"{command[0]}: {error.strerror}") from error
    if check and done.returncode != 0:
        told = (done.stderr or done.stdout).decode(errors="replace").strip().splitlines()
        raise ToolFailed(f"{' '.join(command)}: {told[-1] if told else done.returncode}")
    return done.stdout


class Changes:
    """What every system has: the list of hosts, files and folders. as_root runs a tool as run does, with the rights for it."""

    def __init__(self, journal, as_root=run):
        self._journal = journal
        self._as_root = as_root

    def undo_all(self):
        """The newest first. What cannot be put back stays in the journal; why, one line each."""
        left, reasons = self._journal.entries(), []
        failed = []
        while left:
            entry = left.pop()
            try:
                getattr(self, "_undo_" + entry["kind"])(entry)
            except (ToolFailed, OSError) as error:
                failed.insert(0, entry)
                reasons.append(f"{entry['kind']}: {error}")
            self._journal.keep_only(left + failed)
        return reasons

    # --- names

    def _write_hosts(self, hosts, text):
        """Into the file: it keeps its owner and modes, and in a container it is often a mount of its own."""
        staged = self._journal.folder / "hosts.new"
        staged.write_text(text, encoding="utf-8")
        self._as_root("cp", staged, hosts)
        self._hosts_have_changed()

    def _hosts_have_changed(self):
        """For a system whose resolver remembers."""

    @staticmethod
    def _with_block(text, block):
        return text + ("" if not text or text.endswith("\n") else "\n") + block

    def add_hosts(self, hosts, address, names):
        text = hosts.read_text(encoding="utf-8")
        block = "\n".join([BEGIN, *[f"{address} {name}" for name in names], END, ""])
        self._journal.note(kind="hosts", path=str(hosts), before=text, block=block)
        self._write_hosts(hosts, self._with_block(text, block))

    def _undo_hosts(self, entry):
        hosts, before, block = pathlib.Path(entry["path"]), entry["before"], entry["block"]
        text = hosts.read_text(encoding="utf-8")
        whole = self._with_block(before, block)
        if text == whole or (text != before and whole.startswith(text)):  # as it was left, or cut off in the writing
            self._write_hosts(hosts, before)
        elif block in text:  # somebody else has changed it too
            self._write_hosts(hosts, text.replace(block, ""))

    # --- places

    def move_aside(self, path):
        """Whatever stands there, to a name beside it: one step on any volume. Without anything, what comes is removed."""
        kept = path.with_name(f".{path.name}.kept-by-lumora-tests")
        there = os.path.lexists(path)  # of a folder that the system does not let look into: not there
        self._journal.note(kind="place", path=str(path), kept=str(kept), there=there)
        if there:
            self._as_root("mv", path, kept)

    def _undo_place(self, entry):
        path, kept = pathlib.Path(entry["path"]), pathlib.Path(entry["kept"])
        if entry["there"] and not os.path.lexists(kept):
            return  # never moved, or back already
        if os.path.lexists(path):
            self._unlock(path)
            self._as_root("rm", "-rf", path)
        if entry["there"]:
            self._as_root("mv", kept, path)

    def _unlock(self, path):
        """For a system whose users can lock what is theirs."""

    # --- files

    def keep(self, file):
        """Its content: whatever is written into it is taken back."""
        kept = self._journal.folder / file.name
        kept.write_bytes(file.read_bytes())
        self._journal.note(kind="file", path=str(file), kept=str(kept))

    def _undo_file(self, entry):
        self._as_root("cp", entry["kept"], entry["path"])
