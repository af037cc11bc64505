"""First process of the private world: prepares it, runs the command, and takes everything down with itself."""

import os
import pathlib
import shutil
import signal
import subprocess
import sys

import network
import private_root
import services

REFUSED = 77


def environment(home, runtime):
    """A fresh user's environment: what the caller's shell happens to hold must not change what is seen."""
    kept = {name: value for name, value in os.environ.items()
            if name in ("PATH", "TERM", "TZ") or name.startswith(("LUMORA_", "ASAN_", "TSAN_", "UBSAN_"))}
    return kept | {
        "HOME": str(home),
        "USER": "root",
        "LANG": "C.UTF-8",
        "TMPDIR": "/tmp",
        "XDG_RUNTIME_DIR": str(runtime),
        "XDG_DATA_HOME": str(home / ".local/share"),
        "XDG_CONFIG_HOME": str(home / ".config"),
        "XDG_CACHE_HOME": str(home / ".cache"),
        "PYTHONDONTWRITEBYTECODE": "1",
        # The accessibility bus is a service of the desktop, which the world has none of.
        "GTK_A11Y": "none",
    }


def prepare(root, display, wanted):
    home = root / "home"
    shutil.rmtree(home, ignore_errors=True)
    home.mkdir(mode=0o700)
    kept = services.displays_of_the_caller() if display == "keep" else []
    caller_display = {name: os.environ[name] for name in services.DISPLAY_VARIABLES if name in os.environ}

    private_root.make(root, kept_paths=[*private_root.OURS, *wanted, *kept])
    network.bring_up()
    runtime = pathlib.Path("/run/lumora")
    runtime.mkdir(mode=0o700)
    world = environment(home, runtime)
    for folder in ("XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"):
        pathlib.Path(world[folder]).mkdir(parents=True)
    network.start_name_server(root / "name-server.log")
    world |= services.start_bus(root, world)
    if display == "keep":
        world |= services.caller_display(caller_display, runtime)
    elif display == "private":
        world |= services.start_display(root, world)
    return world


def run(command, world):
    """Waits for the command, and for whatever orphans this first process inherits meanwhile."""
    child = subprocess.Popen(command, env=world)
    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
        signal.signal(number, lambda received, _: child.send_signal(received))
    while True:
        pid, status = os.wait()
        if pid == child.pid:
            return os.waitstatus_to_exitcode(status)


def main():
    root, display, keep, command = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3], sys.argv[4:]
    try:
        world = prepare(root, display, [pathlib.Path(path) for path in keep.split(os.pathsep) if path])
    except PermissionError as error:
        print(f"private world: the kernel refuses it here: {error}", file=sys.stderr)
        return REFUSED
    except (OSError, subprocess.CalledProcessError, services.NotStarted) as error:
        print(f"private world: {error}", file=sys.stderr)
        return 1
    status = run(command, world)
    return 128 - status if status < 0 else status


if __name__ == "__main__":
    sys.stdout.flush()
    # Leaving without interpreter shutdown: the kernel ends every process of the world with this one.
    os._exit(main())
