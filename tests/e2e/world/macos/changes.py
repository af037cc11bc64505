"""The changes to a Mac beside those that every system has, each with its way back."""

import hashlib
import pathlib
import plistlib
import shutil
import ssl

from changes import Changes, ToolFailed

TRUST_RIGHT = "com.apple.trust-settings.admin"


class MacChanges(Changes):
    def __init__(self, mac, journal):
        super().__init__(journal, mac.run_as_root)
        self._mac = mac

    def _hosts_have_changed(self):
        self._mac.run_as_root("dscacheutil", "-flushcache", check=False)
        self._mac.run_as_root("killall", "-HUP", "mDNSResponder", check=False)

    def _unlock(self, path):
        self._mac.run_as_root("chflags", "-R", "nouchg", path, check=False)

    # --- preferences

    def set_preferences_aside(self, domain, privileged):
        values = self._mac.exported(domain, privileged)
        file = self._journal.folder / f"preferences-{'machine' if privileged else 'user'}.plist"
        file.write_bytes(plistlib.dumps(values))
        self._journal.note(kind="preferences", domain=domain, privileged=privileged, file=str(file))
        self._mac.store(domain, {}, privileged)

    def _undo_preferences(self, entry):
        values = plistlib.loads(pathlib.Path(entry["file"]).read_bytes())
        self._mac.store(entry["domain"], values, entry["privileged"])

    # --- what the system hands to every application that it starts for this user

    def set_variable(self, name, value):
        before = self._mac.run("launchctl", "getenv", name).decode().rstrip("\n")
        self._journal.note(kind="variable", name=name, before=before)
        self._mac.run("launchctl", "setenv", name, value)

    def _undo_variable(self, entry):
        if entry["before"]:
            self._mac.run("launchctl", "setenv", entry["name"], entry["before"])
        else:
            self._mac.run("launchctl", "unsetenv", entry["name"])

    # --- trust

    def trust(self, certificate):
        """An authority, for every user: the application asks the system, and so does the engine's own process."""
        text = certificate.read_text(encoding="ascii")
        digest = hashlib.sha1(ssl.PEM_cert_to_DER_cert(text)).hexdigest().upper()
        kept = self._journal.folder / f"authority-{digest}.pem"
        shutil.copyfile(certificate, kept)
        self._journal.note(kind="trust", certificate=str(kept), digest=digest)
        add = ["security", "add-trusted-cert", "-d", "-r", "trustRoot", "-k", self._mac.keychain, kept]
        try:
            self._mac.run_as_root(*add)
        except ToolFailed:
            # Newer systems ask for a password on the screen, unless the right is granted.
            self._grant(TRUST_RIGHT)
            self._mac.run_as_root(*add)

    def _undo_trust(self, entry):
        digest, certificate = entry["digest"], entry["certificate"]
        self._mac.run_as_root("security", "remove-trusted-cert", "-d", certificate, check=False)
        self._mac.run_as_root("security", "delete-certificate", "-Z", digest, self._mac.keychain, check=False)
        known = self._mac.run("security", "find-certificate", "-a", "-Z", self._mac.keychain, check=False).decode()
        if digest in known:
            raise ToolFailed(f"the authority {digest} is still in {self._mac.keychain}")
        pathlib.Path(certificate).unlink(missing_ok=True)

    def _grant(self, right):
        before = self._mac.run("security", "authorizationdb", "read", right)
        file = self._journal.folder / "right.plist"
        file.write_bytes(before)
        self._journal.note(kind="right", right=right, file=str(file))
        self._mac.run_as_root("security", "authorizationdb", "write", right, "allow")

    def _undo_right(self, entry):
        before = pathlib.Path(entry["file"]).read_bytes()
        self._mac.run_as_root("security", "authorizationdb", "write", entry["right"], stdin=before)
