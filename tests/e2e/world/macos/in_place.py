"""The world on a Mac: there are no private ones, so the machine itself is arranged, and restored at the end.

The tests and the application run as the user at the screen. Only the few changes to the machine go through sudo.
"""

import contextlib
import os
import signal
import subprocess
import sys

import hosts
from changes import ToolFailed
from journal import Journal

from .changes import MacChanges
from .mac import DOMAIN, Mac

REFUSED = 77
CONSENT = "LUMORA_E2E_IN_PLACE"
ADDRESS = "127.0.0.1"
# An ordinary user may listen on a low port of all addresses only.
LISTEN = "0.0.0.0"
# Asked again before it forgets: the way back needs it.
SUDO_REMEMBERS_SECONDS = 60
GRACE_SECONDS = 5
SIGNALS = (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)


def refusal_to_restore(mac):
    """Why not even what a run has changed can be put back, or None."""
    if os.geteuid() == 0 and mac.root.parent == mac.root:
        return "to be run by the user at the screen, not by root"
    if not mac.has_rights():
        return "sudo asks for a password here: give it once with \"sudo -v\", or use an account that needs none"
    return None


def refusal(mac):
    """Why the machine is left alone, or None."""
    if os.environ.get(CONSENT) != "1":
        return f"there are no private worlds on macOS; {CONSENT}=1 allows to change this Mac and to restore it at the end"
    if not mac.has_window_server():
        return "this session has no window server: run it in a terminal on the Mac's screen"
    reason = refusal_to_restore(mac)
    if reason:
        return reason
    for file in mac.managed_preferences:
        if file.exists():
            return f"this Mac is managed: {file} would configure the application under test"
    running = mac.product_processes()
    if running:
        return f"{next(iter(running.values()))} is running here: quit it first"
    if mac.uses_proxy():
        return "this Mac reaches its servers by a proxy: turn it off in its network settings"
    if not mac.may_install():
        return f"{mac.root / 'Applications'} is not this user's to install into"
    return None


def environment(mac):
    """The user's own; what the shell happens to hold must not change what is seen."""
    kept = {name: value for name, value in os.environ.items()
            if name in ("PATH", "TERM", "TZ", "USER", "LOGNAME", "TMPDIR", "__CF_USER_TEXT_ENCODING")
            or name.startswith(("LUMORA_", "ASAN_", "TSAN_", "UBSAN_"))}
    return kept | {"HOME": str(mac.home), "LANG": "en_US.UTF-8", "PYTHONDONTWRITEBYTECODE": "1"}


def arrange(mac, changes):
    for path in mac.product_places():
        changes.move_aside(path)
    changes.set_preferences_aside(DOMAIN, privileged=False)
    changes.set_preferences_aside(mac.machine_domain, privileged=True)
    # The system starts the agent, so the tests cannot tell it to end without a window.
    changes.set_variable("OVRA_AGENT_HEADLESS", "1")
    changes.add_hosts(mac.hosts, ADDRESS, hosts.names())


def restore(changes):
    """Whether all is as it was. Not to be interrupted."""
    before = {number: signal.signal(number, signal.SIG_IGN) for number in SIGNALS}
    reasons = changes.undo_all()
    for reason in reasons:
        print(f"world: not restored: {reason}", file=sys.stderr)
    for number, handler in before.items():
        signal.signal(number, handler)
    return not reasons


def stop(number, _):
    sys.exit(128 + number)


def run(command, world, lock, mac):
    """The command holds the lock too: whatever becomes of this process, nobody restores under the tests' feet."""
    lent = has_terminal()
    child = subprocess.Popen(command, env=world, pass_fds=[lock], preexec_fn=lambda: lead_group(lent))
    try:
        status = wait(child, mac)
    finally:
        if lent:
            take_terminal()
        end_group(child)
        mac.end_product_processes()  # the system has started some of them, apart from the command
    return 128 - status if status < 0 else status


def has_terminal():
    """Whether what is typed comes here."""
    try:
        return os.tcgetpgrp(0) == os.getpgrp()
    except OSError:
        return False


def take_terminal():
    before = signal.signal(signal.SIGTTOU, signal.SIG_IGN)  # it would stop whoever has it not yet
    with contextlib.suppress(OSError):  # it may be gone meanwhile
        os.tcsetpgrp(0, os.getpgrp())
    signal.signal(signal.SIGTTOU, before)


def lead_group(lent):
    """In the command's process. The terminal goes with it: a shell reads from it, and a key that ends ends the command."""
    os.setpgrp()
    if lent:
        signal.signal(signal.SIGTSTP, signal.SIG_IGN)  # nobody would wake it
        take_terminal()


def wait(child, mac):
    while True:
        try:
            return child.wait(timeout=SUDO_REMEMBERS_SECONDS)
        except subprocess.TimeoutExpired:
            mac.has_rights()


def end_group(child):
    """All that the command has started and left behind."""
    for number in (signal.SIGTERM, signal.SIGKILL):
        try:
            os.killpg(child.pid, number)
            child.wait(timeout=GRACE_SECONDS)
        except (ProcessLookupError, PermissionError):  # nobody is left
            return
        except subprocess.TimeoutExpired:
            continue


def enter(wanted, mac=None):
    mac = mac or Mac()
    reason = refusal_to_restore(mac) if wanted.restore else refusal(mac)
    if reason:
        print(f"world: {reason}", file=sys.stderr)
        return REFUSED
    journal = Journal(mac.state)
    changes = MacChanges(mac, journal)
    lock = journal.lock()
    if not restore(changes):  # what a run that was killed has left
        return 1
    if wanted.restore:
        return 0
    for number in SIGNALS:
        signal.signal(number, stop)
    wanted.root.mkdir(parents=True, exist_ok=True)
    status = 1
    try:
        arrange(mac, changes)
        status = run(wanted.command, environment(mac), lock, mac)
    except ToolFailed as error:
        print(f"world: {error}", file=sys.stderr)
    finally:
        restored = restore(changes)
    return status if restored else status or 1
