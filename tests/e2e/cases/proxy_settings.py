"""The proxy settings that a join leaves for the agent."""

import json
import plistlib

from harness import waiting
from harness.case import (CHECK_PATH, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401


class ProxySettings(EndToEndCase):
    def setUp(self):
        super().setUp()
        # The file is written before the check is sent: a check that fails keeps these tests short.
        self.data_centre.behave(CHECK_PATH, status=500)
        self.start()

    def enter(self, host="proxy.customer.example", port=3128, auth=True, user="kim", password="pässwörd & <x>"):
        self.page.post("sendProxyDetailsToNative", json.dumps(
            {"host": host, "port": port, "authRequired": auth, "userName": user, "password": password}))

    def join_and_read(self):
        mark = self.log.mark()
        self.join()
        self.log.wait_for("handleMessageFromWebView(message:) : Unable to update Ovra Tessel Agent", mark)
        self.assertEqual(self.lines_of(mark, "setupProxyDetails"), [])
        if not self.home.connection_settings.exists():
            return None
        content = self.home.connection_settings.read_bytes()
        self.assertTrue(content.startswith(b'<?xml version="1.0" encoding="UTF-8"?>'), content[:60])
        return plistlib.loads(content, fmt=plistlib.FMT_XML)

    def test_none_entered_writes_none(self):
        self.assertIsNone(self.join_and_read())

    def test_entering_alone_writes_none(self):
        self.enter()
        self.page.barrier()
        self.assertFalse(self.home.connection_settings.exists())

    def test_written_with_credentials(self):
        self.enter()
        self.assertEqual(self.join_and_read(), {
            "ProxyIpAddress": "proxy.customer.example", "ProxyServerPort": 3128,
            "UserName": "kim", "Password": "pässwörd & <x>"})

    def test_written_without_credentials(self):
        self.enter(auth=False)
        self.assertEqual(self.join_and_read(), {
            "ProxyIpAddress": "proxy.customer.example", "ProxyServerPort": 3128, "UserName": "", "Password": ""})

    def test_updated_and_older_credentials_kept(self):
        self.enter()
        self.join_and_read()
        self.enter(host="10.1.2.3", port=8080, auth=False, user="", password="")
        self.assertEqual(self.join_and_read(), {
            "ProxyIpAddress": "10.1.2.3", "ProxyServerPort": 8080, "UserName": "kim", "Password": "pässwörd & <x>"})

    def test_foreign_keys_are_kept(self):
        self.home.connection_settings.write_bytes(plistlib.dumps({"Added": [1, {"deep": b"data"}], "UserName": "old"}))
        self.enter()
        self.assertEqual(self.join_and_read(), {
            "Added": [1, {"deep": b"data"}], "ProxyIpAddress": "proxy.customer.example", "ProxyServerPort": 3128,
            "UserName": "kim", "Password": "pässwörd & <x>"})

    def test_settings_outlive_a_join_without_proxy(self):
        settings = {"ProxyIpAddress": "kept", "ProxyServerPort": 1, "UserName": "u", "Password": "p"}
        self.home.connection_settings.write_bytes(plistlib.dumps(settings))
        self.assertEqual(self.join_and_read(), settings)

    def test_limits_of_the_port(self):
        for port, written in ((0, True), (65535, True), (-1, False), (65536, False), (70000, False)):
            with self.subTest(port=port):
                self.home.connection_settings.unlink(missing_ok=True)
                self.enter(port=port)
                settings = self.join_and_read()
                self.assertEqual(settings and settings["ProxyServerPort"], port if written else None)

    def test_host_that_is_empty_or_blank(self):
        self.enter(host="")
        self.assertIsNone(self.join_and_read())
        self.enter(host=" ")
        self.assertEqual(self.join_and_read()["ProxyIpAddress"], " ")

    def test_file_that_is_no_dictionary_is_left_alone(self):
        self.enter()
        for content in (b"", b"not a property list", plistlib.dumps(["a", "list"])):
            with self.subTest(content=content[:20]):
                self.home.connection_settings.write_bytes(content)
                mark = self.log.mark()
                self.join()
                self.log.wait_for("handleMessageFromWebView(message:) : Unable to update Ovra Tessel Agent", mark)
                self.assertEqual(self.home.connection_settings.read_bytes(), content)
                self.assertEqual(self.lines_of(mark, "setupProxyDetails"), [])

    def test_file_that_cannot_be_written_has_its_line(self):
        content = plistlib.dumps({"ProxyIpAddress": "kept"})
        self.home.connection_settings.write_bytes(content)
        self.read_only(self.home.connection_settings)
        self.enter()
        mark = self.log.mark()
        self.join()
        self.log.wait_for("handleMessageFromWebView(message:) : Unable to update Ovra Tessel Agent", mark)
        self.assertEqual(self.lines_of(mark, "setupProxyDetails"), [
            "setupProxyDetails() : Unable to write connection settings to ConnectionSettings.plist."])
        self.assertEqual(self.home.connection_settings.read_bytes(), content)

    def test_settings_are_there_before_the_agent_starts(self):
        self.data_centre.control("DELETE", "/behaviour")
        self.data_centre.behave(CHECK_PATH, hang=True)
        self.enter()
        self.join()
        waiting.until(lambda: self.data_centre.requests(CHECK_PATH), "the check")
        self.assertEqual(plistlib.loads(self.home.connection_settings.read_bytes())["ProxyServerPort"], 3128)
