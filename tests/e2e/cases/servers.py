"""Which server a join goes to: the data centre's, the join's own, the customer's own domain."""

from harness import agent
from harness.data_centre import forwarded_port
from harness.case import (CHECK_PATH, TOKEN, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401

CUSTOM = "support.customer.example"
SERVICE_DOMAIN_PATH = "/api/v2/service_domain"


class Servers(EndToEndCase):
    def custom_domain(self, name):
        self.data_centre.answer(service_domain={"representation": {"service_domain": name}})

    def test_page_is_asked_for_with_the_token(self):
        self.start()
        page = self.data_centre.requests("/join")[0]
        self.assertEqual((page["host"], page["target"]), ("com.ovratessel.example", f"/join?lumora_token={TOKEN}"))
        domain, = self.data_centre.requests(SERVICE_DOMAIN_PATH)
        self.assertEqual(domain["target"], f"{SERVICE_DOMAIN_PATH}?src=rs&lumora_token={TOKEN}")

    def test_without_a_token_nothing_is_asked_for_it(self):
        self.start({"DC": "com", "pathForLumora": "join"})
        self.wait_for_launch_checks()
        self.assertEqual(self.data_centre.requests("/join")[0]["target"], "/join")
        self.assertEqual(self.data_centre.requests(SERVICE_DOMAIN_PATH), [])
        self.log.wait_for("+[Utils parseCommandLineArgs] : Lumora Token is null, skipping getCustomDomain call.")
        self.join()
        self.wait_for_install()
        self.assert_join_details(token="(null)")

    def test_custom_domain_serves_the_page_and_the_request_page_join(self):
        self.custom_domain(CUSTOM)
        self.start()
        self.wait_for_launch_checks()
        self.assertEqual(self.data_centre.requests("/join")[0]["host"], CUSTOM)

        self.page.post("sendRRSessionKeyToNative", "123456789")
        self.wait_for_install()

        self.assertEqual(self.data_centre.requests(CHECK_PATH)[0]["host"], CUSTOM)
        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details(server=CUSTOM, email="(null)", custom="true"))

    def test_join_page_join_goes_back_to_the_configured_server(self):
        self.custom_domain(CUSTOM)
        self.start()
        self.wait_for_launch_checks()
        self.join()
        self.wait_for_install()
        self.assertEqual(self.data_centre.requests(CHECK_PATH)[0]["host"], "com.ovratessel.example")
        self.assert_join_details(custom="true")

    def test_custom_domain_in_capitals(self):
        self.custom_domain(CUSTOM.title())
        self.start()
        self.wait_for_launch_checks()
        self.assertEqual(self.data_centre.requests("/join")[0]["host"].lower(), CUSTOM)
        self.join(dc=None)
        self.wait_for_install()
        self.assertEqual(self.data_centre.requests(CHECK_PATH)[0]["host"], "com.ovratessel.example")

    def test_custom_domain_at_another_port(self):
        server = f"{CUSTOM}:{forwarded_port(self)}"
        self.custom_domain(server)
        self.start()
        self.wait_for_launch_checks()
        self.assertEqual(self.data_centre.requests("/join")[0]["host"], server)
        self.page.post("sendRRSessionKeyToNative", "123456789")
        self.wait_for_install()
        self.assertEqual(self.data_centre.requests(CHECK_PATH)[0]["host"], server)
        self.assert_join_details(server=server, email="(null)", custom="true")

    def test_custom_domain_equal_to_the_configured_server_is_none(self):
        self.custom_domain("com.ovratessel.example")
        self.start()
        self.wait_for_launch_checks()
        self.join()
        self.wait_for_install()
        self.assert_join_details(custom="false")

    def test_service_domain_that_makes_no_sense_changes_nothing(self):
        for answer in ("", "{", "[]", "[" * 100000, {"representation": []}, {"representation": {"service_domain": 5}},
                       {"representation": {"service_domain": None}}, {"representation": {}}, {}):
            with self.subTest(answer=str(answer)[:40]):
                self.data_centre.answer(service_domain=answer)
                self.data_centre.control("DELETE", "/requests")
                self.start()
                self.assertEqual(self.data_centre.requests("/join")[0]["host"], "com.ovratessel.example")
                self.close()

    def test_join_names_its_own_data_centre(self):
        self.start()
        self.wait_for_launch_checks()
        self.join(dc="eu")
        self.wait_for_install()
        self.assertEqual(self.data_centre.requests(CHECK_PATH)[0]["host"], "eu.ovratessel.example")
        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details(server="eu.ovratessel.example", dc="eu"))

    def test_join_with_a_null_data_centre_uses_the_configured_one(self):
        self.start()
        self.wait_for_launch_checks()
        self.join(dc=None)
        self.wait_for_install()
        self.assert_join_details()

    def test_unknown_data_centre_is_a_developers_machine(self):
        self.start()
        self.wait_for_launch_checks()
        mark = self.log.mark()
        self.join(dc="somebody")
        self.wait_for_install()
        self.assert_join_details(server="somebody.dev.ovratessel.example", dc="somebody")
        self.assertEqual(self.lines_of(mark, "-[ApiHandler findServerNameUsingDC:]"), [
            "-[ApiHandler findServerNameUsingDC:]  Dc = somebody , WebServerName = somebody.dev.ovratessel.example"])

    def test_empty_data_centre_is_looked_up_too(self):
        self.start()
        self.wait_for_launch_checks()
        mark = self.log.mark()
        self.join(dc="")
        self.log.wait_for("-[ApiHandler findServerNameUsingDC:] : *** DcName is nil or empty.", mark)
        self.log.wait_for("handleMessageFromWebView(message:) : Unable to update Ovra Tessel Agent", mark)
        self.assertFalse(self.home.join_details.exists())
