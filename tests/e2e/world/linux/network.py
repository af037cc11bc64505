"""The private world's network: one address that every host name leads to, a default route, and no way out."""

import pathlib
import subprocess
import sys

ADDRESS = "10.87.0.1"
GATEWAY = "10.87.0.2"
DEVICE = "lumora0"


def _ip(*words, check=True):
    return subprocess.run(["ip", *words], check=check, capture_output=True, text=True).returncode == 0


def bring_up():
    """Name resolution and the path monitor both ask for an address that is not the loopback's, and a default route."""
    _ip("link", "set", "lo", "up")
    # Not every kernel has both kinds of device.
    if _ip("link", "add", DEVICE, "type", "veth", "peer", "name", "lumora1", check=False):
        _ip("link", "set", "lumora1", "up")
    else:
        _ip("link", "add", DEVICE, "type", "dummy")
    _ip("address", "add", f"{ADDRESS}/24", "dev", DEVICE)
    _ip("link", "set", DEVICE, "up")
    _ip("route", "add", "default", "via", GATEWAY, "dev", DEVICE)


def start_name_server(log):
    """Without a server that says no, a look-up of an unknown name waits for its time-outs."""
    program = pathlib.Path(__file__).resolve().parent / "name_server.py"
    with open(log, "wb") as output:
        server = subprocess.Popen([sys.executable, str(program)], stdin=subprocess.DEVNULL,
                                  stdout=subprocess.PIPE, stderr=output)
    server.stdout.readline()
