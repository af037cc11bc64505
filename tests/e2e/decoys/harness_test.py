"""The harness's ways on a Mac, among tools of the tests' own making: what stands on the machine and runs there."""

import json
import os
import pathlib
import plistlib
import re
import signal
import subprocess
import types
import unittest
from unittest import mock

from decoyed_mac import TOOLS
from harness_case import MAC, ROOT, HarnessCase, macs, tear_down_module as tearDownModule  # noqa: F401
from harness.macos import holding, images, link_handlers, machine, preferences, processes
from changes import ToolFailed
from journal import Journal
from macos import changes


class Homes(HarnessCase):
    def test_a_fresh_one_has_nothing_of_the_test_before_and_all_that_is_the_users(self):
        MAC.put("home/Documents/letter", "the user's")
        for place in macs.Mac().product_places()[:-1]:
            MAC.put(place.relative_to(MAC.root) / "file", "of the test before")
        MAC.put("Applications/Ovra Tessel Lumora.app", "the application under test")
        preferences.write(self.home, {"DC": "eu"})
        home = machine.fresh_home("cases.Test.next")
        self.assertEqual([place for place in macs.Mac().product_places() if place.exists()],
                         [MAC.root / "Applications/Ovra Tessel Lumora.app"])
        self.assertEqual(preferences.read(home), {})
        self.assertEqual((MAC.home / "Documents/letter").read_text(), "the user's")
        self.assertEqual(home.path, MAC.home)

    def test_its_evidence_outlives_it_and_its_agents_do_not(self):
        sleeper = subprocess.Popen(["sleep", "60"])
        self.home.log.parent.mkdir(parents=True)
        self.home.log.write_text("a line")
        self.home.agent_records.mkdir(parents=True)
        (self.home.agent_records / "agent-1.json").write_text(json.dumps({"time": "1", "pid": sleeper.pid}))
        another = subprocess.Popen(["sleep", "60"])
        self.addCleanup(another.wait)
        self.addCleanup(another.kill)
        (self.home.agent_records / "agent-2.json").write_text(json.dumps({"time": "2", "pid": another.pid}))
        (MAC.root / "processes").write_text(f"  {sleeper.pid} {self.home.agent}/Contents/MacOS/Ovra\n"
                                            f"  {another.pid} /bin/sleep\n")
        self.addCleanup((MAC.root / "processes").unlink)
        machine.end_agents(self.home)
        self.assertIsNone(another.poll(), "its number is another's now")
        self.assertEqual(sleeper.wait(timeout=30), -signal.SIGKILL)
        machine.fresh_home("cases.Test.next")
        kept = ROOT / "homes/cases.Test.test/Library/Logs/OvraTessel/OvraLumora/ovraLumora.log"
        self.assertEqual(kept.read_text(), "a line")

    def test_what_a_test_puts_elsewhere_is_recorded_once(self):
        folder = MAC.root / "Applications/Kim's Übungen"
        self.addCleanup(self.take_back)
        machine.expect(folder)
        machine.expect(folder)
        folder.mkdir()
        self.assertEqual(len(Journal(macs.Mac().state).entries()), 1)
        self.assertEqual(self.take_back(), [])
        self.assertFalse(folder.exists())

    def test_volumes_of_the_product_are_detached_and_no_other(self):
        for name in ("Ovra", "Ovra 1", "Lumora Plugin", "Lumora Plug-in", "Ovra Backup", "Macintosh HD"):
            (MAC.root / "Volumes" / name).mkdir()
        self.assertEqual(len(machine.volumes()), 4)
        machine.clear()
        self.assertEqual(sorted(path.name for path in (MAC.root / "Volumes").iterdir()), ["Macintosh HD", "Ovra Backup"])


class Preferences(HarnessCase):
    def test_are_written_and_read_through_the_service(self):
        self.assertEqual(preferences.read(self.home), {})
        values = {"DC": "com", "authRequired": True, "port": 3128, "name": "Zoë", "list": [1, {"a": b"b"}]}
        preferences.write(self.home, values, plistlib.FMT_BINARY)
        self.assertEqual(preferences.read(self.home), values)
        before = preferences.snapshot(self.home)
        preferences.write(self.home, {"DC": "com"})
        self.assertEqual(preferences.read(self.home), {"DC": "com"})
        self.assertNotEqual(preferences.snapshot(self.home), before)


