"""world/enter as on a Mac, on the decoyed one that LUMORA_DECOYED_MAC names."""

import importlib.machinery
import importlib.util
import os
import pathlib
import sys

WORLD = pathlib.Path(__file__).resolve().parents[1] / "world"
sys.path.insert(0, str(WORLD))
from macos import in_place, mac  # noqa: E402


def main():
    loader = importlib.machinery.SourceFileLoader("enter", str(WORLD / "enter"))
    enter = importlib.util.module_from_spec(importlib.util.spec_from_loader("enter", loader))
    loader.exec_module(enter)
    root = pathlib.Path(os.environ["LUMORA_DECOYED_MAC"])
    return in_place.enter(enter.arguments(), mac.Mac(root, root / "home"))


if __name__ == "__main__":
    sys.exit(main())
