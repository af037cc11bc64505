import json
import subprocess
import threading
import unittest

from datacentre_world import World, skip_without, wait_until


class Drive(World):
    """A plain client plays the page."""

    serve_arguments = ["--drive"]
    pages = 0

    def new_page(self):
        type(self).pages += 1
        return f"page{self.pages}"

    def poll(self, page):
        """Waits for a script, as the page does; None when the server has ended the poll without one."""
        body = self.fetch(f"/drive/next?page={page}", "-w", "\n%{http_code}")
        text, status = body.rsplit(b"\n", 1)
        return json.loads(text) if status == b"200" else None

    def answer(self, script, **outcome):
        return json.loads(self.fetch("/drive/result", "-d", json.dumps({"id": script["id"], **outcome})))["taken"]

    def play(self, page, **outcome):
        def run():
            self.answer(self.poll(page), **outcome)
        thread = threading.Thread(target=run)
        thread.start()
        self.addCleanup(thread.join)

    def test_the_page_loads_its_driver(self):
        self.assertIn(b"/assets/drive.js", self.fetch("/join"))
        self.assertEqual(self.status_of("/assets/drive.js"), 200)

    def test_a_value_comes_back(self):
        self.play(self.new_page(), result={"a": [1, None, "é"]}, error=None)
        self.assertEqual(self.control("POST", "/drive", {"script": "return 1"}),
                         {"result": {"a": [1, None, "é"]}, "error": None})

    def test_an_error_comes_back(self):
        self.play(self.new_page(), result=None, error="TypeError: no")
        self.assertEqual(self.control("POST", "/drive", {"script": "boom()"}), {"result": None, "error": "TypeError: no"})

    def test_polling_pages_are_counted(self):
        page = self.new_page()
        client = subprocess.Popen(["curl", "-sk", "--noproxy", "*", f"{self.base}/drive/next?page={page}"],
                                  stdout=subprocess.DEVNULL)
        try:
            wait_until(lambda: self.control("GET", "/drive/pages")["pages"] == 1, "the page polls")
            self.assertEqual(self.control("GET", "/drive/pages")["id"], page)
        finally:
            client.kill()
            client.wait()
        wait_until(lambda: self.control("GET", "/drive/pages")["pages"] == 0, "the dead page is noticed")

    def test_a_page_that_dies_over_a_script_times_out(self):
        page = self.new_page()
        thread = threading.Thread(target=lambda: self.poll(page))
        thread.start()
        self.assertEqual(self.control("POST", "/drive", {"script": "for(;;);", "timeout_ms": 800}, expect=504),
                         {"result": None, "error": "timed out"})
        thread.join()
        self.play(page, result=2, error=None)
        self.assertEqual(self.control("POST", "/drive", {"script": "return 2"})["result"], 2)

    def test_a_newer_page_takes_over(self):
        old, new = self.new_page(), self.new_page()
        ended = []
        thread = threading.Thread(target=lambda: ended.append(self.poll(old)))
        thread.start()
        wait_until(lambda: self.control("GET", "/drive/pages")["id"] == old, "the old page polls")
        self.play(new, result="new", error=None)
        thread.join()
        self.assertEqual(ended, [None])
        self.assertEqual(self.control("POST", "/drive", {"script": "return 1"})["result"], "new")
        self.assertEqual(self.status_of(f"/drive/next?page={old}"), 410)

    def test_drive_calls_are_not_listed(self):
        self.control("DELETE", "/requests")
        self.fetch("/drive/result", "-d", "{}")
        self.assertEqual(self.requests(), [])

    def test_nonsense_is_refused(self):
        self.control("POST", "/drive", {"code": "1"}, expect=400)
        self.control("POST", "/drive", {}, expect=400)


class NotDriven(World):
    def test_scripts_are_refused_without_the_option(self):
        self.control("POST", "/drive", {"script": "1"}, expect=400)
        self.assertEqual(self.status_of("/drive/next?page=a"), 404)


if __name__ == "__main__":
    skip_without("curl")
    unittest.main()
