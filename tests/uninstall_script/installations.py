"""What is removed from an ordinary home and an ordinary machine, what stays, and what is said about it."""

import os
import pathlib
import subprocess

import decoys
from case import UninstallCase


class Installations(UninstallCase):
    def test_user_installation_goes_with_all_it_has_stored_and_nothing_else(self):
        decoys.make_bundle(self.bundle)
        decoys.make_stored(self.home)
        self.assert_removed(self.uninstall())

    def test_system_installation_goes_with_all_it_has_stored_and_nothing_else(self):
        decoys.make_bundle(decoys.BUNDLE)
        decoys.make_bundle(decoys.APPLICATIONS / "Another.app")
        decoys.write(decoys.APPLICATIONS / ".lumora-12-ab-0/Contents/Info.plist")
        decoys.make_stored(self.home)
        for folder in (decoys.PREFERENCES, decoys.MANAGED):
            decoys.write(folder / f"{decoys.DOMAIN}.plist")
            decoys.write(folder / "com.another.plist")

        self.assert_removed(self.uninstall())

        self.assertEqual(os.listdir(decoys.APPLICATIONS), ["Another.app"])
        self.assertEqual(os.listdir(decoys.PREFERENCES), ["com.another.plist"])
        self.assertEqual(os.listdir(decoys.MANAGED), ["com.another.plist"])

    def test_both_installations_go(self):
        decoys.make_bundle(decoys.BUNDLE)
        decoys.make_bundle(self.bundle)
        self.assert_removed(self.uninstall())
        self.assertFalse(decoys.BUNDLE.exists())

    def test_each_stored_thing_alone_is_found_and_removed(self):
        for name in decoys.STORED:
            with self.subTest(name):
                decoys.write(self.home / name)
                self.assert_removed(self.uninstall())

    def test_nothing_there_fails_and_says_so(self):
        self.assert_nothing_found(self.uninstall())
        self.assertEqual(decoys.tree(self.home), self.neighbours)

    def test_second_run_finds_nothing(self):
        decoys.make_bundle(self.bundle)
        decoys.make_stored(self.home)
        self.assert_removed(self.uninstall())
        self.assert_nothing_found(self.uninstall())

    def test_everything_removed_is_named(self):
        decoys.make_bundle(self.bundle)
        decoys.make_stored(self.home)
        text = self.uninstall().text
        for name in (f"Applications/{decoys.NAME}.app", "Library/Application Support/OvraVarloNative",
                     "Library/Logs/OvraTessel/OvraLumora", f"Library/Preferences/{decoys.DOMAIN}.plist",
                     f".local/share/applications/{decoys.DOMAIN}.desktop"):
            self.assertIn(f"\nRemoved {self.home}/{name}\n", text)

    def test_headings_are_decoration_in_whole(self):
        decoys.make_bundle(self.bundle)
        outcome = self.uninstall()
        self.assertTrue(outcome.text.startswith("==========") and outcome.text.endswith("==========\n"), outcome.text)
        self.assertEqual(outcome.lines(), [f"Removed {self.bundle}"])

    def test_folders_of_this_application_alone_go_when_they_are_empty(self):
        self.home = self.home.with_name("fresh")
        decoys.make_bundle(self.home / f"Applications/{decoys.NAME}.app")
        decoys.make_stored(self.home)
        self.assertEqual(self.uninstall().status, 0)
        self.assertEqual(sorted(os.listdir(self.home)), [".cache", ".local"])

    def test_user_only_leaves_the_machine_alone(self):
        decoys.make_bundle(decoys.BUNDLE)
        decoys.make_bundle(self.bundle)
        decoys.make_stored(self.home)
        decoys.write(decoys.PREFERENCES / f"{decoys.DOMAIN}.plist")
        machine = decoys.tree("/Applications") | decoys.tree("/Library")

        self.assert_removed(self.uninstall("--user-only"))

        self.assertEqual(decoys.tree("/Applications") | decoys.tree("/Library"), machine)

    def test_folders_of_another_case_are_found(self):
        for name in decoys.STORED:
            if name.startswith("Library/"):
                decoys.write(self.home / "alone" / name.replace("Application Support", "application support")
                             .replace("Library", "LIBRARY").replace("OvraVarlo", "ovravarlo"))
        self.assertEqual(self.uninstall(home=self.home / "alone").status, 0)
        self.assertEqual(os.listdir(self.home / "alone"), [])

    def test_data_and_cache_folders_of_the_environment_are_used(self):
        data, cache = self.home / "my data", self.home / "my cache"
        decoys.write(data / decoys.DOMAIN / "storage/salt")
        decoys.write(data / f"applications/{decoys.DOMAIN}.desktop")
        decoys.write(cache / decoys.DOMAIN / "file")
        decoys.write(data / "another")
        outcome = self.uninstall(environment={"XDG_DATA_HOME": str(data), "XDG_CACHE_HOME": str(cache)})
        self.assertEqual(outcome.status, 0, outcome.text)
        self.assertEqual(os.listdir(data), ["another"])
        self.assertEqual(os.listdir(cache), [])

    def test_cut_off_downloads_of_the_user_alone_go(self):
        own, others, another = (pathlib.Path(f"/tmp/lumora-download-{end}")
                                for end in ("aB3dEf", "aB3dEg", "notes.txt"))
        for path in (own, others, another):
            decoys.write(path)
            self.addCleanup(path.unlink, missing_ok=True)
        link = pathlib.Path("/tmp/lumora-download-aB3dEh")
        link.symlink_to(another)
        self.addCleanup(link.unlink, missing_ok=True)
        try:
            os.chown(others, 47110, 47110)
        except OSError:
            self.skipTest("this world has one user only")
        self.assert_removed(self.uninstall())
        self.assertFalse(own.exists())
        self.assertTrue(another.exists())
        self.assertTrue(others.exists())

    def test_unknown_words_do_nothing(self):
        decoys.make_bundle(self.bundle)
        before = decoys.tree(self.home)
        for words in (["--skip-kil"], ["--skip-kill", "/"], ["-f"]):
            with self.subTest(words):
                outcome = self.uninstall(*words)
                self.assertEqual(outcome.status, 64)
                self.assertIn("usage: ", outcome.text)
                self.assertEqual(decoys.tree(self.home), before)

    def test_names_that_begin_with_a_dash_or_hold_patterns_are_only_names(self):
        for name in ("-rf", "* ?", "[a]\n$(touch x)"):
            decoys.write(self.home / "Library/Application Support/OvraVarloNative" / name / name)
        self.assert_removed(self.uninstall())

    def test_what_cannot_be_removed_is_named_and_fails(self):
        decoys.make_bundle(self.bundle)
        decoys.make_stored(self.home)
        folder = self.home / "Library/Application Support/OvraVarloNative"
        subprocess.run(["mount", "-t", "tmpfs", "tmpfs", folder], check=True)
        try:
            decoys.write(folder / "somebody's disk")
            outcome = self.uninstall()
            self.assertEqual(outcome.status, 1)
            self.assertTrue(any(line.startswith(f"Could not remove {folder}: ") for line in outcome.lines()),
                            outcome.text)
            self.assertEqual(os.listdir(folder), ["somebody's disk"])
            self.assertNotIn("was removed", outcome.text)
        finally:
            subprocess.run(["umount", folder], check=True)

    def test_application_that_stays_keeps_its_data(self):
        decoys.make_bundle(decoys.BUNDLE)
        decoys.make_stored(self.home)
        before = decoys.tree(self.home)
        subprocess.run(["mount", "-t", "tmpfs", "tmpfs", decoys.BUNDLE], check=True)
        try:
            outcome = self.uninstall()
        finally:
            subprocess.run(["umount", decoys.BUNDLE], check=True)
        self.assertEqual(outcome.status, 1)
        self.assertIn(f"Could not remove {decoys.BUNDLE}: ", outcome.text)
        self.assertEqual(decoys.tree(self.home), before)
