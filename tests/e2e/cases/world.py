"""The world that all other end-to-end tests trust in."""

import os
import pathlib
import socket
import subprocess
import time
import unittest

from harness import machine, places
from harness.linux.machine import TRUST_STORE
from harness.system import linux_only

private = linux_only("there are no private worlds")


class World(unittest.TestCase):
    def test_data_centres_hosts_lead_to_the_one_address(self):
        for host in ("com.ovratessel.example", "cdn.ovratessel.example", "support.customer.example"):
            self.assertEqual(socket.gethostbyname(host), machine.SERVER_ADDRESS)

    @private
    def test_unknown_names_fail_at_once(self):
        start = time.monotonic()
        with self.assertRaises(socket.gaierror):
            socket.getaddrinfo("unknown.example", 443)
        self.assertLess(time.monotonic() - start, 2)

    @private
    def test_there_is_a_default_route_but_no_way_out(self):
        routes = subprocess.run(["ip", "route"], capture_output=True, text=True, check=True).stdout
        self.assertIn("default via 10.87.0.2", routes)
        devices = sorted(name for _, name in socket.if_nameindex())
        self.assertIn(devices, (["lo", "lumora0", "lumora1"], ["lo", "lumora0"]))

    @private
    def test_products_folders_are_there_for_everybody(self):
        for folder in ("/Applications", "/Library", "/Volumes"):
            self.assertEqual(os.stat(folder).st_mode & 0o7777, 0o1777)

    @private
    def test_services_of_the_machine_are_out_of_reach(self):
        self.assertEqual(os.listdir("/run"), ["lumora"])
        self.assertEqual([name for name in os.environ if name.lower().endswith("_proxy")], [])

    @private
    def test_display_and_bus_are_the_worlds_own(self):
        subprocess.run(["xdpyinfo"], check=True, capture_output=True)
        names = subprocess.run(["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
                                "org.freedesktop.DBus.ListActivatableNames"], capture_output=True, text=True, check=True)
        self.assertEqual(names.stdout.count("string"), 1, "services of the desktop could be started")

    @private
    def test_trust_store_is_a_copy(self):
        self.assertEqual(TRUST_STORE.stat().st_ino, (places.ROOT / "ca-certificates.crt").stat().st_ino)

    @private
    def test_other_processes_are_unseen(self):
        first = pathlib.Path("/proc/1/cmdline").read_text(encoding="utf-8")
        self.assertIn("inside.py", first)
