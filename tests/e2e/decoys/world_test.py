"""The world on a Mac is arranged, restored whatever ends it, and refused where it cannot be had."""

import os
import plistlib
import pty
import select
import signal
import sys
import time
import unittest

from decoyed_mac import HOSTS, DecoyedMac

DOMAIN = "com.ovra.tessel.OvraTesselLumora"
BUNDLE = "Applications/Ovra Tessel Lumora.app"
SUPPORT = "home/Library/Application Support/OvraLumoraNativeFolder/of the user"
USER, MACHINE = f"home/Library/Preferences/{DOMAIN}.plist", f"Library/Preferences/{DOMAIN}.plist"
# What a test leaves: an installed copy, preferences of both levels, a log, a name of its own in the list of hosts.
LEAVES = """
import os, pathlib, plistlib
mac = pathlib.Path(os.environ["LUMORA_DECOYED_MAC"])
bundle = mac / "Applications/Ovra Tessel Lumora.app/Contents"
bundle.mkdir(parents=True)
(bundle / "Info.plist").write_text("the tests'")
log = mac / "home/Library/Logs/OvraTessel/OvraLumora/ovraLumora.log"
log.parent.mkdir(parents=True)
log.write_text("the tests'")
for level in ("home/Library", "Library"):
    (mac / level / "Preferences/com.ovra.tessel.OvraTesselLumora.plist").write_bytes(plistlib.dumps({"DC": "eu"}))
"""
SEEN = LEAVES + """
(mac / "seen").write_text((mac / "etc/hosts").read_text() + repr(sorted(os.environ)))
"""
STAYS = LEAVES + """
import sys, time
(mac / "seen").touch()
time.sleep(60)
"""


class MacWorld(unittest.TestCase):
    def setUp(self):
        self.mac = DecoyedMac()
        self.addCleanup(self.mac.close)

    def furnish(self):
        """As a Mac on which the application is installed and in use."""
        self.mac.put(BUNDLE, "the user's")
        self.mac.put(SUPPORT, "the user's")
        self.mac.put_preferences(USER, {"DC": "com", "name": "Kim"})
        self.mac.put_preferences(MACHINE, {"pathForLumora": "join"})
        self.mac.put("variable-OVRA_AGENT_HEADLESS", "the user's\n")
        return self.mac.picture()

    def python(self, script):
        return sys.executable, "-c", script

    def begin_and_wait(self, script=STAYS):
        process = self.mac.begin(*self.python(script))
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.stdout.close)
        self.wait_until((self.mac.root / "seen").exists)
        return process

    def wait_until(self, condition, seconds=30):
        deadline = time.monotonic() + seconds
        while not condition():
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.01)


