import base64
import json
import os
import subprocess
import tempfile
import unittest

from datacentre_world import AGENT, DEADLINE

TIMES = '{"M3":"Agent downloaded time : 00:00:00 | Server : CDN","M2":"Session Validated : 00:00:00"}'
DETAILS = b"OVRA_VARLO_IND\n&key=123456789&webServerName=join.test.example&DC=com&email=\xff\xe9&"


class Agent(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.home = scratch.name
        self.records = os.path.join(self.home, "records")

    def leave_details(self):
        folder = os.path.join(self.home, "Library/Application Support/OvraVarloNative")
        os.makedirs(folder)
        path = os.path.join(folder, "ovrajoindetails.conf")
        with open(path, "wb") as file:
            file.write(DETAILS)
        os.chmod(path, 0o600)

    def start(self, **changes):
        environment = {"HOME": self.home, "OVRA_AGENT_RECORD_DIR": self.records, "OVRA_AGENT_HEADLESS": "1",
                       "ASAN_OPTIONS": "detect_leaks=0", **changes}  # the toolkit keeps what it once allocates
        with open(os.path.join(self.home, "log"), "ab") as log:
            process = subprocess.Popen([AGENT, "-timestamps", TIMES], env=environment, stdin=subprocess.DEVNULL,
                                       stdout=log, stderr=log, start_new_session=True)
            self.assertEqual(process.wait(DEADLINE), 0)
        return process.pid

    def record(self, folder):
        names = os.listdir(folder)
        self.assertEqual(len(names), 1, names)
        with open(os.path.join(folder, names[0]), encoding="utf-8") as file:
            return json.load(file)

    def test_records_how_it_was_started(self):
        self.leave_details()
        pid = self.start(GSK_RENDERER="cairo")
        record = self.record(self.records)
        self.assertEqual(record["argv"], [AGENT, "-timestamps", TIMES])
        self.assertEqual(record["executable"], os.path.realpath(AGENT))
        self.assertEqual((record["pid"], record["session"], record["parent"]), (pid, pid, os.getpid()))
        log = os.path.realpath(os.path.join(self.home, "log"))
        self.assertEqual(record["streams"], {"0": "/dev/null", "1": log, "2": log})
        self.assertEqual(record["environment"]["GSK_RENDERER"], "cairo")

    def test_records_the_join_details_byte_for_byte(self):
        self.leave_details()
        self.start()
        details = self.record(self.records)["join_details"]
        self.assertEqual(base64.b64decode(details["base64"]), DETAILS)
        self.assertEqual((details["mode"], details["marker"], details["well_formed"]), ("0600", "OVRA_VARLO_IND", True))
        self.assertEqual(details["pairs"]["webServerName"], "join.test.example")

    def test_starts_without_details_or_display_too(self):
        self.start(OVRA_AGENT_RECORD_DIR="", OVRA_AGENT_HEADLESS="")
        record = self.record(os.path.join(self.home, "Library/Logs/OvraTessel/Agent"))
        self.assertIs(record["join_details"]["present"], False)


if __name__ == "__main__":
    unittest.main()
