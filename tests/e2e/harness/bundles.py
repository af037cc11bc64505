"""What stands at a bundle's place, to its last bit."""

import hashlib
import os
import plistlib
import stat


def _entry(path):
    status = os.lstat(path)
    if stat.S_ISLNK(status.st_mode):
        return ("link", os.readlink(path))
    if stat.S_ISDIR(status.st_mode):
        return ("folder",)
    with open(path, "rb") as file:
        return ("file", hashlib.sha256(file.read()).hexdigest())


def contents(bundle):
    """Every entry's kind and content."""
    found = {".": _entry(bundle)}
    for place, folders, files in os.walk(bundle):
        for name in folders + files:
            path = os.path.join(place, name)
            found[os.path.relpath(path, bundle)] = _entry(path)
    return found


def modes(bundle):
    """Every entry's permissions; a link has none of its own."""
    paths = {name: os.path.join(bundle, name) for name in contents(bundle)}
    return {name: stat.S_IMODE(os.lstat(path).st_mode) for name, path in paths.items() if not os.path.islink(path)}


def kept_by_a_copy(bundle):
    """Contents, and but for links, whose own have no meaning on every file system, permissions and whole seconds."""
    times = {name: int(os.lstat(os.path.join(bundle, name)).st_mtime) for name in modes(bundle)}
    return contents(bundle), modes(bundle), times


def picture(bundle):
    """Everything that a touch would change: contents, permissions, times and the very entries. None: nothing there."""
    if not os.path.lexists(bundle):
        return None
    found = {}
    for name, entry in contents(bundle).items():
        status = os.lstat(os.path.join(bundle, name))
        found[name] = (*entry, stat.S_IMODE(status.st_mode), status.st_mtime_ns, status.st_ino)
    return found


def version(bundle):
    with open(bundle / "Contents/Info.plist", "rb") as file:
        return plistlib.load(file)["CFBundleShortVersionString"]
