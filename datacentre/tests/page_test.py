"""The join page in a real web view, driven through the control interface."""

import glob
import os
import subprocess
import tempfile
import unittest

from datacentre_world import SKIPPED, World, skip_without, wait_until

BROWSERS = glob.glob("/usr/lib/*/webkitgtk-6.0/MiniBrowser")

# Stands in for the application: takes every message and answers as it does.
APPLICATION = """<script>
window.posted = [];
const stored = {digest: "", key: ""};
const answers = {
  getSystemOs: () => 'window.receiveSystemOs("mac");',
  getCustomerDetails: () => 'window.receiveCustomerDetails({"name":"Ana","company":null,"email":"ana@test.example","language":"pt"});',
  getProxyDetails: () => 'window.receiveProxyDetails({"host":null,"port":null,"authRequired":null,"userName":null,"password":null});',
  getActiveSessionKey: () => stored.key && `window.receiveActiveSessionKey("${stored.key}");`,
  getRRSessionDigest: () => `window.receiveRRSessionDigest("${stored.digest}");`,
  sendJoinDetailsToNative: (body) => { stored.key = JSON.parse(body).sessionKey; },
  sendRRSessionDigestToNative: (body) => { stored.digest = body; },
};
const handler = (name) => ({postMessage: (body) => {
  window.posted.push([name, body]);
  const script = answers[name]?.(body);
  if (script) setTimeout(() => (0, eval)(script));
}});
window.webkit = {messageHandlers: new Proxy({}, {get: (_, name) => handler(name)})};
</script>"""

FILL = """const fill = (id, value) => { const e = document.getElementById(id); e.value = value; e.dispatchEvent(new Event('input')); };
"""


