"""Where a release's files are, and running programs on them."""

import os
import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
LINUX = ROOT / "packaging/linux"
BUILD = pathlib.Path(os.environ["LUMORA_BUILD"])
BUILT_BUNDLE = BUILD / "Ovra Tessel Lumora.app"
PACKAGES = BUILD / "package"
IMAGE = PACKAGES / "OvraTesselLumora.dmg"
DOMAIN = "com.ovra.tessel.OvraTesselLumora"
NAME = "Ovra Tessel Lumora"


def debian_package():
    package, = PACKAGES.glob("*.deb")
    return package


def installer():
    script, = PACKAGES.glob("*.sh")
    return script


def output(*command, **more):
    """What a program prints; its complaint, when it fails, is the test's."""
    done = subprocess.run(command, capture_output=True, text=True, check=False, **more)
    if done.returncode != 0:
        raise AssertionError(f"{command}: {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout
