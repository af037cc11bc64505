"""Joins, from the page's message to the running agent."""

import json
import os
import re
import shutil
import stat

from harness import agent, bundles, images, places, system, waiting
from harness.case import (AGENT_VERSION, CHECK_PATH, EMAIL, IMAGE_PATH, KEY, TOKEN, WEB_SERVER, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401

BRIDGE = "handleMessageFromWebView(message:) : "
CHECK = "-[ApiHandler checkOvraTesselUpdateWithCompletion:]_block_invoke"
UPGRADER = "-[OvraAppUpgrader "
DOWNLOADER = "-[OvraDmgDownloader "
COPY = DOWNLOADER + "copyAppFileAndLaunch] "
LAUNCH = (DOWNLOADER + "workspaceLaunchApplication:] : LaunchApplication: Ovra.app launched successfully with args : ")
OWN_LINES = (BRIDGE, CHECK, UPGRADER, DOWNLOADER, "setupProxyDetails")


class Join(EndToEndCase):
    def test_without_an_agent_installs_and_starts_it(self):
        self.start()
        self.wait_for_launch_checks()
        mark = self.log.mark()

        self.join()
        self.wait_for_install(mark)

        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details())
        self.assert_nothing_left_behind()
        check, = self.data_centre.requests(CHECK_PATH)
        self.assertEqual(check["target"], f"{CHECK_PATH}?agent_version=0&agent=mac%2064")
        image, = self.data_centre.requests(IMAGE_PATH)
        self.assertEqual(image["host"], "cdn.ovratessel.example")
        self.assertEqual(image["headers"]["user-agent"], " ".join(system.name_and_version()))

    def test_without_an_agent_writes_exactly_these_lines(self):
        self.start()
        self.wait_for_launch_checks()
        mark = self.log.mark()

        self.join()
        self.wait_for_install(mark)

        lines = self.lines_of(mark, *OWN_LINES)
        answer = lines[1].removeprefix(CHECK + " : Response : ")
        self.assertEqual(json.loads(answer)["AGENT"]["update_needed"], True)
        launch = next(line for line in lines if line.startswith(LAUNCH))
        self.assertEqual(json.loads(launch.removeprefix(LAUNCH)), agent.LAUNCH_ARGUMENTS)
        (name, version), details = system.name_and_version(), str(self.home.join_details)
        unmount = DOWNLOADER + "unMountingOvraMacDmg] : Dmg unmount task termination status : "
        self.assertEqual(lines[:-1], [
            BRIDGE + f"Details Shared for Joining a session - email: {EMAIL}, sessionid: {KEY}",
            lines[1],
            UPGRADER + "ovraAppUpdater] : Updated Ovra App Version Available in Server..",
            UPGRADER + "modifyOvraJoinDetails] : Modify joindetails called!",
            UPGRADER + f"modifyOvraJoinDetails] : ovrajoindetails.conf file Not Present in folder {details}",
            UPGRADER + f"modifyOvraJoinDetails] : Ovra Joindetails Content : Session key={KEY} "
                       f"webServerName={WEB_SERVER} DC=com",
            UPGRADER + f"modifyOvraJoinDetails] : New ovrajoindetails.conf file has been created by Lumora in folder "
                       f"{details} ",
            DOWNLOADER + f"startDownLoadingOvraMacDmg] : Ovra Dmg Url : https://cdn.ovratessel.example{IMAGE_PATH}",
            DOWNLOADER + f"startDownLoadingOvraMacDmg] : System version details {name}",
            DOWNLOADER + f"startDownLoadingOvraMacDmg] : System version : {version}",
            DOWNLOADER + "startDownLoadingOvraMacDmg]_block_invoke : Download finished successfully",
            DOWNLOADER + "mountingOvraMacDmg] : dmg mount task termination status : 0",
            COPY + ": Ovra.app file copied",
            launch,
            COPY + f": App Path : {self.home.agent} ovra app file launched!",
            COPY + ": OvraCrashDetector file copied",
            COPY + ": TesselUserHandler file copied",
            COPY + ":OTPreLogin file copied",
            COPY + ":OvraPingAgent file copied",
            COPY + ":RemoteScriptLauncher file copied",
            COPY + ":tools_mac file copied",
            unmount + "0",
        ])
        self.assertRegex(lines[-1], f"^{re.escape(unmount)}[1-9]")
        self.assertNotIn(TOKEN, "\n".join(lines))

    def test_installed_files_are_the_images_own(self):
        self.install_agent()

        original = places.ROOT / "image"
        shutil.rmtree(original, ignore_errors=True)
        images.extract(self.data_centre.agent_image, original)
        for name in ["Ovra.app", "tools_mac"]:
            self.assertEqual(bundles.kept_by_a_copy(self.home.agent_folder / name),
                             bundles.kept_by_a_copy(original / name))
        installed = bundles.contents(self.home.agent)
        self.assertTrue(any(kind == "link" for kind, *_ in installed.values()), "the bundle holds no link")
        for name in agent.HELPERS[:-1]:
            installed = self.home.agent_folder / name
            self.assertTrue(installed.stat().st_mode & stat.S_IXUSR, f"{name} is not executable")
            self.assertEqual(installed.read_bytes(), (original / name).read_bytes())

    def test_agent_stands_on_its_own(self):
        self.install_agent()
        record, = agent.records(self.home)
        self.assertTrue(agent.stands_alone(record), record)
        for name, target in record["streams"].items():
            self.assertNotIn("ovraLumora", target or "", f"stream {name} is the application's log")
        self.assertFalse({"GSK_RENDERER", "GDK_DEBUG"} & record["environment"].keys())

    def test_with_a_current_agent_starts_it_at_once(self):
        self.install_agent()
        self.restart()
        self.wait_for_launch_checks()
        self.data_centre.control("DELETE", "/requests")
        mark = self.log.mark()

        self.join(key=987654321)

        record = agent.wait_for_records(self.home, 2)[1]
        self.assert_agent_was_given(record, self.assert_join_details(key=987654321))
        self.assertEqual(self.data_centre.requests(IMAGE_PATH), [])
        check, = self.data_centre.requests(CHECK_PATH)
        self.assertEqual(check["target"], f"{CHECK_PATH}?agent_version={AGENT_VERSION}&agent=mac%2064")
        details = str(self.home.join_details)
        self.log.wait_for_start(LAUNCH, mark)
        self.assertEqual(self.lines_of(mark, UPGRADER), [
            UPGRADER + "ovraAppUpdater] : This mac has latest Ovra App",
            UPGRADER + "modifyOvraJoinDetails] : Modify joindetails called!",
            UPGRADER + f"modifyOvraJoinDetails] : ovrajoindetails.conf file already Present in folder {details}",
            UPGRADER + "modifyOvraJoinDetails] : Ovra Joindetails Content : Session key=987654321 "
                       f"webServerName={WEB_SERVER} DC=com customDomain=false",
            UPGRADER + f"modifyOvraJoinDetails] : New ovrajoindetails.conf file has been created by Lumora in folder "
                       f"{details} ",
        ])

    def test_updates_an_older_agent(self):
        self.install_agent()
        helper = self.home.agent_folder / "OvraPingAgent"
        helper.write_text("kept from the older agent", encoding="ascii")
        self.data_centre.upgrade_agent_image("2.0.0")
        self.restart()
        self.wait_for_launch_checks()
        self.data_centre.control("DELETE", "/requests")
        mark = self.log.mark()

        self.join()
        self.wait_for_install(mark)

        record = agent.wait_for_records(self.home, 2)[1]
        self.assert_agent_was_given(record, self.assert_join_details())
        self.assert_nothing_left_behind()
        check, = self.data_centre.requests(CHECK_PATH)
        self.assertIn(f"agent_version={AGENT_VERSION}&", check["target"])
        self.assertIn(b"2.0.0", (self.home.agent / "Contents/Info.plist").read_bytes())
        # A helper that is already there is not exchanged, and that goes without a line.
        self.assertEqual(helper.read_text(encoding="ascii"), "kept from the older agent")
        self.assertEqual(self.lines_of(mark, COPY + ":"), [
            COPY + ": Ovra.app file copied",
            COPY + f": App Path : {self.home.agent} ovra app file launched!",
        ])

    def test_from_the_request_page_takes_the_stored_name(self):
        self.start()
        self.wait_for_launch_checks()
        self.page.post("sendCustomerDetailsToNative", json.dumps(
            {"name": "Kim Muster", "company": "Muster AG", "email": EMAIL, "language": "de"}))
        mark = self.log.mark()

        self.page.post("sendRRSessionKeyToNative", "ABC-12345")
        self.wait_for_install(mark)

        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details(key="ABC-12345", email="Kim Muster"))
        self.assert_nothing_left_behind()
        self.assertEqual(self.lines_of(mark, BRIDGE), [])

    def test_from_the_request_page_without_a_name_has_none(self):
        self.start()
        self.wait_for_launch_checks()
        self.page.post("sendRRSessionKeyToNative", "ABC-12345")
        self.wait_for_install()
        self.assert_join_details(key="ABC-12345", email="(null)")

    def test_second_join_overtakes_a_slow_download(self):
        self.start()
        self.wait_for_launch_checks()
        self.data_centre.behave(IMAGE_PATH, delay_ms=6000, times=1)
        self.join(key=111111111)
        waiting.until(lambda: len(self.data_centre.requests(IMAGE_PATH)) == 1, "the first image request")

        self.join(key=222222222)
        self.wait_for_install()

        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details(key=222222222))
        # The first chain finds the agent installed and stops there, with its image mounted.
        self.log.wait_for("-[OvraDmgDownloader mountingOvraMacDmg] : dmg mount task termination status : 0", count=2)
        self.page.barrier()
        self.assertEqual(len(agent.records(self.home)), 1)
        self.assertTrue(self.home.image.exists())
        self.assertTrue(os.path.isdir("/Volumes/Ovra/Ovra.app"))

        # A volume that was left mounted is in no later join's way.
        self.data_centre.upgrade_agent_image("2.0.0")
        self.restart()
        self.wait_for_launch_checks()
        mark = self.log.mark()
        self.join(key=333333333)
        self.wait_for_install(mark)
        self.assert_agent_was_given(agent.wait_for_records(self.home, 2)[1], self.assert_join_details(key=333333333))
        self.assertIn(b"2.0.0", (self.home.agent / "Contents/Info.plist").read_bytes())
        self.assert_nothing_left_behind()

    def test_two_joins_at_once_start_an_agent_and_harm_nothing(self):
        self.start()
        self.wait_for_launch_checks()
        self.data_centre.behave(IMAGE_PATH, delay_ms=500)
        mark = self.log.mark()

        self.join(key=111111111)
        self.join(key=222222222)

        agent.wait_for_records(self.home)
        self.log.wait_for_start(DOWNLOADER + "unMountingOvraMacDmg]", mark)
        self.page.barrier()
        self.assert_join_details(key=222222222)
        self.assertTrue((self.home.agent / "Contents/MacOS/Ovra").exists())
