"""Links: one in the place of something of ours goes, what it leads to stays; planted ones open nothing."""

import os
import pathlib
import subprocess

import decoys
from case import HOMES, ONLY_ROOT, UID, USER, UninstallCase

SUPPORT = "Library/Application Support/OvraVarloNative"
# Places where a link may stand instead of ours.
OURS = ["Library/Application Support/OvraLumoraNativeFolder", SUPPORT, "Library/Logs/OvraTessel",
        "Library/Logs/OvraTessel/OvraLumora", "Library/Logs/OvraTessel/ConnectionSettings.plist",
        f"Library/Preferences/{decoys.DOMAIN}.plist", f".local/share/{decoys.DOMAIN}", f".cache/{decoys.DOMAIN}",
        f".local/share/applications/{decoys.DOMAIN}.desktop", f"Applications/{decoys.NAME}.app"]


class Links(UninstallCase):
    def setUp(self):
        super().setUp()
        self.elsewhere = HOMES / "elsewhere"
        for name in ("OvraLumora/file", "Contents/Info.plist", f"{decoys.DOMAIN}/file", "ConnectionSettings.plist"):
            decoys.write(self.elsewhere / name)
        self.treasure = decoys.tree(self.elsewhere)

    def test_link_in_our_place_goes_and_what_it_leads_to_stays(self):
        for name in OURS:
            for target in (self.elsewhere, self.elsewhere / "OvraLumora/file", "/nowhere", name):
                with self.subTest(f"{name} -> {target}"):
                    fresh = HOMES / "fresh"
                    (fresh / name).parent.mkdir(parents=True, exist_ok=True)
                    (fresh / name).symlink_to(target)
                    outcome = self.uninstall(home=fresh)
                    self.assertEqual(outcome.status, 0, outcome.text)
                    self.assertIn(f"Removed the link {fresh / name}", outcome.lines())
                    self.assertFalse(os.path.lexists(fresh / name))
                    self.assertEqual(decoys.tree(self.elsewhere), self.treasure)

    def test_links_inside_our_folders_are_not_followed(self):
        decoys.make_stored(self.home)
        for place in (SUPPORT, f"Applications/{decoys.NAME}.app/Contents", f".cache/{decoys.DOMAIN}"):
            (self.home / place).mkdir(parents=True, exist_ok=True)
            (self.home / place / "link").symlink_to(self.elsewhere)
            (self.home / place / "up").symlink_to("../..")
            os.chmod(self.home / place, 0o500)
        self.assert_removed(self.uninstall())
        self.assertEqual(decoys.tree(self.elsewhere), self.treasure)
        self.assertEqual(self.elsewhere.stat().st_mode & 0o777, 0o755)

    def test_system_installation_that_is_a_link(self):
        decoys.BUNDLE.symlink_to(self.elsewhere)
        outcome = self.uninstall()
        self.assertEqual(outcome.status, 0, outcome.text)
        self.assertEqual(os.listdir(decoys.APPLICATIONS), [])
        self.assertEqual(decoys.tree(self.elsewhere), self.treasure)

    def test_library_that_the_user_has_moved_elsewhere_is_cleared(self):
        decoys.make_stored(self.home)
        moved = HOMES / "disk/Library"
        moved.parent.mkdir()
        (self.home / "Library").rename(moved)
        (self.home / "Library").symlink_to(moved)
        self.assertEqual(self.uninstall().status, 0)
        (self.home / "Library").unlink()
        moved.rename(self.home / "Library")
        self.assertEqual(decoys.tree(self.home), self.neighbours)

    @ONLY_ROOT
    def test_administrators_rights_do_not_pass_through_a_users_links(self):
        """Each way into root's own folders that somebody could prepare in his home before he asks for the removal."""
        private = pathlib.Path("/tmp/private")
        for folder in ("Application Support", "Logs", "Preferences"):
            place = {"Logs": "OvraTessel/OvraLumora/log", "Preferences": f"{decoys.DOMAIN}.plist"}
            decoys.write(private / folder / place.get(folder, "OvraVarloNative/file"))
        decoys.write(private / f"{decoys.NAME}.app/Contents/Info.plist")
        private.chmod(0o755)
        treasure = decoys.tree(private)
        for name, target in (("Library", private), ("Library/Preferences", private / "Preferences"),
                             ("Library/Application Support", private / "Application Support"),
                             ("Library/Logs", private / "Logs"), ("Applications", private)):
            for privileges in ({"SUDO_UID": str(UID)}, {"PKEXEC_UID": str(UID)}, {}):
                with self.subTest(f"{name} {privileges}"):
                    decoys.make_bundle(decoys.BUNDLE)
                    home = HOMES / USER
                    subprocess.run(["rm", "-rf", home], check=True)
                    (home / name).parent.mkdir(parents=True)
                    (home / name).symlink_to(target)
                    decoys.own(home, UID)
                    self.uninstall(home=home if not privileges else "/root", environment=privileges)
                    self.assertEqual(decoys.tree(private), treasure)
                    self.assertFalse(decoys.BUNDLE.exists())
