"""Where the pages are, and what belongs to them."""
import json
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDER = ROOT / "resources"
PAGES = ("MisconfigurationPage.html", "NoInternetPage.html")


def bundled():
    """The names of the files that the bundle's Resources folder gets."""
    listed = re.search(r"set\(LUMORA_BUNDLE_RESOURCES([^)]*)\)", (ROOT / "cmake/Bundle.cmake").read_text())
    return listed.group(1).split()


def read(name):
    return (FOLDER / name).read_text(encoding="utf-8")


def texts():
    """The languages' entries, as FallbackPageTexts.js has them; an error when a key stands twice."""
    body = re.search(r"^const fallbackPageTexts = (\{.*\});$", read("FallbackPageTexts.js"), re.DOTALL | re.MULTILINE)

    def once(pairs):
        keys = [key for key, _ in pairs]
        twice = {key for key in keys if keys.count(key) > 1}
        if twice:
            raise ValueError(f"said twice: {sorted(twice)}")
        return dict(pairs)

    return json.loads(body.group(1), object_pairs_hook=once)
