"""What the tests of the window in bad weather stand on: who asked for the join page, which page the window shows,
which lines were logged; and the ways to lose the server and to have it back."""

import subprocess
import time

from harness import places, screen, waiting
from harness.case import RESTORED, TOKEN, WEB_SERVER, EndToEndCase

PROBE_SECONDS = 2
TEN_PROBES = 10 * PROBE_SECONDS
JOIN_URL = f"https://{WEB_SERVER}/join?lumora_token={TOKEN}"
BARE_URL = f"https://{WEB_SERVER}/join"
NO_TOKEN = {"DC": "com", "pathForLumora": "join"}

NET_TEST = "URL NetTest : "
DID_FAIL = "webView(_:didFail:withError:) : Page failed to load with error: "
UNTRUSTED = "webView(_:didReceive:completionHandler:) : Server trust evaluation failed: "
LINES = ("viewDidLoad", "loadJoinPageURl", "handleWebViewError", "webView(", NET_TEST, "didRestoreConnection",
         "executeJavaScript", " webServerName")
PROBE_AGENT = ("Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) AppleWebKit/537.36 (KHTML, like Gecko) "
               "Chrome/91.0.4472.124 Safari/537.36")

_BODY = f'<body style="background:{screen.JOIN_COLOUR}">A join page<script src="/assets/drive.js"></script>'
# One that never says that it has loaded, so that the monitor goes on, and one that ends the monitor's watch.
SILENT_PAGE = f'<!doctype html><meta charset="utf-8"><title>join</title>{_BODY}'
PAGE = SILENT_PAGE + '<script>window.webkit.messageHandlers.lumoraLoaded.postMessage("")</script>'


class WeatherCase(EndToEndCase):
    bare_page = False
    join_page = PAGE

    def setUp(self):
        super().setUp()
        self.data_centre.page(self.join_page)

    # --- starts

    def start_badly(self, lines, arguments=None):
        """Starts in bad weather: the first load fails with these lines, and the offline page is shown.

        On a machine too busy to load anything within two seconds the first probe fails before, which shows the page
        without a word: then once more.
        """
        self.start_until(lambda: self.weather_lines(self.started), arguments)
        self.assertEqual(self.weather_lines(self.started), lines)

    def start_until(self, first_load_came_first, arguments=None):
        for _ in range(5):
            self.forget_requests()
            self.start(arguments, wait_for_page=False)
            self.shows("offline")
            if first_load_came_first():
                return
        self.fail("no first load before the first probe, or none at all")

    def start_well(self):
        """Starts, and waits until whatever the first probe brought about is over."""
        self.start(wait_for_page=False)
        if self.join_page == SILENT_PAGE:
            self.log.wait_for(RESTORED, self.started)  # the first good probe restores once more
        self.page_stands()
        self.watch(PROBE_SECONDS, "join")
        self.forget_requests()

    # --- what was asked of the server

    def join_requests(self):
        return self.data_centre.requests("/join")

    def loads(self):
        """Requests of the web view for the join page."""
        return [one for one in self.join_requests() if one["headers"].get("user-agent") != PROBE_AGENT]

    def probes(self):
        return [one for one in self.join_requests() if one["headers"].get("user-agent") == PROBE_AGENT]

    def counts(self):
        return {"loads": len(self.loads()), "probes": len(self.probes())}

    def connections(self):
        """How many connections were ever accepted: each probe makes one of its own."""
        return self.data_centre.control("GET", "/status")["connections"]

    def forget_requests(self):
        self.data_centre.control("DELETE", "/requests")

    # --- what the window shows

    def shows(self, page, scheme="light", seconds=waiting.SECONDS):
        screen.wait_for_page(self.application, page, scheme, seconds)

    def page_stands(self):
        """The join page is shown and runs its scripts; one that a newer load replaces meanwhile does not count."""
        def runs():
            try:
                self.page.wait_until_loaded()
            except AssertionError:
                return False
            return True
        waiting.until(runs, "the join page")
        self.shows("join")

    def watch(self, seconds, page):
        """Looks at the window all the time: it shows nothing but this page."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.assertEqual(screen.page_of(self.application), page)
            time.sleep(0.3)

    def watch_probes(self, page, count=None, probes=10):
        """The same until that many more probes have come, which must not be sooner than their rhythm allows.

        count tells how many have come so far; by default those that the server has logged.
        """
        count = count or (lambda: len(self.probes()))
        before, begin = count(), time.monotonic()
        deadline = begin + 3 * probes * PROBE_SECONDS
        while (come := count() - before) < probes:
            self.assertLess(time.monotonic(), deadline, f"{come} probes came")
            self.watch(0.5, page)
        seconds = time.monotonic() - begin
        # One more for where in the rhythm the look began, another for one that came late.
        self.assertLessEqual(come, seconds / PROBE_SECONDS + 2, f"within {seconds} s")
        return come

    # --- what was logged

    def weather_lines(self, mark=0):
        return self.lines_of(mark, *LINES)

    def tell(self, weather, page, lines, **requests):
        """A row of the table that a run leaves beside the data centre's log."""
        row = "\t".join([weather, page, " | ".join(lines) or "-", str(requests)])
        with open(places.ROOT / "data-centre/weather.tsv", "a", encoding="utf-8") as table:
            table.write(row + "\n")

    def comes_back(self, weather, mark, lines, restorations=1):
        """The join page stands again, after these lines and one restoration (or at most so many), each with one load."""
        self.log.wait_for(RESTORED, mark)
        self.page_stands()
        self.watch(PROBE_SECONDS, "join")
        count = self.weather_lines(mark).count(RESTORED)
        self.assertLessEqual(count, restorations)
        self.assertEqual(self.weather_lines(mark), [*lines, *[RESTORED] * count])
        self.assertIn(len(self.loads()), range(1, count + 1))
        self.tell(weather + ": back", "join", self.weather_lines(mark), **self.counts())

    # --- ways to lose the server, and to have it back

    def server_down(self):
        self.data_centre.control("POST", "/stop")
        self.addCleanup(self.data_centre.control, "POST", "/start")

    def speak_tls(self, **manner):
        """For open connections too, which have had their handshake: they are dropped."""
        self.data_centre.tls(**manner)
        self.data_centre.control("POST", "/disconnect")

    def good_again(self):
        """The server is there and well, and has seen nothing yet.

        What still hangs is cut off before: a late failure of an old probe shows the offline page once more.
        """
        self.server_down()
        self.data_centre.control("DELETE", "/behaviour")
        self.data_centre.control("DELETE", "/tls")
        self.forget_requests()
        self.data_centre.control("POST", "/start")


def route(*words):
    subprocess.run(["ip", "route", *words], check=True)
