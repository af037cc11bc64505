"""What has been changed and must be put back, on disk before it is changed."""

import fcntl
import json
import os


class Journal:
    """One line a change, oldest first, in a folder that keeps what the changes displace.

    Both the world and the tests in it write it, one after the other.
    """

    def __init__(self, folder):
        self.folder = folder
        folder.mkdir(parents=True, exist_ok=True, mode=0o700)
        self._file = folder / "journal"

    def lock(self):
        """The descriptor of the lock; waits for another run, and for the tests of one that was killed."""
        descriptor = os.open(self.folder / "lock", os.O_RDWR | os.O_CREAT, 0o600)
        try:
            fcntl.flock(descriptor, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            print("world: another run is at work on this Mac; waiting for its end", flush=True)
            fcntl.flock(descriptor, fcntl.LOCK_EX)
        return descriptor

    def note(self, **entry):
        with open(self._file, "a", encoding="utf-8") as file:
            file.write(json.dumps(entry) + "\n")
            file.flush()
            os.fsync(file.fileno())

    def entries(self):
        if not self._file.exists():
            return []
        # A last line without its end was never acted upon.
        lines = self._file.read_text(encoding="utf-8").split("\n")[:-1]
        return [json.loads(line) for line in lines]

    def keep_only(self, entries):
        if not entries:
            self._file.unlink(missing_ok=True)
            return
        new = self._file.with_name("journal.new")
        new.write_text("".join(json.dumps(entry) + "\n" for entry in entries), encoding="utf-8")
        os.replace(new, self._file)
