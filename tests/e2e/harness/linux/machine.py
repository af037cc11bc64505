"""The private world's: nothing in it is anybody else's."""

import os
import pathlib
import shutil

from harness import places

# The demo's, where no private world can be made.
SERVER_ADDRESS = LISTEN_ADDRESS = os.environ.get("LUMORA_SERVER_ADDRESS", "10.87.0.1")
TRUST_STORE = pathlib.Path("/etc/ssl/certs/ca-certificates.crt")
VOLUMES, LIBRARY = pathlib.Path("/Volumes"), pathlib.Path("/Library")


def fresh_home(name):
    path = places.ROOT / "homes" / name
    home = places.Home(path, path.with_name(path.name + ".agent-records"), path.with_name(path.name + ".console.log"))
    shutil.rmtree(path, ignore_errors=True)
    shutil.rmtree(home.agent_records, ignore_errors=True)
    path.mkdir(parents=True, mode=0o700)
    return home


def clear():
    for folder in (VOLUMES, LIBRARY):
        for entry in folder.iterdir():
            if entry.is_dir() and not entry.is_symlink():
                shutil.rmtree(entry)
            else:
                entry.unlink()


def expect(_):
    """It goes with the world."""


def volumes():
    """The image tool keeps its own books in a hidden folder there."""
    entries = list(VOLUMES.iterdir())
    books = [entry for entry in entries if entry.name.startswith(".attachments.")]
    return [entry for entry in entries if entry not in books] + [record for book in books for record in book.iterdir()]


def trust(certificate):
    """Twice is as good as once."""
    authority = certificate.read_text(encoding="ascii")
    if authority not in TRUST_STORE.read_text(encoding="utf-8"):
        with open(TRUST_STORE, "a", encoding="ascii") as store:
            store.write("\n" + authority)


def end_agents(_):
    """They end by themselves, once their record is written."""
