"""Which page stands in the window when the join page cannot."""

import subprocess

from harness import waiting
from harness.application import Application
from harness.case import (TOKEN, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.system import linux_only

NOT_CONFIGURED = ["viewDidLoad() : ################ Critical ################",
                  " webServerName is null or empty — Application is not configured correctly."]


class Pages(EndToEndCase):
    def assert_not_configured(self):
        self.log.wait_for(NOT_CONFIGURED[1])
        lines = self.log.lines()
        start = lines.index(NOT_CONFIGURED[0])
        self.assertEqual(lines[start:start + 2], NOT_CONFIGURED)
        self.application.wait_for_window()
        self.wait_for_launch_checks()
        self.assertEqual([one for one in self.data_centre.requests() if not one["path"].startswith("/api/")], [])

    def test_without_any_configuration(self):
        self.start({}, wait_for_page=False)
        self.assert_not_configured()

    def test_without_a_path(self):
        self.start({"DC": "com"}, wait_for_page=False)
        self.assert_not_configured()

    def test_with_a_blank_path(self):
        self.start({"DC": "com", "pathForLumora": " \t"}, wait_for_page=False)
        self.assert_not_configured()

    def test_without_a_data_centre_the_self_check_goes_to_the_default_one(self):
        self.start({"pathForLumora": "join"}, wait_for_page=False)
        self.wait_for_launch_checks()
        self.assertEqual({one["host"] for one in self.data_centre.requests()}, {"com.ovratessel.example"})

    def test_server_that_comes_back_shows_the_join_page(self):
        self.data_centre.control("POST", "/stop")
        self.addCleanup(self.data_centre.control, "POST", "/start")
        self.start(wait_for_page=False)
        self.application.wait_for_window()
        self.wait_for_launch_checks()
        self.assertEqual(self.data_centre.requests("/join"), [])

        self.data_centre.control("POST", "/start")
        self.page.wait_until_loaded()
        self.assertEqual(self.data_centre.requests("/join")[-1]["target"], f"/join?lumora_token={TOKEN}")

    @linux_only("the machine's own network is not taken down")
    def test_network_that_comes_back_shows_the_join_page(self):
        subprocess.run(["ip", "route", "del", "default"], check=True)
        restore = ["ip", "route", "replace", "default", "via", "10.87.0.2", "dev", "lumora0"]
        self.addCleanup(subprocess.run, restore, check=True)
        subprocess.run(["ip", "link", "set", "lumora0", "down"], check=True)
        self.addCleanup(subprocess.run, ["ip", "link", "set", "lumora0", "up"], check=True)
        self.start(wait_for_page=False)
        self.application.wait_for_window()
        self.assertEqual(self.data_centre.requests("/join"), [])

        subprocess.run(["ip", "link", "set", "lumora0", "up"], check=True)
        subprocess.run(restore, check=True)
        waiting.until(lambda: self.data_centre.requests("/join"), "the join page's request")
        self.page.wait_until_loaded()

    def test_what_the_page_keeps_outlives_a_restart(self):
        self.start()
        self.page.eval("localStorage.visited = 'once'; document.cookie = 'now=1; secure';"
                       "document.cookie = 'visited=once; secure; max-age=86400'")
        self.restart()
        self.assertEqual(self.page.eval("return [localStorage.visited, document.cookie]"), ["once", "visited=once"])

    def test_a_closed_window_ends_the_application_well(self):
        self.start()
        self.close()

    def test_two_can_run_at_once(self):
        first = self.start()
        self.addCleanup(first.kill)
        # The second one's page takes over from the first one's in the data centre's eyes.
        second = Application(self.home, {"DC": "com", "pathForLumora": "join"})
        self.addCleanup(second.kill)
        waiting.until(lambda: len(self.data_centre.requests("/join")) >= 2, "the second one's page")
        second.wait_for_window()
        self.assertTrue(first.running() and second.running())
