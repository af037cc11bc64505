"""The private world's root folder: the machine's own, except for the places that a run writes or configures."""

import ctypes
import os
import pathlib
import shutil
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
import hosts  # noqa: E402  (the worlds' list)

MS_NOSUID, MS_NODEV, MS_NOEXEC = 2, 4, 8
MS_BIND, MS_REC, MS_PRIVATE = 4096, 16384, 1 << 18
MNT_DETACH = 2

# The project and its private world must stay visible wherever they lie, also below a folder that is replaced.
OURS = [pathlib.Path(__file__).resolve().parents[4]]

# Folders of the product's home that an installer makes, writable for the user who runs the application.
PRODUCT_FOLDERS = ["Applications", "Library", "Volumes"]
# Empty in the world: sockets of the machine's services would answer for the machine, not for the world.
EMPTY_FOLDERS = ["run", "tmp"]

# A left-over of a sandbox that makes GTK keep process identifiers from the window manager.
SANDBOX_MARK = ".flatpak-info"

# The machine's default handlers: an opened link must not start a browser that happens to be installed.
PROGRAM_ENTRIES = ["usr/share/applications", "usr/local/share/applications"]

SERVER_ADDRESS = "10.87.0.1"

_libc = ctypes.CDLL(None, use_errno=True)


def _check(result, what):
    if result != 0:
        number = ctypes.get_errno()
        raise OSError(number, os.strerror(number), what)


def mount(source, target, kind=None, flags=0, options=None):
    encoded = [None if value is None else os.fsencode(value) for value in (source, target, kind)]
    _check(_libc.mount(*encoded, ctypes.c_ulong(flags), options.encode() if options else None), os.fspath(target))


def bind(source, target):
    """Shows source, with everything mounted below it, at target, which is made if need be."""
    target = pathlib.Path(target)
    if pathlib.Path(source).is_dir():
        target.mkdir(parents=True, exist_ok=True)
    else:
        target.parent.mkdir(parents=True, exist_ok=True)
        target.touch()
    mount(source, target, flags=MS_BIND | MS_REC)


def mirror_top_level(target, replaced):
    """Shows each entry of the machine's root, links as links, except those that the caller makes itself."""
    for entry in os.scandir("/"):
        if entry.name in replaced:
            continue
        if entry.is_symlink():
            (target / entry.name).symlink_to(os.readlink(entry.path))
        elif entry.is_dir() or entry.is_file():
            bind(entry.path, target / entry.name)


def configuration():
    """The files of /etc that the world has for itself."""
    # A machine's own resolver daemons are out of reach and would answer for the machine: files and plain DNS only.
    services = "passwd: files\ngroup: files\nshadow: files\nhosts: files dns\nservices: files\nprotocols: files\n"
    addresses = "".join(f"{SERVER_ADDRESS} {name}\n" for name in hosts.names())
    return {
        "hosts": f"127.0.0.1 localhost {os.uname().nodename}\n{addresses}",
        "nsswitch.conf": services,
        "resolv.conf": "nameserver 127.0.0.1\noptions timeout:1 attempts:1\n",
        "machine-id": "6c756d6f7261646174616c6f72650001\n",
    }


def make_etc(etc):
    """Folders are shown, files copied: a mount for each would burden every process that makes a sandbox of its own."""
    etc.mkdir()
    files = configuration()
    for entry in os.scandir("/etc"):
        if entry.name in files:
            continue
        if entry.is_symlink():
            (etc / entry.name).symlink_to(os.readlink(entry.path))
        elif entry.is_dir():
            bind(entry.path, etc / entry.name)
        elif entry.is_file() and os.access(entry.path, os.R_OK):
            shutil.copy2(entry.path, etc / entry.name)
    for name, text in files.items():
        (etc / name).write_text(text, encoding="utf-8")


def make_trust_store(root):
    """A copy of the machine's trust store that a run may append its own authority to."""
    store = pathlib.Path("/etc/ssl/certs/ca-certificates.crt")
    copy = root / "ca-certificates.crt"
    shutil.copyfile(store, copy)
    return copy, store


def make_empty_folders(stage):
    for name in [*EMPTY_FOLDERS, *PRODUCT_FOLDERS]:
        (stage / name).mkdir()
        (stage / name).chmod(0o755 if name == "run" else 0o1777)


def make(root, kept_paths):
    """Makes the new root folder and enters it. kept_paths stay visible although a replaced folder holds them."""
    mount(None, "/", flags=MS_REC | MS_PRIVATE)
    # Mounted over the run's own folder: the mount is seen by this world only and vanishes from sight with the old root.
    stage = root / "stage"
    stage.mkdir(exist_ok=True)
    mount("lumora", stage, "tmpfs", options="mode=755")

    make_empty_folders(stage)
    # Before anything else is mounted in the stage, which may lie in one of these paths and would be shown with it.
    for path in [root, *kept_paths]:
        if len(path.parts) > 2 and path.parts[1] in EMPTY_FOLDERS and path.exists():
            bind(path, str(stage) + str(path))
    mirror_top_level(stage, replaced=["etc", "proc", SANDBOX_MARK, *PRODUCT_FOLDERS, *EMPTY_FOLDERS])
    for folder in PROGRAM_ENTRIES:
        if (stage / folder).is_dir():
            mount("lumora", stage / folder, "tmpfs", options="mode=755")
    make_etc(stage / "etc")
    copy, store = make_trust_store(root)
    mount(copy, str(stage) + str(store), flags=MS_BIND)
    (stage / "proc").mkdir()
    mount("proc", stage / "proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC)

    old = stage / "old"
    old.mkdir()
    here = os.getcwd()
    _check(_libc.pivot_root(os.fsencode(stage), os.fsencode(old)), "pivot_root")
    os.chdir("/")
    _check(_libc.umount2(b"/old", MNT_DETACH), "/old")
    os.rmdir("/old")
    if os.path.isdir(here):
        os.chdir(here)
