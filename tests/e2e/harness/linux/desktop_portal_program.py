"""The part of a desktop's portal that tells applications whether to be dark; run by the system's own Python.

Each line of standard input is the new value of the colour scheme: 0 none, 1 dark, 2 light.
"""

import sys

from gi.repository import Gio, GLib

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
SETTING = ("org.freedesktop.appearance", "color-scheme")
INTERFACE = """<node><interface name="org.freedesktop.portal.Settings">
  <method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
  <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
</interface></node>"""


class Portal:
    def __init__(self, bus):
        self._bus = bus
        self._value = 0
        self._interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        bus.register_object(PATH, self._interface, self._asked, None, None)

    def _asked(self, _bus, _sender, _path, _interface, _method, arguments, invocation):
        if arguments.unpack() == SETTING:
            # The value in a variant, and that in the variant of the answer.
            invocation.return_value(GLib.Variant("(v)", (GLib.Variant("v", GLib.Variant("u", self._value)),)))
        else:
            invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "Requested setting not found")

    def change(self, *_):
        line = sys.stdin.readline()
        if not line:
            loop.quit()
            return False
        self._value = int(line)
        self._bus.emit_signal(None, PATH, self._interface.name, "SettingChanged",
                              GLib.Variant("(ssv)", (*SETTING, GLib.Variant("u", self._value))))
        print("changed", flush=True)
        return True


loop = GLib.MainLoop()
session = Gio.bus_get_sync(Gio.BusType.SESSION)
portal = Portal(session)
Gio.bus_own_name_on_connection(session, NAME, Gio.BusNameOwnerFlags.NONE, lambda *_: print("ready", flush=True), None)
GLib.io_add_watch(sys.stdin.fileno(), GLib.IOCondition.IN | GLib.IOCondition.HUP, portal.change)
loop.run()
