"""The Debian package as an administrator installs it, not the build folder's bundle: it joins, and it goes again."""

import os
import pathlib
import shutil
import subprocess
import sys
import unittest
import unittest.mock

from cases import join
from harness import application, case, places, waiting
from harness.linux import ordinary_user, polkit
from harness.linux.machine import TRUST_STORE
from harness.linux.ordinary_user import UID
from harness.linux.uninstall_case import press
from harness.log_file import Log

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "packaging"))
import machine  # noqa: E402  (the packages' tests' own)

RELEASE = places.BUILT_BUNDLE.parent / "package"
PACKAGE = "ovra-tessel-lumora"
PACKAGE_MANAGER_SECONDS = 300


def setUpModule():
    machine.lay()
    os.rmdir("/Applications")
    os.rmdir("/Volumes")
    ordinary_user.add_account()
    package, = RELEASE.glob("*.deb")
    machine.dpkg("--install", package)
    # Everything else is made ready as for the other modules.
    with unittest.mock.patch.object(application, "install"):
        case.set_up_module()


tearDownModule = case.tear_down_module


def left_of_ours(home):
    """The desktop's libraries keep caches of their own there."""
    names = [str(path.relative_to(home)) for path in home.rglob("*")]
    return [name for name in names if not name.startswith((".cache", ".config", ".local")) or "ovra" in name.lower()]


def wait_until_nothing_is_left(home):
    waiting.until(lambda: not left_of_ours(home), lambda: f"a home without {left_of_ours(home)}")


class InstalledJoin(join.Join):
    # These do not depend on where the bundle comes from.
    test_from_the_request_page_takes_the_stored_name = None
    test_from_the_request_page_without_a_name_has_none = None
    test_second_join_overtakes_a_slow_download = None
    test_two_joins_at_once_start_an_agent_and_harm_nothing = None

    def tearDown(self):
        super().tearDown()
        self.assertEqual(machine.dpkg("--verify", PACKAGE).stdout, "", "a join has changed the installed files")


class InstalledCommand(case.EndToEndCase):
    def test_it_starts_the_installed_bundle(self):
        log = Log(self.home)
        with open(self.home.console, "ab") as output:
            process = subprocess.Popen([PACKAGE, "-DC", "com", "-pathForLumora", "join"], stdout=output, stderr=output,
                                       stdin=subprocess.DEVNULL, env=os.environ | {"HOME": str(self.home.path)})
        try:
            log.wait_for(f"+[Utils findCurrentAppPath] Ovra Lumora App path : {places.BUNDLE}")
            self.page.wait_until_loaded()
        finally:
            process.kill()
            process.wait()


