"""The application's log as a test reads it: lines without their prefix, across rotations."""

import re

from harness import waiting

# The platform's logging call puts this before a line; printed lines stand alone.
PREFIX = re.compile(r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} Ovra Tessel Lumora\[\d+:[0-9a-fx]+\] ")
BACKUPS = 11


class Log:
    def __init__(self, home):
        self._home = home

    def backup(self, index):
        return self._home.log_folder / f"ovraLumora{index}.log"

    def files(self):
        """All log files that exist, oldest first."""
        paths = [self.backup(index) for index in reversed(range(BACKUPS))] + [self._home.log]
        return [path for path in paths if path.exists()]

    def text(self):
        # A rotation between two reads would show its lines twice or not at all: read again until nothing moved.
        while True:
            before = [(path, path.stat().st_ino, path.stat().st_mtime_ns) for path in self.files()]
            text = b"".join(path.read_bytes() for path, _, _ in before).decode("utf-8", errors="replace")
            if before == [(path, path.stat().st_ino, path.stat().st_mtime_ns) for path in self.files()]:
                return text

    def lines(self):
        """Every complete line, oldest first, without its prefix."""
        return [PREFIX.sub("", line) for line in self.text().split("\n")[:-1]]

    def mark(self):
        """A place in the log: what has been written so far is not looked at by lines_since(mark)."""
        return len(self.lines())

    def lines_since(self, mark):
        return self.lines()[mark:]

    def wait_for(self, line, mark=0, count=1, seconds=waiting.SECONDS):
        """Waits until exactly this line stands in the log (count times at least)."""
        waiting.until(lambda: self.lines_since(mark).count(line) >= count,
                      lambda: f"log line {line!r}; the log's end:\n" + self.tail(), seconds)

    def wait_for_start(self, start, mark=0, seconds=waiting.SECONDS):
        """The rest of the first line that begins with start."""
        def found():
            return [line for line in self.lines_since(mark) if line.startswith(start)]
        waiting.until(found, lambda: f"log line {start!r}...; the log's end:\n" + self.tail(), seconds)
        return found()[0][len(start):]

    def tail(self, count=40):
        return "\n".join(line[:400] for line in self.lines()[-count:])
