"""A page shows itself in the reader's language: its own scripts, run by the web view's engine on the page's elements."""
import json
import unittest

from files import PAGES, read, texts
from page_tree import english, parse
from script_engine import Context

MISCONFIGURATION, OFFLINE = PAGES

# What the scripts use of a browser.
BROWSER = """
const listeners = {};
const addEventListener = (name, listener) => { listeners[name] = listener; };
const navigator = { languages: %(languages)s, onLine: %(online)s };
const elements = %(elements)s;
const document = {
  documentElement: { lang: "en", dir: "" },
  querySelectorAll: (selector) => {
    const name = /^\\[data-([a-z]+)\\]$/.exec(selector)[1];
    return elements.filter((element) => name in element.dataset);
  },
};
"""


class Shown(Context):
    """A page after its scripts have run. languages: what the reader prefers, first to last."""

    def __init__(self, page, languages, online=True, entries=None):
        self.page, self.languages, self.online, self.entries = page, languages, online, entries

    def __enter__(self):
        super().__enter__()
        elements = [{
            "dataset": {name[len("data-"):]: value for name, value in element.attributes.items()
                        if name.startswith("data-")},
            "textContent": element.text,
            "hidden": "hidden" in element.attributes,
        } for element in parse(self.page).all()]
        self.load(BROWSER % {"languages": json.dumps(self.languages), "online": json.dumps(self.online),
                             "elements": json.dumps(elements)})
        if self.entries is None:
            self.load(read("FallbackPageTexts.js"))
        elif self.entries:
            self.load(f"const fallbackPageTexts = {json.dumps(self.entries)};")
        self.load(read("FallbackPage.js"))
        return self

    def root(self):
        root = self.run("document.documentElement")
        return root["lang"], root["dir"]

    def texts(self):
        return {e["dataset"]["text"]: e["textContent"] for e in self.run("elements") if "text" in e["dataset"]}

    def element(self, key):
        return next(e for e in self.run("elements") if e["dataset"].get("text") == key)


class TheLanguage(unittest.TestCase):
    # What the reader prefers, and the entry that serves best.
    CHOICES = [
        (["de"], "de"), (["de-AT"], "de"), (["DE-at"], "de"), (["de_CH"], "de"), (["pt-BR"], "pt"), (["pt-PT"], "pt"),
        (["zh"], "zh"), (["zh-CN"], "zh"), (["zh-Hant-TW"], "zh"), (["ar-EG"], "ar"), (["hi-IN"], "hi"), (["ja-JP"], "ja"),
        (["nl-BE"], "nl"), (["it-CH"], "it"), (["es-419"], "es"), (["fr-CA"], "fr"),
        (["en-GB", "de"], "en"), (["sv", "fr", "de"], "fr"), (["sv", "en", "de"], "en"), (["sv"], "en"), ([], "en"),
        (["dev"], "en"), (["constructor"], "en"), (["toString-DE"], "en"), ([""], "en"), (["-"], "en"),
    ]

    def test_is_the_first_that_there_is(self):
        with Shown(OFFLINE, []) as page:
            for wanted, best in self.CHOICES:
                self.assertEqual(best, page.run(f"chooseLanguage({json.dumps(wanted)}, fallbackPageTexts)"), wanted)

    def test_of_a_region_or_script_wins_over_the_general_one(self):
        entries = {"zh": {}, "zh-Hant": {}, "pt": {}, "pt-BR": {}}
        with Shown(OFFLINE, []) as page:
            for wanted, best in [("zh-Hant-TW", "zh-Hant"), ("zh-Hans-CN", "zh"), ("pt-br", "pt-BR"), ("pt-PT", "pt")]:
                self.assertEqual(best, page.run(f"chooseLanguage([{json.dumps(wanted)}], {json.dumps(entries)})"))


class APage:
    """What holds for either page."""
    page: str

    def setUp(self):
        self.english = english(parse(self.page))

    def test_is_all_in_each_language(self):
        for code, entry in texts().items():
            with Shown(self.page, [code]) as page:
                self.assertEqual({key: entry[key] for key in self.english}, page.texts())
                self.assertEqual((entry.get("language", code), entry.get("direction", "ltr")), page.root())

    def test_names_the_exact_language_and_direction(self):
        for wanted, root in [("ar-MA", ("ar", "rtl")), ("zh-TW", ("zh-Hans", "ltr")), ("de-AT", ("de", "ltr"))]:
            with Shown(self.page, [wanted]) as page:
                self.assertEqual(root, page.root())

    def test_stays_english_for_others(self):
        for languages in (["en-US"], ["sv-SE"], []):
            with Shown(self.page, languages) as page:
                self.assertEqual(self.english, page.texts())
                self.assertEqual(("en", "ltr"), page.root())

    def test_shows_what_a_language_lacks_in_english_and_says_so(self):
        entry = {key: text for key, text in texts()["ar"].items() if key != "advice"}
        with Shown(self.page, ["ar"], entries={"ar": entry}) as page:
            self.assertEqual(("ar", "rtl"), page.root())
            advice = page.element("advice")
            self.assertEqual((self.english["advice"], "en", "ltr"),
                             (advice["textContent"], advice["lang"], advice["dir"]))
            self.assertEqual({key: entry[key] for key in self.english if key != "advice"},
                             {key: text for key, text in page.texts().items() if key != "advice"})

    def test_stays_english_when_the_texts_are_missing(self):
        with Shown(self.page, ["de"], entries={}) as page:
            self.assertEqual(self.english, page.texts())
            self.assertEqual(("en", "ltr"), page.root())


class TheMisconfigurationPage(APage, unittest.TestCase):
    page = MISCONFIGURATION


class TheOfflinePage(APage, unittest.TestCase):
    page = OFFLINE

    def shown(self, page):
        return [key for key in ("retrying", "noNetwork") if not page.element(key)["hidden"]]

    def test_tells_whether_there_is_a_network(self):
        for online, text in [(True, "retrying"), (False, "noNetwork")]:
            with Shown(OFFLINE, ["en"], online=online) as page:
                self.assertEqual([text], self.shown(page))

    def test_tells_when_that_changes(self):
        with Shown(OFFLINE, ["ja"]) as page:
            for event, online, text in [("offline", "false", "noNetwork"), ("online", "true", "retrying")]:
                page.load(f"navigator.onLine = {online}; listeners.{event}();")
                self.assertEqual([text], self.shown(page))


if __name__ == "__main__":
    unittest.main()
