"""The join page in the application's web view, driven through the data centre."""

import json

from harness import waiting


class Page:
    def __init__(self, data_centre):
        self._data_centre = data_centre

    def eval(self, script, timeout=20):
        """The value that the script, an async function's body, returns. JavaScript errors fail the test."""
        answer = self._data_centre.control("POST", "/drive", {"script": script, "timeout_ms": timeout * 1000},
                                           timeout=timeout + 10)
        if answer["error"] is not None:
            raise AssertionError(f"script failed: {answer['error']}\n{script}")
        return answer["result"]

    def go(self, address):
        """Lets the page's script navigate, the moment this test has its answer: when the page asks for the next script."""
        self.eval("""
            const plain = window.fetch;
            window.fetch = (resource, ...rest) => {
              if (String(resource).startsWith("/drive/next")) {
                window.fetch = plain;
                location.href = %s;
              }
              return plain(resource, ...rest);
            };""" % json.dumps(address))

    def loads(self):
        return self._data_centre.control("GET", "/drive/pages")["loads"]

    def wait_until_loaded(self):
        """Also when the first good probe, two seconds after the start, reloads a page that is slow to say it is there."""
        def answers():
            try:
                return self.eval("return document.readyState")
            except AssertionError as error:
                if "the page was replaced" not in str(error):
                    raise
                return None
        waiting.until(answers, "the join page")

    def post(self, name, body=""):
        """Posts a message with a body of any JSON type."""
        self.eval(f"post({json.dumps(name)}, {json.dumps(body)})")

    def post_expression(self, name, expression):
        """Posts the value of a JavaScript expression."""
        self.eval(f"post({json.dumps(name)}, {expression})")

    def received(self, name):
        """The arguments of every window.NAME(...) call that the application has made, oldest first."""
        return self.eval("return window.received.filter(r => r.name === " + json.dumps(name) + ").map(r => r.args)")

    def ask(self, message, reply):
        """Posts a message that the application answers, and the arguments of that answer."""
        before = len(self.received(reply))
        self.post(message)
        return waiting.until(lambda: self.received(reply)[before:], f"{reply} in answer to {message}")[0]

    def barrier(self):
        """Returns when every message posted before has been handled: they are handled in order."""
        self.ask("getSystemOs", "receiveSystemOs")
