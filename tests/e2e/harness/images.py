"""Disk images that no honest server sends, made from honest ones."""

import pathlib
import subprocess
import tempfile

SECTOR = 2048


def iso(entries, volume="Ovra"):
    """An ISO 9660 image with Rock Ridge names. entries: path to bytes, or to a str, which makes a link to it."""
    with tempfile.TemporaryDirectory() as folder:
        tree = pathlib.Path(folder, "tree")
        tree.mkdir()
        for name, content in entries.items():
            path = tree / name
            path.parent.mkdir(parents=True, exist_ok=True)
            if isinstance(content, str):
                path.symlink_to(content)
            else:
                path.write_bytes(content)
        image = pathlib.Path(folder, "image.iso")
        subprocess.run(["xorriso", "-as", "mkisofs", "-quiet", "-R", "-V", volume, "-o", image, tree],
                       check=True, capture_output=True)
        return image.read_bytes()


def renamed(image, old, new):
    """Exchanges a Rock Ridge name for one of the same length that no tool would write."""
    old, new = old.encode(), new.encode()
    assert len(old) == len(new) and old in image
    return image.replace(old, new)


def with_size(image, name, size):
    """Claims this size for the file of this (upper-case, plain ISO) name."""
    place = image.index(name.encode()) - 33
    number = size.to_bytes(4, "little") + size.to_bytes(4, "big")
    return image[:place + 10] + number + image[place + 18:]


def with_extent(image, name, sector):
    """Claims that the file's content begins at this sector."""
    place = image.index(name.encode()) - 33
    number = sector.to_bytes(4, "little") + sector.to_bytes(4, "big")
    return image[:place + 2] + number + image[place + 10:]
