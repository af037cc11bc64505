"""The world's own copy of what a package manager writes, and what has changed there."""

import functools
import os
import pathlib
import stat
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e/world/linux"))
import private_root  # noqa: E402  (the world's own list of folders)

# Shown through a layer that takes the changes, and as a copy: layers do not show what is mounted below a folder.
LAYERED, COPIED = ["usr", "var"], ["etc"]
# In the world's root folder itself, empty at first.
FRESH = ["Applications", "Library", "Volumes"]
STAGE = pathlib.Path("/tmp/machine")

# What the package manager and the desktop keep about packages in general.
BOOKS = ("/var/lib/dpkg/", "/var/log/", "/var/cache/", "/etc/ld.so.cache", "/usr/share/mime/",
         "/usr/share/applications/mimeinfo.cache", "/usr/share/icons/hicolor/icon-theme.cache")


def _prepare(name):
    folder = STAGE / name
    for part in ("lower", "upper", "work"):
        (folder / part).mkdir(parents=True, exist_ok=True)
    subprocess.run(["mount", "--rbind", f"/{name}", folder / "lower"], check=True)
    return folder


def _copy(name):
    folder = _prepare(name)
    # Without what only the machine's root may read, in a world that an ordinary user has made.
    subprocess.run(["cp", "--archive", "--no-target-directory", folder / "lower", folder / "upper"],
                   check=False, stderr=subprocess.DEVNULL)
    subprocess.run(["mount", "--bind", folder / "upper", f"/{name}"], check=True)


def _layer(name):
    """Shows a folder through a layer; what the kernel says against it, or None."""
    folder = _prepare(name)
    done = subprocess.run(["mount", "-t", "overlay", "layer", "-o",
                           f"lowerdir=/{name},upperdir={folder}/upper,workdir={folder}/work", f"/{name}"],
                          capture_output=True, text=True, check=False)
    return None if done.returncode == 0 else done.stderr.strip()


@functools.lru_cache
def _refusal():
    if "LUMORA_IN_WORLD" not in os.environ:
        raise AssertionError("this would change the machine itself")
    for name in COPIED:
        _copy(name)
    refusal = next(filter(None, map(_layer, LAYERED)), None)
    # The world's own, hidden by the layer again: no program of the machine's answers for a link.
    for folder in private_root.PROGRAM_ENTRIES:
        if os.path.isdir(f"/{folder}"):
            subprocess.run(["mount", "-t", "tmpfs", "-o", "mode=755", "entries", f"/{folder}"], check=True)
    if refusal is None and not os.access("/var/lib/dpkg", os.W_OK):
        refusal = "the layers' files belong to a root that this world's user is not"
    return refusal


def lay():
    """Puts the layers over the machine's folders, once a world. Skips the tests where the kernel refuses them."""
    if _refusal():
        raise unittest.SkipTest(f"no layers over the machine's folders: {_refusal()}")


def _entries(folder):
    for place, folders, files in os.walk(folder):
        for name in folders + files:
            path = os.path.join(place, name)
            yield path, os.lstat(path)


def is_book(path):
    return path.startswith(BOOKS) or f"{path}/" in BOOKS


def traces():
    """What there is that was not there, what is gone, and what is another file than before; books aside."""
    found = set()
    for name in LAYERED + COPIED:
        upper, lower = STAGE / name / "upper", STAGE / name / "lower"
        for path, status in _entries(upper):
            place = os.path.relpath(path, upper)
            shown = f"/{name}/{place}"
            if is_book(shown):
                continue
            if stat.S_ISCHR(status.st_mode) and status.st_rdev == 0:
                found.add(f"{shown} is gone")
            elif not os.path.lexists(lower / place):
                found.add(shown)
            elif stat.S_ISREG(status.st_mode) and (lower / place).read_bytes() != pathlib.Path(path).read_bytes():
                found.add(f"{shown} has changed")
    for name in [*FRESH, *private_root.PROGRAM_ENTRIES]:
        if os.path.lexists(f"/{name}"):
            found.update([f"/{name}"] if name in FRESH else [])
            found.update(path for path, _ in _entries(f"/{name}") if not is_book(path))
    return found


def picture(folder):
    """Each entry's kind and mode, and a file's content."""
    return {os.path.relpath(path, folder): (status.st_mode, pathlib.Path(path).read_bytes()
                                            if stat.S_ISREG(status.st_mode) else None)
            for path, status in _entries(folder)}


def dpkg(*words, check=True, triggers=False):
    """Without what other packages then do for theirs (the manual's index, the icon cache), which takes seconds."""
    options = ["--force-unsafe-io"] + ([] if triggers else ["--no-triggers"])
    done = subprocess.run(["dpkg", *options, *map(str, words)], stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False,
                          env=os.environ | {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin",
                                            "DEBIAN_FRONTEND": "noninteractive"})
    if check and done.returncode != 0:
        raise AssertionError(done.stdout)
    return done


def repacked(package, version, change):
    """The package once more, as another version, after change(folder with its files)."""
    folder = pathlib.Path(f"/tmp/repacked-{version}")
    subprocess.run(["dpkg-deb", "--raw-extract", package, folder], check=True)
    control = folder / "DEBIAN/control"
    lines = control.read_text(encoding="utf-8").split("\n")
    control.write_text("\n".join(f"Version: {version}" if line.startswith("Version:") else line for line in lines),
                       encoding="utf-8")
    change(folder)
    made = folder.with_suffix(".deb")
    subprocess.run(["dpkg-deb", "--root-owner-group", "-Znone", "--build", folder, made], check=True,
                   capture_output=True)
    return made
