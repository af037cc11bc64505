import os
import subprocess
import tempfile
import unittest

from datacentre_world import AGENT, PROGRAM, skip_without

PLIST = """<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>CFBundleShortVersionString</key>
<string>1.0</string>
</dict></plist>
"""


class Images(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = scratch.name
        self.image = os.path.join(self.folder, "image.dmg")
        self.unpacked = os.path.join(self.folder, "unpacked")

    def make(self, kind, *words, expect=0):
        done = subprocess.run([PROGRAM, "image", kind, "--output", self.image, *words], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL)
        self.assertEqual(done.returncode, expect)

    def unpack(self):
        subprocess.run(["xorriso", "-osirrox", "on", "-indev", self.image, "-extract", "/", self.unpacked],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def volume_name(self):
        report = subprocess.run(["xorriso", "-indev", self.image, "-pvd_info"], check=True, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
        return next(line.split(":", 1)[1].strip() for line in report.splitlines() if line.startswith("Volume Id"))

    def mode(self, path):
        return os.stat(os.path.join(self.unpacked, path)).st_mode & 0o777

    def text(self, path):
        with open(os.path.join(self.unpacked, path), encoding="utf-8") as file:
            return file.read()

    def test_the_agents_image_comes_back_whole(self):
        self.make("agent", "--agent", AGENT, "--version", "13.7.2")
        self.unpack()
        self.assertEqual(self.volume_name(), "Ovra")
        for name in ("OvraCrashDetector", "TesselUserHandler", "OTPreLogin", "OvraPingAgent", "RemoteScriptLauncher",
                     "Ovra.app/Contents/MacOS/Ovra"):
            self.assertEqual(self.mode(name), 0o755, name)
        with open(AGENT, "rb") as original, open(f"{self.unpacked}/Ovra.app/Contents/MacOS/Ovra", "rb") as copy:
            self.assertEqual(original.read(), copy.read())
        self.assertIn("<string>13.7.2</string>", self.text("Ovra.app/Contents/Info.plist"))
        said = subprocess.run([f"{self.unpacked}/OvraPingAgent"], check=True, text=True, stdout=subprocess.PIPE).stdout
        self.assertEqual(said, "OvraPingAgent 13.7.2\n")

    def test_modes_links_and_names_survive(self):
        self.make("agent", "--agent", AGENT)
        self.unpack()
        modes = {name: self.mode("tools_mac/" + name) for name in os.listdir(f"{self.unpacked}/tools_mac")}
        self.assertEqual(set(modes.values()), {0o755, 0o644, 0o600, 0o444})
        self.assertTrue(any(not name.isascii() for name in modes))
        framework = f"{self.unpacked}/Ovra.app/Contents/Frameworks/OvraLink.framework"
        self.assertEqual(os.readlink(f"{framework}/Versions/Current"), "A")
        self.assertTrue(os.path.isfile(f"{framework}/OvraLink"))

    def test_the_applications_image_holds_the_bundle_with_the_new_version(self):
        bundle = os.path.join(self.folder, "Ovra Tessel Lumora.app")
        os.makedirs(f"{bundle}/Contents/MacOS")
        with open(f"{bundle}/Contents/Info.plist", "w", encoding="utf-8") as file:
            file.write(PLIST)
        program = f"{bundle}/Contents/MacOS/Ovra Tessel Lumora"
        with open(program, "w", encoding="utf-8") as file:
            file.write("#!/bin/sh\n")
        os.chmod(program, 0o755)
        os.symlink("MacOS", f"{bundle}/Contents/Current")
        self.make("application", "--bundle", bundle + "/", "--version", "2.5")
        self.unpack()
        self.assertEqual(self.volume_name(), "Lumora Plugin")
        copy = "Ovra Tessel Lumora.app/Contents"
        self.assertEqual(self.text(f"{copy}/Info.plist"), PLIST.replace("1.0</string>", "2.5</string>"))
        self.assertEqual(self.mode(f"{copy}/MacOS/Ovra Tessel Lumora"), 0o755)
        self.assertEqual(os.readlink(f"{self.unpacked}/{copy}/Current"), "MacOS")
        with open(f"{bundle}/Contents/Info.plist", encoding="utf-8") as file:
            self.assertEqual(file.read(), PLIST, "the bundle itself is left alone")

    def test_what_is_no_bundle_or_program_is_refused(self):
        self.make("application", "--bundle", self.folder, expect=1)
        self.make("agent", "--agent", "/nonexistent", expect=1)
        self.assertFalse(os.path.exists(self.image))


if __name__ == "__main__":
    skip_without("xorriso")
    unittest.main()