class Arrangement(MacWorld):
    def test_the_hosts_lead_here_and_the_resolver_forgets(self):
        status, errors = self.mac.enter(*self.python(SEEN))
        self.assertEqual((status, errors), (0, []))
        seen = (self.mac.root / "seen").read_text()
        self.assertTrue(seen.startswith(HOSTS))
        self.assertIn("\n127.0.0.1 com.ovratessel.example\n", seen)
        self.assertIn("\n127.0.0.1 support.customer.example\n", seen)
        self.assertEqual(self.mac.calls("dscacheutil"), [["-flushcache"]] * 2)
        self.assertEqual(self.mac.calls("killall"), [["-HUP", "mDNSResponder"]] * 2)

    def test_what_the_user_has_is_out_of_the_way(self):
        self.furnish()
        look = "import os; m = os.environ['LUMORA_DECOYED_MAC']; " + "; ".join(
            f"assert not os.path.exists(m + '/{place}'), '{place}'" for place in (BUNDLE, SUPPORT, USER, MACHINE))
        self.assertEqual(self.mac.enter(*self.python(look)), (0, []))

    def test_agents_end_without_a_window(self):
        look = "import pathlib, os; print(pathlib.Path(os.environ['LUMORA_DECOYED_MAC'], 'variable-OVRA_AGENT_HEADLESS').read_text())"
        process = self.mac.begin(*self.python(look))
        self.assertEqual(process.communicate(timeout=60)[0].strip(), "1")

    def test_the_callers_shell_is_left_behind(self):
        self.mac.enter(*self.python(SEEN), HTTPS_PROXY="http://10.0.0.1", DYLD_LIBRARY_PATH="/x", LUMORA_ROUNDS="2")
        seen = (self.mac.root / "seen").read_text()
        self.assertNotIn("HTTPS_PROXY", seen)
        self.assertNotIn("DYLD_LIBRARY_PATH", seen)
        self.assertIn("LUMORA_ROUNDS", seen)

    def test_a_shell_in_it_reads_from_the_terminal(self):
        child, terminal = pty.fork()
        if child == 0:
            words = self.mac.words("bash", "-c", "read line; echo \"read: $line\"")
            os.execve(words[0], words, self.mac.environment)
        self.addCleanup(os.close, terminal)
        self.addCleanup(os.waitpid, child, 0)
        self.addCleanup(os.kill, child, signal.SIGTERM)
        os.write(terminal, b"a line\n")
        seen = []
        self.wait_until(lambda: seen.append(self.shown(terminal)) or b"read: a line" in b"".join(seen))

    @staticmethod
    def shown(terminal):
        """What has come since, without waiting for more; nothing from a terminal that nobody has open any more."""
        try:
            return os.read(terminal, 1000) if select.select([terminal], [], [], 0)[0] else b""
        except OSError:
            return b""

    def test_only_the_machines_own_goes_through_sudo_and_never_asks(self):
        self.furnish()
        self.mac.enter(*self.python(LEAVES))
        calls = self.mac.calls("sudo")
        self.assertEqual({words[0] for words in calls}, {"-n"})
        self.assertEqual({words[1] for words in calls},
                         {"true", "cp", "mv", "rm", "chflags", "dscacheutil", "killall", "defaults"})
        for words in calls:
            if words[1] == "defaults":
                self.assertEqual(words[3], str(self.mac.root / "Library/Preferences" / DOMAIN))

    def test_the_commands_status_is_the_worlds(self):
        self.assertEqual(self.mac.enter(*self.python("raise SystemExit(5)")), (5, []))
        self.assertEqual(self.mac.enter(*self.python("raise SystemExit(77)")), (77, []))
        self.assertEqual(self.mac.enter(*self.python("import os; os.kill(os.getpid(), 9)")), (137, []))


