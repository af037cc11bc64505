import os
import subprocess
import tempfile
import unittest

from datacentre_world import PROGRAM, skip_without


def authority(folder, *hosts):
    words = [word for host in hosts for word in ("--host", host)]
    return subprocess.run([PROGRAM, "authority", "--data", folder, *words], check=True, text=True,
                          stdout=subprocess.PIPE).stdout.split()[0]


class Authority(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = scratch.name
        self.made = authority(self.folder, "localhost", "join.test.example", "127.0.0.1")

    def verify(self, name, *options):
        """What openssl says against a certificate; empty when it accepts it."""
        done = subprocess.run(["openssl", "verify", "-x509_strict", "-purpose", "sslserver", "-CAfile",
                               f"{self.folder}/authority.pem", *options, f"{self.folder}/certificates/{name}.pem"],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        return "" if done.returncode == 0 else done.stdout

    def test_the_good_certificate_holds_for_every_host(self):
        for host in ("localhost", "join.test.example"):
            self.assertEqual(self.verify("good", "-verify_hostname", host), "")
        self.assertEqual(self.verify("good", "-verify_ip", "127.0.0.1"), "")
        self.assertIn("hostname mismatch", self.verify("good", "-verify_hostname", "other.example"))

    def test_each_bad_certificate_is_refused_for_its_own_reason(self):
        host = ("-verify_hostname", "localhost")
        self.assertIn("unable to get local issuer", self.verify("unknown-authority", *host))
        self.assertIn("hostname mismatch", self.verify("wrong-host", *host))
        self.assertEqual(self.verify("wrong-host"), "")
        self.assertIn("has expired", self.verify("expired", *host))

    def test_a_valid_set_is_kept(self):
        with open(f"{self.folder}/certificates/good.pem", "rb") as file:
            before = file.read()
        self.assertEqual(self.made, "made")
        self.assertEqual(authority(self.folder, "127.0.0.1", "join.test.example", "localhost"), "kept")
        with open(f"{self.folder}/certificates/good.pem", "rb") as file:
            self.assertEqual(file.read(), before)

    def test_other_hosts_or_a_missing_part_make_a_new_set(self):
        self.assertEqual(authority(self.folder, "localhost"), "made")
        os.remove(f"{self.folder}/certificates/expired.key")
        self.assertEqual(authority(self.folder, "localhost"), "made")

    def test_keys_are_private(self):
        for name in ("authority.key", "certificates/good.key"):
            self.assertEqual(os.stat(f"{self.folder}/{name}").st_mode & 0o777, 0o600)


if __name__ == "__main__":
    skip_without("openssl")
    unittest.main()
