"""What a screen reader is told of the window and its pages, and where the keyboard gets to."""

import json
import subprocess

from harness import places, waiting
from harness.case import (EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.linux.screen_reader import ENVIRONMENT, ScreenReader
from harness.system import linux_only

JOIN_TITLE = "Ovra Tessel Lumora – Remote support"
OFFLINE = [
    "The service cannot be reached right now",
    "The page where you join a session could not be loaded.",
    "The application keeps trying by itself. You do not need to press anything.",
    "What you can do",
    "Check that this computer is connected to Wi-Fi or to a network cable.",
    "Open another website to see whether the Internet works.",
    "If you use a VPN or a proxy, check that it is connected.",
    "If it still does not work, tell the person who is going to help you.",
]
NO_NETWORK = ("This computer seems to have no network. As soon as the connection is back, the application goes on by "
              "itself.")
MISCONFIGURATION = [
    "This application is not set up yet",
    "It does not know which server to connect to, so it cannot show the page where you join a session. "
    "This is not your fault.",
    "What you can do",
    "Tell the person who is going to help you, or your IT department.",
    "Download the application again with the link in your invitation, install it and open it.",
    "For administrators",
]
FOR_ADMINISTRATORS = [
    "The web server or the path of the page is missing. Check these preferences of the application:",
    "DC",
    "pathForLumora",
]
NOT_CONFIGURED = {"DC": "com"}
DESCRIPTION_CHANGED = "object:property-change:accessible-description"


def texts_of_language(code):
    source = (places.BUNDLE / "Contents/Resources/FallbackPageTexts.js").read_text(encoding="utf-8")
    return json.loads(source[source.index("= {") + 2:source.rindex("}") + 1])[code]


@linux_only("it listens on the desktop's accessibility bus")
class AccessibleCase(EndToEndCase):
    bare_page = False

    @classmethod
    def setUpClass(cls):
        cls.reader = ScreenReader()
        cls.addClassCleanup(cls.reader.stop)

    def start(self, arguments=None, environment=None, wait_for_page=True):
        return super().start(arguments, ENVIRONMENT | (environment or {}), wait_for_page)

    def window(self):
        return waiting.until(lambda: self.reader.window(self.application), "the window on the accessibility bus")

    def view(self):
        return self.window().find("document text")[0]

    def wait_for_view(self, name, text):
        """Until the window's view goes by this name and says this."""
        waiting.until(lambda: (self.view().name, self.view().description) == (name, "\n".join(text)),
                      lambda: f"{name!r}, saying {text}; it is:\n{self.view()}")

    def wait_for_page_tree(self, title):
        """The engine's own tree of the page, which newer toolkits hang into the window's."""
        def document():
            page = self.reader.page()
            found = page.find("document web") if page else []
            return found and found[0].name == title and found[0].children and found[0]
        return waiting.until(document, lambda: f"a page of title {title!r}; there is:\n{self.reader.page()}")

    def start_offline(self, environment=None):
        self.data_centre.control("POST", "/stop")
        self.addCleanup(self.data_centre.control, "POST", "/start")
        self.start(environment=environment, wait_for_page=False)

    def press(self, *keys):
        for key in keys:
            subprocess.run(["xdotool", "key", key], check=True)


class Announced(AccessibleCase):
    """The view speaks for its page: as the object that has the keyboard's focus, it is what a screen reader reads."""

    def test_offline_page_is_told_when_it_takes_the_join_pages_place(self):
        self.start()
        self.wait_for_view(JOIN_TITLE, [])
        self.assertIn("focused", self.view().states)
        earlier = len(self.reader.events(self.application, DESCRIPTION_CHANGED))

        self.data_centre.behave("/join", reset=True)
        self.page.go("/join?again")
        self.wait_for_view("No connection", OFFLINE)
        self.assertIn("focused", self.view().states)
        told = self.reader.events(self.application, DESCRIPTION_CHANGED)[earlier:]
        self.assertEqual([one["value"] for one in told], ["\n".join(OFFLINE)], "told once, and whole")

        self.data_centre.control("DELETE", "/behaviour")
        self.wait_for_view(JOIN_TITLE, [])

    def test_offline_page_tells_when_the_network_goes_and_comes(self):
        self.start_offline()
        self.wait_for_view("No connection", OFFLINE)
        without = [NO_NETWORK if text == OFFLINE[2] else text for text in OFFLINE]
        self.addCleanup(subprocess.run, ["ip", "route", "replace", "default", "via", "10.87.0.2", "dev", "lumora0"])
        self.addCleanup(subprocess.run, ["ip", "address", "replace", "10.87.0.1/24", "dev", "lumora0"])
        subprocess.run(["ip", "address", "flush", "dev", "lumora0"], check=True)
        self.wait_for_view("No connection", without)
        subprocess.run(["ip", "address", "replace", "10.87.0.1/24", "dev", "lumora0"], check=True)
        subprocess.run(["ip", "route", "replace", "default", "via", "10.87.0.2", "dev", "lumora0"], check=True)
        self.wait_for_view("No connection", OFFLINE)

    def test_misconfiguration_page_is_told(self):
        self.start(NOT_CONFIGURED, wait_for_page=False)
        self.wait_for_view("Not set up yet", MISCONFIGURATION)

    def test_pages_are_told_in_the_readers_language_and_in_no_other(self):
        german = texts_of_language("de")
        self.start_offline({"LANG": "de_AT.UTF-8"})
        self.wait_for_view(german["offlineTitle"], [german[key] for key in (
            "offlineHeading", "offlineExplanation", "retrying", "advice", "checkNetwork", "checkOther", "checkVpn",
            "stillOffline")])
        told = self.reader.events(self.application, "object:property-change")
        self.assertNotIn("No connection", [one["value"] for one in told])
        self.assertNotIn("\n".join(OFFLINE), [one["value"] for one in told])


class Structure(AccessibleCase):
    """The engine's own tree."""

    def assert_told_once(self, document, texts):
        """In the order of the page, and each thing once."""
        told = [node.text for node in document.all() if node.text and node.text != "•"]
        self.assertEqual(told, ["Ovra Tessel Lumora", *texts])

    def assert_page(self, document, texts):
        self.assertEqual([node.attributes.get("xml-roles") for node in document.find("landmark")], ["banner", "main"])
        self.assertEqual([(node.name, node.attributes["level"]) for node in document.find("heading")],
                         [(texts[0], "1"), ("What you can do", "2")])
        self.assertEqual([node.name for node in document.find("article")], [texts[0]])
        self.assertEqual(document.find("image"), [], "drawings say nothing")
        self.assertEqual({node.locale for node in document.find("heading")}, {"en"})

    def test_of_the_offline_page(self):
        self.start_offline()
        document = self.wait_for_page_tree("No connection")
        self.assert_page(document, OFFLINE)
        self.assert_told_once(document, OFFLINE)
        (status,) = document.find("status bar")
        self.assertEqual((status.attributes["live"], status.attributes["atomic"]), ("polite", "true"))
        self.assertEqual([node.text for node in status.children], [OFFLINE[2]])
        self.assertEqual(len(document.find("list item")), 4)

    def test_of_the_misconfiguration_page(self):
        self.start(NOT_CONFIGURED, wait_for_page=False)
        document = self.wait_for_page_tree("Not set up yet")
        self.assert_page(document, MISCONFIGURATION)
        self.assert_told_once(document, MISCONFIGURATION)
        (summary,) = [node for node in document.all() if node.attributes.get("tag") == "summary"]
        self.assertEqual(summary.name, MISCONFIGURATION[-1])
        self.assertIn("focusable", summary.states)

    def test_of_the_join_page(self):
        self.start()
        document = self.wait_for_page_tree(JOIN_TITLE)
        self.assertEqual([node.attributes.get("xml-roles") for node in document.find("landmark")][:2],
                         ["banner", "main"])
        fields = [node for role in ("entry", "combo box", "push button", "page tab") for node in document.find(role)]
        self.assertGreaterEqual({node.name for node in fields},
                                {"Session key", "Your e-mail address", "Join session", "Join a session"})
        self.assertEqual([node for node in fields if not node.name], [])

    def test_in_a_language_that_is_written_from_right_to_left(self):
        arabic = texts_of_language("ar")
        self.start_offline({"LANGUAGE": "ar:de"})
        document = self.wait_for_page_tree(arabic["offlineTitle"])
        self.assertEqual([node.locale for node in document.find("heading")], ["ar", "ar"])
        self.assertEqual([node.text for node in document.find("status bar")[0].children], [arabic["retrying"]])


class Keyboard(AccessibleCase):
    def focused(self):
        """The page's element, or else the window's object, that has the focus."""
        document = self.reader.page().find("document web")[0]
        inside = [node.name for node in document.all() if node is not document and "focused" in node.states]
        window = [node.role for node in self.window().all() if "focused" in node.states]
        return inside[0] if inside else window[0] if window else None

    def focused_other_than(self, before):
        now = self.focused()
        return now if now != before else None

    def press_until(self, key, name):
        """Presses the key, which moves the focus each time, until this has it. Nothing has it twice on the way there."""
        seen = []
        while not seen or seen[-1] != name:
            before = self.focused()
            self.press(key)
            now = waiting.until(lambda: self.focused_other_than(before),
                                lambda: f"another focus than {before!r} after {key}; so far {seen}")
            self.assertNotIn(now, seen)
            seen.append(now)
        return seen

    def test_goes_round_in_the_join_page_and_back(self):
        self.start()
        self.wait_for_page_tree(JOIN_TITLE)
        there = self.press_until("Tab", "Report abuse")
        self.assertGreaterEqual(set(there), {"Join a session", "Session key", "Your e-mail address", "Join session"})
        # From behind the last element to the page itself, and to the first one again.
        self.assertEqual(self.press_until("Tab", there[0]), ["document text", there[0]])
        self.press("shift+Tab")
        waiting.until(lambda: self.focused() == "document text", "the page itself, backwards")
        self.assertEqual(self.press_until("shift+Tab", there[-2]), there[:-3:-1])

    def test_stays_in_a_page_without_elements(self):
        self.start_offline()
        self.wait_for_page_tree("No connection")
        for _ in range(3):
            self.press("Tab")
        self.press("ctrl+plus")
        waiting.until(lambda: self.focused() == "document text", lambda: f"the page's focus; it is {self.focused()}")

    def test_opens_what_administrators_need(self):
        self.start(NOT_CONFIGURED, wait_for_page=False)
        self.wait_for_view("Not set up yet", MISCONFIGURATION)
        self.press_until("Tab", "For administrators")
        for key in ("space", "Return"):
            self.press(key)
            self.wait_for_view("Not set up yet", MISCONFIGURATION + FOR_ADMINISTRATORS)
            self.press(key)
            self.wait_for_view("Not set up yet", MISCONFIGURATION)


class Menu(AccessibleCase):
    def menus(self):
        return self.window().find("menu bar")[0].children

    def open_entries(self):
        return [node for menu in self.menus() for opened in menu.find("menu") for node in opened.find("menu item")]

    def focused_entry(self):
        """The name of it, as a set of one, or none."""
        return {node.name for node in self.open_entries() if "focused" in node.states}

    def test_reads_as_it_looks(self):
        self.start()
        self.assertEqual([(menu.role, menu.name) for menu in self.menus()],
                         [("menu item", name) for name in ("Lumora", "Edit", "View", "Window", "Help")])

    def next_menu(self, read):
        """The names in the open menu when it is none of those that were read before."""
        names = [node.name for node in self.open_entries()]
        return names if self.focused_entry() and names not in read.values() else None

    def walk(self):
        """Gets to every entry of the open menu that can be chosen, with the arrow key."""
        wanted = {node.name for node in self.open_entries() if "sensitive" in node.states}
        reached = self.focused_entry()
        while reached != wanted:
            self.press("Down")
            reached |= waiting.until(lambda: self.focused_entry() - reached,
                                     lambda: f"another focused entry than {reached}, of {wanted}")

    def test_every_entry_has_its_name_and_is_reached_by_keyboard(self):
        self.start()
        self.page.wait_until_loaded()
        read = {}
        self.press("F10")
        for menu in self.menus():
            read[menu.name] = waiting.until(lambda: self.next_menu(read), f"the open menu {menu.name}")
            self.walk()
            self.press("Right")
        everything = {entry for entries in read.values() for entry in entries}
        self.assertNotIn("", everything)
        self.assertGreaterEqual(everything, {"Quit Ovra Tessel Lumora", "Undo", "Copy", "Paste", "Select All", "Reload",
                                             "Zoom In", "Zoom Out", "Actual Size", "Minimize", "Close",
                                             "Open Log Folder"})
