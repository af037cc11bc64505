"""Tests that run the application as somebody who may write neither programs nor the machine's folders."""

import functools
import os
import pathlib
import shutil
import subprocess
import sys
import unittest.mock

from harness import agent, application, case, places, waiting

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "world/linux"))
import services  # noqa: E402  (the world's session bus)

# A user of the world's own, unknown to the machine.
NAME, UID = "kim", 47110
FOLDER = pathlib.Path("/tmp") / NAME


def add_account():
    with open("/etc/passwd", "a", encoding="ascii") as accounts:
        accounts.write(f"{NAME}:x:{UID}:{UID}::{FOLDER}/home:/bin/sh\n")


class OrdinaryUserCase(case.EndToEndCase):
    """A home, a session bus and a run-time folder of the user's own."""

    def setUp(self):
        super().setUp()
        shutil.rmtree(FOLDER, ignore_errors=True)
        for part in ("home", "run"):
            (FOLDER / part).mkdir(parents=True, mode=0o700)
            try:
                os.chown(FOLDER / part, UID, UID)
            except OSError:
                self.skipTest("this world has one user only")
        os.chown(FOLDER, UID, UID)
        os.chmod("/Library", 0o755)
        self.addCleanup(self._give_library_back)
        self.home = places.Home(FOLDER / "home", FOLDER / "home.agent-records", FOLDER / "home.console.log")
        self.as_user = functools.partial(subprocess.Popen, user=UID, group=UID, extra_groups=[])
        self._start_bus()

    @staticmethod
    def _give_library_back():
        """The tests' own folder, which the package manager removes with the last package that uses it."""
        library = pathlib.Path("/Library")
        library.mkdir(exist_ok=True)
        library.chmod(0o1777)

    def _start_bus(self):
        configuration = FOLDER / "bus.conf"
        configuration.write_text(services.BUS_CONFIGURATION.replace("/run/lumora", f"{FOLDER}/run"), encoding="utf-8")
        bus = self.as_user(["dbus-daemon", f"--config-file={configuration}", "--nofork"])
        self.addCleanup(bus.wait)
        self.addCleanup(bus.kill)
        waiting.until((FOLDER / "run/bus").exists, "the user's session bus")
        self.environment = {"XDG_RUNTIME_DIR": f"{FOLDER}/run",
                            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={FOLDER}/run/bus"}

    def start_as_user(self, arguments=None, **more):
        with unittest.mock.patch.object(application.subprocess, "Popen", self.as_user):
            return self.start(arguments, self.environment, **more)

    def assert_joins(self):
        """From the start to the agent that runs with what it needs to know; the application goes on."""
        self.start_as_user()
        self.wait_for_launch_checks()
        self.join()
        self.wait_for_install()
        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details())
