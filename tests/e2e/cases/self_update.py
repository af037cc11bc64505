"""A newer image of the application: staged while it runs, put in place when its last window closes."""

import fcntl
import os
import pathlib
import shutil
import subprocess

from harness import bundles, desktop, machine, places, system, waiting
from harness.case import (TOKEN, WEB_SERVER,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.update_case import (BANNER, BEGUN, CHECK_PATH, COPIED, COPY, DETACHED, DOWNLOAD, DOWNLOADED, IMAGE_PATH,
                                 IMAGE_URL, LAUNCH_TOLD, NOTHING_STAGED, RESTORE_TOLD, SWAP, VERSION, VERSION_LINE,
                                 UpdateCase, located, swap_lines)

DEFAULT_PATH = "/agent/OvraTesselLumora.dmg"
SILENT_PAGE = '<!doctype html><title>join</title><script src="/assets/drive.js"></script>'


class SelfUpdate(UpdateCase):
    def test_staged_while_running_and_swapped_when_the_window_closes(self):
        before = bundles.picture(self.bundle)
        self.stage()
        self.assert_chain(DOWNLOADED, COPIED, DETACHED + "0")
        self.log.wait_for(LAUNCH_TOLD, self.started)
        self.assertEqual(bundles.picture(self.bundle), before, "the running bundle was touched")
        self.assertEqual(bundles.version(self.home.staged_bundle), VERSION)
        staged = bundles.picture(self.home.staged_bundle)

        self.close_and_see(*swap_lines())

        self.assert_swapped()
        self.assertEqual(bundles.picture(self.home.staged_bundle), staged, "the staged copy stays as it is")
        self.assert_nothing_left_over()

        # The next start runs the new version, which asks with it; that its bundle is staged already changes nothing.
        self.data_centre.control("DELETE", "/requests")
        self.offer(update=False)
        self.start_update()
        self.wait_for_launch_checks()
        self.log.wait_for(VERSION_LINE + VERSION, self.started)
        check, = self.data_centre.requests(CHECK_PATH)
        self.assertTrue(check["target"].endswith(f"&version={VERSION}"), check["target"])
        new = bundles.picture(self.bundle)
        self.close_and_see(NOTHING_STAGED, BANNER)
        self.assertEqual(bundles.picture(self.bundle), new)

    def test_the_join_page_stays_and_the_check_carries_the_token(self):
        self.data_centre.page("<!doctype html><title>bare</title>"
                              "<script>window.webkit.messageHandlers.lumoraLoaded.postMessage('')</script>"
                              '<script src="/assets/drive.js"></script>')
        self.start_update({"DC": "com", "LumoraToken": TOKEN, "pathForLumora": "join"})
        self.page.wait_until_loaded()
        self.log.wait_for(COPIED, self.started)
        check = self.data_centre.requests(CHECK_PATH)[0]
        self.assertTrue(check["target"].endswith(f"&version=1.0.0&lumora_token={TOKEN}"), check["target"])
        self.wait_for_chain()
        self.close_and_see(*swap_lines())
        self.assert_swapped()

    def test_a_second_update_replaces_the_staged_bundle_and_the_first_update(self):
        self.stage()
        self.close_and_see(*swap_lines())
        (self.home.staged_bundle / "left over").write_text("of the first")
        self.data_centre.provide_application_image("10.0.0")

        self.start_update()
        self.wait_for_chain()
        self.assert_chain(DOWNLOADED, COPY + f"Existing Updated Ovra Lumora Removed in folder {self.folder}", COPIED,
                          DETACHED + "0")
        self.assertEqual(bundles.version(self.bundle), VERSION)
        self.close_and_see(*swap_lines())

        self.assertEqual(bundles.version(self.bundle), "10.0.0")
        self.assertFalse((self.bundle / "left over").exists())
        self.assertEqual(set(bundles.modes(self.bundle).values()), {0o777})

    def test_a_bundle_staged_by_an_earlier_run_is_not_applied(self):
        self.stage()
        self.application.kill()
        self.offer(update=False)
        before = bundles.picture(self.bundle)
        self.start_update()
        self.wait_for_launch_checks()
        self.close_and_see(NOTHING_STAGED, BANNER)
        self.assertEqual(bundles.picture(self.bundle), before)
        self.assertEqual(bundles.version(self.home.staged_bundle), VERSION)

    def test_no_update_asks_for_no_image(self):
        for update in (False, 0, "no", None, ...):
            with self.subTest(update):
                self.offer(update=update)
                self.start_update()
                self.wait_for_launch_checks()
                self.log.wait_for(LAUNCH_TOLD, self.started)
                self.assertEqual(len(self.chain_lines()), 1)
                self.close_and_see(NOTHING_STAGED, BANNER)
        self.assertEqual(self.data_centre.requests(IMAGE_PATH), [])
        self.assertFalse(self.home.staged_bundle.exists())


class Addresses(UpdateCase):
    def stages_from(self, path, host, url):
        self.start_update()
        self.wait_for_chain()
        self.assert_chain(DOWNLOADED, COPIED, DETACHED + "0", url=url)
        image, = self.data_centre.requests(path)
        self.assertEqual(image["host"], host)
        # The platform's own, not the agent download's.
        self.assertNotEqual(image["headers"].get("user-agent"), " ".join(system.name_and_version()))
        self.close_and_see(*swap_lines())
        self.assert_swapped()

    def test_none_is_the_web_servers_own(self):
        for value in (..., None):
            with self.subTest(value):
                self.data_centre.control("DELETE", "/requests")
                self.offer(download_url=value)
                shutil.rmtree(self.home.staged_bundle, ignore_errors=True)
                self.stages_from(DEFAULT_PATH, WEB_SERVER, f"https://{WEB_SERVER}{DEFAULT_PATH}")

    def test_doubled_extension_is_repaired(self):
        self.offer(download_url=IMAGE_URL + ".dmg")
        self.stages_from(IMAGE_PATH, "cdn.ovratessel.example", IMAGE_URL)

    def test_tripled_extension_keeps_two(self):
        self.offer(download_url=IMAGE_URL + ".dmg.dmg")
        self.start_update()
        self.wait_for_chain()
        # No such image: the page that says so is saved and does not mount.
        *lines, detached = self.begin_of_chain(IMAGE_URL + ".dmg")
        self.assertEqual(lines, [DOWNLOADED])
        self.assertNotEqual(detached, DETACHED + "0")
        self.assertEqual(len(self.data_centre.requests(IMAGE_PATH + ".dmg")), 1)
        self.close_and_see(NOTHING_STAGED, BANNER)

    def test_empty_one_is_no_address(self):
        self.offer(download_url="")
        self.start_update()
        self.log.wait_for_start(DOWNLOAD + "Download failed! Whole Error - ", self.started)
        # The blank at the first line's end belongs there.
        self.assert_chain(DOWNLOAD + "Download failed! Error - bad URL (null) ",
                          DOWNLOAD + 'Download failed! Whole Error - '
                          'Error Domain=NSURLErrorDomain Code=-1000 "bad URL"', url="(null)")
        self.assertEqual(self.data_centre.requests(IMAGE_PATH) + self.data_centre.requests(DEFAULT_PATH), [])
        self.close_and_see(NOTHING_STAGED, BANNER)


class Places(UpdateCase):
    bundle = pathlib.Path("/Applications/Kim's Übungen/Ovra Tessel Lumora.app")

    def setUp(self):
        machine.expect(self.bundle.parent)
        self.bundle.parent.mkdir(exist_ok=True)
        self.addCleanup(shutil.rmtree, self.bundle.parent)
        super().setUp()
        self.other = bundles.picture(places.BUNDLE)

    def test_replaced_where_it_runs(self):
        self.stage()
        self.close_and_see(*swap_lines(self.bundle))
        self.assert_swapped()
        self.assertEqual(bundles.picture(places.BUNDLE), self.other)
        self.assert_nothing_left_over()

    def test_replaced_where_it_lies_when_a_link_started_it(self):
        real, self.bundle = self.bundle, places.ROOT / "Desktop.app"
        self.bundle.unlink(missing_ok=True)
        self.bundle.symlink_to(real)
        self.stage()
        self.close_and_see(*swap_lines(real))
        self.assertTrue(self.bundle.is_symlink())
        self.assert_swapped(real)


class TwoChecks(UpdateCase):
    """The launch's check, and the one of the first good probe of a page that does not say that it has loaded."""

    def setUp(self):
        super().setUp()
        self.data_centre.page(SILENT_PAGE)

    def both(self):
        self.start_update({"DC": "com", "pathForLumora": "join"})
        waiting.until(lambda: len(self.data_centre.requests(IMAGE_PATH)) >= 2, "a second image request")
        self.log.wait_for(LAUNCH_TOLD, self.started)
        self.log.wait_for(RESTORE_TOLD, self.started)

    def assert_both_staged_and_swapped(self):
        self.wait_for_chain(2)
        lines = self.chain_lines()
        self.assertEqual(lines.count(COPIED), 2, lines)
        self.assertEqual(lines.count(COPY + f"Existing Updated Ovra Lumora Removed in folder {self.folder}"), 1, lines)
        self.assertEqual(lines.count(DETACHED + "0"), 2, lines)
        self.close_and_see(*swap_lines())
        self.assert_swapped()
        self.assert_nothing_left_over()

    def test_one_after_the_other(self):
        self.both()
        self.assert_both_staged_and_swapped()

    def test_both_downloads_at_once(self):
        # The first is held back until the second has been asked for: they arrive together.
        self.data_centre.behave(IMAGE_PATH, delay_ms=4000, times=1)
        self.both()
        self.assert_both_staged_and_swapped()


class TwoProcesses(UpdateCase):
    def test_the_swap_waits_for_another_process_that_replaces_the_staged_bundle(self):
        """A user who has started the application twice closes one while the other stages."""
        self.stage()
        before = bundles.picture(self.bundle)
        aside = self.home.log_folder / "aside"
        other = os.open(self.home.support_folder, os.O_RDONLY)
        try:
            fcntl.flock(other, fcntl.LOCK_EX)
            self.home.staged_bundle.rename(aside)
            window = next(iter(self.application.wait_for_window()))
            mark = self.log.mark()
            desktop.request_close(window)
            self.log.wait_for(located(), mark)
            aside.rename(self.home.staged_bundle)
            self.assertEqual(bundles.picture(self.bundle), before)
            self.assertEqual(self.lines_of(mark, SWAP), [BEGUN, located()])
        finally:
            os.close(other)
        waiting.until(lambda: not self.application.running(), "the end of the application")
        self.assertEqual(self.lines_of(mark, SWAP), swap_lines())
        self.assert_swapped()


@system.linux_only("no other program can stand at the place of the system's own")
class Permissions(UpdateCase):
    def chmod_is(self, script):
        """Another program stands at the permission tool's place, in this world only."""
        tool = self.home.path.with_name(self.home.path.name + ".chmod")
        tool.write_text(script)
        tool.chmod(0o755)
        place = os.path.realpath("/bin/chmod")
        subprocess.run(["mount", "--bind", tool, place], check=True)
        self.addCleanup(subprocess.run, ["umount", "--lazy", place], check=True)

    def test_a_failing_tool_is_told_and_leaves_the_copys_own_modes(self):
        self.chmod_is("#!/bin/sh\nexit 3\n")
        self.stage()
        self.close_and_see(BEGUN, located(), f"{SWAP}Updated Lumora app Copied to {self.bundle}",
                           f"{SWAP}Failed to set 777 permissions on {self.bundle}, termination status: 3", BANNER)
        self.assertEqual(bundles.contents(self.bundle), bundles.contents(self.home.staged_bundle))
        self.assertEqual(bundles.modes(self.bundle), bundles.modes(self.home.staged_bundle))

    def test_the_tools_arguments(self):
        record = self.home.path / "arguments"
        self.chmod_is(f'#!/bin/sh\nprintf "%s\\n" "$@" > "{record}"\n')
        self.stage()
        self.close_and_see(*swap_lines())
        self.assertEqual(record.read_text().splitlines(), ["-R", "777", str(self.bundle)])
