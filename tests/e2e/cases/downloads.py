"""Images that do not come, come damaged, or come from somebody who means harm."""

import json
import os
import pathlib
import shutil

from harness import agent, images, places
from harness.linux import iso
from harness.case import (IMAGE_PATH, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.system import linux_only

DOWNLOADER = "-[OvraDmgDownloader "
START = DOWNLOADER + "startDownLoadingOvraMacDmg] : "
DONE = DOWNLOADER + "startDownLoadingOvraMacDmg]_block_invoke : "
MOUNT = DOWNLOADER + "mountingOvraMacDmg] : dmg mount task termination status : "
UNMOUNT = DOWNLOADER + "unMountingOvraMacDmg] : Dmg unmount task termination status : "
COPY = DOWNLOADER + "copyAppFileAndLaunch] "
LAUNCH = DOWNLOADER + "workspaceLaunchApplication:] : LaunchApplication: Ovra.app launched successfully with args : "

forged = linux_only("there the system's own tool reads images, and no tool makes such ones")


class Downloads(EndToEndCase):
    def setUp(self):
        super().setUp()
        self.start()
        self.wait_for_launch_checks()
        self.mark = self.log.mark()

    def serve_image(self, content):
        """Serves these bytes as a newer agent's image, whether or not they name a version."""
        self.data_centre.replace_agent_image(content)
        self.data_centre.answer(agent={"representation": {"AGENT": {
            "update_needed": True, "download_url": "https://cdn.ovratessel.example" + IMAGE_PATH}}})

    def assert_failed_mount(self):
        """The chain of an image that does not mount: to its end, with nothing installed or left."""
        self.wait_for_install(self.mark)
        lines = self.lines_of(self.mark, DONE, DOWNLOADER + "mounting", COPY, LAUNCH, UNMOUNT)
        self.assertEqual(len(lines), 6, lines)
        self.assertEqual(lines[0], DONE + "Download finished successfully")
        self.assertTrue(lines[1].startswith(MOUNT) and lines[1] != MOUNT + "0", lines[1])
        self.assertEqual(json.loads(lines[2].removeprefix(LAUNCH)), agent.LAUNCH_ARGUMENTS)
        self.assertEqual(lines[3], COPY + f": App Path : {self.home.agent} ovra app file launched!")
        for line in lines[4:]:
            self.assertTrue(line.startswith(UNMOUNT) and line != UNMOUNT + "0", line)
        self.assertEqual(agent.records(self.home), [])
        self.assertEqual([path.name for path in self.home.agent_folder.iterdir()], ["ovrajoindetails.conf"])
        self.assert_nothing_left_behind()

    def assert_failed_download(self, url):
        rest = self.log.wait_for_start(DONE + "Download failed! Error - ", self.mark)
        self.assertTrue(rest.endswith(" " + url), rest)
        self.log.wait_for_start(DONE + "Download failed! Whole Error - ", self.mark)
        self.page.barrier()
        lines = self.lines_of(self.mark, DOWNLOADER)
        self.assertEqual(lines[0], START + f"Ovra Dmg Url : {url}")
        self.assertEqual(len(lines), 5, lines)
        self.assertEqual([path.name for path in self.home.agent_folder.iterdir()], ["ovrajoindetails.conf"])
        self.assertEqual(agent.records(self.home), [])

    def test_404_page_is_taken_for_the_image(self):
        self.data_centre.behave(IMAGE_PATH, status=404, body="<html><h1>Not here</h1></html>",
                                content_type="text/html")
        self.join()
        self.assert_failed_mount()

    def test_empty_image(self):
        self.data_centre.behave(IMAGE_PATH, status=200, body="")
        self.join()
        self.assert_failed_mount()

    def test_no_address_falls_back_to_one_without_scheme(self):
        self.data_centre.answer(agent={"representation": {"AGENT": {
            "update_needed": True, "download_url": "", "fallback_url": "https://com.ovratessel.example/agent/OvraMac.dmg"}}})
        self.join()
        self.assert_failed_download("com.ovratessel.example/agent/OvraMac.dmg")
        self.assertEqual(self.data_centre.requests("/agent/OvraMac.dmg"), [])

    def test_address_of_another_protocol(self):
        secret = places.ROOT / "secret"
        secret.write_text("secret")
        for url in (f"file://{secret}", "ftp://cdn.ovratessel.example/x", "gopher://cdn.ovratessel.example/1"):
            with self.subTest(url):
                self.mark = self.log.mark()
                self.data_centre.answer(agent={"representation": {"AGENT": {"update_needed": True,
                                                                            "download_url": url}}})
                self.join()
                self.assert_failed_download(url)

    def test_download_that_is_cut_off(self):
        self.data_centre.behave(IMAGE_PATH, truncate_at=4096)
        self.join()
        self.assert_failed_download("https://cdn.ovratessel.example" + IMAGE_PATH)

    def test_download_that_is_reset(self):
        self.data_centre.behave(IMAGE_PATH, truncate_at=4096, reset=True)
        self.join()
        self.assert_failed_download("https://cdn.ovratessel.example" + IMAGE_PATH)

    def test_download_from_an_untrusted_host(self):
        self.data_centre.tls(certificate="unknown-authority", host="cdn.ovratessel.example")
        self.join()
        self.assert_failed_download("https://cdn.ovratessel.example" + IMAGE_PATH)
        self.assertEqual(self.data_centre.requests(IMAGE_PATH), [])

    def test_slow_download_arrives(self):
        size = self.data_centre.agent_image.stat().st_size
        self.data_centre.behave(IMAGE_PATH, chunk_delay_ms=100, chunk_size=size // 20 + 1)
        self.join()
        self.wait_for_install(self.mark)
        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details())
        self.assert_nothing_left_behind()

    def test_a_good_join_follows_a_failed_download(self):
        self.data_centre.behave(IMAGE_PATH, reset=True, times=1)
        self.join()
        self.assert_failed_download("https://cdn.ovratessel.example" + IMAGE_PATH)
        self.mark = self.log.mark()
        self.join()
        self.wait_for_install(self.mark)
        agent.wait_for_records(self.home)
        self.assert_nothing_left_behind()

    def test_truncated_image(self):
        whole = self.data_centre.agent_image.read_bytes()
        self.serve_image(whole[:len(whole) // 2])
        self.join()
        self.assert_failed_mount()

    def test_image_that_is_noise(self):
        self.serve_image(bytes(range(256)) * 4096)
        self.join()
        self.assert_failed_mount()

    def test_image_of_another_kind(self):
        header = b"Ovra.app/" + b"\0" * 91 + b"0000755\0" + b"0000000\0" * 2 + b"0" * 11 + b"\0" + b"0" * 11 + b"\0"
        self.serve_image(header.ljust(512, b"\0") + b"\0" * 1024)
        self.join()
        self.assert_failed_mount()

    @forged
    def test_path_that_climbs_out(self):
        image = images.volume({"Ovra.app/Contents/Info.plist": b"x", "climbclimbclimb": b"#!/bin/sh\n"})
        self.serve_image(iso.renamed(image, "climbclimbclimb", "../../../../pwn"))
        self.join()
        self.assert_failed_mount()
        for folder in (pathlib.Path("/"), pathlib.Path("/Volumes"), self.home.path, *self.home.path.parents):
            self.assertFalse(os.path.lexists(folder / "pwn"), folder)

    @forged
    def test_link_that_leads_out_is_not_written_through(self):
        outside = self.home.path / "outside"
        outside.mkdir()
        image = images.volume({"Ovra.app/Contents/Info.plist": b"x", "linklink": str(outside), "foldfold/planted": b"x"})
        image = iso.renamed(iso.renamed(image, "linklink", "samesame"), "foldfold", "samesame")
        self.serve_image(image)
        self.join()
        self.assert_failed_mount()
        self.assertEqual(list(outside.iterdir()), [])

    @forged
    def test_absurd_size(self):
        image = images.volume({"Ovra.app/Contents/Info.plist": b"x", "bigfile": b"x" * 100})
        self.serve_image(iso.with_size(image, "BIGFILE", 0xFFFFF000))
        self.join()
        self.assert_failed_mount()

    @forged
    def test_content_beyond_the_image(self):
        image = images.volume({"Ovra.app/Contents/Info.plist": b"x", "bigfile": b"x" * 100})
        self.serve_image(iso.with_extent(image, "BIGFILE", 0x00FFFFFF))
        self.join()
        self.assert_failed_mount()

    @linux_only("the folder of the volumes is the system's alone")
    def test_volume_that_another_user_has_put_there(self):
        """Everybody writes the folder of the volumes: an agent that stands there may be anyone's."""
        volume = pathlib.Path("/Volumes/Ovra")
        planted = volume / "Ovra.app/Contents/Info.plist"
        planted.parent.mkdir(parents=True)
        self.addCleanup(shutil.rmtree, volume, ignore_errors=True)
        planted.write_text("planted", encoding="utf-8")
        try:
            os.chown(volume, 4711, 4711)
        except OSError:
            self.skipTest("there is no other user in this world")
        self.serve_image(images.volume({"Ovra.app/Contents/Info.plist": b"x"}))
        self.join()
        self.wait_for_install(self.mark)
        self.assertTrue(planted.exists())
        shutil.rmtree(volume)
        self.assert_failed_mount()

    @forged
    def test_volume_name_that_leads_out(self):
        image = images.volume({"Ovra.app/Contents/Info.plist": b"x"}, name="AAAAAAAA")
        self.serve_image(iso.renamed(image, "AAAAAAAA", "../../pw"))
        self.join()
        self.assert_failed_mount()
        self.assertFalse(os.path.lexists("/pw"))
