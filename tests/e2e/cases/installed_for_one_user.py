"""The installer for one user, without an administrator: it joins, it keeps itself current, and it goes again."""

import os
import pathlib
import plistlib
import shutil
import subprocess

from harness import places, waiting
from harness.case import set_up_module, tear_down_module as tearDownModule  # noqa: F401
from harness.linux import ordinary_user
from harness.linux.ordinary_user import UID, OrdinaryUserCase

RELEASE = places.BUILT_BUNDLE.parent / "package"
MAKE_IMAGE = pathlib.Path(__file__).resolve().parents[3] / "packaging/linux/make-update-image"
NEWER = "9.0.0"


def setUpModule():
    set_up_module()
    # Nothing of it is installed for everybody.
    shutil.rmtree(places.BUNDLE)
    os.chmod("/Applications", 0o755)
    ordinary_user.add_account()


def version(bundle):
    return plistlib.loads((bundle / "Contents/Info.plist").read_bytes())["CFBundleShortVersionString"]


class InstalledForOneUser(OrdinaryUserCase):
    def setUp(self):
        super().setUp()
        self.bundle = self.home.path / "Applications" / places.BUNDLE.name
        self.run_installer()

    def run_installer(self, *words):
        installer, = RELEASE.glob("*.sh")
        # The build folder may be root's alone.
        copy = ordinary_user.FOLDER / "installer.sh"
        shutil.copyfile(installer, copy)
        done = subprocess.run(["bash", copy, *words], user=UID, group=UID, extra_groups=[], cwd="/", text=True,
                              env={"HOME": str(self.home.path), "PATH": os.environ["PATH"]},
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        self.assertEqual(done.returncode, 0, done.stdout)

    def offer_newer(self):
        """The next release's image, as the release makes it."""
        folder = ordinary_user.FOLDER / "next"
        bundle = folder / places.BUNDLE.name
        subprocess.run(["bash", next(RELEASE.glob("*.sh")), "--extract", folder], check=True)
        information = plistlib.loads((bundle / "Contents/Info.plist").read_bytes())
        (bundle / "Contents/Info.plist").write_bytes(
            plistlib.dumps(information | {"CFBundleShortVersionString": NEWER}))
        served = self.data_centre.images / "OvraTesselLumora.dmg"
        subprocess.run([MAKE_IMAGE, bundle, served], check=True)
        self.addCleanup(served.unlink)
        self.data_centre.answer(application={"representation": {"update": True, "download_url": None}})

    def test_joins(self):
        self.assert_joins()
        self.close()

    def test_update_takes_the_bundles_place_and_starts(self):
        self.offer_newer()
        self.start_as_user()
        self.log.wait_for_start("-[OvraLumoraUpdater unMountingOvraLumoraDmg] : "
                                "Dmg unmount task termination status : 0")
        self.assertNotEqual(version(self.bundle), NEWER)

        self.close()
        self.log.wait_for(f"+[Utils updateLumoraIfNeeded] Successfully set 777 permissions on {self.bundle}")
        self.assertEqual(version(self.bundle), NEWER)
        self.assertEqual({oct(path.stat().st_mode & 0o7777) for path in [self.bundle, *self.bundle.rglob("*")]},
                         {oct(0o777)})

        self.data_centre.answer(application=None)
        self.start_as_user()
        self.log.wait_for(f"+[Utils getOvraLumoraAppVersion] local Ovra Tessel Lumora App version : {NEWER}",
                          self.started)
        self.close()

    def test_goes_without_a_trace_after_use(self):
        self.start_as_user()
        self.wait_for_launch_checks()
        self.join()
        self.wait_for_install()

        self.run_installer("--uninstall")

        waiting.until(lambda: not self.application.running(), "the end of the application, which the script asks for")
        left = [str(path.relative_to(self.home.path)) for path in self.home.path.rglob("*")]
        self.assertEqual([name for name in left if not name.startswith((".cache", ".config", ".local"))
                          or "ovra" in name.lower()], [])
