"""Who runs it, on whose behalf: sudo, pkexec, an ordinary user."""

import os
import pathlib

import decoys
from case import HOMES, ONLY_ROOT, UID, USER, UninstallCase


@ONLY_ROOT
class OnBehalf(UninstallCase):
    """root's own home, which is not the one that is meant."""

    def setUp(self):
        super().setUp()
        self.roots = HOMES / "root"
        decoys.make_stored(self.roots)
        self.roots_before = decoys.tree(self.roots)
        decoys.make_bundle(decoys.BUNDLE)
        decoys.make_stored(self.home)
        decoys.own(self.home, UID)

    def test_home_of_the_user_who_asked_is_cleared(self):
        for environment in ({"SUDO_UID": str(UID), "SUDO_USER": USER}, {"PKEXEC_UID": str(UID)}):
            with self.subTest(environment):
                decoys.make_bundle(decoys.BUNDLE)
                decoys.make_stored(self.home)
                decoys.own(self.home, UID)
                outcome = self.uninstall(home=self.roots, environment=environment)
                self.assert_removed(outcome)
                self.assertFalse(decoys.BUNDLE.exists())
                self.assertEqual(decoys.tree(self.roots), self.roots_before)

    def test_roots_folders_of_the_environment_are_not_the_users(self):
        environment = {"SUDO_UID": str(UID), "XDG_DATA_HOME": str(self.roots / ".local/share"),
                       "XDG_CACHE_HOME": str(self.roots / ".cache")}
        self.assert_removed(self.uninstall(home=self.roots, environment=environment))
        self.assertEqual(decoys.tree(self.roots), self.roots_before)

    def test_numbers_that_are_none_are_not_believed(self):
        for number in ("", "-1", "0x10", "kim", "4711 0", "99999999", "$(id)"):
            with self.subTest(number):
                decoys.make_stored(self.roots)
                before = decoys.tree(self.home)
                self.assertEqual(self.uninstall(home=self.roots, environment={"SUDO_UID": number}).status, 0)
                self.assertEqual(decoys.tree(self.home), before)

    def test_home_that_an_administrators_shell_has_kept_is_cleared_with_its_owners_rights(self):
        mine = self.home / "Library/Application Support/OvraLumoraNativeFolder"
        os.chown(mine.parent, 0, 0)
        mine.parent.chmod(0o755)
        outcome = self.uninstall()
        self.assertEqual(outcome.status, 1)
        self.assertIn(f"Could not remove {mine}: ", outcome.text)

    def test_script_that_the_user_cannot_read_works(self):
        folder = pathlib.Path("/tmp/roots own")
        folder.mkdir(mode=0o700, exist_ok=True)
        original, script = self.script, folder / "script"
        script.write_bytes(original.read_bytes())
        try:
            self.script = script
            self.assert_removed(self.uninstall(home=self.roots, environment={"SUDO_UID": str(UID)}))
        finally:
            self.script = original


@ONLY_ROOT
class OrdinaryUser(UninstallCase):
    def setUp(self):
        super().setUp()
        decoys.own(self.home, UID)
        decoys.APPLICATIONS.chmod(0o755)

    def test_own_installation_goes(self):
        decoys.make_bundle(self.bundle)
        decoys.make_stored(self.home)
        decoys.own(self.home, UID)
        self.assert_removed(self.uninstall(uid=UID))

    def test_write_protected_folders_of_his_own_go_too(self):
        decoys.make_bundle(self.bundle)
        decoys.own(self.home, UID)
        for place, _, _ in os.walk(self.bundle, topdown=False):
            os.chmod(place, 0o500)
        self.assert_removed(self.uninstall(uid=UID))

    def test_system_installation_is_refused_before_anything_is_lost(self):
        decoys.make_bundle(decoys.BUNDLE)
        decoys.make_bundle(self.bundle)
        decoys.make_stored(self.home)
        decoys.own(self.home, UID)
        before = decoys.tree(self.home) | decoys.tree("/Applications")
        for mode in (0o755, 0o1777):
            with self.subTest(oct(mode)):
                decoys.APPLICATIONS.chmod(mode)
                outcome = self.uninstall(uid=UID)
                self.assertEqual(outcome.status, 1)
                self.assertIn("can only be removed by an administrator. Nothing was removed.", outcome.text)
                self.assertEqual(decoys.tree(self.home) | decoys.tree("/Applications"), before)

    def test_foreign_folder_deep_in_a_system_installation_is_found_beforehand(self):
        decoys.APPLICATIONS.chmod(0o777)
        decoys.make_bundle(decoys.BUNDLE)
        decoys.own(decoys.BUNDLE, UID)
        os.chown(decoys.BUNDLE / "Contents/MacOS", 0, 0)
        before = decoys.tree("/Applications")
        self.assertEqual(self.uninstall(uid=UID).status, 1)
        self.assertEqual(decoys.tree("/Applications"), before)

    def test_system_installation_of_his_own_goes(self):
        decoys.APPLICATIONS.chmod(0o1777)
        decoys.make_bundle(decoys.BUNDLE)
        decoys.own(decoys.BUNDLE, UID)
        self.assert_removed(self.uninstall(uid=UID))
        self.assertFalse(decoys.BUNDLE.exists())

    def test_user_only_needs_nobody(self):
        decoys.make_bundle(decoys.BUNDLE)
        decoys.make_bundle(self.bundle)
        decoys.own(self.home, UID)
        self.assert_removed(self.uninstall("--user-only", uid=UID))
        self.assertTrue(decoys.BUNDLE.exists())

    def test_machines_preferences_stay_without_failure(self):
        decoys.make_bundle(self.bundle)
        decoys.own(self.home, UID)
        for folder in (decoys.PREFERENCES, decoys.MANAGED):
            decoys.write(folder / f"{decoys.DOMAIN}.plist")
        outcome = self.uninstall(uid=UID)
        self.assert_removed(outcome)
        self.assertIn(f"Left {decoys.MANAGED}/{decoys.DOMAIN}.plist, which only an administrator may remove",
                      outcome.lines())
        self.assertTrue((decoys.PREFERENCES / f"{decoys.DOMAIN}.plist").exists())

    def test_machines_preferences_alone_are_no_installation(self):
        decoys.write(decoys.PREFERENCES / f"{decoys.DOMAIN}.plist")
        self.assert_nothing_found(self.uninstall(uid=UID))

    def test_privileges_of_the_environment_alone_open_nothing(self):
        other = HOMES / "other"
        decoys.make_stored(other)
        before = decoys.tree(other)
        self.uninstall(uid=UID, environment={"SUDO_UID": "0", "PKEXEC_UID": "0", "SUDO_USER": "root"})
        self.assertEqual(decoys.tree(other), before)
