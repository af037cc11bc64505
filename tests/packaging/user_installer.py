"""The installer for one user: installing, replacing, starting from the menu, and going without a trace."""

import os
import pathlib
import shutil
import subprocess
import time
import unittest

import machine
import release

HOMES = pathlib.Path("/tmp/homes")
BUNDLE = f"Applications/{release.NAME}.app"
ENTRY = f".local/share/applications/{release.DOMAIN}.desktop"
# Every character that the menu entry's format has an opinion on.
ODD_NAME = "kim's \"home\" $HOME `id` %f %% \\ \\n ~*?#&();<>|=\u00e9"


def files(folder):
    return {str(path.relative_to(folder)) for path in pathlib.Path(folder).rglob("*")}


class InstallerCase(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        shutil.rmtree(HOMES, ignore_errors=True)
        self.home = HOMES / "kim"
        self.home.mkdir(parents=True)
        shutil.rmtree("/Applications")
        os.mkdir("/Applications", mode=0o755)

    def run_installer(self, *words, script=None, **environment):
        variables = {"HOME": str(self.home), "PATH": os.environ["PATH"]} | environment
        return subprocess.run(["bash", script or release.installer(), *words], stdin=subprocess.DEVNULL, cwd="/tmp",
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False,
                              env={name: value for name, value in variables.items() if value is not None})

    def install(self, **more):
        done = self.run_installer(**more)
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout


class Install(InstallerCase):
    def test_home_holds_the_packages_bundle_menu_entry_and_icons_and_nothing_else(self):
        text = self.install()
        package = pathlib.Path("/tmp/package")
        subprocess.run(["dpkg-deb", "--extract", release.debian_package(), package], check=True)
        self.assertEqual(machine.picture(self.home / "Applications"), machine.picture(package / "Applications"))
        self.assertEqual(machine.picture(self.home / ".local/share/icons"),
                         machine.picture(package / "usr/share/icons"))
        self.assertEqual(os.listdir(self.home / ".local/share/applications"), [f"{release.DOMAIN}.desktop"])
        self.assertEqual(sorted(os.listdir(self.home)), [".local", "Applications"])
        self.assertIn(f"is installed in {self.home / BUNDLE} and stands in your menu.", text)
        self.assertNotIn("administrator", text)

    def test_installing_again_replaces_the_bundle_whole(self):
        self.install()
        (self.home / BUNDLE / "Contents/Resources/Old.html").touch()
        before = files(self.home)
        self.install()
        self.assertEqual(files(self.home), before - {f"{BUNDLE}/Contents/Resources/Old.html"})

    def test_program_starts(self):
        self.install()
        done = subprocess.run([self.home / BUNDLE / "Contents/MacOS/hdiutil", "info"], check=False)
        self.assertEqual(done.returncode, 0)

    def test_link_in_the_bundles_place_is_replaced_and_not_followed(self):
        elsewhere = HOMES / "elsewhere"
        elsewhere.mkdir()
        (elsewhere / "file").touch()
        (self.home / "Applications").mkdir()
        (self.home / BUNDLE).symlink_to(elsewhere)
        self.install()
        self.assertFalse((self.home / BUNDLE).is_symlink())
        self.assertEqual(os.listdir(elsewhere), ["file"])

    def test_missing_folder_for_volumes_is_told_with_its_remedy(self):
        os.rmdir("/Volumes")
        try:
            text = self.install()
        finally:
            os.mkdir("/Volumes")
            os.chmod("/Volumes", 0o1777)
        self.assertIn("\nOne thing is left for an administrator of this computer.", text)
        self.assertIn("\n  sudo install -d -m 1777 /Volumes\n", text)

    def test_installation_for_all_users_is_mentioned(self):
        os.mkdir(f"/Applications/{release.NAME}.app")
        self.assertIn("There is also an installation for all users in /Applications.", self.install())

    def test_damaged_installer_changes_nothing(self):
        damaged = pathlib.Path("/tmp/damaged.sh")
        content = bytearray(release.installer().read_bytes())
        content[-4000] ^= 1
        for bytes_ in (content, release.installer().read_bytes()[:-1000]):
            damaged.write_bytes(bytes_)
            done = self.run_installer(script=damaged)
            self.assertEqual((done.returncode, done.stdout), (1, "The installer is damaged: download it again.\n"))
            self.assertEqual(files(self.home), set())

    def test_missing_library_is_named_with_the_packages_to_install(self):
        machine.lay()
        library, = pathlib.Path("/usr/lib").glob("*/libplist-2.0.so.3")
        library.rename("/usr/lib/away")
        try:
            done = self.run_installer()
        finally:
            pathlib.Path("/usr/lib/away").rename(library)
        self.assertEqual(done.returncode, 1)
        self.assertIn("Nothing was installed. These libraries are missing: libplist-2.0.so.3", done.stdout)
        self.assertRegex(done.stdout, r"\n  apt install .*\blibwebkitgtk-6\.0-4\b.*\n")
        self.assertEqual(files(self.home), set())

    def test_unusable_home_is_refused(self):
        for home in (None, "", "/", "//", "/.", "kim", "/nowhere"):
            with self.subTest(home):
                done = self.run_installer(HOME=home)
                self.assertEqual(done.returncode, 1, done.stdout)
                self.assertIn("HOME has to name your home folder", done.stdout)
        self.assertEqual(os.listdir("/Applications"), [])

    def test_unknown_words_are_refused(self):
        for words in (["--remove"], ["--uninstall", "x"], ["--extract"], [""]):
            self.assertEqual(self.run_installer(*words).returncode, 64)
        self.assertEqual(files(self.home), set())

    def test_extracting_installs_nothing(self):
        done = self.run_installer("--extract", "/tmp/extracted")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertTrue(os.path.isfile(f"/tmp/extracted/{release.NAME}.app/Contents/Info.plist"))
        self.assertEqual(files(self.home), set())


class MenuEntry(InstallerCase):
    def test_desktop_starts_the_program_whatever_the_homes_name(self):
        for name in ("kim", "Kim Muster", ODD_NAME):
            with self.subTest(name):
                self.home = HOMES / name
                self.home.mkdir(exist_ok=True)
                self.install()
                witness = pathlib.Path("/tmp/started")
                witness.unlink(missing_ok=True)
                program = self.home / BUNDLE / f"Contents/MacOS/{release.NAME}"
                program.write_text('#!/bin/sh\nprintf "%s %s" "$0" "$#" >/tmp/starting\n'
                                   "mv /tmp/starting /tmp/started\n", encoding="ascii")
                subprocess.run(["gio", "launch", self.home / ENTRY], check=True)
                deadline = time.monotonic() + 30
                while not witness.exists():
                    self.assertLess(time.monotonic(), deadline)
                    time.sleep(0.02)
                self.assertEqual(witness.read_text(encoding="utf-8"), f"{program} 0")

    def test_linter_has_nothing_to_say(self):
        self.home = HOMES / ODD_NAME
        self.home.mkdir()
        self.install()
        done = subprocess.run(["desktop-file-validate", self.home / ENTRY], capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))

    def test_data_folder_of_the_environment_is_used(self):
        data = self.home / "data"
        self.install(XDG_DATA_HOME=str(data))
        self.assertTrue((data / f"applications/{release.DOMAIN}.desktop").exists())
        self.assertFalse((self.home / ".local").exists())


class Uninstall(InstallerCase):
    def test_leaves_no_trace(self):
        self.install()
        (self.home / "Library/Application Support/OvraVarloNative").mkdir(parents=True)
        done = self.run_installer("--uninstall")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertEqual(files(self.home), {".local", ".local/share"})

    def test_leaves_the_installation_for_all_users(self):
        os.mkdir(f"/Applications/{release.NAME}.app")
        self.install()
        self.assertEqual(self.run_installer("--uninstall").returncode, 0)
        self.assertEqual(os.listdir("/Applications"), [f"{release.NAME}.app"])

    def test_clears_up_after_a_bundle_that_was_deleted_by_hand(self):
        self.install()
        shutil.rmtree(self.home / BUNDLE)
        done = self.run_installer("--uninstall")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertEqual(files(self.home), {".local", ".local/share"})

    def test_nothing_installed_fails(self):
        done = self.run_installer("--uninstall")
        self.assertEqual(done.returncode, 1)
        self.assertIn("No installation found", done.stdout)
