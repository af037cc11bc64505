"""Self-updates that go wrong: each with its lines, and the running bundle unharmed."""

import os
import shutil

from harness import bundles, holding, images, places, waiting
from harness.case import set_up_module as setUpModule, tear_down_module as tearDownModule  # noqa: F401
from harness.system import linux_only
from harness.update_case import (BANNER, BEGUN, COPIED, COPY, DETACHED, DOWNLOAD, DOWNLOADED, IMAGE_PATH, IMAGE_URL,
                                 NOTHING_STAGED, SWAP, VERSION, VOLUME, UpdateCase, located, swap_lines)

BUNDLE_NAME = "Ovra Tessel Lumora.app"


class FailureCase(UpdateCase):
    def setUp(self):
        super().setUp()
        self.before = bundles.picture(self.bundle)

    def assert_untouched(self):
        self.assertEqual(bundles.picture(self.bundle), self.before, "the running bundle was touched")

    def assert_nothing_comes_of_it(self):
        """Nothing is staged or left, the close swaps nothing, and the next start updates as if nothing had been."""
        self.assertFalse(self.home.staged_bundle.exists())
        self.close_and_see(NOTHING_STAGED, BANNER)
        self.assert_untouched()
        self.assert_nothing_left_over()
        self.data_centre.control("DELETE", "/behaviour")
        self.data_centre.provide_application_image(VERSION)
        self.stage()
        self.close_and_see(*swap_lines())
        self.assert_swapped()
        self.assert_nothing_left_over()


class Downloads(FailureCase):
    def assert_failed(self, reason, code):
        self.start_update()
        self.log.wait_for_start(DOWNLOAD + "Download failed! Whole Error - ", self.started)
        self.assert_chain(f"{DOWNLOAD}Download failed! Error - {reason} {IMAGE_URL} ",
                          f'{DOWNLOAD}Download failed! Whole Error - Error Domain=NSURLErrorDomain Code={code} '
                          f'"{reason}"')
        self.assertEqual(len(self.data_centre.requests(IMAGE_PATH)), 1, "no retry")
        self.assert_nothing_comes_of_it()

    def test_cut_off_midway(self):
        self.data_centre.behave(IMAGE_PATH, truncate_at=4_000_000)
        self.assert_failed("The network connection was lost.", -1005)

    def test_reset_midway(self):
        self.data_centre.behave(IMAGE_PATH, truncate_at=4_000_000, reset=True)
        self.assert_failed("The network connection was lost.", -1005)

    @linux_only("the system chooses the temporary folder itself")
    def test_temporary_folder_that_takes_nothing(self):
        self.start({"DC": "com"}, environment={"TMPDIR": "/proc"}, wait_for_page=False)
        error = self.log.wait_for_start(DOWNLOAD + "Download failed! Whole Error - ", self.started)
        self.assertIn("Error Domain=NSURLErrorDomain Code=-3003", error)
        self.assertEqual(len(self.begin_of_chain(IMAGE_URL)), 2)
        self.assert_nothing_comes_of_it()

    def test_support_folder_that_takes_nothing(self):
        undo = self.read_only(self.home.support_folder)
        self.start_update()
        error = self.log.wait_for_start(DOWNLOAD + "Error copying file to destination - ", self.started)
        self.assertIn(holding.READ_ONLY, error)
        self.assertEqual(len(self.begin_of_chain(IMAGE_URL)), 1)
        undo()
        self.assert_nothing_comes_of_it()


