"""What the administrators' page promises is what the sources do: keys, files, log lines, links."""

import re
import unittest

import release

PAGE = release.ROOT / "docs/administrators.md"


def section(title):
    """The text of a section, up to the next heading of its level."""
    level = title.split(" ")[0]
    found = re.search(rf"^{re.escape(title)}$(.*?)(?=^{level} |\Z)", PAGE.read_text(encoding="utf-8"),
                      re.DOTALL | re.MULTILINE)
    return found.group(1)


def first_cells(text):
    """The code in the first cell of each row."""
    return re.findall(r"^\| `([^`]+)`", text, re.MULTILINE)


def sources(folder, *suffixes):
    return "".join(path.read_text(encoding="utf-8") for path in sorted((release.ROOT / folder).rglob("*"))
                   if path.suffix in suffixes)


class AdministratorsPage(unittest.TestCase):
    def test_log_lines_are_the_sources_own(self):
        lines = first_cells(section("## Troubleshooting by log line"))
        self.assertGreater(len(lines), 8)
        # Texts that the source breaks across lines are one.
        text = re.sub(r'"\s*\n\s*"', "", sources("src", ".cpp", ".h"))
        for line in lines:
            self.assertIn(line, text)

    def test_keys_are_the_sources_own(self):
        text = sources("src/config", ".cpp")
        for key in re.findall(r"^\| `(\w+)` \|", section("## Configure"), re.MULTILINE):
            self.assertIn(f'"{key}"', text)

    def test_paths_are_removed_by_the_uninstall_script(self):
        script = (release.ROOT / "resources/uninstall_lumora.sh").read_text(encoding="utf-8")
        for path in re.findall(r"`~/([^`]+)`", section("## What it writes, and where")):
            name = path.rstrip("/").split("/")[-1].replace(release.DOMAIN, "$DOMAIN")
            if name != "ovraLumora.log":
                self.assertIn(name, script)

    def test_readme_leads_here(self):
        self.assertIn("(docs/administrators.md)", (release.ROOT / "README.md").read_text(encoding="utf-8"))

    def test_documented_files_are_made(self):
        text = PAGE.read_text(encoding="utf-8")
        for path in (release.debian_package(), release.installer()):
            self.assertIn(path.name, text)
