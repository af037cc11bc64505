"""The private world's session bus, display and window manager."""

import os
import pathlib
import subprocess
import time

DISPLAY_VARIABLES = ("DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "XDG_RUNTIME_DIR", "HOME")

# No service folders: the machine's services (portals, accessibility) must not be started into the world.
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <keep_umask/>
  <listen>unix:path=/run/lumora/bus</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class NotStarted(Exception):
    pass


_started = []


def _start(root, name, command, world, **more):
    with open(root / f"{name}.log", "wb") as log:
        _started.append(subprocess.Popen(command, env=world, stdin=subprocess.DEVNULL, stderr=log, stdout=log, **more))


def stop_all():
    """For a run without a process namespace, whose end would take them along."""
    for service in reversed(_started):
        service.terminate()
        service.wait()


def _wait_until(condition, what, seconds=20):
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            raise NotStarted(f"{what} did not start within {seconds} s")
        time.sleep(0.02)


def start_bus(root, world):
    configuration = pathlib.Path("/run/lumora/bus.conf")
    configuration.write_text(BUS_CONFIGURATION, encoding="utf-8")
    _start(root, "bus", ["dbus-daemon", f"--config-file={configuration}", "--nofork"], world)
    _wait_until(pathlib.Path("/run/lumora/bus").exists, "dbus-daemon")
    return {"DBUS_SESSION_BUS_ADDRESS": "unix:path=/run/lumora/bus"}


def start_display(root, world):
    """The display and its window manager, which is what makes windows take part in closing, focus and titles."""
    reader, writer = os.pipe()
    _start(root, "display", ["Xvfb", "-displayfd", str(writer), "-screen", "0", "1280x900x24", "-nolisten", "tcp",
                             "-noreset"], world, pass_fds=[writer])
    os.close(writer)
    with os.fdopen(reader) as pipe:
        number = pipe.readline().strip()
    if not number:
        raise NotStarted(f"Xvfb did not start, see {root}/display.log")
    screen = {"DISPLAY": f":{number}", "GDK_BACKEND": "x11"}
    _start(root, "window-manager", ["openbox", "--sm-disable"], world | screen)

    def manager_is_there():
        found = subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=world | screen,
                               capture_output=True, text=True, check=False)
        return "window id" in found.stdout
    _wait_until(manager_is_there, "openbox")
    return screen


def displays_of_the_caller():
    """Paths that must stay visible for a window to appear on the caller's own display."""
    paths = [pathlib.Path("/tmp/.X11-unix")]
    authority = os.environ.get("XAUTHORITY")
    if authority:
        paths.append(pathlib.Path(authority))
    wayland, runtime = os.environ.get("WAYLAND_DISPLAY"), os.environ.get("XDG_RUNTIME_DIR")
    if wayland and runtime:
        paths.append(pathlib.Path(runtime) / wayland)
    return [path for path in paths if path.exists()]


def caller_display(caller, runtime):
    """The variables that lead a program to the caller's display although home and run-time folder are fresh."""
    found = {}
    if "DISPLAY" in caller:
        authority = pathlib.Path(caller.get("XAUTHORITY") or pathlib.Path(caller["HOME"]) / ".Xauthority")
        found["DISPLAY"] = caller["DISPLAY"]
        if authority.exists():
            found["XAUTHORITY"] = str(authority)
    if "WAYLAND_DISPLAY" in caller and "XDG_RUNTIME_DIR" in caller:
        # An absolute path is a valid name for a Wayland display.
        found["WAYLAND_DISPLAY"] = str(pathlib.Path(caller["XDG_RUNTIME_DIR"]) / caller["WAYLAND_DISPLAY"])
    return found
