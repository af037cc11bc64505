"""A server that is lost while the join page stands, in every way that a server can be, and then back."""

import time

from harness import waiting
from harness.case import TOKEN, set_up_module as setUpModule, tear_down_module as tearDownModule  # noqa: F401
from harness.processes import usage_of
from harness.weather import (DID_FAIL, JOIN_URL, NET_TEST, PAGE, PROBE_AGENT, PROBE_SECONDS, RESTORED, SILENT_PAGE,
                             WeatherCase)

FAILED = NET_TEST + JOIN_URL


class Watched(WeatherCase):
    """Behind a page that never says that it has loaded: the monitor goes on, and it alone decides."""

    join_page = SILENT_PAGE

    def test_good_weather_is_probed_every_two_seconds_and_left_alone(self):
        self.start_well()
        mark = self.log.mark()
        self.watch_probes("join")
        self.assertEqual(self.loads(), [])
        for probe in self.probes():
            self.assertEqual((probe["method"], probe["target"]), ("GET", f"/join?lumora_token={TOKEN}"))
        self.assertEqual(self.weather_lines(mark), [])
        self.tell("good weather, page does not say that it has loaded", "join", [], **self.counts())

    def lost_and_back(self, weather, lose, watch):
        with self.subTest(weather):
            mark = self.log.mark()
            lose()
            self.forget_requests()
            self.shows("offline")
            watch()
            self.assertEqual(self.loads(), [], "nobody reloads while the server is out of reach")
            self.assertEqual(self.weather_lines(mark), [])
            self.tell(weather, "offline", [], **self.counts())
            self.good_again()
            self.comes_back(weather, mark, [])

    def status(self, status):
        return lambda: self.data_centre.behave("/join", status=status)

    def test_only_200_counts_as_there(self):
        self.start_well()
        self.lost_and_back("server stops", self.server_down, lambda: self.watch(2 * PROBE_SECONDS, "offline"))
        self.lost_and_back("503", self.status(503), lambda: self.watch_probes("offline"))
        self.lost_and_back("204", self.status(204), lambda: self.watch_probes("offline", probes=2))
        self.lost_and_back("probes are reset", lambda: self.data_centre.behave("/join", reset=True),
                           lambda: self.watch_probes("offline", probes=2))


class Loaded(WeatherCase):
    """Behind a page that has said that it has loaded: nobody watches, until one of its loads fails."""

    def test_a_loaded_page_outlives_the_server(self):
        self.start_well()
        mark = self.log.mark()
        self.server_down()
        self.watch(2 * PROBE_SECONDS, "join")
        self.good_again()
        self.watch(PROBE_SECONDS, "join")
        self.assertEqual((self.join_requests(), self.weather_lines(mark)), ([], []))
        self.tell("server stops behind a loaded page, and is back", "join", [], **self.counts())

    def fails_and_comes_back(self, weather, spoil, lines):
        with self.subTest(weather):
            self.page.wait_until_loaded()
            # Prepared first: a page cannot be driven in bad weather.
            self.page.eval("setTimeout(() => location.href = '/join?again', 2000)")
            mark = self.log.mark()
            self.forget_requests()
            spoil()
            self.log.wait_for(FAILED, mark)
            self.shows("offline")
            self.assertLessEqual(len(self.reload_attempts()), 1)
            self.assertEqual(self.weather_lines(mark), lines)
            self.tell(weather, "offline", lines, **self.counts())
            self.data_centre.page(PAGE)
            self.good_again()
            self.comes_back(weather, mark, lines)

    def reload_attempts(self):
        """Loads of the page's own address: the failing load has another."""
        return [one for one in self.loads() if one["target"] == f"/join?lumora_token={TOKEN}"]

    def break_off(self):
        self.data_centre.page(PAGE + "<p>more</p>" * 20000)
        self.data_centre.behave("/join", truncate_at=100000, reset=True)

    def test_a_load_that_fails_shows_the_offline_page_and_is_made_good(self):
        self.start_well()
        self.fails_and_comes_back("reset before the page", lambda: self.data_centre.behave("/join", reset=True),
                                  [FAILED])
        self.fails_and_comes_back("reset amid the page", self.break_off,
                                  [DID_FAIL + "The network connection was lost.", FAILED])
        self.fails_and_comes_back("server stops before a load", self.server_down, [FAILED])

    def test_the_offline_page_is_no_dead_end_of_the_history(self):
        self.start_well()
        self.fails_and_comes_back("server stops before a load", self.server_down, [FAILED])
        mark = self.log.mark()
        self.data_centre.behave("/join", status=503)  # until it has been seen
        self.page.leave_by("history.back()")
        self.shows("offline")
        self.good_again()
        self.comes_back("page goes back to the offline page", mark, [])

    def test_a_server_that_answers_only_the_probes_is_asked_for_one_page_a_round(self):
        rounds = 4
        self.start_well()
        self.page.eval("setTimeout(() => location.href = '/join?again', 2000)")
        mark = self.log.mark()
        self.data_centre.behave("/join", reset=True, except_agent=PROBE_AGENT)
        self.log.wait_for(RESTORED, mark)
        self.shows("offline")
        mark = self.round_ends(mark)
        begun, before = time.monotonic(), usage_of(self.application.pid)
        self.forget_requests()
        lines = []
        while len(lines) < 2 * rounds:
            # Each load fails before anything of it could be shown.
            self.watch(0.5, "offline")
            self.assertLess(time.monotonic() - begun, 3 * rounds * PROBE_SECONDS)
            lines = self.weather_lines(mark)
        seconds = time.monotonic() - begun
        # A restoration says so when its check has been answered, which the failure may forestall.
        failures = lines.count(FAILED)
        self.assertIn(len(lines) - failures, (failures - 1, failures, failures + 1))
        self.assertEqual(set(lines), {RESTORED, FAILED})
        self.assertIn(len(self.loads()), (failures, failures + 1))
        # One for where in the rhythm the look began, another for one that came late.
        self.assertLessEqual(failures, seconds / PROBE_SECONDS + 2)
        self.assertLessEqual(len(self.probes()), seconds / PROBE_SECONDS + 2)
        after = usage_of(self.application.pid)
        self.assertLessEqual(after["timers"], before["timers"])
        self.assertLessEqual(after["descriptors"], before["descriptors"] * 1.25)
        self.tell("only probes are answered", "offline", lines, **self.counts())

        mark = self.round_ends(mark)
        self.data_centre.control("DELETE", "/behaviour")
        self.forget_requests()
        self.comes_back("only probes are answered", mark, [], restorations=2)  # that of the last round may say so late

    def round_ends(self, mark):
        """A load has just failed: nothing happens before the next probe."""
        before = len(self.lines_of(mark, FAILED))
        waiting.until(lambda: len(self.lines_of(mark, FAILED)) > before, "the next failure")
        return self.log.mark()