class Trust(HarnessCase):
    KEYCHAIN = MAC.root / "keychain"

    def setUp(self):
        super().setUp()
        self.certificate = MAC.root / "authority.pem"
        self.certificate.write_text("-----BEGIN CERTIFICATE-----\nAAAA\n-----END CERTIFICATE-----\n")
        self.digest = "29E2DCFBB16F63BB0254DF7585A15BB6FB5E927D"  # of three bytes of nought
        self.before = self.KEYCHAIN.read_text()

    def test_an_authority_is_trusted_and_taken_back_by_the_world(self):
        machine.trust(self.certificate)
        self.assertIn(self.digest, self.KEYCHAIN.read_text())
        added, = [words for words in MAC.calls("security") if words[0] == "add-trusted-cert"]
        self.assertEqual(added[:6], ["add-trusted-cert", "-d", "-r", "trustRoot", "-k",
                                     str(MAC.root / "Library/Keychains/System.keychain")])
        self.certificate.unlink()  # the world has a copy of its own
        self.assertEqual(self.take_back(), [])
        self.assertEqual(self.KEYCHAIN.read_text(), self.before)
        self.assertIn("remove-trusted-cert", [words[0] for words in MAC.calls("security")])

    def meanwhile(self, name):
        (MAC.root / name).touch()
        self.addCleanup((MAC.root / name).unlink)

    def test_the_right_to_trust_without_a_question_is_granted_for_as_long_as_needed(self):
        self.meanwhile("trust-asks")
        machine.trust(self.certificate)
        machine.trust(self.certificate)
        self.assertIn(self.digest, self.KEYCHAIN.read_text())
        MAC.calls_file.unlink()
        self.assertEqual(self.take_back(), [])
        self.assertEqual((MAC.root / "right-put-back").read_text(), "the right as it was\n")
        self.assertFalse((MAC.root / "right").exists())
        self.assertEqual(self.KEYCHAIN.read_text(), self.before)
        self.assertEqual([words[0] for words in MAC.calls("security")][-2:], ["authorizationdb"] * 2, "while it is needed")

    def test_where_nobody_may_grant_the_right_the_system_is_asked_all_the_same(self):
        self.meanwhile("right-is-fixed")
        machine.trust(self.certificate)
        self.assertIn(self.digest, self.KEYCHAIN.read_text())
        self.assertEqual(self.take_back(), [])
        self.assertEqual(self.KEYCHAIN.read_text(), self.before)

    def test_a_question_that_nobody_answers_ends(self):
        self.meanwhile("right-is-fixed")
        (MAC.root / "trust-asks").touch()
        with mock.patch.object(changes, "TO_TRUST_SECONDS", 1), self.assertRaises(ToolFailed):
            machine.trust(self.certificate)
        (MAC.root / "trust-asks").unlink()
        machine.trust(self.certificate)
        self.meanwhile("forgetting-asks")
        with mock.patch.object(changes, "TO_FORGET_SECONDS", 1):
            self.assertEqual(self.take_back(), [])
        self.assertEqual(self.KEYCHAIN.read_text(), self.before)

    def test_one_that_cannot_be_trusted_is_told(self):
        (MAC.root / "trust-fails").touch()
        self.addCleanup((MAC.root / "trust-fails").unlink)
        with self.assertRaisesRegex(ToolFailed, "SecTrustSettingsSetTrustSettings: no"):
            machine.trust(self.certificate)
        self.assertEqual(self.take_back(), [])

    def test_one_that_stays_is_told_and_tried_again(self):
        machine.trust(self.certificate)
        locked = MAC.root / "keychain-is-locked"
        locked.touch()
        reason, = self.take_back()
        self.assertIn(self.digest, reason)
        locked.unlink()
        self.assertEqual(self.take_back(), [])
        self.assertEqual(self.KEYCHAIN.read_text(), self.before)


class Holding(HarnessCase):
    def test_is_undone_once_by_the_test_or_by_its_end(self):
        cleanups = []
        case = types.SimpleNamespace(addCleanup=cleanups.append)
        folder = MAC.root / "run/held"
        undo = holding.read_only(case, folder)
        self.assertTrue(folder.is_dir())
        self.assertTrue((MAC.root / "run/held.held").exists())
        undo()
        self.assertFalse((MAC.root / "run/held.held").exists())
        cleanups[0]()
        self.assertEqual(MAC.calls("chflags")[-2:], [["uchg", str(folder)], ["nouchg", str(folder)]])

    def test_of_a_bundle_holds_a_file_in_it(self):
        MAC.put("A.app", "a bundle")
        holding.protected_inside(self, MAC.root / "A.app")
        self.assertEqual(MAC.calls("chflags")[-1], ["uchg", str(MAC.root / "A.app/Contents/Info.plist")])


class Images(HarnessCase):
    def test_of_a_volume_hold_what_they_are_made_of(self):
        image = ROOT / "image.dmg"
        image.write_bytes(images.volume({"Ovra.app/Contents/Info.plist": b"x", "link": "Ovra.app"}, "Lumora Plug-in"))
        created = MAC.calls("hdiutil")[0]
        self.assertEqual(created[created.index("-volname") + 1], "Lumora Plug-in")
        images.extract(image, ROOT / "extracted")
        self.assertEqual((ROOT / "extracted/Ovra.app/Contents/Info.plist").read_bytes(), b"x")
        self.assertEqual(os.readlink(ROOT / "extracted/link"), "Ovra.app")
        self.assertEqual([words[0] for words in MAC.calls("hdiutil")], ["create", "attach", "detach"])


    def test_are_tried_again_while_the_volume_is_busy(self):
        body = TOOLS["hdiutil"]
        self.addCleanup(MAC.add_tool, "hdiutil", body)
        MAC.add_tool("hdiutil", f'[ "$(grep -c "^hdiutil" "{MAC.calls_file}")" -gt 2 ] || exit 1\n{body}')
        with mock.patch.object(images, "PAUSE_SECONDS", 0):
            self.assertTrue(images.volume({"Read me": b"x"}).startswith(b"Ovra\n"))
        self.assertEqual(len(MAC.calls("hdiutil")), 3)
        MAC.add_tool("hdiutil", "exit 1")
        with mock.patch.object(images, "PAUSE_SECONDS", 0), self.assertRaises(subprocess.CalledProcessError):
            images.volume({"Read me": b"x"})


