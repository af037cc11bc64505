"""The page's 18 messages: what they answer, what they keep, and that no body harms."""

import json

from harness import preferences, waiting
from harness.case import (EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401

BRIDGE = "handleMessageFromWebView(message:) : "
CONSOLE = BRIDGE + "Console Message from WebView: "
NO_CUSTOMER = BRIDGE + "Customer Details Not Initialized."
NO_PROXY = "handleMessageFromWebView(message:)Customer Details Not Initialized."
NO_JOIN = BRIDGE + BRIDGE + "Error Unable to decode the join details"
WRONG_REQUEST_KEY = BRIDGE + "Invalid Session Key from Raise a Request Page"

NO_STRINGS = [5, 0.5, True, False, None, {"a": 1}, [], ["a"], {}]
NOT_JSON = ["", "{", "nul", "\ufeff{}", "{}x", '{"a":}', "[" * 100000]
NO_OBJECT = ["null", "[]", "5", '"text"', "true"]

# Each message with the line that a string it cannot use leaves; None is silence.
BAD_STRING_LINES = {
    "sendCustomerDetailsToNative": NO_CUSTOMER,
    "sendProxyDetailsToNative": NO_PROXY,
    "sendJoinDetailsToNative": NO_JOIN,
}
STRING_MESSAGES = ["sendRRSessionDigestToNative", "sendCustomerDetailsToNative", "sendProxyDetailsToNative",
                   "sendRRSessionKeyToNative", "sendJoinDetailsToNative", "sendJoinReportAbuseLinkToNative",
                   "consoleHandler"]
# Messages whose body is not looked at, with the call that answers them.
ANSWERS = {
    "getRRSessionDigest": "receiveRRSessionDigest",
    "getCustomerDetails": "receiveCustomerDetails",
    "getProxyDetails": "receiveProxyDetails",
    "getActiveSessionKey": "receiveActiveSessionKey",
    "getSystemOs": "receiveSystemOs",
    "lumoraLoaded": None,
    "clearRRSessionDigest": None,
    "clearLumoraDigest": None,
    "clearActiveSessionKey": None,
    "openProxy": None,
}

CUSTOMER = {"name": "Zoë Müller-Ðặng 😀", "company": "株式会社オブラ", "email": "zoë@müller.example",
            "language": "de-CH"}
PROXY = {"host": "прокси.example", "port": 3128, "authRequired": True, "userName": "użytkownik", "password": "p\"\\/ä\n😀"}


class Messages(EndToEndCase):
    def setUp(self):
        super().setUp()
        self.start()
        self.wait_for_launch_checks()
        self.mark = self.log.mark()

    def lines(self):
        return self.lines_of(self.mark, "handleMessageFromWebView", "setupProxyDetails", "executeJavaScript")

    def preferences(self):
        return preferences.read(self.home)

    def test_fresh_answers(self):
        self.assertEqual(self.page.ask("getRRSessionDigest", "receiveRRSessionDigest"), [""])
        self.assertEqual(self.page.ask("getCustomerDetails", "receiveCustomerDetails"),
                         [{"name": None, "company": None, "email": None, "language": "en"}])
        self.assertEqual(self.page.ask("getProxyDetails", "receiveProxyDetails"),
                         [{"host": None, "port": None, "authRequired": None, "userName": None, "password": None}])
        self.assertEqual(self.page.ask("getSystemOs", "receiveSystemOs"), ["mac"])
        self.page.post("getActiveSessionKey")
        self.page.barrier()
        self.assertEqual(self.page.received("receiveActiveSessionKey"), [])
        self.assertEqual(self.lines(), [BRIDGE + "No Session id is active."])

    def test_digest_is_kept_and_cleared(self):
        self.page.post("sendRRSessionDigestToNative", "dïgest-😀-1")
        self.assertEqual(self.page.ask("getRRSessionDigest", "receiveRRSessionDigest"), ["dïgest-😀-1"])
        self.assertEqual(self.preferences()["RRSessionDigest"], "dïgest-😀-1")
        self.page.post("clearRRSessionDigest")
        self.assertEqual(self.page.ask("getRRSessionDigest", "receiveRRSessionDigest"), [""])
        self.assertEqual(self.preferences()["RRSessionDigest"], "")

    def test_digest_with_a_quote_breaks_only_its_own_reply(self):
        self.page.post("sendRRSessionDigestToNative", 'a"b')
        self.page.post("getRRSessionDigest")
        self.log.wait_for_start("executeJavaScript(_:)Error sending message to webView: ", self.mark)
        self.assertEqual(self.page.received("receiveRRSessionDigest"), [])
        self.page.barrier()

    def test_customer_details_keep_every_character(self):
        self.page.post("sendCustomerDetailsToNative", json.dumps(CUSTOMER, ensure_ascii=False))
        self.assertEqual(self.page.ask("getCustomerDetails", "receiveCustomerDetails"), [CUSTOMER])
        stored = self.preferences()
        self.assertEqual({key: stored[key] for key in CUSTOMER}, CUSTOMER)

    def test_empty_language_reads_as_english(self):
        self.page.post("sendCustomerDetailsToNative", json.dumps(CUSTOMER | {"language": ""}))
        self.assertEqual(self.page.ask("getCustomerDetails", "receiveCustomerDetails"), [CUSTOMER | {"language": "en"}])
        self.assertEqual(self.preferences()["language"], "")

    def test_customer_answer_lists_its_keys_in_order(self):
        self.page.eval("window.order = null;"
                       "window.receiveCustomerDetails = details => { window.order = Object.keys(details); };")
        self.page.post("getCustomerDetails")
        order = waiting.until(lambda: self.page.eval("return window.order"), "the answer")
        self.assertEqual(order, ["name", "company", "email", "language"])

    def test_proxy_details_keep_their_types(self):
        self.page.post("sendProxyDetailsToNative", json.dumps(PROXY, ensure_ascii=False))
        self.assertEqual(self.page.ask("getProxyDetails", "receiveProxyDetails"), [PROXY])
        stored = self.preferences()
        self.assertEqual({key: stored[key] for key in PROXY}, PROXY)
        self.assertIs(stored["authRequired"], True)

    def test_active_key_is_kept_and_cleared(self):
        self.join(key=12345678)
        self.assertEqual(self.page.ask("getActiveSessionKey", "receiveActiveSessionKey"), ["12345678"])
        self.assertEqual(self.preferences()["activeSessionKey"], 12345678)
        self.page.post("clearActiveSessionKey")
        self.assertEqual(self.page.ask("getActiveSessionKey", "receiveActiveSessionKey"), [""])
        self.assertNotIn(BRIDGE + "No Session id is active.", self.lines())

    def test_title_reaches_the_window_and_the_preferences(self):
        title = "Hilfe für Zoë — 助け 😀"
        self.page.post("sendLumoraTitleToNative", title)
        waiting.until(lambda: self.application.title() == title, "the window's title")
        self.assertEqual(self.preferences()["WindowTitle"], title)
        self.page.post("sendLumoraTitleToNative", "")
        waiting.until(lambda: self.application.title() in ("", "N/A"), "the empty title")

    def test_title_that_is_no_string_brings_the_stored_one_or_the_products(self):
        for body in NO_STRINGS:
            self.page.post("sendLumoraTitleToNative", body)
        waiting.until(lambda: self.application.title() == "Ovra Tessel - Lumora", "the product's title")
        self.page.barrier()
        self.assertNotIn("WindowTitle", self.preferences())
        self.page.post("sendLumoraTitleToNative", "stored")
        waiting.until(lambda: self.application.title() == "stored", "the stored title")

    def test_cleared_token_is_an_empty_one(self):
        self.page.post("clearLumoraDigest")
        self.page.barrier()
        self.assertEqual(self.preferences()["LumoraToken"], "")

    def test_console_lines(self):
        self.page.post("consoleHandler", "plain")
        self.page.post("consoleHandler", "ünï ☎ 😀 %s %n %d")
        self.page.post("consoleHandler", "")
        self.page.post("consoleHandler", "two\nlines")
        self.log.wait_for("lines", self.mark)
        lines = self.log.lines_since(self.mark)
        start = lines.index(CONSOLE + "plain")
        self.assertEqual(lines[start:start + 5],
                         [CONSOLE + "plain", CONSOLE + "ünï ☎ 😀 %s %n %d", CONSOLE, CONSOLE + "two", "lines"])

    def test_report_abuse_link_that_is_none_or_has_no_handler(self):
        for body in ("", "not a url", "http://[", "https://abuse.example/report", "nosuchscheme:x", "http://a b/"):
            self.page.post("sendJoinReportAbuseLinkToNative", body)
        self.page.barrier()
        self.assertEqual(self.lines(), [])

    def test_names_in_another_letter_case_do_not_exist(self):
        missing = self.page.eval("return ['getsystemos', 'GetSystemOs', 'GETSYSTEMOS', 'jsToNative', '']"
                                 ".filter(n => window.webkit.messageHandlers[n] === undefined).length")
        self.assertEqual(missing, 5)

    def test_every_name_is_there(self):
        names = [*ANSWERS, *STRING_MESSAGES, "sendLumoraTitleToNative"]
        self.assertEqual(len(names), 18)
        there = self.page.eval(f"return {json.dumps(names)}"
                               ".filter(n => window.webkit.messageHandlers[n] !== undefined)")
        self.assertEqual(there, names)


class BadBodies(EndToEndCase):
    def setUp(self):
        super().setUp()
        self.start()
        self.wait_for_launch_checks()
        self.page.barrier()
        self.mark = self.log.mark()
        self.before = self.stored()

    def stored(self):
        return preferences.snapshot(self.home)

    def lines(self):
        return self.lines_of(self.mark, "handleMessageFromWebView", "setupProxyDetails", "executeJavaScript")

    def test_no_string_where_a_string_is_needed(self):
        for name in STRING_MESSAGES:
            for body in NO_STRINGS:
                self.page.post(name, body)
            for expression in ("undefined", "NaN", "new Date(0)", "new String('x')", "12345678901234567890n",
                               "new Uint8Array(4)", "new Map([[1, 2]])"):
                self.page.eval(f"try {{ post({json.dumps(name)}, {expression}) }} catch (e) {{}}")
        self.page.barrier()
        self.assertEqual(self.lines(), [])
        self.assertEqual(self.stored(), self.before)

    def test_strings_that_do_not_decode(self):
        missing = {
            "sendCustomerDetailsToNative": [json.dumps({k: v for k, v in CUSTOMER.items() if k != key})
                                            for key in CUSTOMER] + [json.dumps(CUSTOMER | {"name": 5})],
            "sendProxyDetailsToNative": [json.dumps({k: v for k, v in PROXY.items() if k != key}) for key in PROXY]
            + [json.dumps(PROXY | change) for change in ({"port": "3128"}, {"port": 1.5}, {"authRequired": "true"},
                                                         {"authRequired": 1}, {"password": None})],
            "sendJoinDetailsToNative": ['{"sessionKey":123456789}', '{"email":"a@b.example"}'],
        }
        for name, line in BAD_STRING_LINES.items():
            with self.subTest(name):
                self.mark = self.log.mark()
                bodies = NOT_JSON + NO_OBJECT + missing[name]
                for body in bodies:
                    self.page.post(name, body)
                self.page.barrier()
                self.assertEqual(self.lines(), [line] * len(bodies))
        self.assertEqual(self.stored(), self.before)

    def test_bodies_of_the_others_are_not_looked_at(self):
        bodies = [*NO_STRINGS, "", "{", "x" * 1000]
        for name, reply in ANSWERS.items():
            before = len(self.page.received(reply)) if reply else 0
            for body in bodies:
                self.page.post(name, body)
            self.page.barrier()
            # The barrier is itself one more answer of its kind.
            if name == "getActiveSessionKey":
                self.assertEqual(self.page.received(reply), [])
            elif reply:
                extra = 1 if name == "getSystemOs" else 0
                self.assertEqual(len(self.page.received(reply)), before + len(bodies) + extra, name)
        self.assertEqual(self.lines(), [BRIDGE + "No Session id is active."] * len(bodies))

    def test_bodies_of_a_mebibyte_arrive_whole(self):
        size = 1 << 20
        self.page.post_expression("sendRRSessionDigestToNative", f"'d'.repeat({size})")
        self.page.eval("window.received.length = 0")
        self.page.post("getRRSessionDigest")
        waiting.until(lambda: self.page.eval(
            "return window.received.filter(r => r.name === 'receiveRRSessionDigest').map(r => r.args[0].length)")
            == [size], "the digest's reply")
        self.page.eval("window.received.length = 0")

        self.page.post_expression("consoleHandler", f"'ü'.repeat({size // 2}) + '|end'")
        self.log.wait_for(CONSOLE + "ü" * (size // 2) + "|end")
        self.page.post_expression("sendCustomerDetailsToNative", "JSON.stringify({name: 'n'.repeat(" + str(size) + "),"
                                  "company: '', email: '', language: ''})")
        self.page.post_expression("sendRRSessionKeyToNative", f"'9'.repeat({size})")
        for name in ("sendJoinDetailsToNative", "sendProxyDetailsToNative"):
            self.page.post_expression(name, f"'['.repeat({size})")
        self.page.post_expression("sendJoinReportAbuseLinkToNative", f"'https://x/' + ' '.repeat({size})")
        self.page.barrier()
        self.assertEqual(self.lines_of(0, NO_JOIN, NO_PROXY, WRONG_REQUEST_KEY), [WRONG_REQUEST_KEY, NO_JOIN, NO_PROXY])
