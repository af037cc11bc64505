import os
import subprocess
import time
import unittest

from datacentre_world import (CURL_PARTIAL, CURL_RECEIVE, CURL_TIMED_OUT, CURL_TLS, World, skip_without, wait_until)

CHECK = "/api/v2/agent/check_update"
IMAGE = "/cdn/OvraMac.dmg"


class Misbehaviour(World):
    images = {"OvraMac.dmg": os.urandom(300000)}

    def test_a_status_for_so_many_requests(self):
        self.behave(CHECK, status=503, times=2)
        self.assertEqual([self.status_of(CHECK) for _ in range(3)], [503, 503, 200])

    def test_body_type_and_headers(self):
        self.behave("/join", status=302, body="gone", content_type="text/x-test", headers={"Location": "https://x.example/"})
        answer = self.fetch("/join", "-i").decode()
        self.assertIn("302", answer.splitlines()[0])
        self.assertIn("Location: https://x.example/", answer)
        self.assertIn("Content-Type: text/x-test", answer)
        self.assertTrue(answer.endswith("gone"))

    def test_a_truncated_body_is_announced_in_full(self):
        for path, bytes_sent in ((IMAGE, 1000), (IMAGE, 0), ("/join", 10)):
            self.behave(path, truncate_at=bytes_sent)
            status, body = self.curl(path)
            self.assertEqual((status, len(body)), (CURL_PARTIAL, bytes_sent))

    def test_a_reset_before_and_within_the_body(self):
        self.behave(IMAGE, reset=True)
        self.assertIn(self.curl(IMAGE)[0], (CURL_RECEIVE, CURL_TLS))
        self.behave(IMAGE, reset=True, truncate_at=2000)
        self.assertEqual(self.curl(IMAGE)[0], CURL_RECEIVE)

    def test_a_hanging_request_is_listed_and_ends_with_its_client(self):
        self.behave(CHECK, hang=True)
        self.assertEqual(self.curl(CHECK, "--max-time", "0.5"), (CURL_TIMED_OUT, b""))
        self.assertEqual([request["path"] for request in self.requests()], [CHECK])

    def test_a_delay_comes_before_the_answer(self):
        self.behave(CHECK, delay_ms=600)
        began = time.monotonic()
        self.assertEqual(self.status_of(CHECK), 200)
        self.assertGreaterEqual(time.monotonic() - began, 0.6)

    def test_a_trickle_arrives_whole(self):
        self.behave(IMAGE, chunk_delay_ms=30, chunk_size=50000)
        began = time.monotonic()
        self.assertEqual(self.fetch(IMAGE), self.images["OvraMac.dmg"])
        self.assertGreaterEqual(time.monotonic() - began, 5 * 0.03)

    def test_every_path_at_once(self):
        self.behave("*", status=500)
        self.assertEqual([self.status_of(path) for path in ("/join", CHECK, IMAGE)], [500] * 3)
        self.control("DELETE", "/behaviour?path=*")
        self.assertEqual(self.status_of("/join"), 200)

    def test_seventy_waiting_connections_block_nobody(self):
        self.behave("/join", hang=True)
        waiting = [subprocess.Popen(["curl", "-sk", "--noproxy", "*", "--max-time", "60", self.base + "/join"],
                                    stdout=subprocess.DEVNULL) for _ in range(70)]
        try:
            wait_until(lambda: len(self.requests()) == 70, "70 requests hang")
            self.assertEqual(self.status_of(CHECK), 200)
        finally:
            for client in waiting:
                client.kill()
                client.wait()

    def test_nonsense_is_refused(self):
        for members in ({"statu": 1}, {"status": 99}, {"status": "503"}, {"hang": 1}, {"headers": []}):
            self.control("PUT", "/behaviour?path=/join", members, expect=400)
        self.control("PUT", "/behaviour", {}, expect=400)


if __name__ == "__main__":
    skip_without("curl")
    unittest.main()
