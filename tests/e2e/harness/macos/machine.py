"""The user's own Mac: the world has moved what the product may find or leave there out of the way."""

import contextlib
import os
import pathlib
import re
import shutil
import signal
import subprocess

from harness import agent, places
from harness.macos import desktop
from harness.macos.world import changes, journal, mac
from macos.in_place import ADDRESS as SERVER_ADDRESS, LISTEN as LISTEN_ADDRESS  # noqa: F401

VOLUMES = pathlib.Path("/Volumes")
# Those of the product's images and of the tests'; a second one of a name gets a number behind it.
NAMES = re.compile(r"(Ovra|Lumora Plug-?in)( \d+)?")


def _places():
    """Those in the home folder: the application itself stays installed."""
    return [path for path in mac.product_places() if mac.home in path.parents]


def fresh_home(name):
    """The real one, for the system knows no other: what the test before has left there goes to its evidence."""
    folder = places.ROOT / "homes"
    folder.mkdir(parents=True, exist_ok=True)
    home = places.Home(mac.home, mac.home / "Library/Logs/OvraTessel/Agent", folder / f"{name}.console.log")
    shutil.rmtree(folder / name, ignore_errors=True)
    for path in _places():
        if os.path.lexists(path):
            shutil.rmtree(path) if path.is_dir() and not path.is_symlink() else path.unlink()
    mac.store(places.DOMAIN, {}, privileged=False)
    home.console.unlink(missing_ok=True)
    return home


def clear():
    for volume in volumes():
        subprocess.run(["hdiutil", "detach", "-force", "-quiet", volume], check=False)
    mac.store(mac.machine_domain, {}, privileged=True)
    desktop.forget_hands()


def expect(path):
    """Recorded: the world takes away what comes there, and puts back what stood there."""
    if not any(entry.get("path") == str(path) for entry in journal.entries()):
        changes.move_aside(path)


def volumes():
    return [entry for entry in VOLUMES.iterdir() if NAMES.fullmatch(entry.name)]


def trust(certificate):
    """Recorded like every change to the machine; the world takes it back."""
    changes.trust(certificate)


def end_agents(home):
    """Those that the system has started with a window all the same. The test's evidence is kept for a person to look at."""
    running = mac.product_processes()  # the numbers of those that have ended are others' by and by
    for record in agent.records(home):
        if record["pid"] not in running:
            continue
        with contextlib.suppress(ProcessLookupError):
            os.kill(record["pid"], signal.SIGKILL)
    evidence = home.console.with_name(home.console.name.removesuffix(".console.log"))
    for path in (home.log_folder, home.agent_records, home.connection_settings):
        if path.is_dir():
            shutil.copytree(path, evidence / path.relative_to(home.path), symlinks=True, dirs_exist_ok=True)
        elif path.exists():
            (evidence / path.relative_to(home.path)).parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(path, evidence / path.relative_to(home.path))
