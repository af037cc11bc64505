"""Home folders that are not what a script's author has in mind."""

import os
import pathlib

import decoys
from case import HOMES, UninstallCase


class OddHomes(UninstallCase):
    def remove_from(self, name):
        self.home = HOMES / name
        decoys.make_neighbours(self.home)
        self.neighbours = decoys.tree(self.home)
        decoys.make_bundle(self.home / f"Applications/{decoys.NAME}.app")
        decoys.make_stored(self.home)
        outcome = self.uninstall()
        self.assert_removed(outcome)
        return outcome

    def test_unusual_characters_are_only_characters(self):
        for name in ("Kim Muster", "-rf", "--", "kim's \"home\"", "$(touch oops)`id`;\\", "*", "[a-z]?", "~", "&|>",
                     "käthe", "tab\there", "OvraTessel", "Ovra Tessel Lumora.app"):
            with self.subTest(name):
                self.remove_from(name)

    def test_line_breaks_cannot_forge_a_message(self):
        outcome = self.remove_from("kim\nNo installation found\n")
        self.assertNotIn("No installation found", outcome.lines())

    def test_bytes_that_are_no_text(self):
        name = b"k\xff\xfem".decode("utf-8", errors="surrogateescape")
        self.home = HOMES / name
        decoys.make_bundle(self.home / f"Applications/{decoys.NAME}.app")
        self.assertEqual(self.uninstall().status, 0)
        self.assertEqual(os.listdir(self.home), [])

    def test_slashes_at_the_end_do_not_matter(self):
        decoys.make_bundle(self.bundle)
        decoys.make_stored(self.home)
        self.assert_removed(self.uninstall(home=f"{self.home}//"))

    def test_home_that_is_a_link_is_the_folder_it_leads_to(self):
        link = HOMES / "link"
        link.symlink_to(self.home)
        decoys.make_bundle(self.bundle)
        decoys.make_stored(self.home)
        self.assert_removed(self.uninstall(home=link))
        self.assertTrue(link.is_symlink())


class NoHomes(UninstallCase):
    """Without a usable HOME the account's own folder counts, which is root's here: decoys must stay untouched."""

    def setUp(self):
        super().setUp()
        accounts = pathlib.Path("/etc/passwd").read_text(encoding="utf-8").split("\n")
        self._accounts = accounts
        self.addCleanup(self._write, accounts)
        self._write([line.replace(":/root:", f":{HOMES}/account:") if line.startswith("root:") else line
                     for line in accounts])
        self.account = HOMES / "account"

    def _write(self, accounts):
        pathlib.Path("/etc/passwd").write_text("\n".join(accounts), encoding="utf-8")

    def test_unusable_home_gives_way_to_the_accounts(self):
        (HOMES / "file").write_text("", encoding="ascii")
        for home in (None, "", "/", "//", "/.", "/tmp/..", "kim", "./kim", "-rf", "..", "/nowhere", f"{HOMES}/file"):
            with self.subTest(home):
                decoys.make_stored(self.account)
                outcome = self.uninstall(environment={"HOME": home})
                self.assertEqual(outcome.status, 0, outcome.text)
                self.assertEqual([path for path in self.account.rglob("*") if path.is_file()], [])

    def test_relative_home_is_none_wherever_the_script_runs(self):
        decoys.make_stored(HOMES / "kim")
        before = decoys.tree(HOMES / "kim")
        for home in ("kim", "./kim", "../homes/kim"):
            with self.subTest(home):
                self.assert_nothing_found(self.uninstall(environment={"HOME": home}, folder=HOMES))
                self.assertEqual(decoys.tree(HOMES / "kim"), before)

    def test_root_folder_is_never_taken_for_a_home(self):
        # What a home of "/" would make of the machine's own folders.
        machine = pathlib.Path("/Library/Application Support/OvraVarloNative/file")
        decoys.write(machine)
        decoys.write(decoys.PREFERENCES / "com.another.plist")
        self._write([line.replace(":/root:", ":/:") if line.startswith("root:") else line for line in self._accounts])
        for home in (None, "", "/", "//", "/."):
            with self.subTest(home):
                outcome = self.uninstall(environment={"HOME": home})
                self.assert_nothing_found(outcome)
                self.assertIn("There is no home folder to clear", outcome.lines())
                self.assertTrue(machine.exists())

    def test_without_any_home_the_system_installation_still_goes(self):
        self._write([line.replace(":/root:", ":/nowhere:") if line.startswith("root:") else line
                     for line in self._accounts])
        decoys.make_bundle(decoys.BUNDLE)
        outcome = self.uninstall(environment={"HOME": None})
        self.assertEqual(outcome.status, 0, outcome.text)
        self.assertFalse(decoys.BUNDLE.exists())