class LinkHandlers(HarnessCase):
    def test_are_applications_of_the_scheme_and_signed_as_they_are(self):
        MAC.add_tool("osacompile", 'mkdir -p "$2/Contents"; cp "$3" "$2/Contents/script"; '
                                   'echo \'<plist version="1.0"><dict><key>CFBundleExecutable</key>'
                                   '<string>applet</string></dict></plist>\' > "$2/Contents/Info.plist"')
        MAC.add_tool("codesign", f'cp "${{@: -1}}/Contents/Info.plist" "{ROOT}/signed"')
        MAC.add_tool("lsregister", "true")
        with mock.patch.object(link_handlers, "REGISTER", str(MAC.bin / "lsregister")):
            handler = link_handlers.Handler(self.home, "ovrajoin")
            (command, bundle), = MAC.calls("lsregister")
            self.assertEqual(command, "-f")
            told = plistlib.loads((ROOT / "signed").read_bytes())
            self.assertEqual(told["CFBundleURLTypes"][0]["CFBundleURLSchemes"], ["ovrajoin"])
            self.assertEqual(told["CFBundleExecutable"], "applet")
            script = pathlib.Path(bundle, "Contents/script").read_text()
            opened = pathlib.Path(re.search(r'quoted form of "(.*)"', script)[1])
            self.assertFalse(opened.is_relative_to(ROOT))
            self.assertEqual(handler.opened(), [])
            opened.write_text("ovrajoin://a\novrajoin://b\novr")
            self.assertEqual(handler.opened(), ["ovrajoin://a", "ovrajoin://b"])
            handler.remove()
        self.assertEqual(MAC.calls("lsregister")[-1], ["-u", bundle])
        self.assertFalse(pathlib.Path(bundle).parent.exists() or opened.parent.exists())


class Processes(HarnessCase):
    LIST = ("  501 /System/Library/Frameworks/WebKit.framework/XPCServices/com.apple.WebKit.WebContent.xpc/Contents/MacOS/"
            "com.apple.WebKit.WebContent\n"
            "   62 /usr/sbin/cfprefsd\n")
    MORE = LIST + ("  733 /System/x/com.apple.WebKit.Networking\n  734 /System/x/com.apple.WebKit.WebContent\n"
                   "  735 /usr/bin/hdiutil\n")

    def show(self, text):
        (MAC.root / "processes").write_text(text)
        self.addCleanup((MAC.root / "processes").unlink, missing_ok=True)

    def test_of_the_engine_are_the_applications_that_came_after_its_start(self):
        self.show(self.LIST)
        application = types.SimpleNamespace(pid=700, processes_of_others=processes.before_start())
        self.show(self.MORE)
        self.assertEqual(processes.helpers_of(application), {733: processes.NETWORK_PROCESS, 734: processes.WEB_PROCESS})
        self.assertEqual(processes.web_processes(application), [734])

    def test_the_image_tool_is_seen_while_it_runs(self):
        MAC.add_tool("ps", 'sed "s/^ *[0-9]* //" "$MAC/processes"')
        self.addCleanup(MAC.add_tool, "ps", 'cat "$MAC/processes" 2>/dev/null || true')
        self.show(self.LIST)
        self.assertFalse(processes.image_tool_runs())
        self.show(self.MORE)
        self.assertTrue(processes.image_tool_runs())

    def test_what_they_hold_is_counted(self):
        MAC.add_tool("lsof", r"printf 'p700\nfcwd\ntDIR\nf3\ntREG\nf4\ntIPv4\nf5\ntunix\n'")
        MAC.add_tool("ps", r"""case "$1" in -M) printf 'USER PID\nkim 700\n    700\n' ;; -o) echo ' 81920' ;; esac""")
        self.addCleanup(MAC.add_tool, "ps", 'cat "$MAC/processes" 2>/dev/null || true')
        MAC.add_tool("top", r"printf 'Processes: 300 total\n\nCSW   \n12345+\n'")
        self.assertEqual(processes.usage_of(700), {"descriptors": 4, "sockets": 2, "threads": 2, "memory": 81920})
        self.assertEqual(processes.wake_ups(700), 12345)


if __name__ == "__main__":
    unittest.main()
