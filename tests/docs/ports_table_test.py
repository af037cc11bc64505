"""docs/ports.md has one row for each operation of each port, and each row's calls and test exist."""
import re
import unittest
from collections import Counter
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PORTS = ROOT / "src" / "platform"
CONTRACT_TESTS = ROOT / "tests" / "contract"
PAGE = ROOT / "docs" / "ports.md"


def operations():
    """The pure virtual operations of the ports' headers, as Class::operation."""
    found = Counter()
    for header in PORTS.glob("*.h"):
        text = re.sub(r"//.*", "", header.read_text())
        for name, body in re.findall(r"(?<!enum )class (\w+)(?: final)?\s*(?::[^{;]*)?\{(.*?)\n\};", text, re.DOTALL):
            for declaration in re.findall(r"virtual\s([^;{]*?)\)[^;{]*= 0;", body):
                operation = re.search(r"(\w+)\s*\(", declaration)[1]
                found[f"{name}::{operation}"] += 1
    return found


def rows():
    """The cells of each row of the page's tables, without heads and rules."""
    lines = [line for line in PAGE.read_text().splitlines() if line.startswith("| `")]
    return [[cell.strip() for cell in line.strip("|").split(" | ")] for line in lines]


def terms(cell):
    return re.findall(r"`([^`]+)`", cell)


def sources(*folders):
    return "\n".join(path.read_text() for folder in folders for path in sorted((PORTS / folder).rglob("*"))
                     if path.suffix in (".h", ".cpp", ".mm"))


def is_called(term, text):
    """Whether the text has the term; of a selector, whether it has each of its parts."""
    if term.endswith(":"):
        return all(re.search(rf"\b{part}:", text) for part in term.rstrip(":").split(":"))
    return re.search(rf"(?<!\w){re.escape(term)}(?!\w)", text) is not None


class PortsTable(unittest.TestCase):
    def test_has_one_row_for_each_operation(self):
        self.assertGreater(sum(operations().values()), 60, "the headers are not understood any more")
        told = Counter(terms(row[0])[0] for row in rows())
        self.assertEqual([], sorted((operations() - told).elements()), "without a row")
        self.assertEqual([], sorted((told - operations()).elements()), "rows of no operation")

    def test_names_calls_that_the_backends_make(self):
        for column, folders in ((1, ("macos", "posix")), (2, ("linux", "posix"))):
            text = sources(*folders)
            for row in rows():
                with self.subTest(row[0]):
                    self.assertTrue(terms(row[column]), "no call is named")
                    self.assertEqual([], [term for term in terms(row[column]) if not is_called(term, text)])

    def test_names_contract_tests_that_exist_and_run_on_every_system(self):
        text = "\n".join(path.read_text() for path in CONTRACT_TESTS.rglob("*.cpp")
                         if not path.name.startswith(("gtk_", "linux_")))
        existing = {f"{suite}.{name}" for suite, name in re.findall(r"^TEST(?:_[FP])?\((\w+),\s*(\w+)\)", text, re.M)}
        self.assertGreater(len(existing), 100, "the tests are not understood any more")
        for row in rows():
            with self.subTest(row[0]):
                self.assertEqual(4, len(row))
                self.assertTrue(terms(row[3]), "no test is named")
                self.assertEqual(set(), set(terms(row[3])) - existing)


if __name__ == "__main__":
    unittest.main()
