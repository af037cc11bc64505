"""ISO 9660 images with Rock Ridge names, which the application's own tool reads."""

import pathlib
import subprocess
import tempfile

from harness import volume_tree


def volume(entries, name="Ovra"):
    with tempfile.TemporaryDirectory() as folder:
        tree = pathlib.Path(folder, "tree")
        volume_tree.write(tree, entries)
        image = pathlib.Path(folder, "image.iso")
        subprocess.run(["xorriso", "-as", "mkisofs", "-quiet", "-R", "-V", name, "-o", image, tree],
                       check=True, capture_output=True)
        return image.read_bytes()


def extract(image, folder):
    subprocess.run(["xorriso", "-osirrox", "on", "-indev", image, "-extract", "/", folder], check=True,
                   capture_output=True)
