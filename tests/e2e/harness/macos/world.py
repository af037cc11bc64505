"""The Mac that the tests run on, and the world's list of what has been changed on it."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "world"))
from journal import Journal  # noqa: E402
from macos.changes import MacChanges  # noqa: E402
from macos.mac import Mac  # noqa: E402

mac = Mac()
journal = Journal(mac.state)
changes = MacChanges(mac, journal)
