"""The network path goes and comes back: its loss is noticed, its return restores the page."""

import subprocess

from harness import waiting
from harness.case import set_up_module as setUpModule, tear_down_module as tearDownModule  # noqa: F401
from harness.system import linux_only
from harness.weather import (JOIN_URL, NET_TEST, PROBE_SECONDS, RESTORED, SILENT_PAGE, TEN_PROBES, WeatherCase, route)

# A probe waits ten seconds for a path before it fails.
PATIENCE_SECONDS = 10
WAITING_PROBES = PATIENCE_SECONDS // PROBE_SECONDS
DEFAULT_ROUTE = ("replace", "default", "via", "10.87.0.2", "dev", "lumora0")
FAILED = NET_TEST + JOIN_URL

network = linux_only("the machine's own network is not taken down")


@network
class Path(WeatherCase):
    join_page = SILENT_PAGE

    def test_a_default_route_that_goes_and_comes_back(self):
        self.start_well()
        mark = self.log.mark()
        route("del", "default")
        self.addCleanup(route, *DEFAULT_ROUTE)
        self.forget_requests()
        self.watch(PATIENCE_SECONDS - PROBE_SECONDS, "join")
        self.shows("offline")
        self.watch(TEN_PROBES, "offline")
        self.assertEqual(self.join_requests(), [], "no probe is sent without a path")
        self.assertEqual(self.weather_lines(mark), [])
        self.tell("default route removed", "offline", [], **self.counts())

        route(*DEFAULT_ROUTE)
        # Those of the last ten seconds are sent at once. One that has no time left fails after another has reached the
        # server, which shows the offline page once more, until the next one.
        self.log.wait_for(RESTORED, mark)
        waiting.until(lambda: len(self.probes()) >= WAITING_PROBES + 3, "probes after those that waited")
        self.comes_back("default route removed", mark, [], restorations=2)


@network
class AtStart(WeatherCase):
    def down(self):
        """No address and so no route either."""
        self.addCleanup(self.up)
        subprocess.run(["ip", "address", "flush", "dev", "lumora0"], check=True)

    def up(self):
        subprocess.run(["ip", "address", "replace", "10.87.0.1/24", "dev", "lumora0"], check=True)
        route(*DEFAULT_ROUTE)

    def test_no_network_at_all(self):
        self.down()
        self.start_badly([FAILED])
        self.watch(2 * PROBE_SECONDS, "offline")
        self.assertEqual(self.weather_lines(self.started), [FAILED])
        self.tell("no network at the start", "offline", [FAILED], **self.counts())
        self.up()
        # A second time when a probe that had waited for the path has no time left for its answer.
        self.comes_back("no network at the start", self.started, [FAILED], restorations=2)
