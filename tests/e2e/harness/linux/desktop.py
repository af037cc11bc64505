"""The windows of the X server, through the window manager."""

import re
import subprocess

from harness import waiting

CLOSE_KEY, QUIT_KEY, RELOAD_KEY = "ctrl+w", "ctrl+q", "ctrl+r"
# The menu "Lumora" by its letter, and its entry.
QUIT_ENTRY = ("alt+l", "q")
ARGUMENTS = []


def environment(home):
    """A home folder is more than a folder on a desktop of this kind."""
    return {
        "HOME": str(home.path),
        "XDG_DATA_HOME": str(home.path / ".local/share"),
        "XDG_CONFIG_HOME": str(home.path / ".config"),
        "XDG_CACHE_HOME": str(home.path / ".cache"),
    }


def windows_of(pid):
    listed = subprocess.run(["wmctrl", "-l", "-p"], capture_output=True, text=True, check=False).stdout
    found = [re.match(r"(0x\w+)\s+\S+\s+(\d+)\s+\S+(?:\s(.*))?$", line) for line in listed.splitlines()]
    return {one[1]: one[3] or "" for one in found if one and int(one[2]) == pid}


def request_close(window):
    subprocess.run(["wmctrl", "-i", "-c", window], check=True)


def activate(window):
    subprocess.run(["wmctrl", "-i", "-a", window], check=True)


def _has_focus(window):
    focus = subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True, check=False).stdout
    return focus.strip() == str(int(window, 16))


def _bring_to_front(window):
    activate(window)
    waiting.until(lambda: _has_focus(window), "the window's focus")


def press(window, *keys):
    _bring_to_front(window)
    for key in keys:
        subprocess.run(["xdotool", "key", key], check=True)


def type_text(window, text):
    _bring_to_front(window)
    subprocess.run(["xdotool", "type", "--delay", "60", text], check=True)


def click(window, x, y):
    _bring_to_front(window)
    subprocess.run(["xdotool", "mousemove", "--window", window, str(x), str(y), "click", "1"], check=True)


def quit_by_menu(window):
    press(window, *QUIT_ENTRY)


def pixels(window):
    """The window as red, green and blue bytes."""
    shot = subprocess.run(["import", "-window", window, "-depth", "8", "rgb:-"], capture_output=True, check=False)
    return shot.stdout


def is_drawn(window):
    return bool(pixels(window))


def count_pixels(window, colours):
    """Of each of these colours, in one look."""
    seen = pixels(window)
    return [seen.count(bytes.fromhex(colour[1:])) for colour in colours]


def photograph(path):
    subprocess.run(["import", "-window", "root", str(path)], check=False)
