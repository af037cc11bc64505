"""The macOS backend stays thin: counts the lines of its sources against those that both systems share."""
import sys
from pathlib import Path

CORE = ("support", "config", "bridge", "webhost", "api", "agent", "selfupdate", "shell")
SHARE = 5  # one line of the backend to so many of what it carries out


def lines(files):
    return sum(len(file.read_text().splitlines()) for file in files)


def main(sources):
    """Prints the figures and returns whether the backend is thin."""
    backend = sources / "platform" / "macos"
    carried_out = lines(backend.rglob("*.mm"))
    headers = lines(backend.rglob("*.h"))
    core = lines(file for folder in CORE for file in (sources / folder).rglob("*") if file.suffix in (".h", ".cpp"))
    ports = lines(file for file in (sources / "platform").glob("*") if file.suffix in (".h", ".cpp"))
    posix = lines(file for file in (sources / "platform" / "posix").glob("*") if file.suffix in (".h", ".cpp"))
    shared = core + ports + posix
    print(f"Objective-C++: {carried_out} lines; the core: {core}, a fifth of it: {core // SHARE}")
    print(f"with headers: {carried_out + headers}; all that is shared: {shared} ({core} core, {ports} ports, "
          f"{posix} POSIX), a fifth of it: {shared // SHARE}")
    return carried_out > 0 and carried_out * SHARE <= core


if __name__ == "__main__":
    sys.exit(0 if main(Path(sys.argv[1])) else 1)
