"""What the tests share: the programs, a running data centre with its control interface, and curl."""

import json
import os
import shutil
import subprocess
import tempfile
import time
import unittest
import urllib.error
import urllib.parse
import urllib.request

PROGRAM = os.environ["DATACENTRE"]
AGENT = os.environ["OVRA_AGENT"]
DEADLINE = 20
SKIPPED = 77  # what ctest takes for "skipped"

# curl's exit statuses.
CURL_REFUSED = 7
CURL_PARTIAL = 18
CURL_TIMED_OUT = 28
CURL_TLS = 35
CURL_RECEIVE = 56
CURL_CERTIFICATE = 60


def wait_until(condition, what):
    """Returns the condition's first true value; fails after the deadline."""
    end = time.monotonic() + DEADLINE
    while time.monotonic() < end:
        value = condition()
        if value:
            return value
        time.sleep(0.02)
    raise AssertionError(f"waited in vain: {what}")


def skip_without(*programs):
    missing = [program for program in programs if not shutil.which(program)]
    if missing:
        print("skipped: not installed here:", ", ".join(missing))
        raise SystemExit(SKIPPED)


class World(unittest.TestCase):
    """A data centre of its own for each class of tests."""

    serve_arguments = []
    images = {}

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="datacentre-test-")
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.data = os.path.join(cls.folder, "data")
        cls.image_folder = os.path.join(cls.folder, "images")
        os.mkdir(cls.image_folder)
        for name, content in cls.images.items():
            with open(os.path.join(cls.image_folder, name), "wb") as file:
                file.write(content)
        subprocess.run([PROGRAM, "authority", "--data", cls.data, "--host", "localhost", "--host", "join.test.example"],
                       check=True, stdout=subprocess.DEVNULL)
        cls.start_server()

    @classmethod
    def start_server(cls):
        cls.errors = open(os.path.join(cls.folder, "serve.log"), "wb")
        cls.addClassCleanup(cls.errors.close)
        cls.server = subprocess.Popen(
            [PROGRAM, "serve", "--data", cls.data, "--listen", "127.0.0.1:0", "--control", "127.0.0.1:0",
             "--images", cls.image_folder, *cls.serve_arguments],
            stdout=subprocess.PIPE, stderr=cls.errors, text=True)
        cls.addClassCleanup(cls.end_server)
        words = cls.server.stdout.readline().split()
        assert words[:2] == ["ready", "https"] and words[3] == "control", words
        cls.port = int(words[2].rsplit(":", 1)[1])
        cls.base = f"https://localhost:{cls.port}"
        cls.control_base = "http://" + words[4]

    @classmethod
    def end_server(cls):
        cls.server.terminate()
        status = cls.server.wait(DEADLINE)
        cls.server.stdout.close()
        assert status == 0, f"the server ended with {status}"

    def tearDown(self):
        for method, path in (("DELETE", "/behaviour"), ("DELETE", "/tls"), ("DELETE", "/page"), ("DELETE", "/requests"),
                             ("PUT", "/answers"), ("POST", "/start")):
            body = {"agent": None, "application": None, "service_domain": None} if path == "/answers" else None
            self.control(method, path, body)

    def control(self, method, path, body=None, expect=200):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.control_base + path, data=data, method=method)
        try:
            with urllib.request.urlopen(request, timeout=60) as response:
                status, text = response.status, response.read()
        except urllib.error.HTTPError as error:
            with error:
                status, text = error.code, error.read()
        self.assertEqual(status, expect, text)
        return json.loads(text)

    def behave(self, path, **members):
        self.control("PUT", "/behaviour?path=" + urllib.parse.quote(path), members)

    def requests(self):
        return self.control("GET", "/requests")

    def curl(self, path, *options):
        """(exit status, body) of one request that trusts only the data centre's own authority."""
        done = subprocess.run(["curl", "-sS", "--max-time", "30", "--noproxy", "*", "--cacert",
                               os.path.join(self.data, "authority.pem"), *options, self.base + path],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        return done.returncode, done.stdout

    def fetch(self, path, *options):
        status, body = self.curl(path, *options)
        self.assertEqual(status, 0)
        return body

    def status_of(self, path, *options):
        return int(self.fetch(path, "-o", os.devnull, "-w", "%{http_code}", *options))
