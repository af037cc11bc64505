"""The application's preferences, as this user has stored them.

    read(home)                  {} when there are none
    write(home, values)         in place of those that are there
    snapshot(home)              what any change would change
"""

from harness import system

if system.MACOS:
    from harness.macos.preferences import read, snapshot, write  # noqa: F401
else:
    from harness.linux.preferences import read, snapshot, write  # noqa: F401