class Restoration(MacWorld):
    def assert_restored(self, before):
        after = self.mac.picture()
        self.assertEqual(sorted(after), sorted(before))
        for place, content in before.items():
            if place.endswith(".plist") and "Preferences" in place:
                self.assertEqual(plistlib.loads(after[place]), plistlib.loads(content), place)
            else:
                self.assertEqual(after[place], content, place)
        self.assertEqual(self.mac.journal(), "")

    def test_after_a_good_end(self):
        before = self.furnish()
        self.mac.enter(*self.python(LEAVES))
        self.assert_restored(before)

    def test_where_nothing_was_nothing_is_left(self):
        before = self.mac.picture()
        self.mac.enter(*self.python(LEAVES))
        self.assert_restored(before)

    def test_after_a_failure(self):
        before = self.furnish()
        status, _ = self.mac.enter(*self.python(LEAVES + "raise RuntimeError"))
        self.assertEqual(status, 1)
        self.assert_restored(before)

    def test_after_signals_that_ask_for_the_end(self):
        before = self.furnish()
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number.name):
                (self.mac.root / "seen").unlink(missing_ok=True)
                process = self.begin_and_wait()
                process.send_signal(number)
                self.assertEqual(process.wait(timeout=30), 128 + number)
                self.assert_restored(before)

    def test_the_tests_end_with_their_world_and_so_does_what_they_started(self):
        script = ("import os, subprocess, sys\nfrom pathlib import Path\n"
                  "child = subprocess.Popen([sys.executable, '-c', 'import time; time.sleep(60)'])\n"
                  "seen = Path(os.environ['LUMORA_DECOYED_MAC'], 'seen')\n"
                  "seen.with_name('run').mkdir(exist_ok=True)\n"
                  "seen.with_name('run').joinpath('child').write_text(str(child.pid))\nseen.touch()\nchild.wait()\n")
        process = self.begin_and_wait(script)
        process.terminate()
        process.wait(timeout=30)
        child = int((self.mac.root / "run/child").read_text())
        self.wait_until(lambda: self.is_gone(child))

    @staticmethod
    def is_gone(pid):
        try:
            with open(f"/proc/{pid}/stat", encoding="utf-8") as file:
                return ") Z " in file.read()
        except OSError:
            return True

    def kill(self, process):
        """With its tests: they would hold the next run up to their end."""
        process.kill()
        process.wait()
        for entry in os.listdir("/proc"):
            if entry.isdigit() and self.works_here(entry):
                os.kill(int(entry), signal.SIGKILL)

    def works_here(self, number):
        try:
            with open(f"/proc/{number}/environ", "rb") as file:
                return f"LUMORA_DECOYED_MAC={self.mac.root}".encode() in file.read()
        except OSError:
            return False

    def test_after_a_kill_by_the_next_run_before_anything_else(self):
        before = self.furnish()
        self.kill(self.begin_and_wait())
        self.assertNotEqual(self.mac.picture(), before)
        look = f"import os; m = os.environ['LUMORA_DECOYED_MAC']; assert not os.path.exists(m + '/{BUNDLE}')"
        self.assertEqual(self.mac.enter(*self.python(look)), (0, []))
        self.assert_restored(before)

    def test_after_a_kill_by_the_command_for_it_from_anywhere_without_consent(self):
        before = self.furnish()
        self.kill(self.begin_and_wait())
        (self.mac.root / "manager").write_text("Background\n")
        self.assertEqual(self.mac.enter(options=["--restore"], LUMORA_E2E_IN_PLACE=""), (0, []))
        (self.mac.root / "manager").write_text("Aqua\n")
        self.assert_restored(before)

    def test_after_a_kill_on_every_step(self):
        """Each tool in turn stops for ever: whatever has been done by then, the next run undoes."""
        before = self.furnish()
        self.assertEqual(self.mac.enter(*self.python(LEAVES)), (0, []))
        tools = [words[1] for words in self.mac.calls("sudo")]
        self.assertGreater(len(tools), 15)
        # What is written down and not yet done is the same for every use of a tool.
        moments = [(step, "after") for step in range(1, len(tools) + 1)] + \
            [(tools.index(tool) + 1, "before") for tool in set(tools)]
        for step, moment in moments:
            with self.subTest(step=step, tool=tools[step - 1], moment=moment):
                self.stop_sudo_at(step, moment)
                process = self.mac.begin(*self.python(LEAVES))
                self.wait_until((self.mac.root / "run/stopped").exists)
                self.kill(process)
                process.stderr.close()
                process.stdout.close()
                self.mac.add_tool("sudo", "shift; exec \"$@\"")
                self.assertEqual(self.mac.enter(options=["--restore"]), (0, []))
                self.assert_restored(before)

    def stop_sudo_at(self, step, moment):
        run = self.mac.root / "run"
        run.mkdir(exist_ok=True)
        for name in ("stopped", "count"):
            (run / name).unlink(missing_ok=True)
        stop = f'touch "{run}/stopped"; sleep 60'
        words = ('shift; "$@" 2>/dev/null; ' + stop) if moment == "after" else stop
        self.mac.add_tool("sudo", f'echo >> "{run}/count"\nif [ "$(grep -c "" "{run}/count")" = {step} ]; then {words}; fi\n'
                                  'shift; exec "$@"')

    def test_a_tool_that_fails_undoes_what_was_done(self):
        before = self.furnish()
        self.mac.add_tool("sudo", 'shift; case "$1" in cp) echo "cp: disk full" >&2; exit 1;; esac; exec "$@"')
        status, errors = self.mac.enter("true")
        self.assertEqual(status, 1)
        self.assertEqual(len(errors), 1, errors)
        self.assertIn("cp: disk full", errors[0])
        self.assert_restored(before)

    def test_what_cannot_be_put_back_is_told_and_tried_again(self):
        before = self.furnish()
        process = self.begin_and_wait()
        self.mac.add_tool("sudo", 'shift; [ "$1" != cp ] || { echo "cp: disk full" >&2; exit 1; }; exec "$@"')
        process.terminate()
        _, errors = process.communicate(timeout=30)
        self.assertEqual(process.returncode, 128 + signal.SIGTERM)
        self.assertIn("world: not restored: hosts: ", errors)
        self.assertEqual(len(self.mac.journal().splitlines()), 1)
        self.assertEqual(self.mac.enter("true")[0], 1, "nothing new is begun over it")
        self.mac.add_tool("sudo", 'shift; exec "$@"')
        self.assertEqual(self.mac.enter(options=["--restore"]), (0, []))
        self.assert_restored(before)

    def test_what_somebody_else_has_changed_in_the_hosts_stays(self):
        change = ("import os, pathlib; hosts = pathlib.Path(os.environ['LUMORA_DECOYED_MAC'], 'etc/hosts'); "
                  "hosts.write_text('10.0.0.1 new\\n' + hosts.read_text() + '10.0.0.2 later\\n')")
        self.mac.enter(*self.python(change))
        self.assertEqual((self.mac.root / "etc/hosts").read_text(), "10.0.0.1 new\n" + HOSTS + "10.0.0.2 later\n")

    def test_a_second_run_waits_for_the_first(self):
        before = self.furnish()
        first = self.begin_and_wait()
        second = self.mac.begin("true")
        self.assertIn("waiting for its end", second.stdout.readline())
        first.terminate()
        first.wait(timeout=30)
        second.communicate(timeout=30)
        self.assertEqual(second.returncode, 0)
        self.assert_restored(before)

    def test_what_the_system_started_for_the_tests_is_ended(self):
        agent = self.mac.home / "Library/Application Support/OvraVarloNative/Ovra.app/Contents/MacOS/Ovra"
        started = f"import pathlib; pathlib.Path('{self.mac.root}/processes').write_text('  4711 {agent}\\n  1 /sbin/launchd\\n')"
        self.mac.add_tool("kill", "true")
        self.mac.enter(*self.python(started))
        self.assertEqual(self.mac.calls("kill"), [["-9", "4711"]])


