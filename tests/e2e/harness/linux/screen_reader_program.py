"""What a screen reader is told, over the accessibility bus; run by the system's own Python, for its bindings.

Each line of standard input is a request, each line of standard output its answer in JSON:
    window PID   the tree of the process's window
    page         the tree of the page that the engine keeps in its own process
    events       the events heard so far, oldest first
"""

import json
import os
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402

ACCESSIBLE = "org.a11y.atspi.Accessible"
APPLICATION_ID = "com.ovra.tessel.OvraTesselLumora"
# Where the engine's process shows the root of its page, for a toolkit to hang into the window's tree.
PAGE_ROOTS = "/org/a11y/webkit/accessible"
SECONDS = 5000
EVENTS = ["object:property-change", "object:state-changed:focused", "window:activate"]


def connect():
    session = Gio.bus_get_sync(Gio.BusType.SESSION)
    (address,) = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None,
                                   Gio.DBusCallFlags.NONE, SECONDS, None).unpack()
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)


class Reader:
    def __init__(self):
        self._bus = connect()
        self.events = []
        self._listener = Atspi.EventListener.new(self._heard)
        for event in EVENTS:
            self._listener.register(event)

    def _heard(self, event):
        value = event.any_data if isinstance(event.any_data, (str, int)) else None
        self.events.append({"type": event.type, "detail": event.detail1, "value": value,
                            "pid": event.source.get_process_id()})

    def _call(self, name, path, interface, method, arguments=None):
        answer = self._bus.call_sync(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, SECONDS, None)
        return answer.unpack()[0] if answer.n_children() else None

    def _property(self, name, path, which):
        return self._call(name, path, "org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", (ACCESSIBLE, which)))

    def _bus_call(self, method, arguments=None):
        return self._call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments)

    def tree(self, name, path):
        interfaces = self._call(name, path, ACCESSIBLE, "GetInterfaces")
        text = None
        if "org.a11y.atspi.Text" in interfaces:
            text = self._call(name, path, "org.a11y.atspi.Text", "GetText", GLib.Variant("(ii)", (0, -1)))
        low, high = self._call(name, path, ACCESSIBLE, "GetState")
        extents = None
        if "org.a11y.atspi.Component" in interfaces:
            extents = self._call(name, path, "org.a11y.atspi.Component", "GetExtents",
                                 GLib.Variant("(u)", (Atspi.CoordType.WINDOW,)))
        states = [state.value_nick for number, state in Atspi.StateType.__enum_values__.items()
                  if (low | high << 32) >> number & 1]
        return {
            "role": Atspi.role_get_name(Atspi.Role(self._call(name, path, ACCESSIBLE, "GetRole"))),
            "name": self._property(name, path, "Name"),
            "description": self._property(name, path, "Description"),
            "locale": self._property(name, path, "Locale"),
            "text": text,
            "states": states,
            "extents": extents,
            "attributes": self._call(name, path, ACCESSIBLE, "GetAttributes"),
            "children": [self.tree(*child) for child in self._call(name, path, ACCESSIBLE, "GetChildren")],
        }

    def _applications(self):
        return self._call("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root", ACCESSIBLE, "GetChildren")

    def window(self, pid):
        for name, path in self._applications():
            if self._bus_call("GetConnectionUnixProcessID", GLib.Variant("(s)", (name,))) == int(pid):
                return self.tree(name, path)
        return None

    def page(self):
        """Of the newest engine process: an older one may still be leaving."""
        found = None
        for name in self._bus_call("ListNames"):
            if name.startswith(APPLICATION_ID + ".Sandboxed.WebProcess"):
                listed = self._call(name, PAGE_ROOTS, "org.freedesktop.DBus.Introspectable", "Introspect")
                for node in Gio.DBusNodeInfo.new_for_xml(listed).nodes:
                    found = self.tree(name, f"{PAGE_ROOTS}/{node.path}")
        return found


def main():
    reader = Reader()
    requests = {"window": reader.window, "page": reader.page, "events": lambda: reader.events}

    def serve(*_):
        line = sys.stdin.readline()
        if not line:
            loop.quit()
            return False
        name, *arguments = line.split()
        try:
            answer = {"value": requests[name](*arguments)}
        except GLib.Error as error:  # a part of the tree went away during the reading
            answer = {"error": error.message}
        print(json.dumps(answer), flush=True)
        return True
    loop = GLib.MainLoop()
    GLib.io_add_watch(sys.stdin.fileno(), GLib.IOCondition.IN | GLib.IOCondition.HUP, serve)
    loop.run()
    os._exit(0)


if __name__ == "__main__":
    main()
