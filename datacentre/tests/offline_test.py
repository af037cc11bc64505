import http.client
import os
import signal
import ssl
import unittest

from datacentre_world import CURL_REFUSED, DEADLINE, World, skip_without


class Offline(World):
    def open_connection(self):
        trust = ssl.create_default_context(cafile=os.path.join(self.data, "authority.pem"))
        connection = http.client.HTTPSConnection("localhost", self.port, context=trust, timeout=DEADLINE)
        self.addCleanup(connection.close)
        connection.request("GET", "/join")
        self.assertEqual(connection.getresponse().read()[:9].lower(), b"<!doctype")
        return connection

    def assert_dropped(self, connection):
        with self.assertRaises((http.client.RemoteDisconnected, ConnectionError, ssl.SSLError)):
            connection.request("GET", "/join")
            connection.getresponse()

    def test_stopped_and_started_again_at_the_same_port(self):
        for _ in range(3):
            self.control("POST", "/stop")
            self.assertEqual(self.curl("/join")[0], CURL_REFUSED)
            self.assertIs(self.control("GET", "/status")["listening"], False)
            self.control("POST", "/start")
            self.assertEqual(self.status_of("/join"), 200)

    def test_stopping_ends_kept_alive_connections(self):
        connection = self.open_connection()
        self.control("POST", "/stop")
        self.assert_dropped(connection)

    def test_disconnecting_ends_connections_but_not_the_service(self):
        connection = self.open_connection()
        self.control("POST", "/disconnect")
        self.assert_dropped(connection)
        self.assertEqual(self.status_of("/join"), 200)

    def test_commands_work_without_any_body(self):
        connection = http.client.HTTPConnection(self.control_base.removeprefix("http://"), timeout=4)
        self.addCleanup(connection.close)
        connection.putrequest("POST", "/start")  # with neither length nor body
        connection.endheaders()
        self.assertEqual(connection.getresponse().status, 200)

    def test_stop_and_start_twice_do_no_harm(self):
        for path in ("/stop", "/stop", "/start", "/start"):
            self.control("POST", path)
        self.assertEqual(self.status_of("/join"), 200)


class Ending(World):
    def test_an_interrupt_ends_it_cleanly_in_the_midst_of_requests(self):
        self.behave("/join", hang=True)
        trust = ssl.create_default_context(cafile=os.path.join(self.data, "authority.pem"))
        connection = http.client.HTTPSConnection("localhost", self.port, context=trust, timeout=DEADLINE)
        self.addCleanup(connection.close)
        connection.request("GET", "/join")
        self.server.send_signal(signal.SIGINT)
        self.assertEqual(self.server.wait(DEADLINE), 0)

    def tearDown(self):
        """There is nothing left to be tidied up."""


if __name__ == "__main__":
    skip_without("curl")
    unittest.main()
