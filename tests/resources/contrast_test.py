"""Every text stands out from what is behind it as WCAG's level AA wants, in both themes."""
import unittest

from files import PAGES
from page_tree import parse
from stylesheet import Stylesheet

TEXT = 4.5  # to one, for text of ordinary size; demanded of headings too
GRAPHICS = 3.0


def luminance(colour):
    linear = [c / 255 / 12.92 if c / 255 <= 0.04045 else ((c / 255 + 0.055) / 1.055) ** 2.4 for c in colour]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(one, other):
    darker, lighter = sorted((luminance(one), luminance(other)))
    return (lighter + 0.05) / (darker + 0.05)


class Contrast(unittest.TestCase):
    def each(self):
        """(what to call it, its style sheet, its body) of each page in each theme."""
        for theme in ("light", "dark"):
            sheet = Stylesheet(theme)
            for page in PAGES:
                yield f"{page}, {theme}", sheet, parse(page).find("body")[0]

    def demand(self, ratio, foreground, backgrounds, what):
        for background in backgrounds:
            found = contrast(foreground, background)
            self.assertGreaterEqual(found, ratio, f"{what}: {foreground} on {background} is only {found:.2f} to 1")

    def test_the_measure_itself(self):
        self.assertAlmostEqual(21, contrast((0, 0, 0), (255, 255, 255)))
        self.assertAlmostEqual(4.54, contrast((0x76, 0x76, 0x76), (255, 255, 255)), places=2)

    def test_of_every_text(self):
        for name, sheet, body in self.each():
            tags = set()
            for element in body.all():
                if element.own_text.strip():
                    tags.add(element.tag)
                    self.demand(TEXT, sheet.text_colour(element), sheet.backgrounds(element),
                                f"{name}, {element}")
            self.assertGreaterEqual(tags, {"bdi", "h1", "h2", "p", "li"}, name)

    def test_of_pictures_and_spinner(self):
        for name, sheet, body in self.each():
            drawn = [element for element in body.all() if {"picture", "spinner"} & set(element.classes)]
            self.assertTrue(drawn)
            for element in drawn:
                self.demand(GRAPHICS, sheet.text_colour(element), sheet.backgrounds(element),
                            f"{name}, {element}")

    def test_of_the_keyboard_focus(self):
        for name, sheet, body in self.each():
            (outline,) = [declarations["outline"] for selector, declarations in sheet.outside
                          if selector == ":focus-visible"]
            for summary in body.find("summary"):
                (colour,) = sheet.colours(outline, summary)
                self.demand(GRAPHICS, colour, sheet.backgrounds(summary), f"{name}, focus")

    def test_is_not_weakened_by_transparency(self):
        for _, sheet, body in self.each():
            for element in body.all():
                self.assertIsNone(sheet.own(element, "opacity"), element)

    def test_themes_differ(self):
        body = parse(PAGES[0]).find("body")[0]
        self.assertNotEqual(Stylesheet("light").text_colour(body), Stylesheet("dark").text_colour(body))


if __name__ == "__main__":
    unittest.main()
