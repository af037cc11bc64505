"""The hosts that the data centre answers for."""

import pathlib

HOSTS = pathlib.Path(__file__).resolve().parent / "hosts.txt"


def names():
    lines = HOSTS.read_text(encoding="utf-8").splitlines()
    return [line for line in lines if line and not line.startswith("#")]
