"""The icon set holds every size that macOS asks for, drawn from the application's drawing."""
import shutil
import struct
import subprocess
import tempfile
import unittest
from pathlib import Path

from places import PACKAGING, RESOURCES

# The elements by size in pixels: iconutil writes the ic.. ones, other makers older types for the small sizes.
SIZES = {16: {b"icp4", b"is32", b"ic04"}, 32: {b"icp5", b"il32", b"ic05", b"ic11"}, 128: {b"ic07", b"it32"},
         256: {b"ic08", b"ic13"}, 512: {b"ic09", b"ic14"}, 1024: {b"ic10"}}


def elements(icon):
    """Type and length of each element of an .icns file."""
    magic, total = struct.unpack(">4sI", icon[:8])
    assert (magic, total) == (b"icns", len(icon)), "no icon set, or one that was cut off"
    found, at = {}, 8
    while at < total:
        kind, length = struct.unpack(">4sI", icon[at:at + 8])
        found[kind] = length
        at += length
    return found


@unittest.skipUnless(shutil.which("rsvg-convert") and (shutil.which("iconutil") or shutil.which("png2icns")),
                     "needs rsvg-convert, and iconutil or png2icns")
class IconSet(unittest.TestCase):
    def test_holds_every_size(self):
        with tempfile.TemporaryDirectory() as folder:
            icon = Path(folder) / "OvraTesselLumora.icns"
            subprocess.run([PACKAGING / "make-icon", RESOURCES / "OvraTesselLumora.svg", icon], check=True)
            found = elements(icon.read_bytes())
        for pixels, kinds in SIZES.items():
            with self.subTest(pixels=pixels):
                self.assertTrue(kinds & set(found), sorted(found))
        self.assertGreater(found[b"ic10"], 10_000, "an empty drawing")


if __name__ == "__main__":
    unittest.main()
