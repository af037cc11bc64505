"""The way into a private world: namespaces of the Linux kernel."""

import os
import pathlib
import subprocess
import sys

REFUSED = 77
HERE = pathlib.Path(__file__).resolve().parent
PRIVATE = ["--net", "--mount", "--pid", "--ipc", "--fork", "--kill-child"]


def refusal(flags):
    """Why the kernel does not make these namespaces, or None when it does."""
    try:
        probe = subprocess.run(["unshare", *flags, "true"], capture_output=True, text=True, check=False)
    except OSError as error:
        return str(error)
    if probe.returncode == 0:
        return None
    return probe.stderr.strip().removeprefix("unshare: ") or f"unshare ended with {probe.returncode}"


def enter(wanted):
    """Becomes the command in its world; returns only where there can be none."""
    if wanted.restore:
        return 0  # nothing of a private world outlives it
    ways = [PRIVATE] if os.geteuid() == 0 and not wanted.user else []
    ways.append(["--user", "--map-root-user", *PRIVATE])

    reason = None
    for flags in ways:
        reason = refusal(flags)
        if reason is None:
            break
    else:
        print(f"private world: the kernel refuses namespaces here: {reason}", file=sys.stderr)
        return REFUSED

    wanted.root.mkdir(parents=True, exist_ok=True)
    display = "keep" if wanted.keep_display else "none" if wanted.no_display else "private"
    os.execvp("unshare", ["unshare", *flags, sys.executable, str(HERE / "inside.py"),
                          str(wanted.root.resolve()), display,
                          os.pathsep.join(str(path.resolve()) for path in wanted.keep), *wanted.command])