class Refusals(MacWorld):
    def assert_refused(self, *words, **environment):
        before = self.furnish()
        status, errors = self.mac.enter("true", **environment)
        self.assertEqual(status, 77)
        self.assertEqual(len(errors), 1, errors)
        for word in ("world: ", *words):
            self.assertIn(word, errors[0])
        self.assertEqual(self.mac.picture(), before)
        self.assertEqual([words for words in self.mac.calls("sudo") if words[1:] != ["true"]], [])

    def test_without_consent(self):
        self.assert_refused("LUMORA_E2E_IN_PLACE=1", LUMORA_E2E_IN_PLACE="")

    def test_without_a_window_server(self):
        (self.mac.root / "manager").write_text("Background\n")
        self.assert_refused("no window server")

    def test_where_sudo_asks_for_a_password(self):
        (self.mac.root / "asks-for-a-password").touch()
        self.assert_refused("sudo asks for a password")

    def test_without_sudo(self):
        (self.mac.bin / "sudo").unlink()
        self.assert_refused("sudo")

    def test_on_a_managed_mac(self):
        self.mac.put_preferences(f"Library/Managed Preferences/{DOMAIN}.plist", {"DC": "com"})
        self.assert_refused("is managed")

    def test_behind_a_proxy(self):
        (self.mac.root / "proxy").write_text("1")
        self.assert_refused("by a proxy")

    def test_for_a_managed_user(self):
        self.mac.put_preferences(f"Library/Managed Preferences/home/{DOMAIN}.plist", {"DC": "com"})
        self.assert_refused("is managed")

    def test_while_the_application_runs(self):
        program = self.mac.root / BUNDLE / "Contents/MacOS/Ovra Tessel Lumora"
        (self.mac.root / "processes").write_text(f"  311 {program}\n")
        self.assert_refused(f"{program} is running here")


if __name__ == "__main__":
    unittest.main()
