"""Preference files, answers and folders that are not as they should be: the exact line or nothing, never a crash."""

import plistlib

from harness import agent, places, preferences, waiting
from harness.case import (CHECK_PATH, TOKEN, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.system import linux_only

CHECK = "-[ApiHandler checkOvraTesselUpdateWithCompletion:]_block_invoke : "
UPGRADER = "-[OvraAppUpgrader "
BRIDGE = "handleMessageFromWebView(message:) : "
RESOLVED = "resolved via NSUserDefaults search list (managed/user/system): "


class Preferences(EndToEndCase):
    @linux_only("files of preferences are the system's own affair")
    def test_malformed_file_is_as_good_as_none(self):
        good = plistlib.dumps({"DC": "eu", "pathForLumora": "other"})
        for content in (b"", b"\0" * 100, good[:-20], b"bplist00" + b"\xff" * 60, plistlib.dumps(["DC", "eu"]),
                        b"<plist><dict>" * 20000, b"{DC=eu;}garbage"):
            with self.subTest(content=content[:20]):
                self.home.preferences.parent.mkdir(parents=True, exist_ok=True)
                self.home.preferences.write_bytes(content)
                self.start()
                self.assertEqual(self.data_centre.requests("/join")[-1]["host"], "com.ovratessel.example")
                self.page.post("sendRRSessionDigestToNative", "kept")
                self.assertEqual(self.page.ask("getRRSessionDigest", "receiveRRSessionDigest"), ["kept"])
                self.close()

    def test_preferences_configure_without_arguments(self):
        preferences.write(self.home, {"DC": "eu", "pathForLumora": "join", "LumoraToken": TOKEN}, plistlib.FMT_BINARY)
        self.start({})
        page = self.data_centre.requests("/join")[0]
        self.assertEqual((page["host"], page["target"]), ("eu.ovratessel.example", f"/join?lumora_token={TOKEN}"))

    def test_argument_wins_over_preferences(self):
        preferences.write(self.home, {"DC": "eu", "pathForLumora": "elsewhere", "LumoraToken": "other"})
        self.start()
        page = self.data_centre.requests("/join")[0]
        self.assertEqual((page["host"], page["target"]), ("com.ovratessel.example", f"/join?lumora_token={TOKEN}"))

    def test_values_of_other_types_are_read_as_text(self):
        preferences.write(self.home, {"DC": 5, "LumoraToken": 17, "name": [1], "activeSessionKey": 123456789})
        self.start({"pathForLumora": "join"}, wait_for_page=False)
        self.log.wait_for(f"+[Utils preferenceForKey:] : Key 'DC' {RESOLVED}5")
        self.log.wait_for(f"+[Utils preferenceForKey:] : Key 'LumoraToken' {RESOLVED}17")
        self.log.wait_for("+[Utils findWebserverNameWithDCName:]  Dc = 5 , WebServerName = 5.dev.ovratessel.example")
        self.application.wait_for_window()

    @linux_only("the level of all users is the administrator's, who does not run the tests")
    def test_both_levels_get_the_configuration(self):
        self.start()
        user, system = preferences.read(self.home), plistlib.loads(places.MACHINE_PREFERENCES.read_bytes())
        for key, value in {"DC": "com", "pathForLumora": "join", "LumoraToken": TOKEN}.items():
            self.assertEqual((user[key], system[key]), (value, value))


class Answers(EndToEndCase):
    def test_check_that_answers_nothing_usable_counts_as_current(self):
        self.start()
        self.wait_for_launch_checks()
        answers = ["", "null", "[]", "5", '"text"', "{", "<html>", "[" * 100000, "[" * 1000 + "]" * 1000, "\x00\xff",
                   {}, {"representation": None}, {"representation": []}, {"representation": {}},
                   {"representation": {"AGENT": []}}, {"representation": {"AGENT": {}}},
                   {"representation": {"AGENT": {"update_needed": None, "download_url": 5, "fallback_url": []}}}]
        for answer in answers:
            with self.subTest(answer=str(answer)[:40]):
                mark = self.log.mark()
                self.data_centre.answer(agent=answer)
                self.join()
                self.log.wait_for_start("-[OvraDmgDownloader workspaceLaunchApplication:]", mark)
                self.log.wait_for(UPGRADER + "ovraAppUpdater] : This mac has latest Ovra App", mark)
                response = self.log.wait_for_start(CHECK + "Response : ", mark)
                there = isinstance(answer, dict) and answer.get("representation") is not None
                self.assertEqual(response == "(null)", not there, response)
        self.assertEqual(agent.records(self.home), [])
        self.assert_join_details()

    def test_update_needed_is_read_as_the_platform_reads_booleans(self):
        self.start()
        self.wait_for_launch_checks()
        current, outdated = "This mac has latest Ovra App", "Updated Ovra App Version Available in Server.."
        for value, line in ((True, outdated), (False, current), (1, outdated), (0, current), (0.5, outdated),
                            ("YES", outdated), ("no", current), (" 007", outdated), ("true", outdated), ("0", current)):
            with self.subTest(value=value):
                mark = self.log.mark()
                self.data_centre.answer(agent={"representation": {"AGENT": {"update_needed": value}}})
                self.join()
                self.log.wait_for_start(UPGRADER + "ovraAppUpdater] : ", mark)
                self.log.wait_for(UPGRADER + "ovraAppUpdater] : " + line, mark)


class Folders(EndToEndCase):
    @linux_only("the home folder is the user's own")
    def test_unwritable_home_shows_the_page_and_joins_without_a_crash(self):
        self.read_only(self.home.path)
        self.start()
        self.join()
        waiting.until(lambda: self.data_centre.requests(CHECK_PATH), "the check")
        self.page.barrier()
        self.assertEqual(agent.records(self.home), [])
        self.assertEqual(list(self.home.path.iterdir()), [])

    def test_unwritable_agent_folder_has_its_lines(self):
        self.start()
        self.wait_for_launch_checks()
        self.read_only(self.home.agent_folder)
        mark = self.log.mark()
        self.join()
        self.log.wait_for(UPGRADER + "modifyOvraJoinDetails] : Unable to create New ovrajoindetails.conf file by Lumora "
                          f"in folder {self.home.join_details}", mark)
        self.log.wait_for_start("-[OvraDmgDownloader startDownLoadingOvraMacDmg]_block_invoke : "
                                "Error copying file to destination - ", mark)
        self.page.barrier()
        self.assertEqual(list(self.home.agent_folder.iterdir()), [])
        self.assertEqual(self.lines_of(mark, "-[OvraDmgDownloader mounting"), [])

    def test_join_details_that_cannot_be_removed_stay(self):
        self.install_agent()
        before = self.home.join_details.read_bytes()
        self.restart()
        self.wait_for_launch_checks()
        self.read_only(self.home.agent_folder)
        mark = self.log.mark()
        self.join(key=987654321)
        self.log.wait_for(UPGRADER + "modifyOvraJoinDetails] : Unable to Remove old ovrajoindetails.conf file by Lumora "
                          f"in folder {self.home.join_details}", mark)
        agent.wait_for_records(self.home, 2)
        self.assertEqual(self.home.join_details.read_bytes(), before)

    def test_log_comes_back_with_its_folder(self):
        self.start()
        self.wait_for_launch_checks()
        undo = self.read_only(self.home.log_folder)
        self.page.post("consoleHandler", "while nothing can be written")
        self.page.barrier()
        undo()
        waiting.until(lambda: self.console_line_arrives("and again"), "a line in the log")

    def console_line_arrives(self, text):
        self.page.post("consoleHandler", text)
        self.page.barrier()
        return BRIDGE + "Console Message from WebView: " + text in self.log.lines()

    def test_folders_that_are_files(self):
        self.home.agent_folder.parent.mkdir(parents=True)
        self.home.agent_folder.write_text("in the way")
        self.start()
        self.wait_for_launch_checks()
        self.log.wait_for("+[Utils createOvraVarloNativeFolder] Ovra Varlo Native folder Already Present")
        mark = self.log.mark()
        self.join()
        self.log.wait_for(UPGRADER + "modifyOvraJoinDetails] : Unable to create New ovrajoindetails.conf file by Lumora "
                          f"in folder {self.home.join_details}", mark)
        self.log.wait_for_start("-[OvraDmgDownloader startDownLoadingOvraMacDmg]_block_invoke : "
                                "Error copying file to destination - ", mark)
        self.assertEqual(self.home.agent_folder.read_text(), "in the way")
