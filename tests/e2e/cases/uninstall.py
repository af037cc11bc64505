"""The Uninstall command: through the real menu and the real alerts, with the real script and the real polkit."""

import subprocess
import unittest

from harness import application, desktop, places, waiting
from harness.case import set_up_module, tear_down_module as tearDownModule  # noqa: F401
from harness.linux import ordinary_user, polkit
from harness.linux.uninstall_case import NAME, SCRIPT, SYSTEM_WIDE, UninstallCase, press
from harness.system import MACOS, linux_only

FOR_ALL, FOR_ONE = "system-wide (all users)", "current user only"
NOT_FOUND = "Ovra Tessel Lumora is not installed on this Mac.\n\nChecked locations:\n• /Applications/\n• ~/Applications/"
COMPLETE = "Ovra Tessel Lumora has been successfully removed from this Mac."
NO_SCRIPT = ("The uninstall script was not found inside the application bundle. The app may be corrupted."
             "\n\nPlease reinstall or manually delete the app.")
NOT_PREPARED = "Failed to prepare the uninstall script.\n\nDetails: "
UNKNOWN = "An unknown error occurred while starting uninstallation."
NOT_INSTALLED = "Ovra Tessel Lumora is not installed on this Mac."
SWAP_BANNER = "+[Utils updateLumoraIfNeeded]"


def setUpModule():
    set_up_module()
    if not MACOS:
        ordinary_user.add_account()


class Removal(UninstallCase):
    def test_of_a_users_own_installation(self):
        self.install(self.per_user)
        self.start_from(self.per_user)
        self.choose_uninstall()
        self.wait_for_confirmation(self.per_user, FOR_ONE)
        self.keep_picture("confirmation")
        press("Return")
        self.wait_for_alert("Uninstall Complete", COMPLETE)
        self.keep_picture("complete")
        self.assertTrue(self.application.running(), "it ends once the alert is dismissed")
        press("Return")
        self.assert_ends()
        self.assertFalse(self.per_user.exists())
        left = [path for path in self.home.path.rglob("*") if "umora" in path.name and path.is_file()]
        self.assertEqual(left, [])
        self.assertTrue(self.temporary_script.exists())
        self.temporary_script.unlink()

    def test_of_the_system_wide_one_when_there_are_both(self):
        if polkit.user_namespace():
            self.skipTest("the world's root is no root to polkit")
        rights = polkit.Polkit()
        self.addCleanup(rights.stop)
        self.be_at_home("root")
        self.install(SYSTEM_WIDE, self.per_user)
        self.start_from(SYSTEM_WIDE)
        self.choose_uninstall()
        self.wait_for_confirmation(SYSTEM_WIDE, FOR_ALL)
        press("Return")
        self.wait_for_alert("Uninstall Complete", COMPLETE)
        press("Return")
        self.assert_ends()
        self.assertFalse(SYSTEM_WIDE.exists())
        self.assertFalse(self.per_user.exists())

    def test_does_not_apply_a_staged_update(self):
        self.install(self.per_user)
        self.start_from(self.per_user)
        self.run_script_instead(self.per_user, "exit 0")
        mark = self.log.mark()
        self.choose_uninstall()
        self.wait_for_confirmation(self.per_user, FOR_ONE)
        press("Return")
        self.wait_for_alert("Uninstall Complete", COMPLETE)
        press("Return")
        self.assert_ends()
        self.assertEqual(self.lines_of(mark, SWAP_BANNER), [])


