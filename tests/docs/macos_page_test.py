"""docs/macos.md has each macOS source in its table of decisions, and what it names exists."""
import re
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BACKEND = ROOT / "src" / "platform" / "macos"
PAGE = (ROOT / "docs" / "macos.md").read_text()


def section(title):
    return re.search(rf"^## {title}\n(.*?)(?=^## |\Z)", PAGE, re.MULTILINE | re.DOTALL)[1]


def terms(cell):
    return re.findall(r"`([^`]+)`", cell)


class DecisionsTable(unittest.TestCase):
    def setUp(self):
        lines = [line for line in section("Where each decision is").splitlines() if line.startswith("| `")]
        self.rows = [line.strip("|").split(" | ") for line in lines]

    def test_has_each_source_once(self):
        sources = sorted(str(path.relative_to(BACKEND)) for path in BACKEND.rglob("*.mm"))
        self.assertGreater(len(sources), 10)
        self.assertEqual(sources, sorted(terms(row[0])[0] for row in self.rows))

    def test_points_to_files_of_the_core(self):
        for row in self.rows:
            with self.subTest(row[0]):
                decided = terms(row[2])
                self.assertTrue(decided)
                for path in decided:
                    self.assertTrue((ROOT / "src" / path).is_file(), path)
                    self.assertFalse(path.startswith(("platform/linux/", "platform/macos/")), path)


class PackagingScripts(unittest.TestCase):
    def test_are_all_told(self):
        scripts = {path.name for path in (ROOT / "packaging" / "macos").iterdir() if path.suffix == ""}
        rows = [line for line in section("Sign, notarise, pack").splitlines() if line.startswith("| `")]
        self.assertEqual(scripts, {terms(row)[0] for row in rows})


class Links(unittest.TestCase):
    def test_lead_somewhere(self):
        targets = re.findall(r"\]\(([^)#]+)\)", PAGE)
        self.assertTrue(targets)
        for target in targets:
            self.assertTrue((ROOT / "docs" / target).is_file(), target)


if __name__ == "__main__":
    unittest.main()
