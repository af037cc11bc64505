"""Runs a command where no private world can be made: changes the machine's few files, and restores them at the end.

    in_place.py ROOT private|keep COMMAND...
"""

import os
import pathlib
import shutil
import signal
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parent / "world"), str(HERE.parent / "world/linux")]
import hosts  # noqa: E402
import inside  # noqa: E402
import private_root  # noqa: E402
import services  # noqa: E402
from changes import Changes  # noqa: E402
from journal import Journal  # noqa: E402

HOSTS, TRUST_STORE = pathlib.Path("/etc/hosts"), pathlib.Path("/etc/ssl/certs/ca-certificates.crt")
# Written by the application's start, for all users of the machine.
PREFERENCES = pathlib.Path("/Library/Preferences/com.ovra.tessel.OvraTesselLumora.plist")
FOLDERS = [pathlib.Path("/") / name for name in private_root.PRODUCT_FOLDERS]
RUNTIME = pathlib.Path("/run/lumora")
ADDRESS = "127.0.0.1"


def change(machine):
    machine.keep(TRUST_STORE)
    for path in FOLDERS:
        if not path.exists():
            machine.move_aside(path)
            path.mkdir()
            path.chmod(0o1777)
    machine.move_aside(PREFERENCES)
    machine.move_aside(RUNTIME)
    machine.add_hosts(HOSTS, ADDRESS, hosts.names())


def restore(machine):
    """Whether all is as it was."""
    reasons = machine.undo_all()
    for reason in reasons:
        print(f"demo: not restored: {reason}", file=sys.stderr)
    return not reasons


def sandbox_works():
    command = ["bwrap", "--unshare-all", "--ro-bind", "/", "/", "true"]
    return subprocess.run(command, capture_output=True, check=False).returncode == 0


def prepare(root, display):
    home = root / "home"
    shutil.rmtree(home, ignore_errors=True)
    home.mkdir(mode=0o700)
    RUNTIME.mkdir(mode=0o700)
    caller = dict(os.environ)
    world = inside.environment(home, RUNTIME) | {
        "LUMORA_SERVER_ADDRESS": ADDRESS,
        # Started from here: a copy that this machine may have installed stays as it is.
        "LUMORA_INSTALLED_BUNDLE": str(root / "Ovra Tessel Lumora.app"),
    }
    for folder in ("XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"):
        pathlib.Path(world[folder]).mkdir(parents=True)
    if not sandbox_works():
        print("demo: the web view's own sandbox is refused too; it shows only the demo's page, so it does without",
              flush=True)
        world["WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS"] = "1"
    world |= services.start_bus(root, world)
    world |= services.caller_display(caller, RUNTIME) if display == "keep" else services.start_display(root, world)
    return world


def stop(number, _):
    sys.exit(128 + number)


def main():
    root, display, command = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3:]
    for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
        signal.signal(number, stop)
    root.mkdir(parents=True, exist_ok=True)
    journal = Journal(root / "restore")
    journal.lock()
    machine = Changes(journal)
    if not restore(machine):  # what a run that was killed has left
        return 1
    child, restored = None, True
    try:
        change(machine)
        world = prepare(root, display)
        child = subprocess.Popen(command, env=world)
        status = child.wait()
    finally:
        if child and child.poll() is None:
            child.terminate()
            child.wait()
        services.stop_all()
        restored = restore(machine)
    return status if restored else status or 1


if __name__ == "__main__":
    sys.exit(main())
