"""A Mac as the world finds it: where its files are, how its tools are called."""

import ctypes
import os
import pathlib
import plistlib
import re
import sys

from changes import ToolFailed, run

DOMAIN = "com.ovra.tessel.OvraTesselLumora"
BUNDLE_NAME = "Ovra Tessel Lumora.app"
KEYCHAIN = "Library/Keychains/System.keychain"
ALARMED = "import os, signal, sys; signal.alarm(int(sys.argv[1])); os.execvp(sys.argv[2], sys.argv[2:])"


def in_quartz_session():
    """What a manager's name does not tell: a process may have been called into the session of the user at the screen."""
    try:
        graphics = ctypes.CDLL("/System/Library/Frameworks/CoreGraphics.framework/CoreGraphics")
    except OSError:
        return False
    graphics.CGSessionCopyCurrentDictionary.restype = ctypes.c_void_p
    return graphics.CGSessionCopyCurrentDictionary() is not None


class Mac:
    """root and home are others than the machine's own in the world's own tests only."""

    def __init__(self, root=pathlib.Path("/"), home=None):
        self.root = root
        self.home = home or pathlib.Path.home()
        self.hosts = root / "etc/hosts"
        self.keychain = root / KEYCHAIN
        self.machine_domain = str(root / "Library/Preferences" / DOMAIN)
        managed = root / "Library/Managed Preferences"
        self.managed_preferences = [managed / f"{DOMAIN}.plist", managed / self.home.name / f"{DOMAIN}.plist"]
        # In the user's own folder: a build folder may be removed while it holds what is to be put back.
        self.state = self.home / "Library/Application Support/Lumora end-to-end tests"

    def product_places(self):
        """Where the product puts anything, for this user and for all, its preferences left out."""
        library = self.home / "Library"
        mine = [library / "Application Support/OvraVarloNative", library / "Application Support/OvraLumoraNativeFolder",
                library / "Logs/OvraTessel", library / f"Caches/{DOMAIN}", library / f"WebKit/{DOMAIN}",
                library / f"HTTPStorages/{DOMAIN}", library / f"HTTPStorages/{DOMAIN}.binarycookies",
                library / f"Cookies/{DOMAIN}.binarycookies",
                library / f"Saved Application State/{DOMAIN}.savedState", self.home / "Applications" / BUNDLE_NAME]
        return [*mine, self.root / "Applications" / BUNDLE_NAME]

    run = staticmethod(run)

    def run_as_root(self, *words, **more):
        """Never asks for a password: nobody is there to give it."""
        return self.run("sudo", "-n", *words, **more)

    def run_as_root_within(self, seconds, *words, **more):
        """For a tool that can wait for a person. The clock runs in its own process: root's are not this user's to end."""
        return self.run_as_root(sys.executable, "-c", ALARMED, str(seconds), *words, **more)

    def has_rights(self):
        try:
            self.run_as_root("true")
        except ToolFailed:
            return False
        return True

    def has_window_server(self):
        """An ssh session or a daemon's has none, whoever's it is."""
        try:
            return self.run("launchctl", "managername").decode().strip() == "Aqua" or in_quartz_session()
        except ToolFailed:
            return False

    def uses_proxy(self):
        """It, not the list of hosts, would then say where a name leads."""
        told = self.run("scutil", "--proxy", check=False).decode(errors="replace")
        return re.search(r"\b(HTTPS|SOCKS|ProxyAutoConfig)Enable : 1\b", told) is not None

    def may_install(self):
        return os.access(self.root / "Applications", os.W_OK)

    # --- processes

    def product_processes(self):
        """Those that run from one of the product's places, by number; with their programs' paths."""
        places = [f"{path}/" for path in self.product_places()]
        found = {}
        # Wide: a terminal's width would cut their ends off.
        for line in self.run("ps", "-axww", "-o", "pid=,comm=").decode(errors="replace").splitlines():
            number, _, program = line.strip().partition(" ")
            if program.strip().startswith(tuple(places)):
                found[int(number)] = program.strip()
        return found

    def end_product_processes(self):
        for number in self.product_processes():
            self.run("kill", "-9", number, check=False)

    # --- preferences, through the service that keeps them: it would not notice a changed file

    def exported(self, domain, privileged):
        run = self.run_as_root if privileged else self.run
        try:
            return plistlib.loads(run("defaults", "export", domain, "-"))
        except ToolFailed as error:
            if "does not exist" in str(error):
                return {}
            raise

    def store(self, domain, values, privileged):
        """Instead of whatever is stored there."""
        run = self.run_as_root if privileged else self.run
        run("defaults", "delete", domain, check=False)
        if values:
            run("defaults", "import", domain, "-", stdin=plistlib.dumps(values))
