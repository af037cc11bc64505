import os
import subprocess
import unittest

from datacentre_world import CURL_CERTIFICATE, CURL_TIMED_OUT, CURL_TLS, World, skip_without, wait_until

OLD_CLIENT = ("--tlsv1.0", "--tls-max", "1.1", "--ciphers", "DEFAULT:@SECLEVEL=0")


class Tls(World):
    def test_a_strict_client_accepts_the_good_certificate_only(self):
        for name, expected in (("good", 0), ("unknown-authority", CURL_CERTIFICATE), ("wrong-host", CURL_CERTIFICATE),
                               ("expired", CURL_CERTIFICATE), ("good", 0)):
            self.control("PUT", "/tls", {"certificate": name})
            self.assertEqual(self.curl("/join")[0], expected, name)

    def test_s_client_verifies_the_chain(self):
        done = subprocess.run(["openssl", "s_client", "-connect", f"127.0.0.1:{self.port}", "-servername", "localhost",
                               "-verify_hostname", "localhost", "-verify_return_error",
                               "-CAfile", os.path.join(self.data, "authority.pem")],
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn("Verify return code: 0 (ok)", done.stdout)

    def test_gnutls_judges_alike(self):
        # In sanitized builds GLib itself, built without, would be reported.
        quiet = {**os.environ, "TSAN_OPTIONS": "report_bugs=0", "ASAN_OPTIONS": "detect_leaks=0"}
        words = [os.environ["GNUTLS_PROBE"], os.path.join(self.data, "authority.pem"), "localhost", str(self.port)]
        for name, expected in (("good", 0), ("unknown-authority", 1), ("wrong-host", 1), ("expired", 1)):
            self.control("PUT", "/tls", {"certificate": name})
            self.assertEqual(subprocess.run(words, env=quiet, stderr=subprocess.DEVNULL).returncode, expected, name)

    def test_old_tls_is_offered_only_on_demand(self):
        self.assertEqual(self.curl("/join", *OLD_CLIENT)[0], CURL_TLS)
        self.control("PUT", "/tls", {"max_version": "1.1"})
        self.assertEqual(self.curl("/join", "--tlsv1.2")[0], CURL_TLS)
        self.control("DELETE", "/requests")
        self.assertEqual(self.status_of("/join", *OLD_CLIENT), 200)
        self.assertEqual(self.requests()[0]["tls"], "TLSv1.1")

    def test_the_newest_version_can_be_held_back(self):
        self.control("PUT", "/tls", {"max_version": "1.2"})
        self.control("DELETE", "/requests")
        self.fetch("/join")
        self.assertEqual(self.requests()[0]["tls"], "TLSv1.2")

    def test_one_host_alone_can_misbehave(self):
        other = ("--resolve", f"join.test.example:{self.port}:127.0.0.1", "--connect-to",
                 f"localhost:{self.port}:join.test.example:{self.port}")
        self.control("PUT", "/tls", {"certificate": "expired", "host": "localhost"})
        self.assertEqual(self.curl("/join")[0], CURL_CERTIFICATE)
        done = subprocess.run(["curl", "-sS", "--noproxy", "*", "--cacert", os.path.join(self.data, "authority.pem"), *other[:2],
                               "-o", os.devnull, f"https://join.test.example:{self.port}/join"])
        self.assertEqual(done.returncode, 0)

    def test_a_handshake_can_hang(self):
        self.control("PUT", "/tls", {"hang_handshake": True})
        before = self.control("GET", "/status")["handshake_failures"]
        self.assertEqual(self.curl("/join", "--max-time", "0.5")[0], CURL_TIMED_OUT)
        wait_until(lambda: self.control("GET", "/status")["handshake_failures"] > before, "the handshake is given up")
        self.assertEqual(self.requests(), [])

    def test_nonsense_is_refused(self):
        for members in ({"certificate": "best"}, {"max_version": "1.0"}, {"max_version": 1.2}, {"host": 1}, []):
            self.control("PUT", "/tls", members, expect=400)


if __name__ == "__main__":
    skip_without("curl", "openssl")
    unittest.main()
