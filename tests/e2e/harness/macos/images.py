"""Images of the system's own kind, by its own tool."""

import pathlib
import shutil
import subprocess
import tempfile

from harness import volume_tree


def volume(entries, name="Ovra"):
    with tempfile.TemporaryDirectory() as folder:
        tree = pathlib.Path(folder, "tree")
        volume_tree.write(tree, entries)
        image = pathlib.Path(folder, "image.dmg")
        subprocess.run(["hdiutil", "create", "-volname", name, "-fs", "HFS+", "-format", "UDZO", "-srcfolder",
                        tree, image], check=True, stdout=subprocess.DEVNULL)
        return image.read_bytes()


def extract(image, folder):
    with tempfile.TemporaryDirectory() as parent:
        point = pathlib.Path(parent, "volume")
        subprocess.run(["hdiutil", "attach", "-readonly", "-nobrowse", "-mountpoint", point, image], check=True,
                       stdout=subprocess.DEVNULL)
        try:
            # The system's own folders of a volume are hidden, and may not be readable.
            shutil.copytree(point, folder, symlinks=True, ignore=lambda _, names: [
                name for name in names if name.startswith(".")])
        finally:
            subprocess.run(["hdiutil", "detach", point], check=True, stdout=subprocess.DEVNULL)
