"""How the pages and the window look: light or dark as the desktop wants it, at any width and any size of text."""

import statistics
import subprocess

from harness import screen, waiting
from harness.case import (EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.linux.desktop import pixels
from harness.linux.desktop_portal import DesktopPortal
from harness.linux.processes import NETWORK_PROCESS, environment_of, helpers_of
from harness.linux.screen_reader import ENVIRONMENT, ScreenReader
from harness.system import linux_only

NOT_CONFIGURED = {"DC": "com"}
# Of the window's first rows, which the menu bar takes.
MENU_BAR_PIXELS = 5000
DARK, LIGHT = 100, 180


@linux_only("it is measured by the toolkit's themes and the screen reader's bus")
class AppearanceCase(EndToEndCase):
    bare_page = False

    def window(self):
        return next(iter(self.application.wait_for_window()))

    def start_offline(self, environment=None):
        self.data_centre.control("POST", "/stop")
        self.addCleanup(self.data_centre.control, "POST", "/start")
        self.start(environment=environment, wait_for_page=False)


class Drawing(AppearanceCase):
    def test_is_by_software_unless_the_user_has_chosen(self):
        for chosen, expected in (({}, {"GSK_RENDERER": "cairo", "GDK_DEBUG": "gl-disable"}),
                                 ({"GSK_RENDERER": "gl", "GDK_DEBUG": "gl-disable,nograbs"},) * 2):
            with self.subTest(chosen):
                self.start(NOT_CONFIGURED, chosen, wait_for_page=False)
                self.application.wait_for_window()
                # A process tells of its environment as it began: what became of it is what its helpers began with.
                network = waiting.until(lambda: [pid for pid, name in helpers_of(self.application).items()
                                                 if name == NETWORK_PROCESS], "the network process")[0]
                self.assertLessEqual(expected.items(), environment_of(network).items())


class Themes(AppearanceCase):
    def menu_bar(self):
        """How bright the menu bar is, from 0 to 255."""
        seen = pixels(self.window())
        return statistics.median(seen[:3 * MENU_BAR_PIXELS]) if seen else None

    def assert_theme(self, page, scheme):
        screen.wait_for_page(self.application, page, scheme)
        if scheme == "dark":
            waiting.until(lambda: self.menu_bar() < DARK, lambda: f"a dark menu bar, not {self.menu_bar()}")
        else:
            waiting.until(lambda: self.menu_bar() > LIGHT, lambda: f"a light menu bar, not {self.menu_bar()}")

    def portal(self, scheme):
        portal = DesktopPortal(scheme)
        self.addCleanup(portal.stop)
        return portal

    def settings_of_the_toolkit(self, *lines):
        file = self.home.path / ".config/gtk-4.0/settings.ini"
        file.parent.mkdir(parents=True)
        file.write_text("\n".join(["[Settings]", *lines, ""]), encoding="utf-8")

    def test_follow_the_desktop_while_it_changes_its_mind(self):
        portal = self.portal("dark")
        self.start_offline()
        self.assert_theme("offline", "dark")
        for scheme, seen in (("light", "light"), ("dark", "dark"), ("none", "light")):
            portal.ask_for(scheme)
            self.assert_theme("offline", seen)

    def test_of_the_misconfiguration_page_follow_the_desktop(self):
        self.portal("dark")
        self.start(NOT_CONFIGURED, wait_for_page=False)
        self.assert_theme("misconfiguration", "dark")

    def test_keep_to_the_users_own_settings_where_the_desktop_has_no_wish(self):
        self.settings_of_the_toolkit("gtk-application-prefer-dark-theme=true")
        portal = self.portal("none")
        self.start_offline()
        self.assert_theme("offline", "dark")
        for scheme in ("dark", "none"):
            portal.ask_for(scheme)
            self.assert_theme("offline", "dark")

    def test_are_light_where_nobody_answers_for_the_desktop(self):
        self.start_offline()
        self.assert_theme("offline", "light")


class Reflow(AppearanceCase):
    """Nobody has to scroll sideways."""

    @classmethod
    def setUpClass(cls):
        cls.reader = ScreenReader()
        cls.addClassCleanup(cls.reader.stop)

    def document(self, title):
        def loaded():
            page = self.reader.page()
            found = page.find("document web") if page else []
            return found and found[0].name == title and found[0].find("list item") and page
        return waiting.until(loaded, lambda: f"a page of title {title!r}; there is:\n{self.reader.page()}")

    def zoom_in(self, title, times):
        """Until the text is so many times as large, a step at a time: presses in quick succession get lost."""
        first = now = self.bullet(title).height
        while now < first * times:
            subprocess.run(["xdotool", "key", "ctrl+plus"], check=True)
            now = waiting.until(lambda before=now: self.bullet_above(title, before), f"larger text than {now}")

    def bullet_above(self, title, height):
        found = self.bullet(title).height
        return found if found > height else None

    def resize(self, width, height):
        subprocess.run(["wmctrl", "-i", "-r", self.window(), "-e", f"0,-1,-1,{width},{height}"], check=True)

    def bullet(self, title):
        return [node for node in self.document(title).all() if node.text == "•"][0]

    def what_does_not_fit(self, title, width):
        page = self.document(title)
        document = page.find("document web")[0]
        wider = [document] if document.width > width else []
        sideways = [bar for bar in page.find("scroll bar") if "horizontal" in bar.states]
        outside = [node for node in document.all() if "showing" in node.states and node.width and not
                   document.left <= node.left <= node.left + node.width <= document.left + document.width]
        return [*wider, *sideways, *outside]

    def assert_fits(self, title, width):
        """As soon as the page has been laid out for its new width."""
        waiting.until(lambda: not self.what_does_not_fit(title, width),
                      lambda: f"a page {width} wide; too wide are: {self.what_does_not_fit(title, width)}")

    def fits(self, title):
        self.assert_fits(title, 1000)
        self.resize(360, 640)
        self.assert_fits(title, 360)
        self.zoom_in(title, 2)
        self.assert_fits(title, 360)

    def test_of_the_offline_page(self):
        self.start_offline(ENVIRONMENT)
        self.fits("No connection")

    def test_of_the_misconfiguration_page(self):
        self.start(NOT_CONFIGURED, ENVIRONMENT, wait_for_page=False)
        self.fits("Not set up yet")

    def test_of_the_offline_page_with_long_words(self):
        self.start_offline(ENVIRONMENT | {"LC_ALL": "de_DE.UTF-8"})
        self.fits("Keine Verbindung")
