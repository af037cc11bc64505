"""The application killed on every step of a self-update: the running bundle is whole, and the next start updates.

A step is recognised by what appears or disappears on disk, or by the log's line after it; the place is looked at
without a pause, and the process is killed at once.
"""

import dataclasses
import os
import pathlib
import tempfile
import threading
import time
import typing

from harness import application, bundles, desktop, places, processes, waiting
from harness.case import set_up_module as setUpModule, tear_down_module as tearDownModule  # noqa: F401
from harness.log_file import Log
from harness.system import MACOS
from harness.update_case import (CHECK_PATH, COPIED, COPY, DETACHED, DOWNLOADED, IMAGE_PATH, SWAP, URL, VERSION,
                                 VOLUME, UpdateCase, swap_lines)

REMOVED = COPY + "Existing Updated"
BUNDLE_NAME = "Ovra Tessel Lumora.app"
ASIDE = ".Lumora Plugin.aside-"
EXECUTABLE = "Contents/MacOS/Ovra Tessel Lumora"
PATIENCE = 60


def size(path):
    try:
        return path.stat().st_size
    except OSError:
        return 0


def entries(folder, prefix):
    try:
        return [folder / name for name in os.listdir(folder) if name.startswith(prefix)]
    except OSError:
        return []


def is_real_folder(path):
    return path.is_dir() and not path.is_symlink()


class Watch:
    """What can be seen of one run's update; every look is a fresh one."""

    def __init__(self, case):
        self.case = case
        self.folder = case.home.support_folder
        self.staged = case.home.staged_bundle
        self.image = case.home.update_image
        self.whole = case.data_centre.application_image.stat().st_size
        self.executable = (case.bundle / EXECUTABLE).stat().st_size
        self._log = case.home.log
        self._from = size(self._log)

    def logged(self, line):
        try:
            with open(self._log, "rb") as log:
                log.seek(self._from)
                return line.encode() in log.read()
        except OSError:
            return False

    def requested(self, path):
        return len(self.case.data_centre.requests(path)) > 0

    def downloaded(self):
        return max((size(path) for path in entries(pathlib.Path(tempfile.gettempdir()), "lumora-download-")),
                   default=0)

    def asides(self):
        return entries(pathlib.Path("/Volumes"), ASIDE)

    def saved(self):
        """How much of the image stands beside its place."""
        return max((size(path) for path in entries(self.folder, ".lumora-") if not path.is_dir()), default=0)

    def copies(self):
        return [path for path in entries(self.folder, ".lumora-") if is_real_folder(path)]

    def copied(self, bundle):
        return size(bundle / EXECUTABLE)


@dataclasses.dataclass
class Point:
    name: str
    reached: typing.Callable
    behaviour: dict = dataclasses.field(default_factory=dict)  # of the server, for this run
    path: str = IMAGE_PATH
    unfinished: bool = False  # seen by the names that the Linux ports give to what is not whole yet


SLOW = {"chunk_size": 1 << 20, "chunk_delay_ms": 20}


def part_of_the_download(percent):
    return Point(f"{percent} % downloaded", lambda watch: watch.downloaded() * 100 >= watch.whole * percent, SLOW,
                 unfinished=True)


POINTS = [
    Point("the check is asked", lambda watch: watch.requested(CHECK_PATH), {"delay_ms": 20000}, CHECK_PATH),
    Point("the address is told", lambda watch: watch.logged(URL)),
    Point("the image is asked for", lambda watch: watch.requested(IMAGE_PATH), {"delay_ms": 20000}),
    Point("the first bytes", lambda watch: watch.downloaded() > 0, SLOW, unfinished=True),
    *[part_of_the_download(percent) for percent in (20, 40, 60, 80, 97)],
    Point("saving begins", lambda watch: watch.saved() > 0, unfinished=True),
    Point("half saved", lambda watch: watch.saved() * 2 >= watch.whole, unfinished=True),
    Point("saved", lambda watch: watch.image.exists()),
    Point("the download is told", lambda watch: watch.logged(DOWNLOADED)),
    Point("mounting begins", lambda watch: watch.asides(), unfinished=True),
    Point("half mounted", lambda watch: any(watch.copied(one / BUNDLE_NAME) * 2 >= watch.executable
                                            for one in watch.asides()), unfinished=True),
    Point("mounted", lambda watch: VOLUME.exists()),
    Point("the earlier staged bundle is taken away", lambda watch: VOLUME.exists() and not watch.staged.exists()),
    Point("its removal is told", lambda watch: watch.logged(REMOVED)),
    Point("staging begins", lambda watch: watch.logged(REMOVED) and watch.copies(), unfinished=True),
    Point("half staged", lambda watch: watch.logged(REMOVED) and any(
        watch.copied(one) * 2 >= watch.executable for one in watch.copies()), unfinished=True),
    Point("staged", lambda watch: watch.logged(REMOVED) and watch.staged.exists()),
    Point("the staging is told", lambda watch: watch.logged(COPIED)),
    Point("detaching", lambda watch: watch.logged(COPIED) and not VOLUME.exists()),
    Point("the detach is told", lambda watch: watch.logged(DETACHED)),
    Point("the image is removed", lambda watch: watch.logged(COPIED) and not watch.image.exists()),
]