class OrdinaryUser(ordinary_user.OrdinaryUserCase):
    def test_joins(self):
        self.assert_joins()
        self.assert_nothing_left_behind()
        self.assertEqual(self.home.join_details.stat().st_uid, UID)
        self.assertEqual(os.listdir("/Library"), [])
        self.close()
        self.assertEqual(machine.dpkg("--verify", PACKAGE).stdout, "")

    def test_takes_its_settings_from_a_package_of_settings(self):
        folder = pathlib.Path("/tmp/settings")
        folder.mkdir()
        subprocess.run([f"/usr/share/{PACKAGE}/make-settings-package", "example-settings", "1.0", "DC=eu",
                        "pathForLumora=join", "LumoraToken=their-own"], cwd=folder, check=True)
        machine.dpkg("--install", folder / "example-settings_1.0_all.deb")
        self.addCleanup(machine.dpkg, "--purge", "example-settings")
        self.start_as_user({})
        self.log.wait_for("+[Utils parseCommandLineArgs] : Arguments Read From Preferences => WebServerName : "
                          "eu.ovratessel.example , LumoraToken : their-own , DC = eu")

    def test_uninstalling_while_it_runs_leaves_nothing_of_it_in_the_home(self):
        self.start_as_user()
        self.wait_for_launch_checks()
        self.join()
        self.wait_for_install()
        self.addCleanup(machine.dpkg, "--install", *RELEASE.glob("*.deb"))
        copy = pathlib.Path("/tmp/ovra_uninstall_4711.sh")
        shutil.copyfile(places.BUNDLE / "Contents/Resources/uninstall_lumora.sh", copy)

        # As polkit's program starts it once the administrator has agreed.
        shell = "/usr/libexec/ovra-tessel-lumora/administrator-shell"
        done = subprocess.run([shell, f"/bin/bash '{copy}' --skip-kill 2>&1"],
                              env={"PATH": "/usr/bin:/bin", "HOME": "/root", "PKEXEC_UID": str(UID)},
                              stdout=subprocess.PIPE, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertTrue(self.application.running())
        self.close()

        # The web view's processes write a last time when they end, which may be after the application.
        wait_until_nothing_is_left(self.home.path)
        self.assertFalse(places.BUNDLE.exists())

    def offer_update(self):
        """The release's own image."""
        served = self.data_centre.images / "OvraTesselLumora.dmg"
        shutil.copyfile(RELEASE / served.name, served)
        self.addCleanup(served.unlink)
        self.data_centre.answer(application={"representation": {"update": True, "download_url": None}})

    def wait_for_staged_update(self):
        self.log.wait_for_start("-[OvraLumoraUpdater unMountingOvraLumoraDmg] : "
                                "Dmg unmount task termination status : 0")

    def test_offered_update_cannot_replace_the_administrators_bundle_and_leaves_it_whole(self):
        self.offer_update()
        self.start_as_user()
        self.wait_for_staged_update()
        staged = self.home.support_folder / places.BUNDLE.name
        self.assertEqual(machine.picture(staged), machine.picture(places.BUNDLE), "the release's image is another one")

        self.close()

        self.log.wait_for_start("+[Utils updateLumoraIfNeeded] Failed to Remove Existing old Lumora app (1.0.0) "
                                f"in folder {places.BUNDLE} Error:  ")
        self.assertEqual(machine.dpkg("--verify", PACKAGE).stdout, "")

    def test_offered_update_replaces_a_bundle_that_was_handed_to_the_users_group(self):
        subprocess.run(["chgrp", "-R", str(UID), "/Applications"], check=True)
        subprocess.run(["chmod", "-R", "g+w", "/Applications"], check=True)
        self.addCleanup(self.install_afresh)
        self.offer_update()
        self.start_as_user()
        self.wait_for_staged_update()

        self.close()

        self.log.wait_for(f"+[Utils updateLumoraIfNeeded] Successfully set 777 permissions on {places.BUNDLE}")
        self.assertEqual(places.BUNDLE.stat().st_uid, UID)

    @staticmethod
    def install_afresh():
        machine.dpkg("--purge", PACKAGE)
        machine.dpkg("--install", *RELEASE.glob("*.deb"))


@unittest.skipIf(polkit.user_namespace(), "the world has no second user who could ask for an administrator's rights")
class UninstallCommand(ordinary_user.OrdinaryUserCase):
    """Through the menu, the package's own prompt and the real polkit."""

    PROMPT = "Authentication is required to remove Ovra Tessel Lumora for all users of this computer"

    @classmethod
    def setUpClass(cls):
        rights = polkit.Polkit()
        cls.addClassCleanup(rights.stop)

    def setUp(self):
        super().setUp()
        self.addCleanup(machine.dpkg, "--install", *RELEASE.glob("*.deb"))
        self.start_as_user()
        self.wait_for_launch_checks()

    def choose_uninstall(self, answer):
        self.application.wait_for_window()
        administrator = polkit.Agent(self.application.pid, answer)
        self.addCleanup(administrator.stop)
        press("alt+l", "u")
        self.wait_for_alerts(1)
        press("Return")
        self.assertEqual(administrator.wait_for_prompt(), self.PROMPT)

    def wait_for_alerts(self, count, seconds=waiting.SECONDS):
        waiting.until(lambda: len(self.application.windows()) == 1 + count, f"{count} alerts", seconds)

    def test_granted_removes_the_package_and_what_the_user_has_of_it(self):
        self.choose_uninstall("grant")
        # The package manager also brings the manual's index and the icon cache up to date.
        waiting.until(lambda: not places.BUNDLE.exists(), "the bundle's removal", PACKAGE_MANAGER_SECONDS)
        self.wait_for_alerts(1, PACKAGE_MANAGER_SECONDS)
        press("Return")
        waiting.until(lambda: not self.application.running(), "the end of the application")
        self.assertEqual(self.application.returncode, 0)
        self.assertNotEqual(machine.dpkg("--status", PACKAGE, check=False).returncode, 0)
        wait_until_nothing_is_left(self.home.path)

    def test_dismissed_changes_nothing(self):
        self.choose_uninstall("dismiss")
        self.wait_for_alerts(0)
        self.assertTrue(self.application.running())
        self.assertEqual(machine.dpkg("--verify", PACKAGE).stdout, "")


class WhenPurged(case.EndToEndCase):
    """The last class by name: what follows finds nothing installed."""

    def test_no_trace_is_left_after_all_that(self):
        machine.dpkg("--purge", PACKAGE)
        # The tests' own: the folder that each finds empty, the authority that the machine trusts, the user.
        own = {"/Library", f"{TRUST_STORE} has changed", "/etc/passwd has changed"}
        self.assertEqual(machine.traces() - own, set())
