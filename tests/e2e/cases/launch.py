"""A start, line by line, and what it leaves in the preferences."""

import plistlib
import re

from harness import places, preferences
from harness.case import (CHECK_PATH as AGENT_CHECK_PATH, TOKEN, WEB_SERVER, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.system import linux_only
from harness.update_case import CHECK_PATH

PREFERENCE = "WebKitOfflineWebApplicationCacheEnabled"
STARS = "+[Utils createLumoraDirectoriesWithLogHandler:] : " + "*" * 57 + " "
STARTED = "+[Utils createLumoraDirectoriesWithLogHandler:] : ************* Ovra Lumora App Started ************ "
FOUND = "+[Utils preferenceForKey:] : Key '{}' resolved via NSUserDefaults search list (managed/user/system): {}"
NOT_FOUND = "+[Utils preferenceForKey:] : Key '{}' not found in any defaults domain (managed/user/system)"
SERVER = f"+[Utils findWebserverNameWithDCName:]  Dc = com , WebServerName = {WEB_SERVER}"
DOMAIN_URL = f"https://{WEB_SERVER}/api/v2/service_domain?src=rs&lumora_token={TOKEN}"
ARGUMENTS = {"DC": "com", "LumoraToken": TOKEN, "pathForLumora": "join"}

CREATED = ["+[Utils createOvraVarloNativeFolder] Ovra Varlo Native Folder Created...",
           "+[Utils createOvraLumoraNativeFolder] Ovra Lumora Native Folder Created..."]
PRESENT = ["+[Utils createOvraVarloNativeFolder] Ovra Varlo Native folder Already Present",
           "+[Utils createOvraLumoraNativeFolder] Ovra Lumora Native folder Already Present"]


def main_thread_lines(folders):
    return [
        STARS, STARTED, STARS,
        *folders,
        "+[Utils parseCommandLineArgs] ******* Ovra Tesssel Lumora App Invoked By User.",
        FOUND.format("LumoraToken", TOKEN),
        FOUND.format("DC", "com"),
        *[SERVER] * 4,
        FOUND.format("pathForLumora", "join"),
        "+[Utils parseCommandLineArgs] : Arguments Read From Preferences => "
        f"WebServerName : {WEB_SERVER} , LumoraToken : {TOKEN} , DC = com",
        FOUND.format("LumoraToken", TOKEN),
        FOUND.format("DC", "com"),
        FOUND.format("pathForLumora", "join"),
        NOT_FOUND.format("WebServer"),
        "+[Utils syncConfigToAllLevels] : Config synced to both user-level and system-level preferences.",
        "+[Utils getCustomDomain] : ********************** Fetching Custom Domain for session",
        f"+[Utils getCustomDomain] : Requesting URL : {DOMAIN_URL}",
        f"+[Utils getCustomDomain] : Request Url URL : {DOMAIN_URL}",
        "+[Utils getCustomDomain] : Status code : 200",
        '+[Utils getCustomDomain] : Response : {"service_domain":""}',
        f"+[Utils findCurrentAppPath] Ovra Lumora App path : {places.BUNDLE}",
        "+[Utils getOvraLumoraAppVersion] local Ovra Tessel Lumora App version : 1.0.0",
    ]


class Launch(EndToEndCase):
    def background_lines(self):
        """What the background block logs, first."""
        agent = f"{self.home.agent_folder}//Ovra.app"
        return [
            "+[OvraAppUpgrader getInstance] : Update Info Object Allocated",
            "-[OvraAppUpgrader ovraAppVersionCheck] : Ovra app not found, "
            f"Setting app version to zero ( default) {agent}",
            "+[ApiHandler getInstance] : Update Info Object Allocated",
            "-[ApiHandler checkLumoraUpdateWithCompletion:]_block_invoke response :  "
            '{"representation":{"update":false}}',
            "applicationDidFinishLaunching(_:) Update Available for Lumora",
        ]

    def assert_launch_lines(self, folders):
        self.start(ARGUMENTS)
        self.wait_for_launch_checks()
        self.log.wait_for("applicationDidFinishLaunching(_:) Update Available for Lumora", self.started)
        # A slow machine may restore the connection meanwhile, which checks again: only the first of its lines is meant.
        lines = [line for line in self.log.lines_since(self.started) if re.match(r"[+-]\[|applicationDid", line)]
        expected = main_thread_lines(folders) + self.background_lines()
        self.assertEqual(lines[:len(expected)], expected)

    def test_cold_start_then_second_start(self):
        self.assert_launch_lines(CREATED)
        # Written before the streams lead to the log.
        self.assertIn("-[LogHandler createOvraLumoraLogFolder] Ovra Lumora Log Folder Created...",
                      self.home.console.read_text(encoding="utf-8"))
        self.close()
        self.assert_launch_lines(PRESENT)

    def test_checks_come_in_order_and_know_their_versions(self):
        self.start(ARGUMENTS)
        self.wait_for_launch_checks()
        paths = [one["path"] for one in self.data_centre.requests()]
        self.assertEqual(paths[0], "/api/v2/service_domain")
        self.assertNotIn(AGENT_CHECK_PATH, paths)
        check = self.data_centre.requests(CHECK_PATH)[0]
        self.assertEqual(check["target"],
                         f"{CHECK_PATH}?os=mac&format=dmg&source=lumora&version=1.0.0&lumora_token={TOKEN}")

    def test_without_a_token_the_check_ends_with_the_version(self):
        self.start({"DC": "com"}, wait_for_page=False)
        self.wait_for_launch_checks()
        check, = self.data_centre.requests(CHECK_PATH)
        self.assertEqual(check["target"], f"{CHECK_PATH}?os=mac&format=dmg&source=lumora&version=1.0.0")

    def test_without_a_server_the_check_goes_to_the_first_data_centre(self):
        self.start({}, wait_for_page=False)
        self.wait_for_launch_checks()
        check, = self.data_centre.requests(CHECK_PATH)
        self.assertEqual(check["host"], WEB_SERVER)

    def test_check_that_is_refused_or_fails(self):
        block = "-[ApiHandler checkLumoraUpdateWithCompletion:]_block_invoke : "
        url = f"https://{WEB_SERVER}{CHECK_PATH}?os=mac&format=dmg&source=lumora&version=1.0.0"
        for status in (304, 500):
            with self.subTest(status):
                self.data_centre.behave(CHECK_PATH, status=status)
                self.start({"DC": "com"}, wait_for_page=False)
                self.wait_for_launch_checks()
                self.assertEqual(self.lines_of(self.started, block), [
                    f"{block}NSURLConnection failed for this request : {url} and status code : {status}"])
        with self.subTest("reset"):
            self.data_centre.behave(CHECK_PATH, reset=True)
            self.start({"DC": "com"}, wait_for_page=False)
            self.wait_for_launch_checks()
            line, = self.lines_of(self.started, block)
            self.assertTrue(line.startswith(block + "Check Update failed : "), line)
        # The callback was false each time.
        self.close()
        self.assertEqual(self.lines_of(0, "applicationDidFinishLaunching(_:)"), [])

    def test_the_preference_is_true_after_every_launch(self):
        self.start({"DC": "com"}, wait_for_page=False)
        self.wait_for_launch_checks()
        self.assertIs(preferences.read(self.home)[PREFERENCE], True)
        for value in (False, 0, "NO", {"a": 1}):
            with self.subTest(value):
                self.close()
                preferences.write(self.home, {PREFERENCE: value, "kept": "as it is"})
                self.start({"DC": "com"}, wait_for_page=False)
                self.wait_for_launch_checks()
                stored = preferences.read(self.home)
                self.assertIs(stored[PREFERENCE], True)
                self.assertEqual(stored["kept"], "as it is")

    @linux_only("files of preferences are the system's own affair, those of managed ones too")
    def test_the_preference_is_true_over_a_damaged_file_and_other_levels(self):
        self.home.preferences.parent.mkdir(parents=True)
        self.home.preferences.write_bytes(b"no property list")
        managed = places.MANAGED_PREFERENCES
        managed.parent.mkdir(parents=True)
        managed.write_bytes(plistlib.dumps({PREFERENCE: False}))
        self.start({"DC": "com", PREFERENCE: "NO"}, wait_for_page=False)
        self.wait_for_launch_checks()
        self.assertIs(preferences.read(self.home)[PREFERENCE], True)
        self.assertIs(plistlib.loads(managed.read_bytes())[PREFERENCE], False)
