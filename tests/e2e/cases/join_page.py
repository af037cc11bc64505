"""The data centre's real join page, used as a person uses it."""

import json
import plistlib

from harness import agent, desktop, waiting
from harness.case import (EMAIL, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401


class JoinPage(EndToEndCase):
    bare_page = False

    def setUp(self):
        super().setUp()
        self.start()
        self.wait_for_launch_checks()

    def enter(self, **fields):
        for name, text in fields.items():
            self.page.eval(f"const field = document.getElementById({json.dumps(name.replace('_', '-'))});"
                           f"field.value = {json.dumps(text)}; field.dispatchEvent(new Event('input'));")

    def press(self, button):
        self.page.eval(f"document.getElementById({json.dumps(button)}).click()")

    def test_join_form_starts_the_agent(self):
        self.enter(session_key="123456789", join_email=EMAIL)
        self.press("join-submit")
        self.wait_for_install()
        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details())
        waiting.until(lambda: self.page.eval(
            "return document.getElementById('active-key').textContent.replace(/\\D/g, '')") == "123456789",
                      "the active key on the page")

    def test_typing_at_the_keyboard_joins(self):
        window, = self.application.windows()
        desktop.activate(window)
        for field, text in (("session-key", "1234567890"), ("join-email", EMAIL)):
            self.page.eval(f"document.getElementById('{field}').focus()")
            desktop.type_text(window, text)
            waiting.until(lambda: self.page.eval(
                f"return document.getElementById('{field}').value.replaceAll(' ', '')") == text, f"{text} in its field")
        desktop.press(window, "Return")
        self.wait_for_install()
        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details(key=1234567890))

    def test_request_form_starts_the_agent_with_the_name(self):
        self.enter(customer_name="Zoë Muster", customer_email=EMAIL, request_key="REQ 456 789")
        self.press("request-submit")
        self.wait_for_install()
        record, = agent.wait_for_records(self.home)
        self.assert_agent_was_given(record, self.assert_join_details(key="REQ456789", email="Zoë Muster"))
        waiting.until(lambda: "REQ456789" in self.page.eval(
            "return document.getElementById('last-request-text').textContent"), "the request on the page")

    def test_connection_form_leaves_the_agents_proxy_settings(self):
        self.enter(proxy_host="proxy.customer.example", proxy_port="3128")
        self.press("proxy-auth")
        self.enter(proxy_user="kim", proxy_password="pässwörd")
        self.press("proxy-submit")
        self.enter(session_key="123456789", join_email=EMAIL)
        self.press("join-submit")
        self.wait_for_install()
        self.assertEqual(plistlib.loads(self.home.connection_settings.read_bytes()), {
            "ProxyIpAddress": "proxy.customer.example", "ProxyServerPort": 3128,
            "UserName": "kim", "Password": "pässwörd"})

    def test_page_finds_its_details_again_after_a_restart(self):
        self.enter(customer_name="Zoë Muster", customer_company="株式会社オブラ", customer_email=EMAIL)
        self.press("details-submit")
        self.page.barrier()
        self.restart()
        values = waiting.until(lambda: self.page.eval(
            "return ['customer-name', 'customer-company', 'customer-email', 'join-email']"
            ".map(id => document.getElementById(id).value)")[0] and self.page.eval(
            "return ['customer-name', 'customer-company', 'customer-email', 'join-email']"
            ".map(id => document.getElementById(id).value)"), "the details on the page")
        self.assertEqual(values, ["Zoë Muster", "株式会社オブラ", EMAIL, EMAIL])

    def test_page_titles_the_window(self):
        waiting.until(lambda: self.application.title() == "Ovra Tessel Lumora – Remote support", "the page's title")
