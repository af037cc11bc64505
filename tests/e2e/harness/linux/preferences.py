"""A property list in the home folder, which every process reads and writes by itself."""

import plistlib


def read(home):
    return plistlib.loads(home.preferences.read_bytes()) if home.preferences.exists() else {}


def write(home, values, fmt=plistlib.FMT_XML):
    home.preferences.parent.mkdir(parents=True, exist_ok=True)
    home.preferences.write_bytes(plistlib.dumps(values, fmt=fmt))


def snapshot(home):
    return home.preferences.read_bytes() if home.preferences.exists() else None
