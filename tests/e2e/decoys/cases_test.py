"""The cases as a Mac loads them: the same ones, each of them with its harness, and few that only Linux can run."""

import os
import sys
import tempfile
import unittest
import unittest.mock

from decoyed_mac import WORLD

E2E = WORLD.parent
# Modules of something that only Linux has, and of the others the most that may be skipped: none where none is named.
WHOLE = ("abuse_link", "accessibility", "appearance", "uninstall", "weather_network")
LINUX_ONLY = {"bad_input": 3, "downloads": 6, "launch": 1, "navigation": 1, "pages": 1, "self_update": 2, "self_update_failures": 2,
              "termination": 1, "world": 7}
# What a release hands out on Linux: these are not registered on a Mac.
PACKAGES = ("installed_for_one_user", "installed_package")


def tests_of(suite):
    for one in suite:
        yield from tests_of(one) if isinstance(one, unittest.TestSuite) else [one]


def reason(test):
    method = getattr(test, test._testMethodName)
    return getattr(method, "__unittest_skip_why__", "") or getattr(type(test), "__unittest_skip_why__", "")


class OnAMac(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        os.environ |= {"LUMORA_ROOT": cls.folder.name, "LUMORA_BUNDLE": "/none", "LUMORA_DATACENTRE": "/none",
                       "LUMORA_AGENT": "/none", "LUMORA_HAND": "/none", "HOME": cls.folder.name}
        sys.path[:0] = [str(E2E), str(WORLD)]
        import urllib.request  # noqa: F401  (it would ask for what only a Mac's library has)
        with unittest.mock.patch.object(sys, "platform", "darwin"):
            cls.modules = {path.stem: list(tests_of(unittest.defaultTestLoader.loadTestsFromName(f"cases.{path.stem}")))
                           for path in sorted((E2E / "cases").glob("*.py"))
                           if path.stem not in ("__init__", *PACKAGES)}

    def test_every_module_loads_with_all_its_tests(self):
        self.assertGreater(len(self.modules), 25)
        for name, tests in self.modules.items():
            with self.subTest(name):
                self.assertNotEqual(tests, [])
                self.assertNotIn("_FailedTest", {type(test).__name__ for test in tests}, tests)
                written = (E2E / "cases" / f"{name}.py").read_text(encoding="utf-8").count("    def test_")
                self.assertGreaterEqual(len(tests), written)

    def test_few_are_skipped_and_each_says_why(self):
        for name, tests in self.modules.items():
            with self.subTest(name):
                skipped = [reason(test) for test in tests if reason(test)]
                self.assertLessEqual(len(skipped), len(tests) if name in WHOLE else LINUX_ONLY.get(name, 0), skipped)
                for why in skipped:
                    self.assertTrue(why.startswith("on Linux only: ") and len(why) > 30, why)

    def test_the_harness_is_the_macs(self):
        from harness import desktop, holding, images, link_handlers, machine, preferences, processes
        for module, name in ((desktop, "windows_of"), (holding, "read_only"), (images, "volume"),
                             (link_handlers, "Handler"), (machine, "clear"), (preferences, "read"),
                             (processes, "usage_of")):
            self.assertTrue(getattr(module, name).__module__.startswith("harness.macos."), module)


class NoCase(unittest.TestCase):
    def test_starts_a_tool_of_one_system_without_saying_so(self):
        """What only one system has stands behind the harness, or in a case that is that system's."""
        tools = ("wmctrl", "xdotool", '"import"', "xorriso", "/proc/", "pgrep", '"chattr"')
        allowed = {"accessibility", "appearance", "uninstall", "world", *PACKAGES}
        for path in sorted((E2E / "cases").glob("*.py")):
            if path.stem not in allowed:
                text = path.read_text(encoding="utf-8")
                with self.subTest(path.stem):
                    self.assertEqual([tool for tool in tools if tool in text], [])


if __name__ == "__main__":
    unittest.main()
