"""The application under test: the built bundle as an installer leaves it, started like a user's."""

import os
import shutil
import signal
import subprocess

from harness import desktop, places, processes, waiting
from harness.log_file import Log

EXECUTABLE = "Contents/MacOS/Ovra Tessel Lumora"


def install(bundle=places.BUNDLE):
    shutil.rmtree(bundle, ignore_errors=True)
    shutil.copytree(places.BUILT_BUNDLE, bundle, symlinks=True)


class Application:
    """One process. arguments are preference pairs, {"DC": "com"} becoming -DC com.

    It runs from the given bundle. The agent that it starts only writes its record and ends, unless agent_window asks
    for its window too.
    """

    def __init__(self, home, arguments, environment=None, agent_window=False, bundle=places.BUNDLE):
        self.home = home
        self.log = Log(home)
        self._output = open(home.console, "ab")
        self.processes_of_others = processes.before_start()
        words = [word for key, value in arguments.items() for word in (f"-{key}", value)]
        self._process = subprocess.Popen(
            [bundle / EXECUTABLE, *words, *desktop.ARGUMENTS], cwd="/", stdin=subprocess.DEVNULL,
            stdout=self._output, stderr=self._output,
            env=os.environ | desktop.environment(home) | {"OVRA_AGENT_RECORD_DIR": str(home.agent_records)}
            | ({} if agent_window else {"OVRA_AGENT_HEADLESS": "1"}) | (environment or {}))

    @property
    def pid(self):
        return self._process.pid

    def running(self):
        return self._process.poll() is None

    def windows(self):
        return desktop.windows_of(self.pid)

    def wait_for_window(self):
        return waiting.until(self.windows, "the application's window")

    def title(self):
        return next(iter(self.wait_for_window().values()))

    def close(self):
        """Closes the window as a user does, and expects the process to end by itself, well."""
        for window in self.wait_for_window():
            desktop.request_close(window)
        waiting.until(lambda: not self.running(), "the end of the application after its window was closed")
        self._output.close()
        return self._process.returncode

    def kill(self):
        if self.running():
            self._process.send_signal(signal.SIGKILL)
            self._process.wait()
        self._output.close()

    @property
    def returncode(self):
        return self._process.poll()
