"""The windows on the screen, and a person's hands on them.

    windows_of(pid)             identifier and title of each window of a process
    request_close(window)       as a click on the window's close button; returns before anything comes of it
    activate(window)            brings it to the front
    press(window, *keys)        one after the other, the window being in front: CLOSE_KEY, QUIT_KEY, RELOAD_KEY, "Return"
    type_text(window, text)     the same, a whole text
    click(window, x, y)         at this place of the window
    quit_by_menu(window)        chooses the menu's own entry
    is_drawn(window)            whether it can be looked at
    count_pixels(window, colours)  how many pixels have each of these colours, "#rrggbb"
    photograph(path)            of the whole screen
    environment(home), ARGUMENTS  what an application needs so that all this reaches it
"""

from harness import system

if system.MACOS:
    from harness.macos.desktop import (ARGUMENTS, CLOSE_KEY, QUIT_KEY, RELOAD_KEY, activate, click,  # noqa: F401
                                       count_pixels, environment, is_drawn, photograph, press, quit_by_menu,
                                       request_close, type_text, windows_of)
else:
    from harness.linux.desktop import (ARGUMENTS, CLOSE_KEY, QUIT_KEY, RELOAD_KEY, activate, click,  # noqa: F401
                                       count_pixels, environment, is_drawn, photograph, press, quit_by_menu,
                                       request_close, type_text, windows_of)
