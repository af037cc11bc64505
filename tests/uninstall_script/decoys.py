"""Decoys: homes with everything that the application stores, and with neighbours that resemble it."""

import os
import pathlib
import shutil
import stat

DOMAIN = "com.ovra.tessel.OvraTesselLumora"
NAME = "Ovra Tessel Lumora"
APPLICATIONS = pathlib.Path("/Applications")
BUNDLE = APPLICATIONS / f"{NAME}.app"
PREFERENCES = pathlib.Path("/Library/Preferences")
MANAGED = pathlib.Path("/Library/Managed Preferences")
VOLUMES = pathlib.Path("/Volumes")

# What a home folder holds after some use, but for the bundle.
STORED = [
    f"Library/Preferences/{DOMAIN}.plist",
    f"Library/Preferences/{DOMAIN}.plist.damaged-1",
    f"Library/Preferences/.{DOMAIN}.plist.lock",
    "Library/Preferences/.lumora-4711-8f3a-2",
    "Library/Application Support/OvraLumoraNativeFolder/OvraTesselLumora.dmg",
    f"Library/Application Support/OvraLumoraNativeFolder/{NAME}.app/Contents/Info.plist",
    "Library/Application Support/OvraVarloNative/ovrajoindetails.conf",
    "Library/Application Support/OvraVarloNative/Ovra.app/Contents/MacOS/Ovra",
    "Library/Application Support/.lumora-4711-8f3a-1/Ovra.app/Contents/Info.plist",
    "Library/Logs/OvraTessel/OvraLumora/ovraLumora.log",
    "Library/Logs/OvraTessel/OvraLumora/ovraLumora0.log",
    "Library/Logs/OvraTessel/ConnectionSettings.plist",
    f".local/share/{DOMAIN}/storage/salt",
    f".local/share/applications/{DOMAIN}.desktop",
    f".local/share/icons/hicolor/16x16/apps/{DOMAIN}.png",
    f".local/share/icons/hicolor/scalable/apps/{DOMAIN}.svg",
    f".cache/{DOMAIN}/WebKitCache/Version 16/salt",
]

# What stands beside it and belongs to others, or to the user.
NEIGHBOURS = [
    f"Library/Preferences/{DOMAIN}Pro.plist",
    "Library/Preferences/com.ovra.tessel.plist",
    "Library/Application Support/OvraVarloNativeTools/tool",
    "Library/Application Support/Another Product/data",
    "Library/Logs/OvraTessel/Agent/agent.log",
    "Library/Logs/another.log",
    f".local/share/{DOMAIN}.backup/file",
    ".local/share/applications/another.desktop",
    ".local/share/icons/hicolor/16x16/apps/another.png",
    ".cache/another/file",
    "Applications/Another.app/Contents/Info.plist",
    f"Applications/{NAME} Notes.txt",
    "Documents/ovraLumora.log",
]

BUNDLE_FILES = ["Contents/Info.plist", f"Contents/MacOS/{NAME}", "Contents/Resources/uninstall_lumora.sh"]


def write(path, text=None):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(os.fsencode(path if text is None else text))


def make_bundle(place):
    for name in BUNDLE_FILES:
        write(place / name)


def make_stored(home):
    for name in STORED:
        write(home / name)


def make_neighbours(home):
    for name in NEIGHBOURS:
        write(home / name)


def own(folder, uid):
    for place, folders, files in os.walk(folder):
        for name in [".", *folders, *files]:
            os.chown(os.path.join(place, name), uid, uid, follow_symlinks=False)


def tree(folder):
    """Every entry below a folder: a folder's mode, a file's content, a link's target."""
    found = {}
    for place, folders, files in os.walk(folder):
        for name in folders + files:
            path = os.path.join(place, name)
            status = os.lstat(path)
            if stat.S_ISLNK(status.st_mode):
                found[os.path.relpath(path, folder)] = ("link", os.readlink(path))
            elif stat.S_ISDIR(status.st_mode):
                found[os.path.relpath(path, folder)] = ("folder", stat.S_IMODE(status.st_mode))
            else:
                found[os.path.relpath(path, folder)] = ("file", open(path, "rb").read())
    return found


def empty(folder):
    folder.mkdir(mode=0o1777, exist_ok=True)
    folder.chmod(0o1777)
    for entry in folder.iterdir():
        if entry.is_dir() and not entry.is_symlink():
            shutil.rmtree(entry)
        else:
            entry.unlink()
