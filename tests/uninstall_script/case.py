"""What every test of the uninstall script stands on: a machine with nothing installed, and a home with neighbours."""

import os
import pathlib
import shutil
import subprocess
import unittest

import decoys

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "resources/uninstall_lumora.sh"
# A user of the world's own: nobody on the machine has this number.
USER, UID = "kim", 47110
HOMES = pathlib.Path("/tmp/homes")

ONLY_ROOT = unittest.skipIf(len(pathlib.Path("/proc/self/uid_map").read_text(encoding="ascii").split("\n")) < 3
                            and " 1\n" in pathlib.Path("/proc/self/uid_map").read_text(encoding="ascii"),
                            "this world has one user only")


class Outcome:
    def __init__(self, finished):
        self.status = finished.returncode
        self.text = finished.stdout.decode("utf-8", errors="replace")

    def lines(self):
        """What an alert shows of it: neither banners nor blank lines."""
        return [line for line in self.text.split("\n") if "=====" not in line and line.strip()]


class UninstallCase(unittest.TestCase):
    maxDiff = None
    home_name = "kim"

    @classmethod
    def setUpClass(cls):
        # The script as the application runs it: a copy of another name.
        cls.script = pathlib.Path("/tmp/ovra_uninstall_4242.sh")
        shutil.copyfile(SCRIPT, cls.script)
        accounts = pathlib.Path("/etc/passwd")
        if f"\n{USER}:" not in accounts.read_text(encoding="utf-8"):
            with open(accounts, "a", encoding="utf-8") as file:
                file.write(f"{USER}:x:{UID}:{UID}::{HOMES / USER}:/bin/bash\n")
            with open("/etc/group", "a", encoding="utf-8") as file:
                file.write(f"{USER}:x:{UID}:\n")

    def setUp(self):
        for folder in (decoys.APPLICATIONS, decoys.VOLUMES, pathlib.Path("/Library")):
            decoys.empty(folder)
        shutil.rmtree(HOMES, ignore_errors=True)
        self.home = HOMES / self.home_name
        decoys.make_neighbours(self.home)
        self.neighbours = decoys.tree(self.home)
        self.bundle = self.home / f"Applications/{decoys.NAME}.app"

    def uninstall(self, *options, home=None, uid=0, environment=None, folder="/"):
        """As the application does: bash, the copy, --skip-kill, both streams as one."""
        variables = {"HOME": str(self.home if home is None else home), "PATH": os.environ["PATH"]} | (environment or {})
        as_user = ["setpriv", f"--reuid={uid}", f"--regid={uid}", "--clear-groups"] if uid else []
        return Outcome(subprocess.run([*as_user, "/bin/bash", self.script, *(options or ["--skip-kill"])],
                                      env={name: value for name, value in variables.items() if value is not None},
                                      cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                      stderr=subprocess.STDOUT, timeout=120, check=False))

    def assert_removed(self, outcome):
        """Success, and nothing but the neighbours in the home."""
        self.assertEqual(outcome.status, 0, outcome.text)
        self.assertEqual(decoys.tree(self.home), self.neighbours, outcome.text)

    def assert_nothing_found(self, outcome):
        self.assertEqual(outcome.status, 1, outcome.text)
        self.assertIn("No installation found", outcome.lines())
