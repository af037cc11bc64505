"""The harness for a Mac among tools of the tests' own making: whoever imports this gets a process that takes the decoyed
Mac for its machine."""

import functools
import os
import sys
import unittest
from unittest import mock

from decoyed_mac import WORLD, DecoyedMac

sys.path[:0] = [str(WORLD.parent), str(WORLD)]
MAC = DecoyedMac()
ROOT = MAC.root / "run"
os.environ |= {"PATH": str(MAC.bin), "HOME": str(MAC.home), "LUMORA_ROOT": str(ROOT),
               "LUMORA_BUNDLE": str(ROOT / "Ovra Tessel Lumora.app"), "LUMORA_DATACENTRE": "/none",
               "LUMORA_AGENT": "/none", "LUMORA_HAND": "/hand.dylib"}
from macos import mac as macs  # noqa: E402

macs.Mac = functools.partial(macs.Mac, MAC.root, MAC.home)
from harness.macos import machine  # noqa: E402
from journal import Journal  # noqa: E402
from macos.changes import MacChanges  # noqa: E402


def tear_down_module():
    """A module's tearDownModule."""
    MAC.close()


class HarnessCase(unittest.TestCase):
    @staticmethod
    def take_back():
        """As the world does at its end."""
        mac = macs.Mac()
        return MacChanges(mac, Journal(mac.state)).undo_all()

    def setUp(self):
        MAC.calls_file.unlink(missing_ok=True)
        self.volumes = mock.patch.object(machine, "VOLUMES", MAC.root / "Volumes")
        self.volumes.start()
        self.addCleanup(self.volumes.stop)
        self.home = machine.fresh_home("cases.Test.test")
