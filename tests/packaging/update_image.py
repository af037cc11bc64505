"""The self-update image, as the packaged application's own image tool mounts it."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

import machine
import release

VOLUME = pathlib.Path("/Volumes/Lumora Plugin")
TOOL = release.BUILT_BUNDLE / "Contents/MacOS/hdiutil"


class UpdateImage(unittest.TestCase):
    maxDiff = None

    def test_mounts_where_the_application_copies_from_and_detaches(self):
        text = release.output(TOOL, "mount", release.IMAGE)
        self.assertEqual(text.rstrip("\n").split("\t")[-1], str(VOLUME))
        self.assertEqual(os.listdir(VOLUME), [f"{release.NAME}.app"])
        release.output(TOOL, "detach", VOLUME)
        self.assertFalse(VOLUME.exists())

    def test_bundle_is_the_packages(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["dpkg-deb", "--extract", release.debian_package(), folder], check=True)
            release.output(TOOL, "mount", release.IMAGE)
            try:
                self.assertEqual(machine.picture(VOLUME), machine.picture(f"{folder}/Applications"))
            finally:
                release.output(TOOL, "detach", VOLUME)

    def test_link_in_a_bundle_is_refused(self):
        with tempfile.TemporaryDirectory() as folder:
            bundle = pathlib.Path(folder, f"{release.NAME}.app")
            shutil.copytree(release.BUILT_BUNDLE, bundle)
            (bundle / "Applications").symlink_to("/Applications")
            image = pathlib.Path(folder, "image.dmg")
            done = subprocess.run([release.LINUX / "make-update-image", bundle, image], capture_output=True, text=True,
                                  check=False)
            self.assertEqual(done.returncode, 1)
            self.assertIn("links in the bundle", done.stderr)
            self.assertFalse(image.exists())

    def test_another_folder_is_no_bundle(self):
        with tempfile.TemporaryDirectory() as folder:
            done = subprocess.run([release.LINUX / "make-update-image", folder, f"{folder}/image.dmg"],
                                  capture_output=True, text=True, check=False)
            self.assertEqual(done.returncode, 1)
            self.assertIn("is no bundle", done.stderr)
