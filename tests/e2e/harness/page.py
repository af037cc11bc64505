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

    def leave_by(self, script):
        """Runs a script that may end the page, as soon as this test has its answer: when the page asks for the next one."""
        self.eval("""
            const plain = window.fetch;
            window.fetch = (resource, ...rest) => {
              if (String(resource).startsWith("/drive/next")) {
                window.fetch = plain;
                setTimeout(() => { %s });
              }
              return plain(resource, ...rest);
            };""" % script)

    def go(self, address):
        """Lets the page's script navigate."""
        self.leave_by(f"location.href = {json.dumps(address)}")

    def loads(self):
        return self._data_centre.control("GET", "/drive/pages")["loads"]

    def wait_until_loaded(self):
        """Also when a reload replaces the page meanwhile."""
        self._answer_of_the_newest("return document.readyState")

    def wait_until_heard(self):
        """Until the application has handled all that the page has said so far. Returns what tells this page from others."""
        return self._answer_of_the_newest("""
            const own = (reply) => reply.name === "receiveSystemOs";
            const count = () => window.received.filter(own).length;
            const before = count();
            post("getSystemOs", "");
            while (count() === before) await new Promise((resolve) => setTimeout(resolve, 10));
            window.received.splice(window.received.findLastIndex(own), 1);
            return performance.timeOrigin;""")

    def _answer_of_the_newest(self, script):
        def answer():
            try:
                return self.eval(script)
            except AssertionError as error:
                if "the page was replaced" not in str(error):
                    raise
                return None
        return waiting.until(answer, "the join page")

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
