"""Settings that lead nowhere: the misconfiguration page, and no request for a page. Odd ones that lead somewhere do."""

import urllib.parse

from harness import preferences
from harness.case import set_up_module as setUpModule, tear_down_module as tearDownModule  # noqa: F401
from harness.weather import NO_TOKEN, PROBE_SECONDS, WeatherCase

NOT_CONFIGURED = ["viewDidLoad() : ################ Critical ################",
                  " webServerName is null or empty — Application is not configured correctly."]
# An address that does not parse is no news of its own: the page says it.
NOT_AN_ADDRESS = []


class BadSettings(WeatherCase):
    def misconfigured(self, weather, lines, arguments=None):
        with self.subTest(weather):
            self.forget_requests()
            self.start(arguments, wait_for_page=False)
            self.shows("misconfiguration")
            self.wait_for_launch_checks()
            self.assertEqual(self.join_requests(), [])
            self.assertEqual(self.weather_lines(self.started), lines)
            self.tell(weather, "misconfiguration", lines, **self.counts())

    def test_a_path_that_is_missing_or_blank(self):
        self.misconfigured("no path", NOT_CONFIGURED, {"DC": "com"})
        self.misconfigured("a blank path", NOT_CONFIGURED, {"DC": "com", "pathForLumora": " \t "})
        # Nobody watches: it stays as it is.
        self.watch(5 * PROBE_SECONDS, "misconfiguration")
        self.assertEqual(self.join_requests(), [])
        self.assertEqual(self.weather_lines(self.started), NOT_CONFIGURED)

    def test_a_server_name_of_blanks(self):
        self.data_centre.answer(service_domain={"representation": {"service_domain": " \t\n"}})
        self.misconfigured("a server name of blanks", NOT_CONFIGURED)

    def test_tokens_with_which_there_is_no_address(self):
        for weather, token in {"a token with a space": "a b", "a token with quotes": '"a"',
                               "a token with a stray percent sign": "100%",
                               "a token with a line feed": "a\nb"}.items():
            self.misconfigured(weather, NOT_AN_ADDRESS, NO_TOKEN | {"LumoraToken": token})
        self.watch(2 * PROBE_SECONDS, "misconfiguration")
        self.assertEqual(self.join_requests(), [])

    def test_odd_tokens_that_are_addresses_arrive_as_they_are(self):
        for token in ("it's", "%41%20%0A", "a/b=c&d"):
            with self.subTest(token):
                self.start(NO_TOKEN | {"LumoraToken": token})
                # The engine may spell a character another way, with or without percent signs: the same address.
                self.assertEqual(urllib.parse.unquote(self.loads()[-1]["target"]),
                                 "/join?lumora_token=" + urllib.parse.unquote(token))
                self.shows("join")

    def test_a_stored_title_that_is_no_string_harms_nothing(self):
        for title in (5, ["a"], {"a": "b"}):
            with self.subTest(title):
                preferences.write(self.home, {"WindowTitle": title})
                self.start()
                self.shows("join")
                self.assertEqual(self.application.title(), "Ovra Tessel Lumora")
                self.assertEqual(self.weather_lines(self.started), [])