class KillCase(UpdateCase):
    def setUp(self):
        super().setUp()
        self.log = Log(self.home)

    def begin(self):
        """A fresh bundle, and a fresh log: rotated, it could not be watched."""
        application.install(self.bundle)
        for log in self.log.files():
            log.unlink()

    def kill_when(self, reached, name):
        deadline = time.monotonic() + PATIENCE
        while not reached():
            if time.monotonic() > deadline:
                self.fail(f"not reached: {name}; the log's end:\n{self.log.tail()}")
        self.application.kill()

    def wait_for_orphans(self):
        """The image tool outlives the application, and ends its work."""
        waiting.until(lambda: not processes.image_tool_runs(), "the image tool's end")


class Staging(KillCase):
    def test_killed_on_every_step(self):
        # Something to take away, from the first point on.
        self.stage()
        self.application.kill()
        for point in POINTS:
            if MACOS and point.unfinished:
                continue
            with self.subTest(point.name):
                self.kill_and_recover(point)

    def kill_and_recover(self, point):
        self.begin()
        before = bundles.picture(self.bundle)
        self.data_centre.control("DELETE", "/requests")
        if point.behaviour:
            self.data_centre.behave(point.path, **point.behaviour)
        watch = Watch(self)
        self.start_update()
        self.kill_when(lambda: point.reached(watch), point.name)
        self.assertEqual(bundles.picture(self.bundle), before, "the running bundle was touched")
        self.wait_for_orphans()
        # Nothing half ever stands at the place.
        if self.home.staged_bundle.exists():
            self.assertEqual(set(bundles.contents(self.home.staged_bundle)), set(bundles.contents(self.bundle)))

        self.data_centre.control("DELETE", "/behaviour")
        self.stage()
        self.assertEqual(bundles.picture(self.bundle), before, "the running bundle was touched")
        self.close_and_see(*swap_lines())
        self.assert_swapped()
        self.assert_nothing_left_over()


class Swap(KillCase):
    """The old bundle goes before the new one comes: in between there is none, but never a half one."""

    def setUp(self):
        super().setUp()
        self.old = bundles.contents(self.bundle)

    def swapped(self, line):
        return lambda watch: watch.logged(SWAP + line)

    def test_killed_on_every_step(self):
        hidden = lambda: entries(places.BUNDLE.parent, ".lumora-")  # noqa: E731
        gone = lambda: not places.BUNDLE.exists()  # noqa: E731
        points = {
            "begun": self.swapped("Updated Lumora Downloaded from server"),
            "the old one is gone": lambda watch: gone(),
            "the new one comes": lambda watch: gone() and any(watch.copied(one) < watch.executable for one in hidden()),
            "the new one is there": lambda watch: self.swapped("App will be updated")(watch) and not gone()
            and bundles.version(self.bundle) == VERSION,
            "the copy is told": self.swapped("Updated Lumora app Copied to"),
            "the permissions are told": self.swapped("Successfully set 777 permissions on"),
        }
        if MACOS:
            del points["the new one comes"]  # seen by the name of what is not whole yet
        for name, reached in points.items():
            with self.subTest(name):
                self.kill_and_recover(name, reached)

    def kill_and_recover(self, name, reached):
        self.begin()
        self.stage()
        watch = Watch(self)
        window = next(iter(self.application.wait_for_window()))
        closing = threading.Thread(target=desktop.request_close, args=[window])
        closing.start()
        try:
            self.kill_when(lambda: self.try_reached(reached, watch), name)
        finally:
            closing.join()
        new = bundles.contents(self.home.staged_bundle)
        if self.bundle.exists():
            self.assertIn(bundles.contents(self.bundle), (self.old, new), "a half bundle")
        self.assertEqual(bundles.version(self.home.staged_bundle), VERSION)

        # Whoever lost the bundle installs it again; what the killed swap left goes with the next one.
        if not self.bundle.exists() or bundles.version(self.bundle) == VERSION:
            application.install(self.bundle)
        self.stage()
        self.close_and_see(*swap_lines())
        self.assert_swapped()
        self.assert_nothing_left_over()

    @staticmethod
    def try_reached(reached, watch):
        try:
            return reached(watch)
        except OSError:
            return False
