"""Files and folders that cannot be changed, until the returned operation is called or the test ends.

    read_only(case, path)       nothing in it can be written; made if it is not there
    WAYS                        ways to hold a whole bundle, by name: each an operation as read_only
    READ_ONLY, NOT_REMOVED      how the error's text begins: nothing can be written there, a bundle cannot be removed
"""

from harness import system

if system.MACOS:
    from harness.macos.holding import NOT_REMOVED, READ_ONLY, WAYS, read_only  # noqa: F401
else:
    from harness.linux.holding import NOT_REMOVED, READ_ONLY, WAYS, read_only  # noqa: F401
