"""An installed application that links are handed to.

    Handler(home, scheme)       registered from now on for scheme:...
    .opened()                   the links that it was given, oldest first
    .forget()                   those so far
    .remove()                   nothing is handed to it any more
"""

from harness import system

if system.MACOS:
    from harness.macos.link_handlers import Handler  # noqa: F401
else:
    from harness.linux.link_handlers import Handler  # noqa: F401
