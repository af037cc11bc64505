"""The Debian package on a machine: installing, upgrading, removing and purging it, and what each leaves."""

import os
import pathlib
import plistlib
import shutil
import subprocess
import unittest

import machine
import release

PACKAGE = "ovra-tessel-lumora"
BUNDLE = pathlib.Path(f"/Applications/{release.NAME}.app")
SYSTEM_PREFERENCES = pathlib.Path(f"/Library/Preferences/{release.DOMAIN}.plist")
MANAGED_PREFERENCES = pathlib.Path(f"/Library/Managed Preferences/{release.DOMAIN}.plist")


def mode(path):
    return oct(os.stat(path).st_mode & 0o7777)


class PackageCase(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        machine.lay()

    def setUp(self):
        for folder in machine.FRESH:
            shutil.rmtree(f"/{folder}", ignore_errors=True)
        self.before = machine.traces()
        self.addCleanup(machine.dpkg, "--purge", PACKAGE, check=False)

    def install(self, package=None):
        machine.dpkg("--install", package or release.debian_package())

    def assert_no_trace(self):
        self.assertEqual(machine.traces() - self.before, set())


class Life(PackageCase):
    def test_installed_files_are_the_packages(self):
        self.install()
        listed = machine.dpkg("--listfiles", PACKAGE).stdout.split("\n")[:-1]
        new = machine.traces() - self.before
        self.assertEqual(new - set(listed), {"/Volumes"})
        self.assertEqual(machine.dpkg("--verify", PACKAGE).stdout, "")

    def test_folders_have_their_modes(self):
        self.install()
        self.assertEqual([mode("/Applications"), mode(BUNDLE), mode("/Volumes")],
                         [oct(0o755), oct(0o755), oct(0o1777)])

    def test_folders_have_their_modes_whatever_the_administrators_mask(self):
        old = os.umask(0o077)
        try:
            self.install()
        finally:
            os.umask(old)
        self.assertEqual([mode("/Applications"), mode(BUNDLE / "Contents"), mode("/Volumes")],
                         [oct(0o755), oct(0o755), oct(0o1777)])

    @unittest.skipUnless(shutil.which("systemd-tmpfiles"), "this machine makes no folders at its start")
    def test_folder_for_volumes_comes_back_with_the_machine(self):
        self.install()
        os.rmdir("/Volumes")
        subprocess.run(["systemd-tmpfiles", "--create", f"{PACKAGE}.conf"], check=True)
        self.assertEqual(mode("/Volumes"), oct(0o1777))

    def test_removing_leaves_no_trace(self):
        self.install()
        machine.dpkg("--remove", PACKAGE)
        self.assert_no_trace()

    def test_purging_leaves_no_trace(self):
        machine.dpkg("--install", release.debian_package(), triggers=True)
        machine.dpkg("--purge", PACKAGE, triggers=True)
        self.assert_no_trace()

    def test_purging_after_removing_leaves_no_trace(self):
        self.install()
        machine.dpkg("--remove", PACKAGE)
        machine.dpkg("--purge", PACKAGE)
        self.assert_no_trace()

    def test_installing_again_after_removing(self):
        self.install()
        machine.dpkg("--remove", PACKAGE)
        self.install()
        self.assertEqual(machine.dpkg("--verify", PACKAGE).stdout, "")

    def test_upgrade_replaces_the_bundle_whole(self):
        def drop_a_file(folder):
            resources = folder / f"Applications/{release.NAME}.app/Contents/Resources"
            (resources / "NoInternetPage.html").unlink()
            (resources / "New.html").write_text("new", encoding="ascii")

        self.install()
        os.mkdir("/Volumes/in use")
        self.install(machine.repacked(release.debian_package(), "2.0.0", drop_a_file))

        self.assertFalse((BUNDLE / "Contents/Resources/NoInternetPage.html").exists())
        self.assertTrue((BUNDLE / "Contents/Resources/New.html").exists())
        self.assertTrue(os.path.isdir("/Volumes/in use"), "an upgrade is no removal")
        os.rmdir("/Volumes/in use")
        machine.dpkg("--purge", PACKAGE)
        self.assert_no_trace()


class Removal(PackageCase):
    """What has come to the machine while the package was installed."""

    def setUp(self):
        super().setUp()
        self.install()

    def test_volumes_left_mounted_go_and_others_stay(self):
        subprocess.run([BUNDLE / "Contents/MacOS/hdiutil", "mount", release.IMAGE], check=True, capture_output=True)
        os.mkdir("/Volumes/somebody's disk")
        machine.dpkg("--remove", PACKAGE)
        self.assertEqual(os.listdir("/Volumes"), ["somebody's disk"])

    def test_records_of_volumes_are_believed_of_their_own_user_only(self):
        """In a folder that everybody writes, anybody could record the volume of another."""
        planted = pathlib.Path("/Volumes/.attachments.4711")
        planted.mkdir()
        (planted / "root's disk").write_text("volume 1 2 3\n", encoding="ascii")
        pathlib.Path("/Volumes/root's disk").mkdir()
        elsewhere = pathlib.Path("/tmp/elsewhere")
        elsewhere.mkdir(exist_ok=True)
        (elsewhere / "file").touch()
        pathlib.Path("/Volumes/.attachments.0").symlink_to(elsewhere)
        machine.dpkg("--remove", PACKAGE)
        self.assertTrue(os.path.isdir("/Volumes/root's disk"))
        self.assertTrue((elsewhere / "file").exists())

    def test_bundle_that_has_updated_itself_goes_whole(self):
        (BUNDLE / "Contents/Resources/New.html").write_text("new", encoding="ascii")
        pathlib.Path("/Applications/.lumora-12-8f3a-0/Contents").mkdir(parents=True)
        machine.dpkg("--remove", PACKAGE)
        self.assert_no_trace()

    def test_bundle_that_became_a_link_is_not_followed(self):
        elsewhere = pathlib.Path("/tmp/their bundle")
        shutil.move(BUNDLE, elsewhere)
        BUNDLE.symlink_to(elsewhere)
        (elsewhere / "Contents/Resources/New.html").write_text("new", encoding="ascii")
        machine.dpkg("--remove", PACKAGE)
        self.assertTrue((elsewhere / "Contents/Resources/New.html").exists())
        self.assert_no_trace()

    def test_other_applications_stay(self):
        pathlib.Path("/Applications/Another.app").mkdir()
        machine.dpkg("--purge", PACKAGE)
        self.assertEqual(os.listdir("/Applications"), ["Another.app"])

    def test_configuration_stays_until_purged_and_the_administrators_stays_for_ever(self):
        for file in (SYSTEM_PREFERENCES, MANAGED_PREFERENCES):
            file.parent.mkdir(parents=True)
            file.touch()
        machine.dpkg("--remove", PACKAGE)
        self.assertTrue(SYSTEM_PREFERENCES.exists())
        machine.dpkg("--purge", PACKAGE)
        self.assertFalse(SYSTEM_PREFERENCES.parent.exists())
        self.assertTrue(MANAGED_PREFERENCES.exists())


class Settings(PackageCase):
    """Packages of settings, which the package's own command makes."""

    def make(self, *words):
        folder = pathlib.Path("/tmp/settings")
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        done = subprocess.run(["/usr/share/ovra-tessel-lumora/make-settings-package", *words], cwd=folder, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        return done, sorted(folder.iterdir())

    def test_settings_arrive_and_go_with_their_package(self):
        self.install()
        wanted = {"DC": "eu", "pathForLumora": "join?a=b&c", "LumoraToken": "<\"t'o\\ken\"> $HOME %s é"}
        done, made = self.make("example-settings", "1.0", *[f"{key}={value}" for key, value in wanted.items()])
        self.assertEqual(done.returncode, 0, done.stdout)
        self.addCleanup(machine.dpkg, "--purge", "example-settings", check=False)

        machine.dpkg("--install", *made)

        self.assertEqual(plistlib.loads(MANAGED_PREFERENCES.read_bytes()), wanted)
        self.assertEqual([mode("/Library"), mode(MANAGED_PREFERENCES.parent), mode(MANAGED_PREFERENCES)],
                         [oct(0o755), oct(0o755), oct(0o644)])
        machine.dpkg("--purge", "example-settings")
        machine.dpkg("--purge", PACKAGE)
        self.assert_no_trace()

    def test_words_that_are_no_settings_are_refused(self):
        self.install()
        for words, status in (([], 64), (["name", "1"], 64), (["name", "1", "DC"], 64), (["name", "1", "=eu"], 64),
                              (["name", "1", "DC=e\nu"], 64), (["Not A Name", "1", "DC=eu"], 2)):
            with self.subTest(words):
                done, made = self.make(*words)
                self.assertEqual((done.returncode, made), (status, []), done.stdout)


class Uninstall(PackageCase):
    """The application's own Uninstall command on the packaged application."""

    SHELL = "/usr/libexec/ovra-tessel-lumora/administrator-shell"
    COPY = pathlib.Path("/tmp/ovra_uninstall_4242.sh")
    COMMAND = f"/bin/bash '{COPY}' --skip-kill 2>&1"
    BEGIN = "ovra-tessel-lumora: the administrator's script begins\n"

    def setUp(self):
        super().setUp()
        self.install()
        shutil.copyfile(BUNDLE / "Contents/Resources/uninstall_lumora.sh", self.COPY)

    def run_shell(self, *words):
        done = subprocess.run([self.SHELL, *words], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              check=False, env={"HOME": "/root", "PATH": "/usr/bin:/bin"})
        return done.returncode, done.stdout

    def test_script_removes_the_package_without_trace(self):
        status, text = self.run_shell(self.COMMAND)
        self.assertEqual(status, 0, text)
        self.assertTrue(text.startswith(self.BEGIN), text)
        self.assertIn(f"\nRemoved the Debian package {PACKAGE}\n", text)
        self.assert_no_trace()

    def test_nothing_but_the_removal_happens_behind_the_prompt(self):
        witness = pathlib.Path("/tmp/witness")
        for words in ([f"touch {witness}"], [f"{self.COMMAND}; touch {witness}"], [f"touch {witness}; {self.COMMAND}"],
                      [self.COMMAND, f"touch {witness}"], ["-c", f"touch {witness}"], [], [""],
                      ["/bin/bash '/tmp/ovra_uninstall_.sh' --skip-kill 2>&1"],
                      [self.COMMAND.replace("4242", "../../../root/x")], [self.COMMAND.replace("4242", "1'; id; '1")],
                      [self.COMMAND.replace("--skip-kill", f"--skip-kill; touch {witness};")],
                      [self.COMMAND.replace(" 2>&1", "")], [self.COMMAND + "\n"]):
            with self.subTest(words):
                status, text = self.run_shell(*words)
                self.assertEqual((status, text), (1, self.BEGIN + "This administrator's shell only removes Ovra Tessel "
                                                                  "Lumora.\n"))
                self.assertFalse(witness.exists())
                self.assertTrue(BUNDLE.exists())

    def test_copy_that_somebody_has_changed_is_not_run(self):
        witness = pathlib.Path("/tmp/witness")
        with open(self.COPY, "a", encoding="ascii") as file:
            file.write(f"touch {witness}\n")
        status, text = self.run_shell(self.COMMAND)
        self.assertEqual((status, text), (1, f"{self.BEGIN}{self.COPY} is not the installed uninstall script.\n"))
        self.assertFalse(witness.exists())
        self.assertTrue(BUNDLE.exists())

    def test_missing_script_is_named(self):
        (BUNDLE / "Contents/Resources/uninstall_lumora.sh").unlink()
        status, text = self.run_shell(self.COMMAND)
        self.assertEqual(status, 1)
        self.assertIn("uninstall_lumora.sh is missing.\n", text)
