"""Ways to end, with a staged update waiting: only the window's closing puts it in place."""

import os
import signal

from harness import bundles, desktop, waiting
from harness.case import set_up_module as setUpModule, tear_down_module as tearDownModule  # noqa: F401
from harness.system import linux_only
from harness.update_case import BANNER, SWAP, UpdateCase, swap_lines


class Termination(UpdateCase):
    def setUp(self):
        super().setUp()
        self.stage()
        self.window = next(iter(self.application.wait_for_window()))
        self.before = bundles.picture(self.bundle)
        self.mark = self.log.mark()

    def wait_for_end(self):
        waiting.until(lambda: not self.application.running(), "the end of the application")
        self.assertEqual(self.application.returncode, 0)

    def assert_not_swapped(self):
        self.wait_for_end()
        self.assertEqual(self.lines_of(self.mark, SWAP), [], "not even the end is told")
        self.assertEqual(bundles.picture(self.bundle), self.before)
        self.assertTrue(self.home.staged_bundle.exists())

    def assert_swapped_once(self):
        self.wait_for_end()
        self.assertEqual(self.lines_of(self.mark, SWAP), swap_lines())
        self.assert_swapped()

    def test_closing_by_the_window_manager_swaps(self):
        self.close_and_see(*swap_lines())
        self.assert_swapped()

    def test_closing_by_the_menus_key_swaps(self):
        desktop.press(self.window, desktop.CLOSE_KEY)
        self.assert_swapped_once()

    def test_closing_twice_swaps_once(self):
        # The first keeps the application busy: both are sent before it can answer.
        os.kill(self.application.pid, signal.SIGSTOP)
        for _ in range(2):
            desktop.request_close(self.window)
        os.kill(self.application.pid, signal.SIGCONT)
        self.assert_swapped_once()
        self.assertEqual(self.log.lines().count(BANNER), 1)

    def test_quitting_by_key_swaps_nothing(self):
        desktop.press(self.window, desktop.QUIT_KEY)
        self.assert_not_swapped()

    def test_quitting_from_the_menu_swaps_nothing(self):
        desktop.quit_by_menu(self.window)
        self.assert_not_swapped()

    @linux_only("there the system itself ends a process that is sent one")
    def test_signals_that_ask_for_the_end_swap_nothing(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number.name):
                os.kill(self.application.pid, number)
                self.assert_not_swapped()
                if number != signal.SIGHUP:
                    self.stage()
                    self.mark = self.log.mark()
