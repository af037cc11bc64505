"""The administrator's rights: polkit on a system bus of the world's own, and an agent that answers its prompts."""

import os
import pathlib
import subprocess

from harness import places, waiting

DAEMON = "/usr/lib/polkit-1/polkitd"
# The bindings belong to the system's own Python, which need not be the one that runs the tests.
PYTHON = "/usr/bin/python3"
PROGRAM = pathlib.Path(__file__).resolve().parent / "polkit_agent_program.py"
SYSTEM_BUS = pathlib.Path("/run/dbus/system_bus_socket")
AUTHORITY = "org.freedesktop.PolicyKit1"


class Polkit:
    """Running from its making to stop()."""

    def __init__(self):
        self._log = open(places.ROOT / "polkit.log", "wb")
        SYSTEM_BUS.parent.mkdir(exist_ok=True)
        self._processes = []
        self._start(["dbus-daemon", "--system", "--nofork", "--nopidfile"])
        waiting.until(SYSTEM_BUS.exists, "the system bus")
        self._start([DAEMON, "--no-debug"])
        waiting.until(self._authority_is_there, "polkit's authority")

    def _start(self, command):
        self._processes.append(subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=self._log, stderr=self._log))

    @staticmethod
    def _authority_is_there():
        asked = ["dbus-send", "--system", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                 "org.freedesktop.DBus.NameHasOwner", f"string:{AUTHORITY}"]
        answer = subprocess.run(asked, capture_output=True, text=True, check=False)
        return "boolean true" in answer.stdout

    def stop(self):
        for process in reversed(self._processes):
            process.terminate()
            process.wait(timeout=20)
        SYSTEM_BUS.unlink(missing_ok=True)
        self._log.close()


class Agent:
    """Answers every prompt that one process causes: grant or dismiss."""

    def __init__(self, pid, answer):
        # Unbuffered by its own flushes; told to be ready before anything is asked.
        self._process = subprocess.Popen([PYTHON, "-B", PROGRAM, str(pid), answer], stdin=subprocess.DEVNULL,
                                         stdout=subprocess.PIPE, text=True)
        if self._process.stdout.readline() != "ready\n":
            raise AssertionError("the agent did not register")

    def wait_for_prompt(self):
        """The text that the administrator is asked with. Blocks until a prompt came and was answered."""
        return self._process.stdout.readline().strip()

    def stop(self):
        self._process.terminate()
        self._process.wait(timeout=20)
        self._process.stdout.close()


def user_namespace():
    """Whether the world is one of a user who is not root: then nobody else exists in it who could ask for rights."""
    mapped = pathlib.Path("/proc/self/uid_map").read_text(encoding="ascii").split()
    return mapped[2] == "1" or os.geteuid() != 0
