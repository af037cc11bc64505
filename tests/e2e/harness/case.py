"""What every end-to-end test stands on: a data centre for the module, a fresh home and machine for each test."""

import json
import pathlib
import shutil
import sys
import unittest

from harness import application, desktop, holding, machine, places, waiting
from harness.agent import LAUNCH_ARGUMENTS, wait_for_records
from harness.data_centre import DataCentre
from harness.log_file import Log
from harness.page import Page

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "world"))
import hosts  # noqa: E402  (the worlds' list)

AGENT_VERSION = "1.4.2"
KEY = 123456789
EMAIL = "kim@customer.example"
TOKEN = "t0ken-of-the-installer"
WEB_SERVER = "com.ovratessel.example"
RESTORED = "didRestoreConnection() : Updateing webview since the network is restored."
# In which a reload that has been asked for comes, or had come before.
RELOAD_SECONDS = 5
IMAGE_PATH = "/cdn/OvraMac.dmg"
CHECK_PATH = "/api/v2/agent/check_update"

# A page that says only that it is there, so that every message of a test is the test's own.
BARE_PAGE = """<!doctype html><meta charset="utf-8"><title>bare</title>
<script>window.webkit.messageHandlers.lumoraLoaded.postMessage("")</script>
<script src="/assets/drive.js"></script>
"""

_data_centre = None


def set_up_module():
    """A module's setUpModule."""
    global _data_centre
    application.install()
    folder = places.ROOT / "data-centre"
    shutil.rmtree(folder, ignore_errors=True)
    _data_centre = DataCentre(folder, hosts.names())
    _data_centre.make_agent_image(AGENT_VERSION)
    _data_centre.serve()


def tear_down_module():
    """A module's tearDownModule."""
    _data_centre.shut_down()


class EndToEndCase(unittest.TestCase):
    """A join page of the test's own; with bare_page = False the data centre's real one."""

    maxDiff = None
    bare_page = True
    bundle = places.BUNDLE

    def setUp(self):
        self._failures_before = self._failures()
        self.data_centre = _data_centre
        self.data_centre.reset()
        if self.bare_page:
            self.data_centre.page(BARE_PAGE)
        if self.data_centre.changed_image:
            self.data_centre.make_agent_image(AGENT_VERSION)
        machine.clear()
        self.home = machine.fresh_home(self.id().removeprefix("cases."))
        self.addCleanup(machine.end_agents, self.home)
        self.page = Page(self.data_centre)
        self.application = None

    def tearDown(self):
        if self.application is None:
            return
        alive, ended_well = self.application.running(), self.application.returncode == 0
        if self._failures() > self._failures_before:
            self.keep_evidence()
        self.application.kill()
        self.assertTrue(alive or ended_well, f"the application died: {self.application.returncode}")

    def _failures(self):
        result = self._outcome.result
        return len(result.failures) + len(result.errors)

    def keep_evidence(self):
        picture = self.home.console.with_suffix(".png")
        desktop.photograph(picture)
        print(f"--- {picture}; the log's end:\n{self.application.log.tail()}\n---", file=sys.stderr)

    def start(self, arguments=None, environment=None, wait_for_page=True):
        """Starts the application as its installer configures it, and waits for the join page."""
        if self.application:
            self.application.kill()
        # The page of a process that has just ended must not be taken for the new one's.
        waiting.until(lambda: self.data_centre.control("GET", "/drive/pages")["pages"] == 0, "the old page's end")
        if arguments is None:
            arguments = {"DC": "com", "LumoraToken": TOKEN, "pathForLumora": "join"}
        self.log = Log(self.home)
        self.started = self.log.mark()
        self.application = application.Application(self.home, arguments, environment, bundle=self.bundle)
        if wait_for_page:
            self.wait_for_standing_page()
        return self.application

    def wait_for_standing_page(self):
        """Until no reload is to come: the first good probe, two seconds after the start, reloads a page that is slower."""
        reloads = 0
        while True:
            page = self.page.wait_until_heard()
            before, reloads = reloads, sum(line.startswith(RESTORED) for line in self.log.lines_since(self.started))
            if reloads == before:
                return
            waiting.happens(lambda: self.page.wait_until_heard() != page, RELOAD_SECONDS)

    def close(self):
        self.assertEqual(self.application.close(), 0)

    def restart(self, arguments=None):
        self.close()
        return self.start(arguments)

    def wait_for_launch_checks(self):
        """The agent's version has been read, the launch's preference written, the self-check answered."""
        self.log.wait_for_start("-[ApiHandler checkLumoraUpdateWithCompletion:]_block_invoke", self.started)

    def join(self, key=KEY, email=EMAIL, **more):
        self.page.post("sendJoinDetailsToNative", json.dumps({"sessionKey": key, "email": email} | more))

    def wait_for_install(self, mark=0):
        """An install ends with the second of its two detach runs."""
        line = "-[OvraDmgDownloader unMountingOvraMacDmg] : Dmg unmount task termination status : "
        waiting.until(lambda: sum(one.startswith(line) for one in self.log.lines_since(mark)) >= 2,
                      lambda: "the end of the install; the log's end:\n" + self.log.tail())

    def install_agent(self):
        """A first join, to its end: leaves an installed agent."""
        self.start()
        self.wait_for_launch_checks()
        self.join()
        self.wait_for_install()
        wait_for_records(self.home)

    def assert_join_details(self, key=KEY, server=WEB_SERVER, token=TOKEN, dc="com", email=EMAIL, custom="false"):
        expected = (f"OVRA_VARLO_IND\n&key={key}&webServerName={server}&lumora_token={token}&c_plugin=true"
                    f"&DC={dc}&email={email}&is_custom_domain={custom}&")
        self.assertEqual(self.home.join_details.read_bytes(), expected.encode())
        self.assertEqual(self.home.join_details.stat().st_mode & 0o7777, 0o600)
        return expected

    def assert_agent_was_given(self, record, details):
        self.assertEqual(record["argv"][1:], LAUNCH_ARGUMENTS)
        self.assertEqual(record["join_details"]["text"], details)
        self.assertEqual(record["join_details"]["mode"], "0600")

    def assert_nothing_left_behind(self):
        self.assertEqual(machine.volumes(), [], "something is still mounted")
        self.assertFalse(self.home.image.exists(), "the image is still there")

    def read_only(self, path):
        """Makes a file or folder unwritable, also for root, until the returned operation is called or the test ends."""
        return holding.read_only(self, path)

    def lines_of(self, mark, *starts):
        """The log lines since mark that begin with one of starts."""
        return [line for line in self.log.lines_since(mark) if line.startswith(starts)]
