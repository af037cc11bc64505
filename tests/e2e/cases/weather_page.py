"""A page whose process dies, and a page that floods the bridge: the window keeps a page and stays alive."""

import os
import signal

from harness import processes, waiting
from harness.case import set_up_module as setUpModule, tear_down_module as tearDownModule  # noqa: F401
from harness.weather import DID_FAIL, JOIN_URL, NET_TEST, PAGE, RESTORED, WeatherCase

FAILED = NET_TEST + JOIN_URL
DIED = [DID_FAIL + "The Web Content process was terminated.", FAILED]
CONSOLE = "handleMessageFromWebView(message:) : Console Message from WebView: "


class Crashes(WeatherCase):
    def setUp(self):
        super().setUp()
        self._killed = []

    def living(self):
        """The process of the page that is shown: a picture of the window may still be the dead one's."""
        def not_killed():
            return [one for one in processes.web_processes(self.application) if one not in self._killed]

        return waiting.until(not_killed, "a web process")[0]

    def kill(self):
        pid = self.living()
        self._killed.append(pid)
        os.kill(pid, signal.SIGKILL)

    def test_the_join_page_comes_back_however_often_it_dies(self):
        self.start_well()
        for death in range(1, 5):
            self.shows("join")
            self.forget_requests()
            mark = self.log.mark()
            self.kill()
            self.log.wait_for(FAILED, mark)
            self.log.wait_for(RESTORED, mark)
            self.page_stands()
            self.assertEqual(self.weather_lines(mark), [*DIED, RESTORED])
            self.assertIn(len(self.loads()), (1, 2), "the restoration's, and at most one attempt before")
            self.tell(f"web process dies, {death}. time", "join", self.weather_lines(mark), **self.counts())

    def test_the_offline_page_comes_back(self):
        self.server_down()
        self.start_badly([FAILED])
        for _ in range(5):
            self.kill()
            self.living()
            self.shows("offline")
        self.assertEqual(self.weather_lines(self.started), [FAILED])
        self.assertEqual(self.join_requests(), [])
        self.tell("web process of the offline page dies 5 times", "offline", [FAILED], **self.counts())
        self.good_again()
        self.comes_back("web process of the offline page dies 5 times", self.started, [FAILED])

    def test_the_misconfiguration_page_comes_back(self):
        self.start({"DC": "com"}, wait_for_page=False)
        for _ in range(6):
            self.shows("misconfiguration")
            self.kill()
            self.living()
        self.shows("misconfiguration")
        self.assertEqual(self.join_requests(), [])


class Replaced(WeatherCase):
    """A page that says all the time that it has loaded, also when the offline page is already on its way."""

    join_page = PAGE + """<script>
        setInterval(() => window.webkit.messageHandlers.lumoraLoaded.postMessage(""), 5)</script>"""

    def test_late_words_of_a_replaced_page_do_not_end_the_watch(self):
        self.start()
        self.shows("join")
        self.page.eval("setTimeout(() => location.href = '/join?again', 2000)")
        mark = self.log.mark()
        self.server_down()
        self.log.wait_for(FAILED, mark)
        self.shows("offline")
        self.good_again()
        self.comes_back("server stops before a load, page keeps saying that it has loaded", mark, [FAILED])


class Flood(WeatherCase):
    def test_ten_thousand_messages(self):
        self.start()
        self.shows("join")
        mark = self.log.mark()
        self.page.eval("for (let i = 0; i < 10000; ++i) post('consoleHandler', 'message ' + i)", timeout=60)
        self.page.barrier()
        self.log.wait_for(CONSOLE + "message 9999", mark, seconds=60)
        self.assertEqual(self.lines_of(mark, CONSOLE), [f"{CONSOLE}message {number}" for number in range(10000)])
        self.page.post("sendLumoraTitleToNative", "still here")
        waiting.until(lambda: self.application.title() == "still here", "the title after the flood")
        self.shows("join")
        self.close()
