"""Every language says everything that the English pages say."""
import unicodedata
import unittest

from files import PAGES, texts
from page_tree import english, parse

OF_ITS_OWN = {"language", "direction"}
# The script a language is written in, as the characters' names begin: an entry in the wrong place shows.
SCRIPTS = {
    "ar": "ARABIC", "de": "LATIN", "es": "LATIN", "fr": "LATIN", "hi": "DEVANAGARI", "it": "LATIN",
    "ja": ("CJK", "HIRAGANA", "KATAKANA"), "nl": "LATIN", "pt": "LATIN", "zh": "CJK",
}


class Texts(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.texts = texts()
        cls.pages = {page: english(parse(page)) for page in PAGES}
        cls.english = {key: text for page in cls.pages.values() for key, text in page.items()}

    def test_every_language_has_every_key_and_no_other(self):
        self.assertTrue(self.english)
        for language, entry in self.texts.items():
            self.assertEqual(set(self.english), set(entry) - OF_ITS_OWN, language)

    def test_the_languages(self):
        self.assertLessEqual(set(SCRIPTS), set(self.texts))
        self.assertNotIn("en", self.texts, "the pages themselves are in English")

    def test_are_proper_texts(self):
        for language, entry in self.texts.items():
            for key, text in entry.items():
                self.assertEqual(" ".join(text.split(" ")).strip(), text, f"{language} {key}")
                self.assertTrue(text, f"{language} {key}")
                self.assertNotRegex(text, r"[<>&]|  ", f"{language} {key}")
                self.assertNotEqual(self.english.get(key), text, f"{language} {key} is the English text")

    def test_are_written_in_the_language_s_script(self):
        for language, script in SCRIPTS.items():
            for key in self.english:
                text = self.texts[language][key]
                letters = [c for c in text if c.isalpha()]
                proper = [c for c in letters if unicodedata.name(c).startswith(script)]
                self.assertGreater(len(proper) * 2, len(letters), f"{language} {key}: {text}")

    def test_only_arabic_runs_from_right_to_left(self):
        self.assertEqual({"ar": "rtl"}, {language: entry["direction"] for language, entry in self.texts.items()
                                         if "direction" in entry})

    def test_a_text_on_both_pages_is_the_same(self):
        one, other = self.pages.values()
        for key in one.keys() & other.keys():
            self.assertEqual(one[key], other[key])


if __name__ == "__main__":
    unittest.main()