class Page(World):
    serve_arguments = ["--drive"]

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        home = tempfile.mkdtemp(dir=cls.folder)
        environment = {**os.environ, "HOME": home, "XDG_RUNTIME_DIR": home, "GSK_RENDERER": "cairo",
                       "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS": "1", "LIBGL_ALWAYS_SOFTWARE": "1"}
        cls.browser = subprocess.Popen(
            ["dbus-run-session", "--", "xvfb-run", "-a", BROWSERS[0], "--ignore-tls-errors", cls.base + "/join"],
            env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        cls.addClassCleanup(cls.end_browser)

    @classmethod
    def end_browser(cls):
        os.killpg(cls.browser.pid, 15)
        cls.browser.wait()

    def drive(self, script):
        outcome = self.control("POST", "/drive", {"script": script, "timeout_ms": 60000})
        self.assertIsNone(outcome["error"])
        return outcome["result"]

    def reload(self):
        wait_until(lambda: self.control("GET", "/drive/pages")["pages"] == 1, "the page polls")
        self.control("POST", "/drive", {"script": "window.isOld = true; location.reload(); await new Promise(() => {})",
                                        "timeout_ms": 60000})
        new = {"script": "return window.isOld !== true", "timeout_ms": 60000}
        wait_until(lambda: self.control("POST", "/drive", new)["result"], "the page has loaded again")

    def open_in_application(self):
        """Loads the page with the stand-in for the application's bridge."""
        self.reload()
        page = self.fetch("/join").decode()
        tag = '<script src="/assets/drive.js"></script>'
        self.assertIn(tag, page)
        self.control("PUT", "/page", {"html": page.replace(tag, tag + APPLICATION)})
        self.reload()

    def text(self, element):
        return self.drive(f"const e = document.getElementById('{element}'); return e.hidden ? null : e.textContent")

    def posted(self, name):
        return self.drive(f"return window.posted.filter(([n]) => n === '{name}').map(([, body]) => body)")

    def test_it_says_politely_that_a_browser_is_not_the_application(self):
        self.reload()
        self.assertIn("You are in a web browser", self.text("browser-notice"))
        self.drive(FILL + "fill('session-key', '123456789'); fill('join-email', 'a@b.example');"
                          "document.getElementById('join-submit').click()")
        self.assertIn("Nothing was sent", self.text("join-outcome"))

    def test_it_introduces_itself_and_shows_what_it_is_told(self):
        self.open_in_application()
        self.assertEqual(self.drive("return window.posted.map(([name]) => name)"),
                         ["lumoraLoaded", "sendLumoraTitleToNative", "getSystemOs", "getCustomerDetails", "getProxyDetails",
                          "getActiveSessionKey", "getRRSessionDigest"])
        wait_until(lambda: len(self.drive("return window.received")) == 4, "four answers")
        self.assertEqual(self.drive("return window.received.find((r) => r.name === 'receiveCustomerDetails').args"),
                         [{"name": "Ana", "company": None, "email": "ana@test.example", "language": "pt"}])
        self.assertIn("Your details are known: Ana", self.text("activity"))
        self.assertIn("No proxy is set.", self.text("activity"))
        self.assertEqual(self.drive("return ['join-email', 'customer-name', 'customer-company', 'customer-language']"
                                    ".map((id) => document.getElementById(id).value)"),
                         ["ana@test.example", "Ana", "", "pt"])

    def test_a_join_posts_the_key_as_a_number(self):
        self.open_in_application()
        self.drive(FILL + "fill('session-key', '1234567890'); fill('join-email', 'a@b.example');"
                          "document.getElementById('join-submit').click()")
        self.assertEqual(self.posted("sendJoinDetailsToNative"), ['{"sessionKey":1234567890,"email":"a@b.example"}'])
        wait_until(lambda: self.text("active-session"), "the active key is shown")
        self.assertEqual(self.drive("return document.getElementById('session-key').value"), "123 456 7890")
        self.drive("document.getElementById('data-centre').value = 'eu'; document.getElementById('join-submit').click()")
        self.assertEqual(self.posted("sendJoinDetailsToNative")[1],
                         '{"sessionKey":1234567890,"email":"a@b.example","dc":"eu"}')

    def test_a_bad_key_is_explained_in_place_and_not_sent(self):
        self.open_in_application()
        self.drive(FILL + "fill('session-key', '12345'); fill('join-email', 'nobody');"
                          "document.getElementById('join-submit').click()")
        self.assertEqual(self.text("session-key-error"), "A session key has 9 or 10 digits; this one has 5.")
        self.assertIsNotNone(self.text("join-email-error"))
        self.assertEqual(self.drive("return [document.activeElement.id, document.activeElement.getAttribute('aria-invalid')]"),
                         ["session-key", "true"])
        self.assertEqual(self.posted("sendJoinDetailsToNative"), [])

    def test_a_request_gives_the_details_before_the_key(self):
        self.open_in_application()
        wait_until(lambda: self.drive("return document.getElementById('customer-name').value"), "the details are there")
        self.drive(FILL + "fill('request-key', 'AB12 CD34 E'); document.getElementById('request-submit').click()")
        names = self.drive("return window.posted.slice(7, 10)")
        self.assertEqual(names[0], ["sendCustomerDetailsToNative",
                                    '{"name":"Ana","company":"","email":"ana@test.example","language":"pt"}'])
        self.assertEqual(names[1], ["sendRRSessionKeyToNative", "AB12CD34E"])
        self.assertEqual(names[2][0], "sendRRSessionDigestToNative")
        wait_until(lambda: "AB12CD34E" in (self.text("last-request") or ""), "the request is remembered")

    def test_the_proxy_is_posted_with_its_types(self):
        self.open_in_application()
        self.drive(FILL + "document.getElementById('proxy-auth').click(); fill('proxy-host', 'proxy.test.example');"
                          "fill('proxy-port', '3128'); fill('proxy-user', 'ana'); fill('proxy-password', ' p\"w ');"
                          "document.getElementById('proxy-submit').click(); document.getElementById('open-proxy').click()")
        self.assertEqual(self.posted("sendProxyDetailsToNative"),
                         ['{"host":"proxy.test.example","port":3128,"authRequired":true,"userName":"ana","password":" p\\"w "}'])
        self.assertEqual(len(self.posted("openProxy")), 1)

    def test_tabs_follow_the_arrow_keys(self):
        self.reload()
        self.assertEqual(self.drive("""
            const press = (key) => document.activeElement.dispatchEvent(new KeyboardEvent('keydown', {key, bubbles: true}));
            document.getElementById('tab-join').focus();
            press('ArrowRight');
            const second = document.activeElement.id;
            press('End');
            return [second, document.activeElement.id,
                    ['join', 'request', 'connection'].map((n) => document.getElementById('panel-' + n).hidden)]"""),
                         ["tab-request", "tab-connection", [True, True, False]])

    def test_an_error_in_a_script_is_reported(self):
        self.reload()
        outcome = self.control("POST", "/drive", {"script": "throw new Error('so it is')"})
        self.assertEqual(outcome, {"result": None, "error": "Error: so it is"})


if __name__ == "__main__":
    if not BROWSERS:
        print("skipped: WebKitGTK's MiniBrowser is not installed here")
        raise SystemExit(SKIPPED)
    skip_without("curl", "xvfb-run", "dbus-run-session")
    unittest.main()
