"""Where things lie in the source tree."""
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PACKAGING = ROOT / "packaging" / "macos"
RESOURCES = ROOT / "resources"
DOMAIN = "com.ovra.tessel.OvraTesselLumora"
