"""The Debian package as an administrator installs it, not the build folder's bundle: it joins, and it goes again."""

import os
import pathlib
import subprocess
import sys
import unittest.mock

from cases import join
from harness import application, case, places
from harness.log_file import Log

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "packaging"))
import machine  # noqa: E402  (the packages' tests' own)

PACKAGE = "ovra-tessel-lumora"


def setUpModule():
    machine.lay()
    os.rmdir("/Applications")
    os.rmdir("/Volumes")
    package, = (places.BUILT_BUNDLE.parent / "package").glob("*.deb")
    machine.dpkg("--install", package)
    # Everything else is made ready as for the other modules.
    with unittest.mock.patch.object(application, "install"):
        case.set_up_module()


tearDownModule = case.tear_down_module


class InstalledJoin(join.Join):
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


class Leaving(case.EndToEndCase):
    def test_z_purging_after_all_that_leaves_no_trace(self):
        machine.dpkg("--purge", PACKAGE)
        # The tests' own: the folder that each finds empty, and the authority that the machine trusts.
        own = {"/Library", f"{places.TRUST_STORE} has changed"}
        self.assertEqual(machine.traces() - own, set())
