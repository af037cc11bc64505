"""Whatever the network, the server or the configuration does: the window shows the right page and comes back by itself."""

import os
import pathlib
import plistlib
import signal
import subprocess
import time
import urllib.parse

from harness import screen, waiting
from harness.case import (TOKEN, WEB_SERVER, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401

PROBE_SECONDS = 2
TEN_PROBES = 10 * PROBE_SECONDS + 1
JOIN_URL = f"https://{WEB_SERVER}/join?lumora_token={TOKEN}"
NET_TEST = f"URL NetTest : {JOIN_URL}"
RESTORED = "didRestoreConnection() : Updateing webview since the network is restored."
DID_FAIL = "webView(_:didFail:withError:) : Page failed to load with error: "
TRUST = "webView(_:didReceive:completionHandler:) : Server trust evaluation failed: "
PROBE_AGENT = ("Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) AppleWebKit/537.36 (KHTML, like Gecko) "
               "Chrome/91.0.4472.124 Safari/537.36")
LINES = ("viewDidLoad", "loadJoinPageURl", "handleWebViewError", "webView(", "URL NetTest", "didRestoreConnection",
         "executeJavaScript")

BODY = f'<body style="background:{screen.JOIN_COLOUR}">A join page<script src="/assets/drive.js"></script>'
SILENT_PAGE = f'<!doctype html><meta charset="utf-8"><title>join</title>{BODY}'
PAGE = SILENT_PAGE + '<script>window.webkit.messageHandlers.lumoraLoaded.postMessage("")</script>'


def web_processes():
    """Those that have drawn text: the engine itself does not survive the death of one that is just being born."""
    found = subprocess.run(["pgrep", "-x", "WebKitWebProces"], capture_output=True, text=True, check=False)
    pids = [int(pid) for pid in found.stdout.split()]
    return [pid for pid in pids if has_mapped_a_font(pid)]


def has_mapped_a_font(pid):
    try:
        return "/fonts/" in pathlib.Path(f"/proc/{pid}/maps").read_text(encoding="utf-8", errors="replace")
    except OSError:
        return False


class WeatherCase(EndToEndCase):
    bare_page = False

    def setUp(self):
        super().setUp()
        self.data_centre.page(PAGE)

    def join_requests(self):
        return self.data_centre.requests("/join")

    def loads(self):
        """Requests of the web view for the join page."""
        return [one for one in self.join_requests() if one["headers"].get("user-agent") != PROBE_AGENT]

    def probes(self):
        return [one for one in self.join_requests() if one["headers"].get("user-agent") == PROBE_AGENT]

    def shows(self, page, scheme="light", seconds=15):
        screen.wait_for_page(self.application, page, scheme, seconds)

    def weather_lines(self, mark=0):
        return self.lines_of(mark, *LINES)

    def assert_restored(self, mark=0, before=(NET_TEST,)):
        """The lines of a failure and its one recovery."""
        self.log.wait_for(RESTORED, mark)
        self.assertEqual(self.weather_lines(mark), [*before, RESTORED])

    def server_down(self):
        self.data_centre.control("POST", "/stop")
        self.addCleanup(self.data_centre.control, "POST", "/start")

    def server_up(self):
        self.data_centre.control("POST", "/start")

    def network_down(self):
        """No address, no route. The server drops its connections first: they would hang instead of breaking."""
        self.server_down()
        self.addCleanup(self.network_up)
        subprocess.run(["ip", "address", "flush", "dev", "lumora0"], check=True)

    def network_up(self):
        subprocess.run(["ip", "address", "replace", "10.87.0.1/24", "dev", "lumora0"], check=True)
        subprocess.run(["ip", "route", "replace", "default", "via", "10.87.0.2", "dev", "lumora0"], check=True)
        self.server_up()

    def watch(self, seconds, page):
        """Looks at the window all the time: it shows nothing but this page."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.assertEqual(screen.page_of(self.application), page)
            time.sleep(0.2)


class NotConfigured(WeatherCase):
    def test_blank_names_and_addresses_that_are_none_show_the_misconfiguration_page(self):
        for name, arguments in {
            "no path": {"DC": "com"},
            "a blank path": {"DC": "com", "pathForLumora": " \t "},
            "a token with a space": {"DC": "com", "pathForLumora": "join", "LumoraToken": "a b"},
            "a token with quotes": {"DC": "com", "pathForLumora": "join", "LumoraToken": '"a"'},
            "a token with a stray percent sign": {"DC": "com", "pathForLumora": "join", "LumoraToken": "100%"},
            "a token with a line feed": {"DC": "com", "pathForLumora": "join", "LumoraToken": "a\nb"},
        }.items():
            with self.subTest(name):
                self.data_centre.control("DELETE", "/requests")
                self.start(arguments, wait_for_page=False)
                self.shows("misconfiguration")
                self.wait_for_launch_checks()
                self.assertEqual(self.join_requests(), [])
                silent = name.startswith("a token")
                self.assertEqual(self.weather_lines(self.started),
                                 [] if silent else ["viewDidLoad() : ################ Critical ################"])

    def test_a_server_name_of_blanks_is_none(self):
        self.data_centre.answer(service_domain={"representation": {"service_domain": " \t\n"}})
        self.start(wait_for_page=False)
        self.shows("misconfiguration")
        self.assertEqual(self.join_requests(), [])

    def test_a_misconfigured_window_stays_as_it_is(self):
        self.start({"DC": "com"}, wait_for_page=False)
        self.shows("misconfiguration")
        self.watch(5 * PROBE_SECONDS, "misconfiguration")
        self.assertEqual(self.join_requests(), [])

    def test_tokens_that_are_addresses_arrive_as_they_are(self):
        for token in ("it's", "%41%20%0A", "a?b/c=d&e"):
            with self.subTest(token):
                self.start({"DC": "com", "pathForLumora": "join", "LumoraToken": token})
                # The engine may spell a character another way, with or without percent signs: the same address.
                self.assertEqual(urllib.parse.unquote(self.loads()[-1]["target"]),
                                 "/join?lumora_token=" + urllib.parse.unquote(token))
                self.shows("join")

    def test_a_stored_title_that_is_no_string_harms_nothing(self):
        for title in (5, ["a"], {"a": "b"}, True, b"bytes"):
            with self.subTest(title):
                self.home.preferences.parent.mkdir(parents=True, exist_ok=True)
                self.home.preferences.write_bytes(plistlib.dumps({"WindowTitle": title}))
                self.start()
                self.shows("join")
                self.assertEqual(self.application.title(), "Ovra Tessel Lumora")


class Schemes(WeatherCase):
    def test_both_pages_in_the_dark(self):
        dark = {"GTK_THEME": "Adwaita:dark"}
        for page, arguments in (("misconfiguration", {"DC": "com"}), ("offline", None)):
            self.server_down()
            self.start(arguments, environment=dark, wait_for_page=False)
            self.shows(page, "dark")


class AtStart(WeatherCase):
    def test_server_down_then_up(self):
        self.server_down()
        self.start(wait_for_page=False)
        self.shows("offline")
        self.watch(TEN_PROBES, "offline")
        self.assertEqual(self.weather_lines(), [NET_TEST])
        self.assertEqual(self.join_requests(), [])

        self.server_up()
        self.page.wait_until_loaded()
        self.shows("join")
        self.assertEqual((len(self.loads()), len(self.probes())), (1, 1))
        self.watch(2 * PROBE_SECONDS, "join")
        self.assertEqual(len(self.join_requests()), 2, "the page's lumoraLoaded ends the probes")
        self.assert_restored()

    def test_no_token_means_no_reload_attempt(self):
        self.server_down()
        self.start({"DC": "com", "pathForLumora": "join"}, wait_for_page=False)
        self.log.wait_for(f"URL NetTest : https://{WEB_SERVER}/join")
        self.shows("offline")
        self.server_up()
        self.page.wait_until_loaded()
        self.assertEqual([one["target"] for one in self.loads()], ["/join"])

    def hung(self, arguments=None, line=NET_TEST):
        """The host's ten seconds."""
        begun = time.monotonic()
        self.start(arguments, wait_for_page=False)
        self.log.wait_for(line)
        self.assertAlmostEqual(time.monotonic() - begun, 10, delta=3)
        self.shows("offline")
        # One load, and the reload attempt that the offline page replaced.
        self.assertLessEqual(len(self.loads()), 2)

    def test_a_slow_server_is_given_ten_seconds(self):
        self.data_centre.behave("/join", delay_ms=11000)
        self.hung()
        self.watch(2 * PROBE_SECONDS, "offline")
        self.data_centre.control("DELETE", "/behaviour")
        self.page.wait_until_loaded()
        self.shows("join")
        self.assert_restored()

    def test_a_hung_handshake_is_given_ten_seconds(self):
        self.data_centre.tls(hang_handshake=True)
        # With a token the launch itself would wait: it asks for the customer's own domain first.
        line = f"URL NetTest : https://{WEB_SERVER}/join"
        self.hung({"DC": "com", "pathForLumora": "join"}, line)
        self.assertEqual(self.join_requests(), [])
        self.data_centre.tls()
        self.page.wait_until_loaded()
        self.shows("join")
        self.assert_restored(before=[line])
        self.assertEqual(len(self.loads()), 1)

    def test_redirects(self):
        for name, location, path in (("another host", "https://eu.ovratessel.example/elsewhere", "/elsewhere"),
                                     ("the same host", f"https://{WEB_SERVER}/moved", "/moved")):
            with self.subTest(name):
                self.data_centre.control("DELETE", "/requests")
                self.data_centre.behave("/join", status=302, headers={"Location": location})
                self.data_centre.behave(path, status=200, body=SILENT_PAGE, content_type="text/html")
                self.start(wait_for_page=False)
                # The probe does not follow, so 302 is out of reach for it either way.
                self.shows("offline")
                self.assertEqual(len(self.loads()), 1)
                self.assertEqual(len(self.data_centre.requests(path)), 0 if name == "another host" else 1)
                self.assertEqual(self.weather_lines(self.started), [])
                self.data_centre.control("DELETE", "/behaviour")
                self.page.wait_until_loaded()
                self.shows("join")
                self.assertEqual(len(self.loads()), 2)


class Watched(WeatherCase):
    """A page that never says that it has loaded: the monitor goes on."""

    def setUp(self):
        super().setUp()
        self.data_centre.page(SILENT_PAGE)

    def settle(self):
        self.start()
        # The first good probe restores once more.
        waiting.until(lambda: len(self.loads()) == 2, "the first restore's load")
        self.log.wait_for(RESTORED)
        self.page.wait_until_loaded()
        self.shows("join")
        self.data_centre.control("DELETE", "/requests")

    def test_good_weather_is_probed_every_two_seconds_and_left_alone(self):
        self.settle()
        self.watch(TEN_PROBES, "join")
        self.assertEqual(self.loads(), [])
        self.assertIn(len(self.probes()), (9, 10, 11))
        for probe in self.probes():
            self.assertEqual((probe["method"], probe["target"]), ("GET", f"/join?lumora_token={TOKEN}"))
        self.assert_restored(before=[])

    def lost_and_back(self, name, lose, find):
        with self.subTest(name):
            self.data_centre.control("DELETE", "/requests")
            mark = self.log.mark()
            lose()
            self.shows("offline")
            self.watch(2 * PROBE_SECONDS, "offline")
            self.assertEqual(self.loads(), [], "nobody reloads while the server is out of reach")
            find()
            self.shows("join")
            self.page.wait_until_loaded()
            self.watch(PROBE_SECONDS, "join")
            self.assertEqual(len(self.loads()), 1)
            self.assert_restored(mark, before=[])

    def test_everything_that_is_lost_comes_back(self):
        self.settle()
        normal = lambda: self.data_centre.control("DELETE", "/behaviour")  # noqa: E731
        good_certificate = self.data_centre.tls
        for status in (302, 503, 204):
            self.lost_and_back(str(status), lambda: self.data_centre.behave(
                "/join", status=status, headers={"Location": "/elsewhere"}), normal)
        self.lost_and_back("server", self.server_down, self.server_up)
        self.lost_and_back("path", self.network_down, self.network_up)
        self.lost_and_back("captive portal", lambda: self.data_centre.tls(certificate="unknown-authority"),
                           good_certificate)
        self.lost_and_back("reset", lambda: self.data_centre.behave("/join", reset=True), normal)


class Loaded(WeatherCase):
    """A page that has said that it has loaded: nobody watches, until one of its loads fails."""

    def test_a_loaded_page_outlives_the_server(self):
        self.start()
        self.shows("join")
        self.server_down()
        self.watch(2 * PROBE_SECONDS, "join")
        self.server_up()
        self.watch(PROBE_SECONDS, "join")
        self.assertEqual((len(self.loads()), self.weather_lines()), (1, []))

    def fail_and_recover(self, spoil, mend):
        """One round. Returns the lines, and how many reload attempts and loads of the recovery were sent."""
        self.page.wait_until_loaded()
        self.data_centre.control("DELETE", "/requests")
        mark = self.log.mark()
        before = self.page.loads()
        # Prepared first: a page cannot be driven in bad weather.
        self.page.eval("setTimeout(() => location.href = '/join?again', 1000)")
        spoil()
        self.log.wait_for(NET_TEST, mark)
        self.shows("offline")
        # The failing load has an address of its own; the engine may send it again on each open connection that breaks.
        attempts = len(self.reloads())
        mend()
        waiting.until(lambda: self.page.loads() > before, "the join page after the failure")
        self.page.wait_until_loaded()
        self.shows("join")
        self.log.wait_for(RESTORED, mark)
        return self.weather_lines(mark), attempts, len(self.reloads()) - attempts

    def weathers(self):
        behave, good = self.data_centre.behave, self.data_centre.tls

        def tls(**manner):
            self.data_centre.tls(**manner)
            # An open connection has had its handshake.
            self.data_centre.control("POST", "/disconnect")
        normal = lambda: self.data_centre.control("DELETE", "/behaviour")  # noqa: E731
        return {
            "server down": (self.server_down, self.server_up, None),
            "network down": (self.network_down, self.network_up, None),
            "reset before the answer": (lambda: behave("/join", reset=True), normal, None),
            "unknown authority": (lambda: tls(certificate="unknown-authority"), good,
                                  "Optional(Error Domain=NSOSStatusErrorDomain Code=-67843"),
            "wrong host": (lambda: tls(certificate="wrong-host"), good,
                           "Optional(Error Domain=NSOSStatusErrorDomain Code=-67602"),
            "expired": (lambda: tls(certificate="expired"), good,
                        "Optional(Error Domain=NSOSStatusErrorDomain Code=-67818"),
            "TLS 1.1": (lambda: tls(max_version="1.1"), good, None),
        }

    def reloads(self):
        return [one for one in self.loads() if one["target"] == f"/join?lumora_token={TOKEN}"]

    def round(self, name, spoil, mend, trust):
        lines, attempts, recovering = self.fail_and_recover(spoil, mend)
        self.assertLessEqual(attempts, 1, name)
        self.assertEqual(recovering, 1, name)
        self.assertEqual(lines[-2:], [NET_TEST, RESTORED], name)
        self.assertEqual(len(lines), 2 if trust is None else 3, (name, lines))
        self.assertTrue(trust is None or lines[0].startswith(TRUST + trust), (name, lines))

    def usage(self):
        proc = pathlib.Path(f"/proc/{self.application.pid}")
        return {"descriptors": len(list((proc / "fd").iterdir())), "threads": len(list((proc / "task").iterdir()))}

    def test_every_failed_load_recovers_and_leaves_nothing_behind(self):
        self.start()
        self.shows("join")
        weathers = self.weathers()
        for name, (spoil, mend, trust) in weathers.items():
            self.round(name, spoil, mend, trust)
        before = self.usage()
        for _ in range(int(os.environ.get("LUMORA_ROUNDS", "3"))):
            for name, (spoil, mend, trust) in weathers.items():
                self.round(name, spoil, mend, trust)
        after = self.usage()
        print(f"after {len(weathers)} rounds {before}, at the end {after}")
        self.assertLessEqual(after["descriptors"], before["descriptors"] + 4)
        self.assertLessEqual(after["threads"], before["threads"] + 4)

    def test_an_answer_that_breaks_off_midway(self):
        self.start()
        long_page = PAGE + "<p>more</p>" * 20000
        self.data_centre.page(long_page)
        self.data_centre.behave("/join", truncate_at=100000, reset=True)
        mark = self.log.mark()
        self.page.eval("setTimeout(() => location.href = '/join?again', 1000)")
        self.log.wait_for(NET_TEST, mark)
        self.shows("offline")
        self.data_centre.behave("/join")
        self.shows("join")
        self.assert_restored(mark, [DID_FAIL + "The network connection was lost.", NET_TEST])


class Crashes(WeatherCase):
    def kill(self, but=()):
        pid = waiting.until(lambda: [one for one in web_processes() if one not in but], "a web process")[0]
        os.kill(pid, signal.SIGKILL)
        return pid

    def test_the_join_page_comes_back(self):
        self.start()
        self.shows("join")
        mark = self.log.mark()
        self.data_centre.control("DELETE", "/requests")
        self.kill()
        self.log.wait_for(NET_TEST, mark)
        waiting.until(lambda: self.probes(), "a probe")
        self.shows("join")
        self.page.wait_until_loaded()
        self.assert_restored(mark, [DID_FAIL + "The Web Content process was terminated.", NET_TEST])
        self.assertLessEqual(len(self.loads()), 2)

    def test_the_offline_page_comes_back(self):
        self.server_down()
        self.start(wait_for_page=False)
        self.shows("offline")
        killed = []
        for _ in range(6):
            killed.append(self.kill(but=killed))
        self.shows("offline")
        self.server_up()
        self.shows("join")

    def test_the_misconfiguration_page_comes_back(self):
        self.start({"DC": "com"}, wait_for_page=False)
        killed = []
        for _ in range(3):
            self.shows("misconfiguration")
            killed.append(self.kill(but=killed))
        self.shows("misconfiguration")


class Flood(WeatherCase):
    def test_ten_thousand_messages(self):
        self.start()
        self.shows("join")
        mark = self.log.mark()
        self.page.eval("for (let i = 0; i < 10000; ++i) post('consoleHandler', 'message ' + i)", timeout=60)
        self.page.barrier()
        prefix = "handleMessageFromWebView(message:) : Console Message from WebView: message "
        self.log.wait_for(prefix + "9999", mark, seconds=60)
        self.assertEqual(self.lines_of(mark, prefix), [f"{prefix}{number}" for number in range(10000)])
        self.page.post("sendLumoraTitleToNative", "still here")
        waiting.until(lambda: self.application.title() == "still here", "the title after the flood")
        self.close()
