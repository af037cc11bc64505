"""The changes to a Mac, each with its way back.

Every way back may be gone twice: a run can be killed between it and the journal's line about it. What is found changed by
somebody else meanwhile stays as it is.
"""

import hashlib
import os.path
import pathlib
import shutil
import ssl

from . import mac as macs

BEGIN, END = "# begin of Lumora's end-to-end tests", "# end of Lumora's end-to-end tests"
TRUST_RIGHT = "com.apple.trust-settings.admin"


class Changes:
    def __init__(self, mac, journal):
        self._mac = mac
        self._journal = journal

    def undo_all(self):
        """The newest first. What cannot be put back stays in the journal; why, one line each."""
        left, reasons = self._journal.entries(), []
        failed = []
        while left:
            entry = left.pop()
            try:
                getattr(self, "_undo_" + entry["kind"])(entry)
            except (macs.ToolFailed, OSError) as error:
                failed.insert(0, entry)
                reasons.append(f"{entry['kind']}: {error}")
            self._journal.keep_only(left + failed)
        return reasons

    # --- names

    def _write_hosts(self, text):
        """Into the file: it keeps its owner and modes."""
        staged = self._journal.folder / "hosts.new"
        staged.write_text(text, encoding="utf-8")
        self._mac.run_as_root("cp", staged, self._mac.hosts)
        self._mac.run_as_root("dscacheutil", "-flushcache", check=False)
        self._mac.run_as_root("killall", "-HUP", "mDNSResponder", check=False)

    @staticmethod
    def _with_block(text, block):
        return text + ("" if not text or text.endswith("\n") else "\n") + block

    def add_hosts(self, address, names):
        text = self._mac.hosts.read_text(encoding="utf-8")
        block = "\n".join([BEGIN, *[f"{address} {name}" for name in names], END, ""])
        self._journal.note(kind="hosts", before=text, block=block)
        self._write_hosts(self._with_block(text, block))

    def _undo_hosts(self, entry):
        text, before, block = self._mac.hosts.read_text(encoding="utf-8"), entry["before"], entry["block"]
        whole = self._with_block(before, block)
        if text == whole or (text != before and whole.startswith(text)):  # as it was left, or cut off in the writing
            self._write_hosts(before)
        elif block in text:  # somebody else has changed it too
            self._write_hosts(text.replace(block, ""))

    # --- places

    def move_aside(self, path):
        """Whatever stands there, to a name beside it: one step on any volume. Without anything, what comes is removed."""
        kept = path.with_name(f".{path.name}.kept-by-end-to-end-tests")
        there = os.path.lexists(path)  # of a folder that the system does not let look into: not there
        self._journal.note(kind="place", path=str(path), kept=str(kept), there=there)
        if there:
            self._mac.run_as_root("mv", path, kept)

    def _undo_place(self, entry):
        path, kept = pathlib.Path(entry["path"]), pathlib.Path(entry["kept"])
        if entry["there"] and not os.path.lexists(kept):
            return  # never moved, or back already
        if os.path.lexists(path):
            self._mac.run_as_root("chflags", "-R", "nouchg", path, check=False)
            self._mac.run_as_root("rm", "-rf", path)
        if entry["there"]:
            self._mac.run_as_root("mv", kept, path)

    # --- preferences

    def set_preferences_aside(self, domain, privileged):
        values = self._mac.exported(domain, privileged)
        file = self._journal.folder / f"preferences-{'machine' if privileged else 'user'}.plist"
        file.write_bytes(macs.plistlib.dumps(values))
        self._journal.note(kind="preferences", domain=domain, privileged=privileged, file=str(file))
        self._mac.store(domain, {}, privileged)

    def _undo_preferences(self, entry):
        values = macs.plistlib.loads(pathlib.Path(entry["file"]).read_bytes())
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
        except macs.ToolFailed:
            # Newer systems ask for a password on the screen, unless the right is granted.
            self._grant(TRUST_RIGHT)
            self._mac.run_as_root(*add)

    def _undo_trust(self, entry):
        digest, certificate = entry["digest"], entry["certificate"]
        self._mac.run_as_root("security", "remove-trusted-cert", "-d", certificate, check=False)
        self._mac.run_as_root("security", "delete-certificate", "-Z", digest, self._mac.keychain, check=False)
        known = self._mac.run("security", "find-certificate", "-a", "-Z", self._mac.keychain, check=False).decode()
        if digest in known:
            raise macs.ToolFailed(f"the authority {digest} is still in {self._mac.keychain}")
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
