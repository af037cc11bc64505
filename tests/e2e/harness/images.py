"""Disk images that the data centre's own maker does not make.

    volume(entries, name)       an image of these entries: path to bytes, or to a str, which makes a link to it
    extract(image, folder)      copies all that a sound image holds
"""

from harness import system

if system.MACOS:
    from harness.macos.images import extract, volume  # noqa: F401
else:
    from harness.linux.images import extract, volume  # noqa: F401
