"""The harness's ways on a Mac, among tools of the tests' own making: windows, keys and the screen."""

import json
import socket
import threading
import unittest
from unittest import mock

from harness_case import MAC, ROOT, HarnessCase, tear_down_module as tearDownModule  # noqa: F401
from harness.macos import desktop


class Hand:
    """Answers as the hand in the application does, and keeps what it was asked."""

    def __init__(self, answer):
        self.asked = []
        self._answer = answer
        self._server = socket.create_server(f"{desktop.SOCKETS}.4242", family=socket.AF_UNIX)
        self._thread = threading.Thread(target=self._serve)
        self._thread.start()

    def _serve(self):
        while True:
            connection, _ = self._server.accept()
            with connection, connection.makefile("rb") as lines:
                line = lines.readline()
                if not line:
                    return
                self.asked.append(json.loads(line))
                try:
                    connection.sendall(json.dumps(self._answer).encode())
                except OSError:  # nobody waits for it
                    pass

    def stop(self):
        with socket.socket(socket.AF_UNIX) as last:
            last.connect(f"{desktop.SOCKETS}.4242")
        self._thread.join()
        self._server.close()


class Desktop(HarnessCase):
    def setUp(self):
        super().setUp()
        sockets = mock.patch.object(desktop, "SOCKETS", str(MAC.root / "hand"))
        sockets.start()
        self.addCleanup(sockets.stop)

    def hand(self, **answer):
        hand = Hand(answer)
        self.addCleanup((MAC.root / "hand.4242").unlink)
        self.addCleanup(hand.stop)
        return hand

    def test_the_application_takes_the_hand_and_no_other_language(self):
        given = desktop.environment(self.home)
        self.assertEqual(given["DYLD_INSERT_LIBRARIES"], "/hand.dylib")
        self.assertEqual(given["HOME"], str(MAC.home))
        self.assertIn("(en)", desktop.ARGUMENTS)

    def test_windows_have_their_titles(self):
        self.hand(windows=[{"number": 7, "title": "Hilfe für Zoë", "key": False}])
        self.assertEqual(desktop.windows_of(4242), {"4242:7": "Hilfe für Zoë"})

    def test_without_a_hand_there_is_no_window_and_nothing_to_press(self):
        self.assertEqual(desktop.windows_of(4242), {})
        with self.assertRaises(AssertionError):
            desktop.press("4242:7", "Return")

    def test_keys_are_pressed_one_by_one(self):
        hand = self.hand(done=True, windows=[{"number": 7, "title": "", "key": True}])
        desktop.press("4242:7", desktop.CLOSE_KEY, "Return")
        desktop.type_text("4242:7", "a+")
        self.assertEqual(hand.asked[:2], [{"do": "activate", "window": 7}, {"do": "windows"}])
        pressed = [(one["window"], one["key"], one["command"]) for one in hand.asked if one["do"] == "press"]
        self.assertEqual(pressed, [(7, "w", True), (7, "\r", False), (7, "a", False), (7, "+", False)])

    def test_what_the_hand_cannot_do_fails_the_test(self):
        self.hand(error="no such window")
        with self.assertRaisesRegex(AssertionError, "no such window"):
            desktop.click("4242:7", 400, 400)

    def test_what_another_application_keeps_behind_it_is_pressed_all_the_same(self):
        hand = self.hand(done=True, windows=[{"number": 7, "title": "", "key": False}])
        with mock.patch.object(desktop, "PATIENCE_SECONDS", 0.1):
            desktop.press("4242:7", "Return")
        self.assertEqual(hand.asked[-1], {"do": "press", "window": 7, "key": "\r", "command": False})

    def test_sockets_of_processes_that_are_gone_are_removed(self):
        (MAC.root / "hand.311").touch()
        (MAC.root / "handle").touch()
        desktop.forget_hands()
        self.assertFalse((MAC.root / "hand.311").exists())
        self.assertTrue((MAC.root / "handle").exists())

    def test_colours_are_counted_in_one_look(self):
        hand = self.hand(pixels=800000, counts=[1200, 0])
        self.assertEqual(desktop.count_pixels("4242:7", ["#4b2e83", "#e2f0f0"]), [1200, 0])
        self.assertEqual(hand.asked[0]["colours"], [[0x4b, 0x2e, 0x83], [0xe2, 0xf0, 0xf0]])
        self.assertTrue(desktop.is_drawn("4242:7"))

    def test_a_close_is_asked_for_and_not_waited_for(self):
        server = socket.create_server(str(MAC.root / "hand.4242"), family=socket.AF_UNIX)
        self.addCleanup((MAC.root / "hand.4242").unlink)
        self.addCleanup(server.close)
        desktop.request_close("4242:7")
        desktop.request_close("4242:7")
        for _ in range(2):
            connection, _ = server.accept()
            with connection:
                self.assertEqual(json.loads(connection.recv(1000)), {"do": "close", "window": 7})

    def test_the_screen_is_photographed(self):
        desktop.photograph(ROOT / "picture.png")
        self.assertEqual(MAC.calls("screencapture"), [["-x", str(ROOT / "picture.png")]])


if __name__ == "__main__":
    unittest.main()
