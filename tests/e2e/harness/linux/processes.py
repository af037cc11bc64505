"""Processes by what the kernel tells of them."""

import pathlib
import subprocess

PROC = pathlib.Path("/proc")
# The kernel's short names.
WEB_PROCESS, NETWORK_PROCESS = "WebKitWebProces", "WebKitNetworkPr"


def _read(pid, name):
    try:
        return (PROC / str(pid) / name).read_text(encoding="utf-8", errors="replace")
    except OSError:
        return ""


def _parents():
    """The parent of each process."""
    found = {}
    for entry in PROC.iterdir():
        if entry.name.isdigit():
            after_name = _read(entry.name, "stat").rpartition(")")[2].split()
            if after_name:
                found[int(entry.name)] = int(after_name[1])
    return found


def before_start():
    """Nobody else's processes are in the world, and the application's own are its children."""
    return set()


def helpers_of(application):
    """The processes that it started, and those that they started."""
    parents = _parents()
    found = [application.pid]
    for one in found:
        found += [child for child, parent in parents.items() if parent == one]
    return {one: _read(one, "comm").strip() for one in found[1:]}


def environment_of(pid):
    """As the process began."""
    return dict(entry.split("=", 1) for entry in _read(pid, "environ").split("\0") if "=" in entry)


def _links(pid):
    links = []
    for entry in (PROC / str(pid) / "fd").iterdir():
        try:
            links.append(str(entry.readlink()))
        except OSError:  # closed meanwhile
            continue
    return links


def usage_of(pid):
    """Memory is what the process alone has written to, in kB."""
    links = _links(pid)
    memory = [line.split()[1] for line in _read(pid, "smaps_rollup").splitlines() if line.startswith("Private_Dirty:")]
    return {
        "descriptors": len(links),
        "sockets": sum(link.startswith("socket:") for link in links),
        "timers": sum("timerfd" in link for link in links),
        "threads": len(list((PROC / str(pid) / "task").iterdir())),
        "memory": int(memory[0]),
    }


def wake_ups(pid):
    """Of the main thread."""
    (line,) = [line for line in _read(pid, "status").splitlines() if line.startswith("voluntary_ctxt_switches")]
    return int(line.split()[1])


def _running(name):
    found = subprocess.run(["pgrep", "-x", name], capture_output=True, text=True, check=False)
    return [int(word) for word in found.stdout.split()]


def web_processes(_):
    """The engine itself does not survive the death of one that is just being born."""
    return [pid for pid in _running(WEB_PROCESS) if "/fonts/" in _read(pid, "maps")]


def image_tool_runs():
    return bool(_running("hdiutil"))
