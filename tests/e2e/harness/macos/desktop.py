"""The application's windows, by the hand that is put into its process (tests/e2e/hand).

From outside, macOS tells no window's title, shows no window's content and presses no key without permissions that only a
person can give. Inside its own process the application needs none.
"""

import contextlib
import json
import os
import pathlib
import socket
import subprocess

from harness import waiting

CLOSE_KEY, QUIT_KEY, RELOAD_KEY = "command+w", "command+q", "command+r"
QUIT_ENTRY = "Quit Ovra Tessel Lumora"
# The tests compare texts of the system too, and its question whether to open last time's windows is in the way.
ARGUMENTS = ["-AppleLanguages", "(en)", "-AppleLocale", "en_US", "-ApplePersistenceIgnoreState", "YES"]
# A path of a socket may have no more than a hundred characters.
SOCKETS = "/tmp/lumora-hand"
PATIENCE_SECONDS = 3
NO_COLOUR_IS_NEARER = 3  # of 255: the screen's own colours are not the page's to the last digit


def environment(home):
    return {"HOME": str(home.path), "DYLD_INSERT_LIBRARIES": os.environ["LUMORA_HAND"], "LUMORA_HAND_SOCKETS": SOCKETS}


def _send(pid, request):
    """The connected socket, the request sent."""
    connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    try:
        connection.connect(f"{SOCKETS}.{pid}")
        connection.sendall(json.dumps(request).encode() + b"\n")
    except OSError:
        connection.close()
        raise
    return connection


def _ask(pid, **request):
    """The answer; None where nobody is there to give one, or not any more."""
    try:
        with _send(pid, request) as connection:
            connection.settimeout(waiting.SECONDS)
            told = b"".join(iter(lambda: connection.recv(65536), b""))
    except OSError:
        return None
    return json.loads(told) if told else None


def _split(window):
    """A window goes by its process and its number in it."""
    pid, number = window.split(":")
    return int(pid), int(number)


def _do(window, **request):
    pid, number = _split(window)
    answer = _ask(pid, window=number, **request)
    if answer is None or "error" in answer:
        raise AssertionError(f"window {window}: {request}: {answer}")
    return answer


def windows_of(pid):
    answer = _ask(pid, do="windows") or {"windows": []}
    return {f"{pid}:{one['number']}": one["title"] for one in answer["windows"]}


def request_close(window):
    pid, number = _split(window)
    _send(pid, {"do": "close", "window": number}).close()


def _is_key_window(window):
    pid, number = _split(window)
    answer = _ask(pid, do="windows") or {"windows": []}
    return any(one["number"] == number and one["key"] for one in answer["windows"])


def activate(window):
    """The system may keep another application in front: then the window takes what is done to it behind that."""
    _do(window, do="activate")
    with contextlib.suppress(AssertionError):
        waiting.until(lambda: _is_key_window(window), "the window's focus", PATIENCE_SECONDS)


def press(window, *keys):
    activate(window)
    for key in keys:
        *modifiers, name = key.split("+")
        _do(window, do="press", key={"Return": "\r", "Tab": "\t"}.get(name, name), command="command" in modifiers)


def type_text(window, text):
    activate(window)
    for character in text:
        _do(window, do="press", key=character, command=False)


def click(window, x, y):
    activate(window)
    _do(window, do="click", x=x, y=y)


def quit_by_menu(window):
    _do(window, do="choose", entry=QUIT_ENTRY)


def _counts(window, colours):
    rgb = [list(bytes.fromhex(colour[1:])) for colour in colours]
    return _do(window, do="count", colours=rgb, tolerance=NO_COLOUR_IS_NEARER)


def is_drawn(window):
    """Every place of it has some colour, once it can be looked at."""
    return _counts(window, [])["pixels"] > 0


def count_pixels(window, colours):
    return _counts(window, colours)["counts"]


def forget_hands():
    """The sockets of processes that are gone."""
    folder, name = os.path.split(SOCKETS)
    for path in pathlib.Path(folder).glob(name + ".*"):
        path.unlink()


def photograph(path):
    """Without the permission to record the screen, a picture of the desk alone; it fails no test."""
    subprocess.run(["screencapture", "-x", str(path)], check=False)
