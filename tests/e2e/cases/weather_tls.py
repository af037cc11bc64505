"""Certificates and versions of TLS that must not be trusted: no request is sent, and the offline page is shown."""

from harness.case import (WEB_SERVER,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.weather import JOIN_URL, NET_TEST, SILENT_PAGE, UNTRUSTED, WeatherCase

FAILED = NET_TEST + JOIN_URL


def untrusted(code, text):
    """The line of a certificate that the trust evaluation rejects."""
    return f'{UNTRUSTED}Optional(Error Domain=NSOSStatusErrorDomain Code={code} "“{WEB_SERVER}” {text}")'


UNKNOWN_AUTHORITY = untrusted(-67843, "certificate is not trusted")
WRONG_HOST = untrusted(-67602, "certificate name does not match input")
EXPIRED = untrusted(-67818, "certificate is expired")


class AtStart(WeatherCase):
    def test_a_certificate_from_an_unknown_authority(self):
        self.data_centre.tls(certificate="unknown-authority")
        self.start_badly([UNKNOWN_AUTHORITY, FAILED])
        probes = self.watch_probes("offline", self.connections)
        self.assertEqual(self.data_centre.requests(), [], "nothing is asked of a server that nobody knows")
        lines = self.weather_lines(self.started)
        self.assertEqual(lines, [UNKNOWN_AUTHORITY, FAILED])
        self.tell("unknown authority at the start", "offline", lines, loads=0, handshakes=probes)
        self.good_again()
        self.comes_back("unknown authority at the start", self.started, lines)


class Loads(WeatherCase):
    def fails_and_comes_back(self, weather, lines, **manner):
        with self.subTest(weather):
            self.page.wait_until_loaded()
            # Prepared first: a page cannot be driven in bad weather.
            self.page.eval("setTimeout(() => location.href = '/join?again', 2000)")
            mark = self.log.mark()
            self.speak_tls(**manner)
            self.forget_requests()
            self.log.wait_for(FAILED, mark)
            self.shows("offline")
            probes = self.watch_probes("offline", self.connections, probes=2)
            self.assertEqual(self.data_centre.requests(), [])
            self.assertEqual(self.weather_lines(mark), lines)
            self.tell(weather, "offline", lines, loads=0, handshakes=probes)
            self.good_again()
            self.comes_back(weather, mark, lines)

    def test_nothing_is_sent_to_a_server_that_cannot_be_trusted(self):
        self.start_well()
        self.fails_and_comes_back("unknown authority", [UNKNOWN_AUTHORITY, FAILED], certificate="unknown-authority")
        self.fails_and_comes_back("wrong host name", [WRONG_HOST, FAILED], certificate="wrong-host")
        self.fails_and_comes_back("expired", [EXPIRED, FAILED], certificate="expired")
        self.fails_and_comes_back("TLS 1.1 only", [FAILED], max_version="1.1")


class Portal(WeatherCase):
    """A network that puts its own page in the place of every server's until somebody signs in."""

    join_page = SILENT_PAGE

    def test_a_captive_portal_is_never_taken_for_the_server(self):
        self.start_well()
        mark = self.log.mark()
        self.data_centre.behave("*", status=200, body="<body>Sign in", content_type="text/html")
        self.speak_tls(certificate="unknown-authority")
        self.forget_requests()
        self.shows("offline")
        probes = self.watch_probes("offline", self.connections)
        self.assertEqual(self.data_centre.requests(), [])
        self.assertEqual(self.weather_lines(mark), [])
        self.tell("captive portal", "offline", [], loads=0, handshakes=probes)
        self.good_again()
        self.comes_back("captive portal", mark, [])
