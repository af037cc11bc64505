"""The running application, and the volumes that its downloads have left mounted."""

import os
import pathlib
import shutil
import signal
import subprocess
import time

import decoys
from case import ONLY_ROOT, UID, UninstallCase

PROGRAM = f"Contents/MacOS/{decoys.NAME}"


def place_program(bundle):
    """A program with nothing but an end, in the place of the application."""
    decoys.make_bundle(bundle)
    shutil.copy2("/bin/sleep", bundle / PROGRAM)


def waiting_for(test, condition):
    deadline = time.monotonic() + 30
    while not condition():
        test.assertLess(time.monotonic(), deadline, "not within 30 s")
        time.sleep(0.02)


class Running(UninstallCase):
    def start(self, program, uid=0, command=None):
        process = subprocess.Popen(command or [program, "300"], user=uid, group=uid)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def end_of(self, process):
        try:
            return process.wait(timeout=30)
        except subprocess.TimeoutExpired:
            return None

    def test_skip_kill_leaves_it_running(self):
        place_program(self.bundle)
        process = self.start(self.bundle / PROGRAM)
        self.assert_removed(self.uninstall("--skip-kill"))
        self.assertIsNone(process.poll())

    def test_what_its_web_view_writes_when_it_ends_later_goes_too(self):
        """The web view's process is a child of the application and may end after it."""
        place_program(self.bundle)
        shutil.copy2("/bin/bash", self.bundle / PROGRAM)
        data = self.home / f".local/share/{decoys.DOMAIN}"
        ready, written, child = (pathlib.Path("/tmp") / name for name in ("ready", "written", "web view"))
        child.write_text(f"""trap 'sleep 1; mkdir -p "{data}"; : >"{data}/last"; : >{written}; exit' TERM
            : >{ready}; while :; do read -r -t 1 <>/tmp/silence; done""", encoding="utf-8")
        os.mkfifo("/tmp/silence")
        process = self.start(None, command=[self.bundle / PROGRAM, "-c", f"""/bin/bash '{child}' & child=$!
            trap 'kill $child; exit' TERM; wait"""])
        waiting_for(self, ready.exists)
        decoys.write(data / "storage/salt")

        outcome = self.uninstall("--skip-kill")
        self.assert_removed(outcome)
        process.terminate()
        waiting_for(self, written.exists)
        waiting_for(self, lambda: not data.exists())
        self.assertEqual(decoys.tree(self.home), self.neighbours)

    def test_without_it_the_running_application_is_asked_to_end(self):
        place_program(self.bundle)
        process = self.start(self.bundle / PROGRAM)
        outcome = self.uninstall("--user-only")
        self.assert_removed(outcome)
        self.assertEqual(self.end_of(process), -signal.SIGTERM)
        self.assertIn(f"Asked process {process.pid} to end", outcome.lines())

    def test_one_that_does_not_listen_is_ended(self):
        place_program(self.bundle)
        shutil.copy2("/bin/bash", self.bundle / PROGRAM)
        deaf = pathlib.Path("/tmp/deaf")
        deaf.unlink(missing_ok=True)
        os.mkfifo("/tmp/never")
        process = self.start(None, command=[self.bundle / PROGRAM, "-c",
                                            "trap '' TERM; : >/tmp/deaf; while :; do read -r <>/tmp/never; done"])
        waiting_for(self, deaf.exists)
        outcome = self.uninstall("--user-only")
        self.assert_removed(outcome)
        self.assertEqual(self.end_of(process), -signal.SIGKILL)
        self.assertIn(f"Ended process {process.pid}", outcome.lines())

    def test_programs_of_other_bundles_and_same_names_stay(self):
        place_program(self.bundle)
        another = self.home / "Applications/Another.app"
        place_program(another)
        process = self.start(another / PROGRAM)
        namesake = subprocess.Popen([str(self.bundle / PROGRAM), "300"], executable="/bin/sleep")
        self.addCleanup(namesake.wait)
        self.addCleanup(namesake.kill)
        self.assertEqual(self.uninstall("--user-only").status, 0)
        self.assertIsNone(process.poll())
        self.assertIsNone(namesake.poll())

    @ONLY_ROOT
    def test_other_users_keep_theirs(self):
        place_program(decoys.BUNDLE)
        process = self.start(decoys.BUNDLE / PROGRAM, uid=UID)
        outcome = self.uninstall("--user-only")
        self.assertIsNone(process.poll(), outcome.text)


class Volumes(UninstallCase):
    """A stand-in for the bundle's image tool that speaks its words: the real one is tried with the real package."""

    TOOL = """#!/bin/sh
case $1 in
    info) printf 'image\\tISO9660\\t/Volumes/Lumora Plugin\\nimage\\tISO9660\\t/Volumes/Ovra\\n' ;;
    detach) rm -r "$2" && id -u >>/tmp/detached ;;
esac
"""

    def make_tool(self, bundle):
        decoys.make_bundle(bundle)
        decoys.write(bundle / "Contents/MacOS/hdiutil", self.TOOL)
        (bundle / "Contents/MacOS/hdiutil").chmod(0o755)

    def test_mounted_volumes_are_detached_and_others_stay(self):
        self.make_tool(self.bundle)
        for name in ("Lumora Plugin", "Ovra", "Another"):
            decoys.write(decoys.VOLUMES / name / "file")
        outcome = self.uninstall()
        self.assert_removed(outcome)
        self.assertEqual([path.name for path in decoys.VOLUMES.iterdir()], ["Another"])
        self.assertIn("Detached /Volumes/Lumora Plugin", outcome.lines())

    @ONLY_ROOT
    def test_bundles_programs_never_get_an_administrators_rights(self):
        self.make_tool(decoys.BUNDLE)
        decoys.own(self.home, UID)
        decoys.write(decoys.VOLUMES / "Ovra/file")
        decoys.own(decoys.VOLUMES / "Ovra", UID)
        detached = pathlib.Path("/tmp/detached")
        detached.write_text("", encoding="ascii")
        detached.chmod(0o666)
        self.assert_removed(self.uninstall(home="/root", environment={"SUDO_UID": str(UID)}))
        self.assertEqual(detached.read_text(encoding="ascii"), f"{UID}\n")