class Refusal(UninstallCase):
    def setUp(self):
        super().setUp()
        self.elsewhere = places.ROOT / "elsewhere" / NAME
        self.install(self.elsewhere)

    def test_without_an_installation(self):
        self.start_from(self.elsewhere)
        self.choose_uninstall()
        self.wait_for_alert("No Installation Found", NOT_FOUND)
        self.keep_picture("no-installation")
        press("Return")
        self.assert_goes_on()

    def test_cancelled_by_button_or_escape(self):
        self.install(self.per_user)
        self.start_from(self.per_user)
        for keys in (("shift+Tab", "space"), ("Escape",)):
            self.choose_uninstall()
            self.wait_for_confirmation(self.per_user, FOR_ONE)
            press(*keys)
            self.assert_goes_on()
        self.assertTrue((self.per_user / "Contents/Info.plist").exists())
        self.assertFalse(self.temporary_script.exists())

    def confirmed(self):
        self.choose_uninstall()
        self.wait_for_confirmation(self.per_user, FOR_ONE)
        press("Return")

    def test_without_its_script(self):
        self.install(self.per_user)
        (self.elsewhere / SCRIPT).unlink()
        self.start_from(self.elsewhere)
        self.confirmed()
        self.wait_for_alert("Uninstall Error", NO_SCRIPT)
        press("Return")
        self.assert_goes_on()
        self.assertTrue(self.per_user.exists())

    def test_over_a_copy_that_cannot_be_removed(self):
        self.install(self.per_user)
        self.start_from(self.per_user)
        self.temporary_script.write_text("planted", encoding="utf-8")
        subprocess.run(["mount", "--bind", self.temporary_script, self.temporary_script], check=True)
        self.addCleanup(lambda path: subprocess.run(["umount", path], check=True), self.temporary_script)
        self.confirmed()
        waiting.until(lambda: (self.alert() or ("",))[0] == "Uninstall Error", lambda: f"an error; there is {self.alert()}")
        self.assertTrue(self.alert()[1].startswith(NOT_PREPARED) and len(self.alert()[1]) > len(NOT_PREPARED), self.alert())
        press("Return")
        self.assert_goes_on()
        self.assertEqual(self.temporary_script.read_text(encoding="utf-8"), "planted")
        self.assertTrue(self.per_user.exists())

    def test_through_no_planted_link(self):
        self.install(self.per_user)
        self.start_from(self.per_user)
        self.run_script_instead(self.per_user, "exit 4")
        target = self.home.path / "target"
        for planted in (False, True):
            with self.subTest(dangling=not planted):
                if planted:
                    target.write_text("precious", encoding="utf-8")
                self.temporary_script.unlink(missing_ok=True)
                self.temporary_script.symlink_to(target)
                self.confirmed()
                waiting.until(self.alert_of_the_outcome, "the outcome")
                press("Return")
                self.assert_goes_on()
                self.assertEqual(target.exists(), planted, "the link was followed")
                if planted:
                    self.assertEqual(target.read_text(encoding="utf-8"), "precious")

    def alert_of_the_outcome(self):
        return (self.alert() or ("",))[0] in ("Uninstall Error", "Uninstall Failed")

    def test_failing_script_is_told_with_the_command_to_run_by_hand(self):
        self.install(self.per_user)
        self.start_from(self.per_user)
        manual = f"\n\nYou can run this manually for diagnostics:\n/bin/bash {self.temporary_script} --skip-kill"
        for script, details in (
                ("echo '===== Uninstalling ====='; echo; echo '  Could not remove a'; echo b >&2; exit 1",
                 "  Could not remove a\nb"),
                ("exit 3", UNKNOWN),
                ("echo '====='; echo; exit 2", ""),
                ("echo 'No installation found'; exit 1", NOT_INSTALLED),
                ('echo "$#:$1"; exit 1', "1:--skip-kill")):
            with self.subTest(script=script):
                self.run_script_instead(self.per_user, script)
                self.confirmed()
                self.wait_for_alert("Uninstall Failed", details + manual)
                self.keep_picture("failed")
                press("Return")
                self.assert_goes_on()

    def test_while_the_script_runs_the_window_stays_and_nothing_begins_again(self):
        self.install(self.per_user)
        self.start_from(self.per_user)
        runs, end = self.home.path / "runs", self.home.path / "end"
        self.run_script_instead(self.per_user, f'echo run >>"{runs}"; while [ ! -e "{end}" ]; do sleep 0.1; done; '
                                               "echo over; exit 1")
        self.confirmed()
        waiting.until(runs.exists, "the script's begin")
        self.wait_for_no_alert()
        self.choose_uninstall()
        window, = self.application.windows()
        desktop.request_close(window)
        end.touch()
        self.wait_for_alert("Uninstall Failed", "over\n\nYou can run this manually for diagnostics:\n"
                                                f"/bin/bash {self.temporary_script} --skip-kill")
        press("Return")
        self.assert_goes_on()
        self.assertEqual(runs.read_text(encoding="utf-8"), "run\n")

    def test_status_of_a_script_with_rights_is_not_taken_for_a_dismissed_prompt(self):
        if polkit.user_namespace():
            self.skipTest("the world's root is no root to polkit")
        rights = polkit.Polkit()
        self.addCleanup(rights.stop)
        self.install(SYSTEM_WIDE)
        self.start_from(SYSTEM_WIDE)
        self.run_script_instead(SYSTEM_WIDE, "echo no; exit 126")
        self.choose_uninstall()
        self.wait_for_confirmation(SYSTEM_WIDE, FOR_ALL)
        press("Return")
        self.wait_for_alert("Uninstall Failed", "no\n\nYou can run this manually for diagnostics:\n"
                                                f"/bin/bash {self.temporary_script} --skip-kill")
        press("Return")
        self.assert_goes_on()

    def test_real_script_over_a_bundle_that_cannot_be_removed(self):
        self.install(self.per_user)
        self.start_from(self.per_user)
        self.read_only(self.per_user)
        self.confirmed()
        waiting.until(self.alert_of_the_outcome, lambda: f"the outcome; there is {self.alert()}")
        message, text, _ = self.alert()
        self.assertEqual(message, "Uninstall Failed")
        self.assertIn(f"Could not remove {self.per_user}: ", text)
        self.assertNotIn("=====", text)
        press("Return")
        self.assert_goes_on()
        self.assertTrue((self.per_user / "Contents/Info.plist").exists())


