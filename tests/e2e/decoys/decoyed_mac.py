"""A folder that stands for a Mac, and tools of the tests' own making that stand for its tools.

Each tool writes its words to a list and does to the folder what the real one does to a Mac, as far as anybody looks.
"""

import os
import pathlib
import plistlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "shared"))
from recording_tools import RecordingTools  # noqa: E402  (what several folders of tests use)

WORLD = HERE.parent / "world"
ENTER = HERE / "enter_decoyed.py"
HOSTS = "127.0.0.1 localhost\n255.255.255.255 broadcasthost\n"
# Tools of every system that the scripts below and the world call.
ORDINARY = ["basename", "bash", "cat", "chmod", "cp", "dirname", "env", "grep", "kill", "ln", "ls", "mkdir", "mv", "rm",
            "sed", "sleep", "sort", "tar", "touch", "true"]

TOOLS = {
    "sudo": '[ ! -e "$MAC/asks-for-a-password" ] || { echo "sudo: a password is required" >&2; exit 1; }\n'
            '[ "$1" = -n ] && shift\nexec "$@"',
    "launchctl": """
case "$1" in
  managername) cat "$MAC/manager" ;;
  getenv) cat "$MAC/variable-$2" 2>/dev/null || true ;;
  setenv) echo "$3" > "$MAC/variable-$2" ;;
  unsetenv) rm -f "$MAC/variable-$2" ;;
esac""",
    "dscacheutil": "true",
    "scutil": 'printf "<dictionary> {\\n  HTTPSEnable : %s\\n}\\n" "$(cat "$MAC/proxy" 2>/dev/null || echo 0)"',
    "killall": "exit 1",
    # The system's own: the decoyed Mac has no other processes than these.
    "ps": 'cat "$MAC/processes" 2>/dev/null || true',
    "chflags": '[ "$1" = -R ] && shift\n'
               'case "$1" in uchg) touch "$2.held";; nouchg) rm -f "$2.held";; esac',
    "screencapture": 'touch "${@: -1}"',
    # The keychain is a list of digests, and the trust settings another one.
    "security": '''
case "$1" in
  add-trusted-cert)
    [ ! -e "$MAC/trust-asks" ] || [ -e "$MAC/right" ] || exec sleep 60
    [ ! -e "$MAC/trust-fails" ] || { echo "SecTrustSettingsSetTrustSettings: no" >&2; exit 1; }
    basename "${@: -1}" .pem | sed "s/authority-/SHA-1 hash: /" >> "$MAC/keychain" ;;
  remove-trusted-cert) [ ! -e "$MAC/forgetting-asks" ] || exec sleep 60 ;;
  delete-certificate)
    [ ! -e "$MAC/keychain-is-locked" ] || exit 1
    grep -v "$3" "$MAC/keychain" > "$MAC/keychain.new"; mv "$MAC/keychain.new" "$MAC/keychain" ;;
  find-certificate) cat "$MAC/keychain" ;;
  authorizationdb)
    case "$2" in
      read) if [ -e "$MAC/right" ]; then echo "allowed"; else echo "the right as it was"; fi ;;
      write)
        [ ! -e "$MAC/right-is-fixed" ] || { echo "NO (-60005)" >&2; exit 1; }
        if [ "$4" = allow ]; then touch "$MAC/right"; else cat > "$MAC/right-put-back"; rm -f "$MAC/right"; fi ;;
    esac ;;
esac''',
    "hdiutil": '''
case "$1" in
  create)
    while [ $# -gt 1 ]; do case "$1" in -volname) name=$2 ;; -srcfolder) folder=$2 ;; esac; shift; done
    { echo "$name"; tar -C "$folder" -c .; } > "$1" ;;
  attach)
    shift; while [ $# -gt 1 ]; do case "$1" in -mountpoint) point=$2 ;; esac; shift; done
    mkdir -p "$point"; sed 1d "$1" | tar -C "$point" -x ;;
  detach) rm -rf "${@: -1}" ;;
esac''',
}

DEFAULTS = """
import pathlib, plistlib, sys
words = sys.argv[1:]
mac = pathlib.Path({mac!r})
name = words[1] if words[1].startswith("/") else str(mac / "home/Library/Preferences" / words[1])
file = pathlib.Path(name + ".plist")
if words[0] == "export":
    values = plistlib.loads(file.read_bytes()) if file.exists() else {{}}
    sys.stdout.buffer.write(plistlib.dumps(values))
elif words[0] == "import":
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_bytes(plistlib.dumps(plistlib.loads(sys.stdin.buffer.read())))
elif words[0] == "delete":
    if not file.exists():
        sys.exit("Domain not found")
    file.unlink()
"""


class DecoyedMac(RecordingTools):
    def __init__(self):
        self._folder = tempfile.TemporaryDirectory()
        self.root = pathlib.Path(self._folder.name).resolve()
        super().__init__(self.root, ORDINARY, f'MAC="{self.root}"\n')
        self.home = self.root / "home"
        for folder in ("etc", "home/Library/Preferences", "Applications", "Library/Preferences", "Volumes"):
            (self.root / folder).mkdir(parents=True)
        (self.root / "etc/hosts").write_text(HOSTS)
        (self.root / "manager").write_text("Aqua\n")
        (self.root / "keychain").write_text("SHA-1 hash: AAAA\n")
        for name, body in TOOLS.items():
            self.add_tool(name, body)
        self.add_tool("defaults", f'exec {sys.executable} "{self.root}/defaults.py" "$@"')
        (self.root / "defaults.py").write_text(DEFAULTS.format(mac=str(self.root)))

    def close(self):
        self._folder.cleanup()

    @property
    def environment(self):
        return {"PATH": str(self.bin), "HOME": str(self.home), "LUMORA_DECOYED_MAC": str(self.root),
                "LUMORA_E2E_IN_PLACE": "1", "PYTHONDONTWRITEBYTECODE": "1"}

    def words(self, *command, options=()):
        """That enter the world with this command."""
        return [sys.executable, str(ENTER), "--root", str(self.root / "run"), *options, "--", *map(str, command)]

    def begin(self, *command, options=(), **environment):
        """Enters the world with this command, in the background."""
        return subprocess.Popen(self.words(*command, options=options), env=self.environment | environment,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def enter(self, *command, options=(), **environment):
        """To its end: the status, and the lines on standard error."""
        process = self.begin(*command, options=options, **environment)
        _, errors = process.communicate(timeout=60)
        return process.returncode, errors.splitlines()

    # --- what stands there

    def put(self, place, text):
        """A file of this text, or in a bundle's place a bundle of it."""
        path = self.root / place
        if path.suffix == ".app":
            path = path / "Contents/Info.plist"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def put_preferences(self, place, values):
        path = self.root / place
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(plistlib.dumps(values))

    def picture(self):
        """All that a person would miss: every file with its text, the tests' own left out."""
        left_out = ("bin", "run", "calls", "seen", "defaults.py", "processes", "right-put-back")
        found = {}
        for folder, folders, files in os.walk(self.root):
            for name in files + folders:
                path = pathlib.Path(folder, name)
                place = path.relative_to(self.root)
                if place.parts[0] in left_out or "Lumora end-to-end tests" in place.parts:
                    continue
                if path.is_file():
                    found[str(place)] = path.read_bytes()
        return found

    def journal(self):
        file = self.home / "Library/Application Support/Lumora end-to-end tests/journal"
        return file.read_text() if file.exists() else ""
