"""An authentication agent of polkit; run by the system's own Python, for its bindings.

    polkit_agent_program.py PID grant|dismiss

Answers every prompt for the process so, without asking anyone, and prints "ready", then each prompt's text once it is
answered. Runs as root, whom polkit believes that an administrator has identified himself.
"""

import os
import pathlib
import sys

from gi.repository import Gio, GLib

AUTHORITY = ("org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority", "org.freedesktop.PolicyKit1.Authority")
PATH = "/com/ovra/tessel/tests/Agent"
MILLISECONDS = 20000
INTERFACE = """<node><interface name="org.freedesktop.PolicyKit1.AuthenticationAgent">
  <method name="BeginAuthentication">
    <arg type="s" name="action" direction="in"/><arg type="s" name="message" direction="in"/>
    <arg type="s" name="icon" direction="in"/><arg type="a{ss}" name="details" direction="in"/>
    <arg type="s" name="cookie" direction="in"/><arg type="a(sa{sv})" name="identities" direction="in"/>
  </method>
  <method name="CancelAuthentication"><arg type="s" name="cookie" direction="in"/></method>
</interface></node>"""


class Agent:
    def __init__(self, pid, grants):
        self._grants = grants
        self._bus = Gio.bus_get_sync(Gio.BusType.SYSTEM)
        self._bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], self._called, None, None)
        subject = ("unix-process", {"pid": GLib.Variant("u", pid), "start-time": GLib.Variant("t", start_time(pid))})
        self._ask("RegisterAuthenticationAgent", GLib.Variant("((sa{sv})ss)", (subject, "C", PATH)))

    def _ask(self, method, arguments):
        self._bus.call_sync(*AUTHORITY, method, arguments, None, Gio.DBusCallFlags.NONE, MILLISECONDS, None)

    def _called(self, connection, sender, path, interface, method, arguments, invocation):
        if method == "BeginAuthentication" and self._grants:
            identity = arguments.get_child_value(5).get_child_value(0)
            self._ask("AuthenticationAgentResponse2", GLib.Variant.new_tuple(
                GLib.Variant("u", os.getuid()), arguments.get_child_value(4), identity))
            invocation.return_value(None)
        elif method == "BeginAuthentication":
            invocation.return_dbus_error("org.freedesktop.PolicyKit1.Error.Cancelled", "the prompt was dismissed")
        else:
            invocation.return_value(None)
            return
        print(arguments.get_child_value(1).get_string(), flush=True)


def start_time(pid):
    """In the kernel's ticks since it began: it tells a process from a later one of the same number."""
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text(encoding="utf-8").rsplit(")", 1)[1].split()
    return int(fields[19])


def main():
    agent = Agent(int(sys.argv[1]), sys.argv[2] == "grant")
    print("ready", flush=True)
    GLib.MainLoop().run()
    return agent


if __name__ == "__main__":
    main()
