"""Where things are in the private world, and below a home folder."""

import os
import pathlib

ROOT = pathlib.Path(os.environ["LUMORA_ROOT"])
BUILT_BUNDLE = pathlib.Path(os.environ["LUMORA_BUNDLE"])
DATACENTRE = pathlib.Path(os.environ["LUMORA_DATACENTRE"])
AGENT = pathlib.Path(os.environ["LUMORA_AGENT"])

BUNDLE = pathlib.Path(os.environ.get("LUMORA_INSTALLED_BUNDLE", "/Applications/Ovra Tessel Lumora.app"))
VOLUME = pathlib.Path("/Volumes/Ovra")
DOMAIN = "com.ovra.tessel.OvraTesselLumora"
MACHINE_PREFERENCES = pathlib.Path(f"/Library/Preferences/{DOMAIN}.plist")
MANAGED_PREFERENCES = pathlib.Path(f"/Library/Managed Preferences/{DOMAIN}.plist")


class Home:
    """The paths that the application uses below one user's home folder, and those of a test's evidence.

    The agent's records lie beside the home folder where that can be, so that they can be written when it cannot.
    """

    def __init__(self, path, agent_records, console):
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
        self.agent_records = agent_records
        self.console = console
