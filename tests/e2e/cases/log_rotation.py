"""The log under load: every line once, whole and in order, in files as support staff know them."""

import re

from harness import waiting
from harness.case import (EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401

CONSOLE = "handleMessageFromWebView(message:) : Console Message from WebView: "
LIMIT = 262145


class LogRotation(EndToEndCase):
    def setUp(self):
        super().setUp()
        self.start()
        self.wait_for_launch_checks()

    def post_lines(self, first, count, length, pause_every=None):
        """Numbered lines of this length, in bursts; a pause lets the application's timer in."""
        pause = f"if (i % {pause_every} === 0) await new Promise(r => setTimeout(r, 120));" if pause_every else ""
        self.page.eval(f"for (let i = {first}; i < {first + count}; i++) {{"
                       f" post('consoleHandler', String(i).padStart(8, '0') + 'x'.repeat({length}) + '|'); {pause} }}",
                       timeout=120)

    def numbers(self):
        found = []
        for line in self.log.lines():
            if line.startswith(CONSOLE):
                match = re.fullmatch(r"(\d{8})(x+)\|", line[len(CONSOLE):])
                self.assertIsNotNone(match, f"torn line: {line[:200]}")
                found.append(int(match[1]))
        return found

    def wait_for_number(self, number):
        waiting.until(lambda: f"{CONSOLE}{number:08}x" in self.log.text(), f"line {number}", seconds=120)
        self.log.wait_until_settled(LIMIT)

    def test_one_burst_loses_nothing(self):
        count = 4000
        self.post_lines(0, count, 500)
        self.wait_for_number(count - 1)
        self.assertEqual(self.numbers(), list(range(count)))
        self.assertTrue(self.log.backup(0).exists())

    def test_bursts_over_several_rotations_lose_nothing(self):
        # 2.6 MB in all: fewer than eleven rotations, however they fall.
        count = 5000
        self.post_lines(0, count, 440, pause_every=500)
        self.wait_for_number(count - 1)
        self.assertEqual(self.numbers(), list(range(count)))
        backups = [index for index in range(20) if self.log.backup(index).exists()]
        self.assertGreater(len(backups), 2)
        self.assertEqual(backups, list(range(len(backups))))
        for index in backups:
            self.assertGreaterEqual(self.log.backup(index).stat().st_size, LIMIT)

    def test_no_more_than_eleven_backups(self):
        rotations = 14
        for rotation in range(rotations):
            self.post_lines(rotation * 600, 600, 480)
            self.wait_for_number(rotation * 600 + 599)
        names = sorted(path.name for path in self.home.log_folder.iterdir())
        self.assertEqual(names, sorted(["ovraLumora.log"] + [f"ovraLumora{index}.log" for index in range(11)]))
        # What is left is the newest, without a gap.
        numbers = self.numbers()
        self.assertEqual(numbers, list(range(numbers[0], rotations * 600)))

    def test_a_second_run_leaves_older_backups_until_it_reaches_them(self):
        for index in (0, 1, 5):
            self.log.backup(index).write_text(f"an earlier run's {index}\n")
        self.post_lines(0, 700, 480)
        self.wait_for_number(699)
        self.assertTrue(self.log.backup(0).read_bytes().count(b"Console Message") > 300)
        self.assertEqual(self.log.backup(1).read_text(), "an earlier run's 1\n")
        self.assertEqual(self.log.backup(5).read_text(), "an earlier run's 5\n")

    def test_log_that_is_removed_comes_back(self):
        self.home.log.unlink()
        waiting.until(self.home.log.exists, "the log's return")
        self.page.post("consoleHandler", "after the removal")
        self.log.wait_for(CONSOLE + "after the removal")
