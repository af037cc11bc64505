"""Joins that must not lead to an agent, each with its exact line or its silence."""

import json

from harness import agent, waiting
from harness.case import (CHECK_PATH, EMAIL, KEY, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401

BRIDGE = "handleMessageFromWebView(message:) : "
CHECK = "-[ApiHandler checkOvraTesselUpdateWithCompletion:]_block_invoke : "
UNDECODABLE = BRIDGE + BRIDGE + "Error Unable to decode the join details"
WRONG_KEY = BRIDGE + "Invalid Session Key from Join Page"
WRONG_REQUEST_KEY = BRIDGE + "Invalid Session Key from Raise a Request Page"
FAILED = BRIDGE + "Unable to update Ovra Tessel Agent"


class Refusals(EndToEndCase):
    def setUp(self):
        super().setUp()
        self.start()
        self.wait_for_launch_checks()
        self.data_centre.control("DELETE", "/requests")
        self.mark = self.log.mark()

    def lines(self):
        return self.lines_of(self.mark, BRIDGE, "setupProxyDetails", "-[ApiHandler checkOvraTessel", "-[OvraAppUpgrader")

    def assert_nothing_was_asked(self):
        self.page.barrier()
        self.assertEqual(self.data_centre.requests(CHECK_PATH), [])
        self.assertEqual(agent.records(self.home), [])
        self.assertFalse(self.home.join_details.exists())

    def test_key_that_is_too_short_or_too_long(self):
        for key in (12345678, 12345678901, 0, -1234567, 1):
            self.join(key=key)
        self.assert_nothing_was_asked()
        expected = []
        for key in (12345678, 12345678901, 0, -1234567, 1):
            expected += [f"{BRIDGE}Details Shared for Joining a session - email: {EMAIL}, sessionid: {key}", WRONG_KEY]
        self.assertEqual(self.lines(), expected)

    def test_refused_key_is_the_active_key_all_the_same(self):
        self.join(key=12345678)
        self.assertEqual(self.page.ask("getActiveSessionKey", "receiveActiveSessionKey"), ["12345678"])

    def test_keys_at_the_limits_are_accepted(self):
        for count, key in enumerate((123456789, 1234567890, -12345678), start=1):
            self.join(key=key)
            waiting.until(lambda: len(self.data_centre.requests(CHECK_PATH)) == count, f"the check for {key}")
        self.assertNotIn(WRONG_KEY, self.lines())

    def test_request_page_key_that_is_too_short_or_too_long(self):
        keys = ["", "12345678", "12345678901", "👨‍👩‍👧‍👦" * 8, "é" * 11, "e\u0301" * 8]
        for key in keys:
            self.page.post("sendRRSessionKeyToNative", key)
        self.assert_nothing_was_asked()
        self.assertEqual(self.lines(), [WRONG_REQUEST_KEY] * len(keys))

    def test_request_page_key_is_counted_as_the_user_sees_it(self):
        keys = ["👨‍👩‍👧‍👦" * 9, "e\u0301" * 10, "🇨🇭🇩🇪🇫🇷🇮🇹🇦🇹🇱🇮🇪🇸🇵🇹🇳🇱", "ABCDEFGHI"]
        for count, key in enumerate(keys, start=1):
            self.page.post("sendRRSessionKeyToNative", key)
            waiting.until(lambda: len(self.data_centre.requests(CHECK_PATH)) == count, f"the check for {key}")
        self.assertNotIn(WRONG_REQUEST_KEY, self.lines())

    def test_body_that_does_not_decode(self):
        bodies = ["", "{", "null", "[]", "{}", "123456789", '"text"',
                  json.dumps({"sessionKey": KEY}), json.dumps({"email": EMAIL}),
                  json.dumps({"sessionKey": str(KEY), "email": EMAIL}),
                  json.dumps({"sessionKey": None, "email": EMAIL}),
                  json.dumps({"sessionKey": 123456789.5, "email": EMAIL}),
                  '{"sessionKey": 99999999999999999999, "email": "a@b.example"}',
                  json.dumps({"sessionKey": KEY, "email": None}),
                  json.dumps({"sessionKey": KEY, "email": 5}),
                  json.dumps({"sessionKey": KEY, "email": EMAIL, "dc": 5}),
                  json.dumps({"sessionkey": KEY, "Email": EMAIL}),
                  "[" * 100000]
        for body in bodies:
            self.page.post("sendJoinDetailsToNative", body)
        self.assert_nothing_was_asked()
        self.assertEqual(self.lines(), [UNDECODABLE] * len(bodies))

    def test_body_that_is_no_string_is_passed_over_in_silence(self):
        for name in ("sendJoinDetailsToNative", "sendRRSessionKeyToNative"):
            for body in (KEY, {"sessionKey": KEY, "email": EMAIL}, None, True, [KEY]):
                self.page.post(name, body)
            self.page.post_expression(name, "undefined")
            self.page.post_expression(name, "new String('123456789')")
        self.assert_nothing_was_asked()
        self.assertEqual(self.lines(), [])

    def test_check_that_answers_500(self):
        self.data_centre.behave(CHECK_PATH, status=500)
        self.join()
        self.log.wait_for(FAILED, self.mark)
        check = "https://com.ovratessel.example" + self.data_centre.requests(CHECK_PATH)[0]["target"]
        self.assertEqual(self.lines()[1:], [
            CHECK + f"NSURLConnection failed for this request : {check} and status code : 500", FAILED])
        self.assertEqual(agent.records(self.home), [])
        self.assertFalse(self.home.join_details.exists())

    def test_check_that_answers_500_is_silent_for_the_request_page(self):
        self.data_centre.behave(CHECK_PATH, status=500)
        self.page.post("sendRRSessionKeyToNative", "123456789")
        self.log.wait_for_start(CHECK + "NSURLConnection failed for this request : ", self.mark)
        self.page.barrier()
        self.assertEqual(self.lines_of(self.mark, BRIDGE), [])
        self.assertFalse(self.home.join_details.exists())

    def assert_transport_failure(self):
        self.join(dc="eu")
        self.log.wait_for(FAILED, self.mark)
        lines = self.lines_of(self.mark, CHECK, FAILED)
        self.assertEqual(len(lines), 2, lines)
        self.assertTrue(lines[0].startswith(CHECK + "Check Update failed : "), lines[0])
        self.assertFalse(self.home.join_details.exists())

    def test_check_whose_certificate_is_not_trusted(self):
        for certificate in ("unknown-authority", "wrong-host", "expired"):
            with self.subTest(certificate):
                self.data_centre.tls(certificate=certificate, host="eu.ovratessel.example")
                self.mark = self.log.mark()
                self.assert_transport_failure()
        self.assertEqual(self.data_centre.requests(CHECK_PATH), [])

    def test_check_over_old_tls(self):
        self.data_centre.tls(max_version="1.1", host="eu.ovratessel.example")
        self.assert_transport_failure()
        self.assertEqual(self.data_centre.requests(CHECK_PATH), [])

    def test_check_that_is_reset(self):
        self.data_centre.behave(CHECK_PATH, reset=True)
        self.assert_transport_failure()

    def test_a_good_join_follows_a_failed_one(self):
        self.data_centre.behave(CHECK_PATH, status=503, times=1)
        self.join()
        self.log.wait_for(FAILED, self.mark)
        self.join()
        self.wait_for_install(self.mark)
        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details())
