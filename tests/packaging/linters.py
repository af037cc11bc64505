"""The platform's own linters have nothing to say."""

import os
import pathlib
import subprocess
import unittest

import release


class Linters(unittest.TestCase):
    maxDiff = None

    def assert_silent(self, *command):
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        self.assertEqual((done.returncode, done.stdout), (0, ""))

    def test_debian_package(self):
        as_root = ["--allow-root"] if os.geteuid() == 0 else []
        self.assert_silent("lintian", *as_root, "--fail-on", "error,warning", release.debian_package())

    def test_menu_entry(self):
        self.assert_silent("desktop-file-validate", release.LINUX / f"desktop/{release.DOMAIN}.desktop")

    def test_application_catalogue_entry(self):
        done = release.output("appstreamcli", "validate", "--no-net", "--strict", "--explain",
                              release.LINUX / f"desktop/{release.DOMAIN}.metainfo.xml")
        self.assertIn("Validation was successful", done)

    def test_shell_scripts(self):
        scripts = [path for folder in (release.LINUX, release.ROOT / "resources", release.ROOT / "scripts")
                   for path in sorted(pathlib.Path(folder).rglob("*")) if path.is_file() and self.is_shell(path)]
        self.assertGreater(len(scripts), 8)
        self.assert_silent("shellcheck", *scripts)

    @staticmethod
    def is_shell(path):
        with open(path, "rb") as file:
            return file.readline() in (b"#!/bin/bash\n", b"#!/bin/sh\n")

    def test_manual_page(self):
        self.assert_silent("groff", "-man", "-ww", "-z", release.LINUX / "ovra-tessel-lumora.1")
