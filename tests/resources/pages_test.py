"""The pages stand on their own, and are put together so that a screen reader and a keyboard find their way."""
import re
import unittest

from files import PAGES, bundled, read
from page_tree import parse
from stylesheet import blocks, declarations_of

MISCONFIGURATION, OFFLINE = PAGES
SVG_NAMESPACE = "http://www.w3.org/2000/svg"


class APage:
    """What holds for either page."""
    page: str

    def setUp(self):
        self.root = parse(self.page)
        (self.body,) = self.root.find("body")

    def test_uses_files_of_the_bundle_only(self):
        files = set(bundled())
        used = {element.attributes[name] for name in ("src", "href", "srcset", "data", "action", "poster")
                for element in self.root.having(name)}
        self.assertGreaterEqual(used, {"FallbackPage.css", "FallbackPage.js", "FallbackPageTexts.js"})
        self.assertLessEqual(used, files)

    def test_has_no_script_or_style_of_its_own(self):
        for element in self.root.all():
            self.assertFalse([name for name in element.attributes if name.startswith("on") or name == "style"])
        for script in self.root.find("script"):
            self.assertEqual("", script.text)
            self.assertIn("defer", script.attributes)

    def test_declares_what_it_is(self):
        self.assertTrue(read(self.page).lower().startswith("<!doctype html>"))
        self.assertEqual(("html", "en"), (self.root.tag, self.root.attributes.get("lang")))
        self.assertTrue(self.root.find("title")[0].text)
        metas = self.root.find("meta")
        self.assertEqual(["utf-8"], [m.attributes["charset"] for m in metas if "charset" in m.attributes])
        (viewport,) = [m.attributes["content"] for m in metas if m.attributes.get("name") == "viewport"]
        self.assertEqual("width=device-width, initial-scale=1", viewport, "must leave zooming to the reader")

    def test_has_landmarks_around_everything(self):
        self.assertEqual(["header", "main"], [child.tag for child in self.body.children])
        self.assertEqual(1, len(self.root.find("main")))

    def test_has_headings_in_order(self):
        levels = [element.tag for element in self.root.all() if re.fullmatch("h[1-6]", element.tag)]
        self.assertEqual(["h1", "h2"], levels)
        for heading in self.root.find("h1") + self.root.find("h2"):
            self.assertTrue(heading.text)

    def test_refers_to_what_there_is(self):
        names = [element.attributes["id"] for element in self.root.having("id")]
        self.assertEqual(len(set(names)), len(names))
        for element in self.root.having("aria-labelledby"):
            self.assertIn(element.attributes["aria-labelledby"], names)

    def test_has_pictures_as_decoration(self):
        for image in self.root.find("img"):
            self.assertEqual("", image.attributes.get("alt"))
            # The engine tells a drawing's own label in spite of an empty alternative.
            self.assertEqual("true", image.attributes.get("aria-hidden"))
        for drawing in self.root.find("svg"):
            self.assertEqual("true", drawing.attributes.get("aria-hidden"))

    def test_has_only_texts_that_are_translated_or_names(self):
        for element in self.body.all():
            if element.own_text.strip():
                self.assertTrue("data-text" in element.attributes or element.attributes.get("translate") == "no",
                                element.text)
            if "data-text" in element.attributes:
                self.assertEqual([], element.children, "a translation replaces what is in the element")

    def test_leaves_the_order_of_focus_alone(self):
        self.assertEqual([], self.root.having("tabindex") + self.root.having("autofocus"))


class TheMisconfigurationPage(APage, unittest.TestCase):
    page = MISCONFIGURATION


class TheOfflinePage(APage, unittest.TestCase):
    page = OFFLINE

    def test_says_in_a_live_region_that_it_tries_again_by_itself(self):
        (status,) = [e for e in self.root.having("role") if e.attributes["role"] == "status"]
        self.assertEqual({"retrying", "noNetwork"}, {e.attributes["data-text"] for e in status.having("data-text")})
        (shown,) = [e for e in status.having("data-text") if "hidden" not in e.attributes]
        self.assertEqual("retrying", shown.attributes["data-text"], "the one to read without script")
        self.assertIn("keeps trying by itself", shown.text)


class TheFiles(unittest.TestCase):
    def test_name_no_address(self):
        for name in bundled():
            content = read(name).replace(f'xmlns="{SVG_NAMESPACE}"', "")
            self.assertNotRegex(content, r"(?i)\b(https?|wss?|ftp|data|blob):|[\"'(=]\s*//\w", name)
            if name.endswith(".css"):
                self.assertNotRegex(content, r"@import|@font-face|\burl\(|image-set\(", name)
            elif name.endswith(".svg"):
                self.assertEqual([], re.findall(r"url\((?!#)|href=\"(?!#)|<script|<style|<image", content), name)

    def test_need_neither_the_application_nor_the_network(self):
        for name in ("FallbackPage.js", "FallbackPageTexts.js"):
            self.assertNotRegex(read(name), r"webkit\b|messageHandlers|fetch\(|XMLHttpRequest|import\b|innerHTML|eval\(",
                                name)


class BothPages(unittest.TestCase):
    def test_share_head_and_header(self):
        def shared(page):
            content = read(page)
            return (re.sub(r"<title.*</title>", "", re.search("(?s)<head>.*</head>", content).group()),
                    re.search("(?s)<header>.*</header>", content).group())
        self.assertEqual(*map(shared, PAGES))


class TheStyleSheet(unittest.TestCase):
    def setUp(self):
        css = re.sub(r"(?s)/\*.*?\*/", "", read("FallbackPage.css"))
        self.blocks = list(blocks(css))

    def test_stops_every_motion_for_those_who_ask(self):
        moving = {selector for selector, body in self.blocks if not selector.startswith("@")
                  for name in declarations_of(body) if name.startswith(("animation", "transition"))}
        (reduced,) = [body for selector, body in self.blocks if selector == "@media (prefers-reduced-motion: reduce)"]
        still = {selector for selector, body in blocks(reduced) if declarations_of(body).get("animation") == "none"}
        self.assertTrue(moving)
        self.assertEqual(moving, still)

    def test_grows_with_the_reader_s_text(self):
        for selector, body in self.blocks:
            if not selector.startswith("@"):
                for name, value in declarations_of(body).items():
                    if re.fullmatch("font-size|line-height|(min-|max-)?(width|height)|padding.*|margin.*|gap", name):
                        self.assertNotRegex(value, r"\dp[xt]\b", f"{selector} {name}")

    def test_knows_no_left_and_right(self):
        for selector, body in self.blocks:
            self.assertNotRegex(body, r"\b(margin|padding|border)-(left|right)|text-align: *(left|right)|float:", selector)


if __name__ == "__main__":
    unittest.main()
