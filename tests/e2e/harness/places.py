"""Where things are in the private world, and below a home folder."""

import os
import pathlib

ROOT = pathlib.Path(os.environ["LUMORA_ROOT"])
BUILT_BUNDLE = pathlib.Path(os.environ["LUMORA_BUNDLE"])
DATACENTRE = pathlib.Path(os.environ["LUMORA_DATACENTRE"])
AGENT = pathlib.Path(os.environ["LUMORA_AGENT"])

BUNDLE = pathlib.Path(os.environ.get("LUMORA_INSTALLED_BUNDLE", "/Applications/Ovra Tessel Lumora.app"))
VOLUME = pathlib.Path("/Volumes/Ovra")
TRUST_STORE = pathlib.Path("/etc/ssl/certs/ca-certificates.crt")
DOMAIN = "com.ovra.tessel.OvraTesselLumora"
MANAGED_PREFERENCES = pathlib.Path(f"/Library/Managed Preferences/{DOMAIN}.plist")


def volumes():
    """What is mounted, or lies about where volumes are. The image tool keeps its own books in a hidden folder there."""
    entries = list(pathlib.Path("/Volumes").iterdir())
    books = [entry for entry in entries if entry.name.startswith(".attachments.")]
    return [entry for entry in entries if entry not in books] + [record for book in books for record in book.iterdir()]


class Home:
    """The paths that the application uses below one user's home folder."""

    def __init__(self, path):
        self.path = pathlib.Path(path)
        self.library = self.path / "Library"
        self.agent_folder = self.library / "Application Support/OvraVarloNative"
        self.agent = self.agent_folder / "Ovra.app"
        self.image = self.agent_folder / "OvraMac.dmg"
        self.join_details = self.agent_folder / "ovrajoindetails.conf"
        self.support_folder = self.library / "Application Support/OvraLumoraNativeFolder"
        self.staged_bundle = self.support_folder / "Ovra Tessel Lumora.app"
        self.update_image = self.support_folder / "OvraTesselLumora.dmg"
        self.log_folder = self.library / "Logs/OvraTessel/OvraLumora"
        self.log = self.log_folder / "ovraLumora.log"
        self.connection_settings = self.library / "Logs/OvraTessel/ConnectionSettings.plist"
        self.preferences = self.library / f"Preferences/{DOMAIN}.plist"
        # Beside the home folder, so that they can be written when it cannot.
        self.agent_records = self.path.with_name(self.path.name + ".agent-records")
        self.console = self.path.with_name(self.path.name + ".console.log")
