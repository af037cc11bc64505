"""What the tests of the Uninstall command stand on: the menu, and the alerts as the screen reader sees them."""

import pathlib
import re
import shutil
import subprocess

from harness import application, desktop, places, waiting
from harness.case import EndToEndCase
from harness.linux.screen_reader import ENVIRONMENT, ScreenReader
from harness.system import linux_only

TITLE = "Uninstall Ovra Tessel Lumora"
NAME = "Ovra Tessel Lumora.app"
SCRIPT = "Contents/Resources/uninstall_lumora.sh"
SYSTEM_WIDE = pathlib.Path("/Applications") / NAME

CONFIRMATION = ("This will completely remove Ovra Tessel Lumora from this Mac, including all preferences and support files."
                "\n\nInstall location: {}\nInstall level: {}\n\nThis action cannot be undone.")


def press(*keys):
    subprocess.run(["xdotool", "key", *keys], check=True)


@linux_only("its alerts are read through the screen reader's bus, and the rights are polkit's")
class UninstallCase(EndToEndCase):
    """Starts without an installation in either place; the application then runs from a third one."""

    @classmethod
    def setUpClass(cls):
        cls.reader = ScreenReader()
        cls.addClassCleanup(cls.reader.stop)

    def setUp(self):
        super().setUp()
        shutil.rmtree(SYSTEM_WIDE, ignore_errors=True)
        self.addCleanup(application.install)  # the next module's tests start from there

    @property
    def per_user(self):
        return self.home.path / "Applications" / NAME

    @property
    def temporary_script(self):
        return pathlib.Path(f"/tmp/ovra_uninstall_{self.application.pid}.sh")

    def install(self, *bundles):
        for bundle in bundles:
            application.install(bundle)

    def start_from(self, bundle):
        self.bundle = bundle
        self.start(environment=ENVIRONMENT, wait_for_page=False)

    def be_at_home(self, user):
        """An administrator's script looks up the user's home folder: it is not told the environment's. The list of users is
        the world's own copy."""
        users = pathlib.Path("/etc/passwd")
        before = users.read_text(encoding="utf-8")
        self.addCleanup(users.write_text, before, encoding="utf-8")
        users.write_text(re.sub(rf"^({user}:(?:[^:]*:){{4}})[^:]*", rf"\g<1>{self.home.path}", before, flags=re.MULTILINE),
                         encoding="utf-8")

    def run_script_instead(self, bundle, text):
        (bundle / SCRIPT).write_text("#!/bin/bash\n" + text, encoding="utf-8")

    # --- what the screen reader sees of the alerts ---

    def alert(self):
        """Message, informative text and the buttons' titles from left to right of the alert that stands; or None."""
        application = self.reader.window(self.application)
        dialogs = [node for node in application.children if "modal" in node.states] if application else []
        if not dialogs:
            return None
        buttons = [label.name for button in dialogs[0].find("push button") for label in button.find("label")]
        texts = [label.name for label in dialogs[0].find("label")]
        shown = tuple(texts[:len(texts) - len(buttons)])
        # What is announced is what is shown.
        return (dialogs[0].name, dialogs[0].description, buttons) if shown == (
            dialogs[0].name, dialogs[0].description) else (shown, (dialogs[0].name, dialogs[0].description), buttons)

    def wait_for_alert(self, message, text, buttons=("OK",)):
        expected = (message, text, list(buttons))
        waiting.until(lambda: self.alert() == expected, lambda: f"the alert {expected}; there is {self.alert()} in\n"
                                                                f"{self.reader.window(self.application)}")

    def wait_for_no_alert(self):
        waiting.until(lambda: len(self.application.windows()) == 1, lambda: f"no alert; there is {self.alert()}")

    def wait_for_confirmation(self, location, level):
        self.wait_for_alert(TITLE, CONFIRMATION.format(location, level), ["Cancel", "Uninstall"])

    # --- what the customer does ---

    def choose_uninstall(self):
        """Through the menu, by its letters."""
        self.application.wait_for_window()
        press("alt+l")
        waiting.until(self.entry_has_focus, lambda: f"the open menu in:\n{self.reader.window(self.application)}")
        press("u")

    def entry_has_focus(self):
        window = self.reader.window(self.application)
        return window and any(node.name == TITLE and "focused" in node.states for node in window.find("menu item"))

    def keep_picture(self, name):
        desktop.photograph(places.ROOT / f"{name}.png")

    def assert_goes_on(self):
        self.wait_for_no_alert()
        self.assertTrue(self.application.running())

    def assert_ends(self):
        waiting.until(lambda: not self.application.running(), "the end of the application")
        self.assertEqual(self.application.returncode, 0)
