"""By mounts in the private world, which hold root too."""

import pathlib
import subprocess
import tempfile

from harness.undoing import undone_once

READ_ONLY = "Error Domain=NSPOSIXErrorDomain Code=30 "
NOT_REMOVED = "Error Domain=NSPOSIXErrorDomain Code="


def _mount_upon(path):
    subprocess.run(["mount", "--bind", path, path], check=True)


def _unmount(path):
    return lambda: subprocess.run(["umount", "--lazy", path], check=True)


def read_only(case, path):
    if not path.exists():
        path.mkdir(parents=True)
    # Made read-only aside: a mount in which a program has a file open to write refuses to become so.
    aside = pathlib.Path(tempfile.mkdtemp())
    if not path.is_dir():
        aside.rmdir()
        aside.touch()
    for words in (["mount", "--bind", path, aside], ["mount", "-o", "remount,bind,ro", aside],
                  ["mount", "--bind", aside, path], ["umount", aside]):
        subprocess.run(words, check=True)
    aside.rmdir() if aside.is_dir() else aside.unlink()
    return undone_once(case, _unmount(path))


def mounted_upon(case, path):
    """It can be emptied, but not removed."""
    _mount_upon(path)
    return undone_once(case, _unmount(path))


def protected_inside(case, bundle):
    file = bundle / "Contents/Info.plist"
    if subprocess.run(["chattr", "+i", file], check=False, capture_output=True).returncode != 0:
        case.skipTest("no right to protect a file, or no file system that knows it")
    return undone_once(case, lambda: subprocess.run(["chattr", "-i", file], check=True))


WAYS = {"mounted upon": mounted_upon, "protected inside": protected_inside}
