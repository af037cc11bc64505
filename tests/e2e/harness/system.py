"""Which system the tests run on, and what is a matter of one system only.

The harness has one implementation of its modules for each: harness/linux and harness/macos. Cases ask for neither.
"""

import plistlib
import sys
import unittest

MACOS = sys.platform == "darwin"


def linux_only(reason):
    """Decorates cases of something that macOS does not have, or has no honest way to bring about."""
    return unittest.skipIf(MACOS, f"on Linux only: {reason}")


def name_and_version():
    """As the system itself tells them."""
    if MACOS:
        with open("/System/Library/CoreServices/SystemVersion.plist", "rb") as file:
            told = plistlib.load(file)
        return told["ProductName"], told["ProductVersion"]
    with open("/etc/os-release", encoding="utf-8") as file:
        told = dict(line.replace('"', "").rstrip("\n").split("=", 1) for line in file if "=" in line)
    return told["NAME"], told["VERSION_ID"]
