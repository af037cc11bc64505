"""The script's other system: stand-ins that speak as macOS's tools do, in front of the machine's own."""

import os
import pathlib
import subprocess

import decoys
from case import HOMES, ONLY_ROOT, SCRIPT, UID, USER, UninstallCase

TOOLS = pathlib.Path("/tmp/macos tools")
CALLS = pathlib.Path("/tmp/calls")

STAND_INS = {
    "uname": "echo Darwin",
    # BSD's rm knows -x for staying on one volume and none of GNU's long options.
    "rm": 'case "$*" in *--one-file-system*) exit 64 ;; esac\n[ "$1" = -rfx ] && { shift; exec /bin/rm -rf "$@"; }\n'
          'exec /bin/rm "$@"',
    "stat": '[ "$1" = -f ] && [ "$2" = %u ] || exit 64\nshift 2\n[ "$1" = -- ] && shift\n'
            '[ "$1" = /dev/console ] && { echo "${CONSOLE_USER:-0}"; exit; }\nexec /bin/stat -c %u -- "$1"',
    "dscl": f'[ "$*" = ". -read /Users/{USER} NFSHomeDirectory" ] && echo "NFSHomeDirectory: {HOMES / USER}"',
    "defaults": f'printf "%s\\n" "$*" >>"{CALLS}"',
    "sudo": '[ "$1 $2" = "-n -u" ] && [ "$4" = -H ] || exit 64\nuser=${3#"#"}\nshift 4\n'
            'exec setpriv --reuid "$user" --regid "$user" --clear-groups "$@"',
    "getent": "exit 64", "setpriv": 'exec /usr/bin/setpriv "$@"', "dpkg-query": "exit 64",
}

STORED = [name for name in decoys.STORED if name.startswith("Library/")] + [
    f"Library/Preferences/ByHost/{decoys.DOMAIN}.0123.plist",
    f"Library/Caches/{decoys.DOMAIN}/WebKit/file",
    f"Library/WebKit/{decoys.DOMAIN}/WebsiteData/file",
    f"Library/HTTPStorages/{decoys.DOMAIN}/httpstorages.sqlite",
    f"Library/HTTPStorages/{decoys.DOMAIN}.binarycookies",
    f"Library/Cookies/{decoys.DOMAIN}.binarycookies",
    f"Library/Saved Application State/{decoys.DOMAIN}.savedState/data.data",
]
NEIGHBOURS = [
    f"Library/Caches/{decoys.DOMAIN}Pro/file",
    "Library/WebKit/com.another/file",
    "Library/HTTPStorages/com.another/file",
    "Library/Saved Application State/com.another.savedState/data.data",
    "Library/Cookies/com.another.binarycookies",
    "Library/Preferences/ByHost/com.another.plist",
]


class MacOs(UninstallCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        TOOLS.mkdir(exist_ok=True)
        for name, text in STAND_INS.items():
            (TOOLS / name).write_text(f"#!/bin/sh\n{text}\n", encoding="utf-8")
            (TOOLS / name).chmod(0o755)
        text = SCRIPT.read_text(encoding="utf-8")
        assert text.count("\nPATH=/usr/sbin:") == 1
        cls.script.write_text(text.replace("\nPATH=/usr/sbin:", f"\nPATH='{TOOLS}':/usr/sbin:"), encoding="utf-8")

    def setUp(self):
        super().setUp()
        CALLS.write_text("", encoding="ascii")
        CALLS.chmod(0o666)
        for name in NEIGHBOURS:
            decoys.write(self.home / name)
        self.neighbours = decoys.tree(self.home)
        for name in STORED:
            decoys.write(self.home / name)

    def assert_removed(self, outcome):
        # Folders of the system's own stay, empty or not.
        self.assertEqual(outcome.status, 0, outcome.text)
        left = {name: entry for name, entry in decoys.tree(self.home).items() if entry[0] != "folder"}
        self.assertEqual(left, {name: entry for name, entry in self.neighbours.items() if entry[0] != "folder"})

    def test_user_installation_goes_with_all_it_has_stored_and_nothing_else(self):
        decoys.make_bundle(self.bundle)
        self.assert_removed(self.uninstall())

    def test_preferences_server_forgets_what_it_holds(self):
        self.uninstall()
        self.assertEqual(CALLS.read_text(encoding="ascii").split("\n")[:-1], [
            f"delete /Library/{folder}/{decoys.DOMAIN}" for folder in ("Preferences", "Managed Preferences")
            if os.path.isdir(f"/Library/{folder}")] + [f"delete {self.home}/Library/Preferences/{decoys.DOMAIN}"])

    def test_folders_of_the_system_stay_although_they_are_empty(self):
        fresh = HOMES / "fresh"
        decoys.make_bundle(fresh / f"Applications/{decoys.NAME}.app")
        decoys.write(fresh / f"Library/Preferences/{decoys.DOMAIN}.plist")
        self.assertEqual(self.uninstall(home=fresh).status, 0)
        self.assertEqual(sorted(str(path.relative_to(fresh)) for path in fresh.rglob("*")),
                         ["Applications", "Library", "Library/Preferences"])

    @ONLY_ROOT
    def test_administrators_script_clears_the_home_of_the_user_at_the_screen(self):
        decoys.make_bundle(decoys.BUNDLE)
        decoys.own(self.home, UID)
        # The prompt gives root's rights and names nobody.
        outcome = self.uninstall(home="/var/root", environment={"CONSOLE_USER": str(UID)})
        self.assert_removed(outcome)
        self.assertFalse(decoys.BUNDLE.exists())

    @ONLY_ROOT
    def test_it_has_no_more_rights_there_than_that_user(self):
        decoys.make_bundle(decoys.BUNDLE)
        private = pathlib.Path("/tmp/private")
        decoys.write(private / "OvraVarloNative/file")
        subprocess.run(["rm", "-rf", self.home / "Library/Application Support"], check=True)
        (self.home / "Library/Application Support").symlink_to(private)
        decoys.own(self.home, UID)
        self.uninstall(home="/var/root", environment={"CONSOLE_USER": str(UID)})
        self.assertTrue((private / "OvraVarloNative/file").exists())