class Images(FailureCase):
    def assert_not_mounted(self):
        self.start_update()
        self.wait_for_chain()
        downloaded, detached = self.begin_of_chain(IMAGE_URL)
        self.assertEqual(downloaded, DOWNLOADED)
        self.assertTrue(detached.startswith(DETACHED) and detached != DETACHED + "0", detached)
        self.assert_nothing_comes_of_it()

    def test_page_instead_of_an_image(self):
        self.data_centre.behave(IMAGE_PATH, status=404, body="<h1>Not here</h1>", content_type="text/html")
        self.assert_not_mounted()

    def test_empty_image(self):
        self.serve_image(b"")
        self.assert_not_mounted()

    def test_image_that_is_noise(self):
        self.serve_image(bytes(range(256)) * 8192)
        self.assert_not_mounted()

    def test_image_that_ends_too_early(self):
        whole = self.data_centre.application_image.read_bytes()
        self.serve_image(whole[:len(whole) // 2])
        self.assert_not_mounted()

    @linux_only("the folder of the volumes is the system's alone")
    def test_volume_that_another_user_has_put_there(self):
        """Everybody writes the folder of the volumes: what stands there under the image's name may be anyone's."""
        planted = VOLUME / BUNDLE_NAME / "Contents/Info.plist"
        planted.parent.mkdir(parents=True)
        self.addCleanup(shutil.rmtree, VOLUME, ignore_errors=True)
        planted.write_text("planted")
        try:
            os.chown(VOLUME, 4711, 4711)
        except OSError:
            self.skipTest("there is no other user in this world")
        self.start_update()
        self.wait_for_chain()
        downloaded, detached = self.begin_of_chain(IMAGE_URL)
        self.assertEqual(downloaded, DOWNLOADED)
        self.assertTrue(detached.startswith(DETACHED) and detached != DETACHED + "0", detached)
        self.assertTrue(planted.exists())
        shutil.rmtree(VOLUME)
        self.assert_nothing_comes_of_it()

    def assert_not_copied(self):
        """Mounts, has nothing where the bundle is looked for, and is detached again."""
        self.start_update()
        self.wait_for_chain()
        self.assert_chain(DOWNLOADED, DETACHED + "0")
        self.assert_nothing_comes_of_it()

    def test_volume_of_another_name(self):
        self.serve_image(images.volume({f"{BUNDLE_NAME}/Contents/Info.plist": b"x"}, name="Lumora Plug-in"))
        self.assert_not_copied()

    def test_image_without_the_bundle(self):
        self.serve_image(images.volume({"Read me.txt": b"x"}, name="Lumora Plugin"))
        self.assert_not_copied()


class Staging(FailureCase):
    def test_a_staged_bundle_that_cannot_be_removed(self):
        self.stage()
        self.application.kill()
        staged = bundles.contents(self.home.staged_bundle)
        for name, hold in holding.WAYS.items():
            with self.subTest(name):
                undo = hold(self, self.home.staged_bundle)
                self.start_update()
                self.wait_for_chain()
                self.assert_chain(DOWNLOADED, COPY + f"No Existing Updated Ovra Lumora Present in folder {self.folder}",
                                  DETACHED + "0")
                self.close_and_see(NOTHING_STAGED, BANNER)
                undo()
                self.assertEqual(bundles.contents(self.home.staged_bundle), staged, "half of it was removed")
                self.assert_untouched()
        self.stage()
        self.close_and_see(*swap_lines())
        self.assert_swapped()
        self.assert_nothing_left_over()

    def test_window_closed_while_the_image_comes(self):
        size = self.data_centre.application_image.stat().st_size
        self.data_centre.behave(IMAGE_PATH, chunk_size=size // 100, chunk_delay_ms=500)
        self.start_update()
        waiting.until(lambda: len(self.data_centre.requests(IMAGE_PATH)) == 1, "the image's request")
        self.application.wait_for_window()
        self.close_and_see(NOTHING_STAGED, BANNER)
        self.assert_chain()
        self.assertFalse(self.home.staged_bundle.exists())
        self.assert_untouched()
        self.data_centre.control("DELETE", "/behaviour")
        self.stage()
        self.close_and_see(*swap_lines())
        self.assert_nothing_left_over()

    def test_window_closed_while_a_second_chain_works(self):
        """The first chain's bundle is put in place whole, whatever the second one does meanwhile."""
        self.data_centre.page('<!doctype html><title>join</title><script src="/assets/drive.js"></script>')
        self.start_update({"DC": "com", "pathForLumora": "join"})
        self.log.wait_for(COPIED, self.started, seconds=60)
        waiting.until(lambda: self.lines_of(self.started, DOWNLOADED).count(DOWNLOADED) == 2, "the second image", 60)
        self.close_and_see(*swap_lines())
        # The second chain may have begun to replace the staged bundle when the exit cut it off.
        self.assertEqual(bundles.version(self.bundle), VERSION)
        self.assertEqual(set(bundles.contents(self.bundle)), set(bundles.contents(places.BUILT_BUNDLE)))
        self.assertEqual(set(bundles.modes(self.bundle).values()), {0o777})


class Swap(FailureCase):
    def test_target_that_cannot_be_removed(self):
        """Neither is half of it: a folder that is mounted upon could be emptied, but not removed."""
        for name, hold in {**holding.WAYS, "read-only": holding.read_only}.items():
            with self.subTest(name):
                self.stage()
                undo = hold(self, self.bundle)
                mark = self.log.mark()
                self.close()
                lines = self.lines_of(mark, SWAP)
                undo()
                self.assertEqual(lines[:2] + lines[3:], [BEGUN, located(), BANNER])
                start = (f"{SWAP}Failed to Remove Existing old Lumora app (1.0.0) in folder {self.bundle} Error:  "
                         f"{holding.NOT_REMOVED}")
                self.assertTrue(lines[2].startswith(start), lines[2])
                self.assertEqual(bundles.contents(self.bundle), self.contents_before())
                self.assertEqual(bundles.version(self.home.staged_bundle), VERSION)

    def contents_before(self):
        return {name: entry[:-3] for name, entry in self.before.items()}

    def test_staged_bundle_that_is_gone_meanwhile(self):
        self.stage()
        shutil.rmtree(self.home.staged_bundle)
        self.close_and_see(BEGUN, located(), f"{SWAP}There is No Updated Lumora App Present in {self.folder}", BANNER)
        self.assert_untouched()

    def test_copy_that_fails_leaves_nothing_at_the_place(self):
        others = set(self.bundle.parent.iterdir()) - {self.bundle}
        self.stage()
        # A pipe cannot be copied: found only when the old bundle is gone.
        os.mkfifo(self.home.staged_bundle / "Contents/pipe")
        self.close_and_see(BEGUN, located(), f"{SWAP}Failed to copy Updated Lumora app to folder {self.bundle}", BANNER)
        self.assertFalse(self.bundle.exists())
        self.assertEqual(set(self.bundle.parent.iterdir()), others)