@linux_only("the rights are polkit's")
class Rights(ordinary_user.OrdinaryUserCase):
    """A user's process, not root's: polkit asks for an administrator."""

    @classmethod
    def setUpClass(cls):
        if polkit.user_namespace():
            raise unittest.SkipTest("the world has no second user who could ask for an administrator's rights")
        rights = polkit.Polkit()
        cls.addClassCleanup(rights.stop)

    def setUp(self):
        super().setUp()
        application.install()

    def confirm(self, answer):
        """Through the menu and the first alert, to the administrator's prompt, which gets this answer."""
        self.start_as_user(wait_for_page=False)
        self.application.wait_for_window()
        agent = polkit.Agent(self.application.pid, answer)
        self.addCleanup(agent.stop)
        press("alt+l", "u")
        self.wait_for_alerts(1)
        press("Return")
        self.assertTrue(agent.wait_for_prompt())

    def wait_for_alerts(self, count):
        waiting.until(lambda: len(self.application.windows()) == 1 + count, lambda: f"{count} alerts")

    def test_dismissed_prompt_ends_it_silently(self):
        self.confirm("dismiss")
        self.wait_for_alerts(0)
        self.assertTrue(self.application.running())
        self.assertTrue((SYSTEM_WIDE / "Contents/Info.plist").exists())

    def test_granted_rights_remove_the_system_wide_installation(self):
        self.confirm("grant")
        waiting.until(lambda: not SYSTEM_WIDE.exists(), "the bundle's removal")
        self.wait_for_alerts(1)
        press("Return")
        waiting.until(lambda: not self.application.running(), "the end of the application")
        self.assertEqual(self.application.returncode, 0)
        self.assertFalse(self.home.log.exists())
