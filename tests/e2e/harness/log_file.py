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

    def _state(self):
        backups = [(path, path.stat().st_ino, path.stat().st_size, path.stat().st_mtime_ns)
                   for path in self.files() if path != self._home.log]
        return backups, self._home.log.stat().st_size if self._home.log.exists() else 0

    def text(self):
        """Everything in the log's files. A rotation under way may show its lines twice; see wait_until_settled."""
        while True:
            try:
                backups, size = self._state()
                text = b"".join(path.read_bytes() for path in self.files()).decode("utf-8", errors="replace")
                later, later_size = self._state()
            except FileNotFoundError:
                continue
            # A rotation during the reading would lose lines or show them twice: read again.
            if backups == later and later_size >= size:
                return text

    def wait_until_settled(self, limit):
        """Waits until no rotation is due or under way, for a log that nobody writes to any more."""
        waiting.until(lambda: self._home.log.exists() and self._home.log.stat().st_size < limit,
                      "the log's rotation", 60)

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
