"""Processes by what the system's tools tell of them: in full width, a terminal's would cut the ends off.

The engine's processes are started by the system, not by the application: those that are there since its start are its own.
"""

import re
import subprocess

NETWORK_PROCESS, WEB_PROCESS = "com.apple.WebKit.Networking", "com.apple.WebKit.WebContent"
ENGINE = "com.apple.WebKit."


def _told(*command):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False).stdout


def _engine_processes():
    """Number and name of each, oldest first."""
    found = {}
    for line in _told("ps", "-axww", "-o", "pid=,comm=").splitlines():
        number, _, program = line.strip().partition(" ")
        name = program.strip().rpartition("/")[2]
        if name.startswith(ENGINE):
            found[int(number)] = name
    return found


def before_start():
    """Those of others: asked for before an application is started."""
    return set(_engine_processes())


def helpers_of(application):
    return {pid: name for pid, name in _engine_processes().items() if pid not in application.processes_of_others}


def web_processes(application):
    return [pid for pid, name in helpers_of(application).items() if name == WEB_PROCESS]


def image_tool_runs():
    """The application's own: a system's service may keep its helpers."""
    return any(line.strip().rpartition("/")[2] == "hdiutil" for line in _told("ps", "-axww", "-o", "comm=").splitlines())


def usage_of(pid):
    """Memory is what the process holds of the machine's, in kB."""
    kinds = [line[1:] for line in _told("lsof", "-n", "-P", "-p", pid, "-F", "ft").splitlines() if line.startswith("t")]
    return {
        "descriptors": len(kinds),
        "sockets": sum(kind in ("IPv4", "IPv6", "unix", "systm") for kind in kinds),
        # One line a thread, after the heading.
        "threads": len(_told("ps", "-M", "-p", pid).splitlines()) - 1,
        "memory": int(_told("ps", "-o", "rss=", "-p", pid)),
    }


def wake_ups(pid):
    """Of all its threads."""
    last = _told("top", "-l", "1", "-pid", pid, "-stats", "csw").strip().splitlines()[-1]
    return int(re.match(r"\d+", last.strip())[0])
