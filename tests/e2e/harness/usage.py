"""What a process and those that it has started hold of the machine."""

import pathlib
import statistics

PROC = pathlib.Path("/proc")


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


def descendants(pid):
    """The processes that this one started, and those that they started, by the kernel's short names."""
    parents = _parents()
    found = [pid]
    for one in found:
        found += [child for child, parent in parents.items() if parent == one]
    return {one: _read(one, "comm").strip() for one in found[1:]}


def _links(pid):
    links = []
    for entry in (PROC / str(pid) / "fd").iterdir():
        try:
            links.append(str(entry.readlink()))
        except OSError:  # closed meanwhile
            continue
    return links


def of(pid):
    """Numbers that must not grow. Memory is what the process alone has written to, in kB."""
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
    """How often the main thread has waited so far: more timers make it more often in the same time."""
    (line,) = [line for line in _read(pid, "status").splitlines() if line.startswith("voluntary_ctxt_switches")]
    return int(line.split()[1])


def medians(samples):
    return {name: statistics.median(sample[name] for sample in samples) for name in samples[0]}
