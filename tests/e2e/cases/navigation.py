"""Where a page may go: the server's list of requests tells what was sent, and what was stopped before."""

import time

from harness import desktop, link_handlers, waiting
from harness.case import (TOKEN, WEB_SERVER, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.system import linux_only
from harness.weather import PROBE_AGENT

OWN = f"https://{WEB_SERVER}/place"
FOREIGN = "https://eu.ovratessel.example/place"
# Guarded navigations ask only whether the server's name stands somewhere in the address.
NAMED = f"{FOREIGN}?from={WEB_SERVER}"
LOCAL_NAMES = ("https://eu.ovratessel.example/NoInternetPage.html",
               "https://eu.ovratessel.example/x?MisconfigurationPage.html")
DEEP_LINK = "ovrajoin://join/123?a=%20b"
DEEP_LINE = "handleDeepLink(_:) : Handling deep link: "

STYLE = ('<style>body { margin: 0; } .all { position: fixed; inset: 0; width: 100%; height: 100%; display: block;'
         ' font: 4rem sans-serif; }</style>')
HEAD = f'<!doctype html><meta charset="utf-8"><title>page</title>{STYLE}<script src="/assets/drive.js"></script>'
# A load that is left before its end counts as a failed one.
WHEN_COMPLETE = ("if (document.readyState !== 'complete') "
                 "await new Promise(resolve => addEventListener('load', () => setTimeout(resolve)));")
LOADED = '<script>window.webkit.messageHandlers.lumoraLoaded.postMessage("")</script>'
PLACE = HEAD + "<p>Another place"
# Long enough for the engine to ask, to be answered and to send: that nothing comes has no other sign than time.
SETTLE_SECONDS = 0.7


class NavigationCase(EndToEndCase):
    bare_page = False

    def open(self, body=""):
        """A fresh application on a join page with this body."""
        self.data_centre.control("DELETE", "/behaviour")
        self.data_centre.page(HEAD + LOADED + body)
        self.serve("/frame", "A frame<script>onmessage = () => location.reload()</script>")
        for path in ("/place", "/NoInternetPage.html", "/x"):
            self.serve(path, PLACE)
        self.start()
        # Without this the wait for the launch's own requests would be left to chance.
        self.wait_for_launch_checks()
        self.data_centre.control("DELETE", "/requests")

    def serve(self, path, body, **more):
        self.data_centre.behave(path, status=200, body=body, content_type="text/html; charset=utf-8", **more)

    def redirect(self, path, target):
        self.data_centre.behave(path, status=302, headers={"Location": target})

    def sent(self):
        """What the view has asked for, the drive's script left out; a probe may still be on its way."""
        return [f"{one['method']} https://{one['host']}{one['target']}" for one in self.data_centre.requests()
                if not one["path"].startswith(("/assets/", "/favicon", "/api/"))
                and one["headers"].get("user-agent") != PROBE_AGENT]

    def attempt(self, script):
        """Runs a script that may navigate."""
        self.page.leave_by(script)

    def assert_sent(self, *expected):
        waiting.until(lambda: len(self.sent()) >= len(expected), lambda: f"{expected}, sent: {self.sent()}", 10)
        time.sleep(SETTLE_SECONDS)
        self.assertEqual(self.sent(), list(expected))

    def assert_stays(self):
        """Nothing was sent and the page is still there."""
        time.sleep(SETTLE_SECONDS)
        self.assertEqual(self.sent(), [])
        self.assertEqual(self.page.eval("return location.pathname"), "/join")
        self.assertEqual(self.lines_of(0, "URL NetTest"), [], "a cancelled navigation is no failed load")

    def click(self):
        window, = self.application.windows()
        # A click on what has not been drawn yet goes nowhere.
        waiting.until(lambda: desktop.is_drawn(window), "the window's content")
        desktop.click(window, 400, 400)

    def choose_reload(self):
        """The window's own entry, by its key."""
        window, = self.application.windows()
        desktop.press(window, desktop.RELOAD_KEY)

    def press_return(self):
        window, = self.application.windows()
        desktop.activate(window)
        self.page.eval("document.querySelector('a, button').focus()")
        desktop.press(window, "Return")


class Guarded(NavigationCase):
    """What nobody clicked for stays on the server, whose name may stand anywhere in the address."""

    def test_location(self):
        for how in ("location = '{}'", "location.assign('{}')", "location.replace('{}')"):
            with self.subTest(how):
                self.open()
                self.attempt(how.format(FOREIGN))
                self.assert_stays()
                self.attempt(how.format(OWN))
                self.assert_sent("GET " + OWN)

    def test_the_servers_name_anywhere_will_do(self):
        self.open()
        self.attempt(f"location = '{NAMED}'")
        self.assert_sent("GET " + NAMED)

    def test_the_local_pages_names_will_do(self):
        for url in LOCAL_NAMES:
            with self.subTest(url):
                self.open()
                self.attempt(f"location = '{url}'")
                self.assert_sent("GET " + url)

    def test_reload(self):
        self.open()
        page = f"GET https://{WEB_SERVER}/join?lumora_token={TOKEN}"
        self.attempt("location.reload()")
        self.assert_sent(page)
        self.choose_reload()
        self.assert_sent(page, page)

    def test_reload_of_a_foreign_page(self):
        self.open(f'<a id="link" href="{FOREIGN}">link</a>')
        self.attempt("document.getElementById('link').click()")
        self.assert_sent("GET " + FOREIGN)
        self.attempt("location.reload()")
        self.assert_sent("GET " + FOREIGN)
        self.choose_reload()
        self.attempt(f"location = '{FOREIGN}?again'")
        self.assert_sent("GET " + FOREIGN)
        self.assertEqual(self.page.eval("return location.href"), FOREIGN)

    def test_reload_of_a_frame(self):
        self.open('<iframe src="/frame?own"></iframe><iframe src="https://eu.ovratessel.example/frame?foreign"></iframe>')
        self.data_centre.control("DELETE", "/requests")
        self.attempt("for (const one of document.querySelectorAll('iframe')) one.contentWindow.postMessage('reload', '*')")
        self.assert_sent(f"GET https://{WEB_SERVER}/frame?own")
        self.assertEqual(self.page.eval("return location.pathname"), "/join")

    def test_meta_refresh(self):
        self.open()
        self.data_centre.page(HEAD + LOADED + f'<meta http-equiv="refresh" content="0; url={FOREIGN}">')
        self.attempt("location.reload()")
        self.assert_sent(f"GET https://{WEB_SERVER}/join?lumora_token={TOKEN}")
        self.data_centre.control("DELETE", "/requests")
        self.data_centre.page(HEAD + LOADED + f'<meta http-equiv="refresh" content="0; url={OWN}">')
        self.attempt("location.reload()")
        self.assert_sent(f"GET https://{WEB_SERVER}/join?lumora_token={TOKEN}", "GET " + OWN)

    def test_server_redirect(self):
        for target, follows in ((FOREIGN, False), (OWN, True), (NAMED, True)):
            with self.subTest(target):
                self.open()
                self.redirect("/away", target)
                self.attempt("location = '/away'")
                self.assert_sent(*[f"GET https://{WEB_SERVER}/away", "GET " + target][:2 if follows else 1])

    def test_a_frames_top_location(self):
        for how in ("top.location = '{}'", "parent.location.replace('{}')"):
            with self.subTest(how):
                self.open("<iframe></iframe>")
                self.attempt("document.querySelector('iframe').src = '/frame'")
                self.assert_sent(f"GET https://{WEB_SERVER}/frame")
                self.data_centre.control("DELETE", "/requests")
                self.attempt(f"frames[0].eval(\"{how.format(FOREIGN)}\")")
                self.assert_stays()


class Free(NavigationCase):
    """What the customer asks for, and frames, may go anywhere."""

    def test_link_clicked_and_by_keyboard(self):
        for how in (self.click, self.press_return):
            with self.subTest(how.__name__):
                self.open(f'<a class="all" href="{FOREIGN}">link</a>')
                how()
                self.assert_sent("GET " + FOREIGN)

    def test_forms(self):
        for method in ("GET", "POST"):
            for how in (self.click, lambda: self.attempt("document.forms[0].submit()")):
                with self.subTest(method):
                    self.open(f'<form method="{method}" action="{FOREIGN}"><button class="all">go</button></form>')
                    how()
                    self.assert_sent(f"{method} {FOREIGN}" + ("?" if method == "GET" else ""))

    def test_redirects_behind_them_and_a_form_sent_again(self):
        away = f"https://{WEB_SERVER}/away"
        self.open('<a href="/away">link</a>')
        self.redirect("/away", FOREIGN)
        self.attempt("document.links[0].click()")
        self.assert_sent("GET " + away, "GET " + FOREIGN)
        self.data_centre.control("DELETE", "/requests")
        self.submit(away)
        self.assert_sent("POST " + away, "GET " + FOREIGN)
        self.data_centre.control("DELETE", "/requests")
        self.submit(FOREIGN)
        self.assert_sent("POST " + FOREIGN)
        self.choose_reload()
        self.assert_sent("POST " + FOREIGN, "POST " + FOREIGN)

    def submit(self, target):
        """A form of the page's own making."""
        self.attempt(f"document.body.insertAdjacentHTML('beforeend', '<form method=POST action=\"{target}\"></form>');"
                     " document.forms[0].submit()")

    def test_back_and_forward(self):
        self.open(f'<a class="all" href="{FOREIGN}">link</a>')
        self.click()
        self.assert_sent("GET " + FOREIGN)
        for step, path in (("back", "/join"), ("forward", "/place")):
            before = self.page.loads()
            self.attempt(f"history.{step}()")
            waiting.until(lambda: self.page.loads() > before, f"the page after going {step}")
            self.assertEqual(self.page.eval(WHEN_COMPLETE + "return location.pathname"), path)
        self.assertEqual(self.lines_of(0, "URL NetTest"), [])

    def test_frames_go_anywhere(self):
        self.open()
        frame = "https://eu.ovratessel.example/frame"
        self.redirect("/away", frame + "?redirected")
        self.attempt(f"document.body.insertAdjacentHTML('beforeend', '<iframe src=\"{frame}?source\"></iframe>')")
        self.assert_sent(f"GET {frame}?source")
        self.attempt(f"frames[0].location = '{frame}?script'")
        self.assert_sent(f"GET {frame}?source", f"GET {frame}?script")
        self.data_centre.control("DELETE", "/requests")
        self.attempt("document.querySelector('iframe').src = '/away'")
        self.assert_sent(f"GET https://{WEB_SERVER}/away", f"GET {frame}?redirected")
        self.assertEqual(self.page.eval("return location.pathname"), "/join")
        self.data_centre.control("DELETE", "/requests")
        # And the page itself is guarded as before.
        self.attempt(f"location = '{FOREIGN}'")
        self.assert_stays()


class NewWindows(NavigationCase):
    """They open in the same view, as a load of the host's own: guarded."""

    def test_script_without_and_with_a_gesture(self):
        for target, expected in ((OWN, ["GET " + OWN]), (FOREIGN, [])):
            body = f'<button class="all" onclick="window.open(\'{target}\')">open</button>'
            for how in (lambda url=target: self.attempt(f"window.open('{url}')"), self.click):
                with self.subTest(target):
                    self.open(body)
                    how()
                    self.assert_sent(*expected) if expected else self.assert_stays()
                    self.assertEqual(len(self.application.windows()), 1)

    def test_links(self):
        for target, expected in ((OWN, ["GET " + OWN]), (FOREIGN, [])):
            with self.subTest(target):
                self.open(f'<a class="all" target="_blank" href="{target}">link</a>')
                self.click()
                self.assert_sent(*expected) if expected else self.assert_stays()
                self.assertEqual(len(self.application.windows()), 1)

    def test_forms(self):
        # The engine cannot be given a method or a body to load: the address is asked for.
        for method, suffix in (("GET", "?"), ("POST", "")):
            for target, expected in ((OWN, [f"GET {OWN}{suffix}"]), (FOREIGN, [])):
                with self.subTest(f"{method} {target}"):
                    self.open(f'<form method="{method}" action="{target}" target="_blank">'
                              '<button class="all">go</button></form>')
                    self.click()
                    self.assert_sent(*expected) if expected else self.assert_stays()
                    self.assertEqual(len(self.application.windows()), 1)


class DeepLinks(NavigationCase):
    def register(self):
        self.handler = link_handlers.Handler(self.home, "ovrajoin")
        self.addCleanup(self.handler.remove)

    def handed_on(self):
        return self.handler.opened()

    def test_link_is_handed_to_its_application(self):
        self.register()
        for body in (f'<a class="all" href="{DEEP_LINK}">join</a>',
                     f'<a class="all" target="_blank" href="{DEEP_LINK}">join</a>'):
            with self.subTest(body):
                self.handler.forget()
                self.open(body)
                self.click()
                waiting.until(self.handed_on, "the handler's start")
                self.assert_stays()
                self.assertEqual(self.handed_on(), [DEEP_LINK])
                self.assertEqual(self.lines_of(self.started, DEEP_LINE), [DEEP_LINE + DEEP_LINK])

    def test_frame_hands_it_on_too(self):
        self.register()
        self.open("<iframe></iframe>")
        self.redirect("/away", DEEP_LINK + "&redirected")
        # The page itself might go to the second: it names the server.
        links = [DEEP_LINK, f"ovrajoin://{WEB_SERVER}/join", DEEP_LINK + "&redirected"]
        for count, source in enumerate((*links[:2], "/away"), 1):
            self.attempt(f"document.querySelector('iframe').src = '{source}'")
            waiting.until(lambda: len(self.handed_on()) >= count, "the handler's start")
        self.assert_sent(f"GET https://{WEB_SERVER}/away")
        self.assertEqual(self.handed_on(), links)
        self.assertEqual(self.page.eval("return location.pathname"), "/join")
        self.assertEqual(self.lines_of(0, "URL NetTest"), [])

    def test_script_of_the_page_is_guarded(self):
        self.register()
        self.open()
        self.attempt(f"location = '{DEEP_LINK}'")
        self.assert_stays()
        self.assertEqual((self.handed_on(), self.lines_of(0, DEEP_LINE)), ([], []))

    @linux_only("a Mac asks a person what is to open it, in a window that stays")
    def test_without_an_application_nothing_happens(self):
        self.open(f'<a class="all" href="{DEEP_LINK}">join</a>')
        self.click()
        self.log.wait_for(DEEP_LINE + DEEP_LINK)
        self.assert_stays()
