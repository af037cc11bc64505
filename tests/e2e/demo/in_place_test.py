"""The demo in place changes the machine's few files and restores them, whatever ends it. Run in a private world, as root."""

import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time
import unittest

HERE = pathlib.Path(__file__).resolve().parent
ROOT = pathlib.Path(os.environ["LUMORA_ROOT"])
DEMO = ROOT / "demo"
HOSTS, TRUST_STORE = pathlib.Path("/etc/hosts"), pathlib.Path("/etc/ssl/certs/ca-certificates.crt")
PREFERENCES = pathlib.Path("/Library/Preferences/com.ovra.tessel.OvraTesselLumora.plist")
SEEN = ROOT / "seen"
# As the demo does: an authority is trusted, the application writes for all users, an image is mounted.
LEAVES = f"""
import pathlib, socket
assert socket.gethostbyname("com.ovratessel.example") == "127.0.0.1"
assert not pathlib.Path("{PREFERENCES}").exists()
with open("{TRUST_STORE}", "a") as store:
    store.write("an authority")
pathlib.Path("{PREFERENCES}").parent.mkdir(parents=True, exist_ok=True)
pathlib.Path("{PREFERENCES}").write_text("the demo's")
pathlib.Path("/Volumes/Ovra").mkdir()
pathlib.Path("{SEEN}").touch()
"""
STAYS = LEAVES + "import time; time.sleep(60)"


class InPlace(unittest.TestCase):
    def setUp(self):
        # The world's own hosts would be found first.
        HOSTS.write_text("127.0.0.1 localhost\n", encoding="ascii")
        PREFERENCES.parent.mkdir(parents=True, exist_ok=True)
        PREFERENCES.write_text("the machine's", encoding="ascii")
        shutil.rmtree("/Volumes", ignore_errors=True)
        shutil.rmtree(DEMO, ignore_errors=True)
        SEEN.unlink(missing_ok=True)
        self.before = self.picture()

    def picture(self):
        folders = [sorted(str(path) for path in pathlib.Path(folder).rglob("*")) for folder in ("/Library", "/Applications")]
        return {"hosts": HOSTS.read_text(encoding="ascii"), "trust": TRUST_STORE.read_bytes(),
                "preferences": PREFERENCES.read_text(encoding="ascii"), "folders": folders,
                "volumes": os.path.exists("/Volumes"), "run": sorted(os.listdir("/run"))}

    def begin(self, script):
        return subprocess.Popen([sys.executable, HERE / "in_place.py", DEMO, "private", sys.executable, "-c", script],
                                stderr=subprocess.PIPE, text=True)

    def run_to_its_end(self, script):
        process = self.begin(script)
        errors = process.communicate(timeout=120)[1]
        return process.returncode, errors

    def begin_and_wait(self):
        process = self.begin(STAYS)
        deadline = time.monotonic() + 60
        while not SEEN.exists():
            self.assertIsNone(process.poll())
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.02)
        return process

    def test_after_a_good_end_and_after_a_failure(self):
        for script, status in ((LEAVES, 0), (LEAVES + "raise SystemExit(3)", 3)):
            with self.subTest(status=status):
                self.assertEqual(self.run_to_its_end(script), (status, ""))
                self.assertEqual(self.picture(), self.before)

    def test_after_a_signal_that_asks_for_the_end(self):
        process = self.begin_and_wait()
        self.assertNotEqual(self.picture(), self.before)
        process.send_signal(signal.SIGTERM)
        process.communicate(timeout=60)
        self.assertEqual(process.returncode, 128 + signal.SIGTERM)
        self.assertEqual(self.picture(), self.before)

    def test_after_a_kill_by_the_next_run(self):
        process = self.begin_and_wait()
        process.kill()
        process.wait()
        process.stderr.close()
        self.assertNotEqual(self.picture(), self.before)
        self.assertEqual(self.run_to_its_end(LEAVES), (0, ""))
        self.assertEqual(self.picture(), self.before)


if __name__ == "__main__":
    unittest.main()
