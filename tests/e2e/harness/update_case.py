"""What the self-update's tests share: a newer image on offer, the lines of a chain and of a swap, what is left."""

import json
import pathlib
import tempfile

from harness import application, bundles, machine, places, waiting
from harness.case import EndToEndCase

VERSION = "9.9.9"
CHECK_PATH = "/api/v1/customer_plugin/check_update"
IMAGE_PATH = "/cdn/OvraTesselLumora.dmg"
IMAGE_URL = "https://cdn.ovratessel.example" + IMAGE_PATH
VOLUME = pathlib.Path("/Volumes/Lumora Plugin")

CHECK = "-[ApiHandler checkLumoraUpdateWithCompletion:]_block_invoke "
FOUND = CHECK + "Ovra Lumora Updated Version Available ...."
MADE = "+[OvraLumoraUpdater getInstance] : Update Info Object Allocated"
URL = "-[OvraLumoraUpdater downloadLumoradmg] : Ovra Lumora Dmg Url : "
DOWNLOAD = "-[OvraLumoraUpdater downloadLumoradmg]_block_invoke : "
DOWNLOADED = DOWNLOAD + "Download finished successfully"
COPY = "-[OvraLumoraUpdater copyAppFile] : "
COPIED = COPY + "Ovra Tessel Lumora.app file copied to  OvraLumoraNative folder"
DETACHED = "-[OvraLumoraUpdater unMountingOvraLumoraDmg] : Dmg unmount task termination status : "
LAUNCH_TOLD = "applicationDidFinishLaunching(_:) Update Available for Lumora"
RESTORE_TOLD = "didRestoreConnection() : Updateing webview since the network is restored."
VERSION_LINE = "+[Utils getOvraLumoraAppVersion] local Ovra Tessel Lumora App version : "

SWAP = "+[Utils updateLumoraIfNeeded] "
NOTHING_STAGED = SWAP + "There is No Updated App downloaded from server."
BEGUN = SWAP + "Updated Lumora Downloaded from server and Initiate to Copy "
BANNER = SWAP + ": ************************** Ovra Lumora App terminated ******* "

CHAIN_LINES = (CHECK, "+[OvraLumoraUpdater", "-[OvraLumoraUpdater")

# Configured but for the page: the window says so, nothing watches the server, the launch's check is the only one.
WITHOUT_PAGE = {"DC": "com"}


def located(bundle=places.BUNDLE):
    return f"{SWAP}App will be updated at its current location: {bundle}"


def swap_lines(bundle=places.BUNDLE):
    return [BEGUN, located(bundle), f"{SWAP}Updated Lumora app Copied to {bundle}",
            f"{SWAP}Successfully set 777 permissions on {bundle}", BANNER]


class UpdateCase(EndToEndCase):
    bundle = places.BUNDLE

    def setUp(self):
        super().setUp()
        application.install(self.bundle)
        self.folder = f"{self.home.support_folder}/"
        self.data_centre.provide_application_image(VERSION)
        self.offer()

    def offer(self, **members):
        """The check's answer: an update, unless the members say otherwise."""
        members = {"update": True, "download_url": IMAGE_URL} | members
        self.answer = {"representation": {key: value for key, value in members.items() if value is not ...}}
        self.data_centre.answer(application=self.answer)

    def serve_image(self, content):
        self.data_centre.replace_application_image(content)

    def start_update(self, arguments=None):
        """Starts the application; its own check is the only one."""
        return self.start(arguments or WITHOUT_PAGE, wait_for_page=False)

    def wait_for_chain(self, count=1):
        """The end of so many chains of this run: each detaches, then removes the image."""
        waiting.until(lambda: len(self.lines_of(self.started, DETACHED)) >= count,
                      lambda: "the end of the chain; the log's end:\n" + self.log.tail(), 60)
        waiting.until(lambda: not self.home.update_image.exists(), "the removal of the image")

    def stage(self):
        self.start_update()
        self.wait_for_chain()
        self.assertIn(COPIED, self.lines_of(self.started, COPY))

    def chain_lines(self):
        return self.lines_of(self.started, *CHAIN_LINES)

    def begin_of_chain(self, url):
        """The lines before the download, the answer's own form left out."""
        lines = self.chain_lines()
        self.assertTrue(lines[0].startswith(CHECK + "response :  {"), lines)
        self.assertEqual(json.loads(lines[0].removeprefix(CHECK + "response :  ")), self.answer)
        self.assertEqual(lines[1:4], [FOUND, MADE, URL + url])
        return lines[4:]

    def assert_chain(self, *rest, url=IMAGE_URL):
        self.assertEqual(self.begin_of_chain(url), list(rest))

    def close_and_see(self, *swap):
        """Closes the window as a user does: exactly these lines come of it."""
        mark = self.log.mark()
        self.close()
        self.assertEqual(self.lines_of(mark, SWAP), list(swap))
        lines = self.log.lines_since(mark)
        self.assertEqual(lines[lines.index(BANNER) + 1], "", "the banner ends with a line feed of its own")

    def assert_swapped(self, bundle=None):
        bundle = bundle or self.bundle
        self.assertEqual(bundles.version(bundle), VERSION)
        self.assertEqual(bundles.contents(bundle), bundles.contents(self.home.staged_bundle))
        self.assertEqual(set(bundles.modes(bundle).values()), {0o777})

    def assert_nothing_left_over(self):
        """No image, no volume, nothing half made, in any of the places that an update passes through."""
        self.assertFalse(self.home.update_image.exists())
        self.assertEqual(machine.volumes(), [])
        self.assertEqual(sorted(path.name for path in self.home.support_folder.iterdir()
                                if path != self.home.staged_bundle), [])
        self.assertEqual([path.name for path in self.bundle.parent.iterdir() if path.name.startswith(".lumora-")], [])
        self.assertEqual(list(pathlib.Path(tempfile.gettempdir()).glob("lumora-download-*")), [])
