"""Installations that a Debian package owns, on a package database of the world's own."""

import os
import pathlib
import subprocess

import decoys
from case import ONLY_ROOT, UID, UninstallCase

DATABASE = pathlib.Path("/var/lib/dpkg")


def make_package(name, files, control=""):
    root = pathlib.Path("/tmp/packages") / name
    for file in files:
        decoys.write(root / file.relative_to("/"))
    decoys.write(root / "DEBIAN/control", f"Package: {name}\nVersion: 1\nArchitecture: all\nMaintainer: Test <t@t>\n"
                 f"{control}Description: test\n")
    package = root.with_suffix(".deb")
    subprocess.run(["dpkg-deb", "--root-owner-group", "--build", root, package], check=True, capture_output=True)
    return package


class Packages(UninstallCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.package = make_package("lumora-decoy", [decoys.BUNDLE / name for name in decoys.BUNDLE_FILES])
        # The package manager keeps its log there as well.
        for folder in (DATABASE, pathlib.Path("/var/log")):
            subprocess.run(["mount", "-t", "tmpfs", "tmpfs", folder], check=True)
            cls.addClassCleanup(subprocess.run, ["umount", "--lazy", folder], check=True)

    def setUp(self):
        super().setUp()
        decoys.empty(DATABASE)
        for folder in ("info", "updates", "triggers"):
            (DATABASE / folder).mkdir()
        (DATABASE / "status").touch()
        self.install(self.package)
        decoys.make_stored(self.home)

    def install(self, *packages):
        subprocess.run(["dpkg", "--force-unsafe-io", "-i", *packages], check=True, capture_output=True)

    def installed(self):
        return subprocess.run(["dpkg-query", "-W", "-f", "${db:Status-Status} ${Package}\n"], check=True,
                              capture_output=True, text=True).stdout.split("\n")[:-1]

    def test_root_removes_the_package(self):
        outcome = self.uninstall()
        self.assert_removed(outcome)
        self.assertIn("Removed the Debian package lumora-decoy", outcome.lines())
        self.assertEqual(self.installed(), [])
        self.assertFalse(decoys.BUNDLE.exists())

    def test_package_that_others_need_stays_and_so_does_the_data(self):
        self.install(make_package("lumora-suite", [], "Depends: lumora-decoy\n"))
        before = decoys.tree(self.home)
        outcome = self.uninstall()
        self.assertEqual(outcome.status, 1)
        self.assertIn("Could not remove the Debian package lumora-decoy:", outcome.lines())
        self.assertIn("lumora-suite depends on lumora-decoy", outcome.text)
        self.assertEqual(decoys.tree(self.home), before)
        self.assertTrue((decoys.BUNDLE / "Contents/Info.plist").exists())

    def test_configuration_of_another_package_stays(self):
        file = decoys.MANAGED / f"{decoys.DOMAIN}.plist"
        self.install(make_package("company-settings", [file]))
        outcome = self.uninstall()
        self.assertEqual(outcome.status, 0, outcome.text)
        self.assertIn(f"Left {file}, which belongs to the Debian package company-settings", outcome.lines())
        self.assertTrue(file.exists())

    def test_installation_that_no_package_owns_is_not_asked_for(self):
        subprocess.run(["dpkg", "--purge", "lumora-decoy"], check=True, capture_output=True)
        self.install(make_package("another", [decoys.APPLICATIONS / "Another.app/Contents/Info.plist"]))
        decoys.make_bundle(decoys.BUNDLE)
        self.assert_removed(self.uninstall())
        self.assertEqual(os.listdir(decoys.APPLICATIONS), ["Another.app"])
        self.assertEqual(self.installed(), ["installed another"])

    def test_user_only_leaves_the_package(self):
        self.assert_removed(self.uninstall("--user-only"))
        self.assertEqual(self.installed(), ["installed lumora-decoy"])

    @ONLY_ROOT
    def test_ordinary_user_is_told_what_an_administrator_does(self):
        decoys.own(self.home, UID)
        decoys.APPLICATIONS.chmod(0o777)
        before = decoys.tree(self.home)
        outcome = self.uninstall(uid=UID)
        self.assertEqual(outcome.status, 1)
        self.assertEqual(outcome.lines(), [
            f"{decoys.BUNDLE} belongs to the Debian package lumora-decoy. Nothing was removed.",
            "An administrator removes it with: apt purge lumora-decoy"])
        self.assertEqual(decoys.tree(self.home), before)
        self.assertEqual(self.installed(), ["installed lumora-decoy"])
