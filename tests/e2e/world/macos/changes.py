"""The changes to a Mac beside those that every system has, each with its way back."""

import hashlib
import pathlib
import plistlib
import shutil
import ssl

from changes import Changes, ToolFailed

TRUST_RIGHT = "com.apple.trust-settings.admin"
# A person at the screen has time to answer; where there is none, the tests go on.
TO_TRUST_SECONDS, TO_FORGET_SECONDS = 120, 20


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
        before = self._mac.run("launchctl", "getenv", name, check=False).decode().rstrip("\n")
        self._journal.note(kind="variable", name=name, before=before)
        self._mac.run("launchctl", "setenv", name, value)

    def _undo_variable(self, entry):
        if entry["before"]:
            self._mac.run("launchctl", "setenv", entry["name"], entry["before"])
        else:
            self._mac.run("launchctl", "unsetenv", entry["name"])

    # --- trust

    def trust(self, certificate):
        """An authority, for every user: the application asks the system, and so does the engine's own process.

        Without the right macOS 11 to 14 ask for a password on the screen; later ones may ask all the same.
        """
        self._grant(TRUST_RIGHT)
        text = certificate.read_text(encoding="ascii")
        digest = hashlib.sha1(ssl.PEM_cert_to_DER_cert(text)).hexdigest().upper()
        kept = self._journal.folder / f"authority-{digest}.pem"
        shutil.copyfile(certificate, kept)
        self._journal.note(kind="trust", certificate=str(kept), digest=digest)
        self._mac.run_as_root_within(TO_TRUST_SECONDS, "security", "add-trusted-cert", "-d", "-r", "trustRoot",
                                     "-k", self._mac.keychain, kept)

    def _undo_trust(self, entry):
        digest, certificate = entry["digest"], pathlib.Path(entry["certificate"])
        self._mac.run_as_root("security", "delete-certificate", "-Z", digest, self._mac.keychain, check=False)
        known = self._mac.run("security", "find-certificate", "-a", "-Z", self._mac.keychain, check=False).decode()
        if digest in known:
            raise ToolFailed(f"the authority {digest} is still in {self._mac.keychain}")
        # With it goes what matters. What is left is a line on an unknown certificate, and some systems ask for a password
        # to take that away, whatever rights there are: nobody may be there to give it.
        if certificate.exists():
            self._mac.run_as_root_within(TO_FORGET_SECONDS, "security", "remove-trusted-cert", "-d", certificate, check=False)
        certificate.unlink(missing_ok=True)

    def _grant(self, right):
        """Not on every system: macOS 15 lets nobody change it."""
        if any(entry["kind"] == "right" for entry in self._journal.entries()):
            return  # and what it was before is kept
        before = self._mac.run("security", "authorizationdb", "read", right)
        file = self._journal.folder / "right.plist"
        file.write_bytes(before)
        self._journal.note(kind="right", right=right, file=str(file))
        self._mac.run_as_root("security", "authorizationdb", "write", right, "allow", check=False)

    def _undo_right(self, entry):
        before = pathlib.Path(entry["file"]).read_bytes()
        if self._mac.run("security", "authorizationdb", "read", entry["right"]) != before:
            self._mac.run_as_root("security", "authorizationdb", "write", entry["right"], stdin=before)
