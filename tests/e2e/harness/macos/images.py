"""Images of the system's own kind, by its own tool."""

import pathlib
import shutil
import subprocess
import tempfile
import time

from harness import volume_tree

# What looks through every new volume on a Mac can hold one that is to become an image.
TRIES, PAUSE_SECONDS = 5, 2


def volume(entries, name="Ovra"):
    with tempfile.TemporaryDirectory() as folder:
        tree = pathlib.Path(folder, "tree")
        volume_tree.write(tree, entries)
        image = pathlib.Path(folder, "image.dmg")
        create = ["hdiutil", "create", "-ov", "-volname", name, "-fs", "HFS+", "-format", "UDZO", "-srcfolder", tree, image]
        for last in (False,) * (TRIES - 1) + (True,):
            if subprocess.run(create, check=last, stdout=subprocess.DEVNULL).returncode == 0:
                break
            time.sleep(PAUSE_SECONDS)
        return image.read_bytes()


def extract(image, folder):
    with tempfile.TemporaryDirectory() as parent:
        point = pathlib.Path(parent, "volume")
        point.mkdir()
        subprocess.run(["hdiutil", "attach", "-readonly", "-nobrowse", "-mountpoint", point, image], check=True,
                       stdout=subprocess.DEVNULL)
        try:
            # The system's own folders of a volume are hidden, and may not be readable.
            shutil.copytree(point, folder, symlinks=True, ignore=lambda _, names: [
                name for name in names if name.startswith(".")])
        finally:
            subprocess.run(["hdiutil", "detach", "-force", point], check=True, stdout=subprocess.DEVNULL)
