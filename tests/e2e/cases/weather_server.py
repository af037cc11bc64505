"""A server that is away, slow or elsewhere at the start: the offline page, then the join page as soon as it comes."""

import time

from harness.case import (WEB_SERVER,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.weather import (BARE_URL, DID_FAIL, JOIN_URL, NET_TEST, NO_TOKEN, PAGE, PROBE_SECONDS, SILENT_PAGE,
                             TEN_PROBES, WeatherCase)

FAILED = NET_TEST + JOIN_URL


class AtStart(WeatherCase):
    def test_a_server_that_is_down_and_then_up(self):
        self.server_down()
        self.start_badly([FAILED])
        self.watch(TEN_PROBES, "offline")
        self.assertEqual(self.weather_lines(self.started), [FAILED])
        self.assertEqual(self.join_requests(), [])
        self.tell("server down at the start", "offline", [FAILED], **self.counts())

        self.good_again()
        self.comes_back("server down at the start", self.started, [FAILED])
        # The one that answered 200 was the first to ask.
        self.assertEqual(self.join_requests()[0], self.probes()[0])
        self.watched_no_longer()

    def watched_no_longer(self):
        """The page has said that it has loaded."""
        before = len(self.join_requests())
        self.watch(2 * PROBE_SECONDS, "join")
        self.assertEqual(len(self.join_requests()), before)

    def test_without_a_token_the_bare_address_is_watched_and_nothing_reloaded(self):
        self.server_down()
        self.start_badly([NET_TEST + BARE_URL], NO_TOKEN)
        self.good_again()
        self.comes_back("server down, no token", self.started, [NET_TEST + BARE_URL])
        self.assertEqual({one["target"] for one in self.join_requests()}, {"/join"})

    def test_a_slow_server_is_given_ten_seconds(self):
        self.data_centre.behave("/join", delay_ms=11000)
        begun = time.monotonic()
        self.start(wait_for_page=False)
        self.log.wait_for(FAILED)
        self.assertGreater(time.monotonic() - begun, 9.5)
        self.shows("offline")
        # After the four of the first ten seconds: ten in all.
        self.watch_probes("offline", probes=6)
        # One load, and at most the reload attempt that the offline page replaced.
        self.assertIn(len(self.loads()), (1, 2))
        self.assertEqual(self.weather_lines(), [FAILED])
        self.tell("server answers after 11 s", "offline", self.weather_lines(), **self.counts())

        self.good_again()
        self.comes_back("server answers after 11 s", 0, [FAILED])

    def test_a_page_that_stalls_is_given_ten_seconds(self):
        self.data_centre.page(PAGE + "<p>more</p>" * 20000)
        self.data_centre.behave("/join", chunk_size=100000, chunk_delay_ms=15000)
        begun = time.monotonic()
        self.start(wait_for_page=False)
        self.shows("join")
        self.log.wait_for(FAILED)
        self.assertGreater(time.monotonic() - begun, 9.5)
        self.shows("offline")
        lines = [DID_FAIL + "The request timed out.", FAILED]
        self.assertEqual(self.weather_lines(), lines)
        self.tell("page stalls after 100 kB", "offline", lines, **self.counts())

        self.data_centre.page(PAGE)
        self.good_again()
        self.comes_back("page stalls after 100 kB", 0, lines)

    def test_a_handshake_that_hangs_is_given_ten_seconds(self):
        self.data_centre.tls(hang_handshake=True)
        begun = time.monotonic()
        # With a token the launch itself would wait: it asks for the customer's own domain first.
        self.start(NO_TOKEN, wait_for_page=False)
        self.log.wait_for(NET_TEST + BARE_URL)
        self.assertGreater(time.monotonic() - begun, 9.5)
        self.shows("offline")
        probes = self.watch_probes("offline", self.connections, probes=2)
        self.assertEqual(self.join_requests(), [])
        self.assertEqual(self.weather_lines(), [NET_TEST + BARE_URL])
        self.tell("handshake hangs", "offline", self.weather_lines(), loads=0, handshakes=probes)

        self.good_again()
        self.comes_back("handshake hangs", 0, [NET_TEST + BARE_URL])

    def redirect(self, weather, location, followed):
        self.data_centre.behave("/join", status=302, headers={"Location": location})
        self.data_centre.behave("/elsewhere", status=200, body=SILENT_PAGE, content_type="text/html")
        # The probe does not follow: for it a redirect is out of reach, wherever it leads.
        self.start_until(self.loads)
        self.watch_probes("offline", probes=2)
        self.assertEqual(len(self.loads()), 1)
        self.assertEqual(len(self.data_centre.requests("/elsewhere")), followed)
        self.assertEqual(self.weather_lines(self.started), [])
        self.tell(weather, "offline", [], elsewhere=followed, **self.counts())
        self.good_again()
        self.comes_back(weather, self.started, [])

    def test_a_redirect_on_the_same_server_is_followed_and_out_of_reach(self):
        self.redirect("302 to the same server", f"https://{WEB_SERVER}/elsewhere", 1)

    def test_a_redirect_to_another_server_is_cancelled_and_out_of_reach(self):
        self.redirect("302 to another server", "https://eu.ovratessel.example/elsewhere", 0)
