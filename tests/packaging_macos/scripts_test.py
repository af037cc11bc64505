"""The packaging scripts refuse with one clear line when something is missing, and give the tools the right words."""
import shutil
import subprocess
import unittest

from places import PACKAGING, ROOT
from tools import Tools

IDENTITY = "Developer ID Application: Ovra (TEAM)"
SCRIPTS = ["build-bundle", "dependencies", "make-icon", "make-image", "notarise", "release", "sign"]
BUNDLE = "Ovra Tessel Lumora.app"


class PackagingScript(unittest.TestCase):
    def setUp(self):
        self.tools = Tools()
        self.addCleanup(self.tools.close)

    def assertRefuses(self, outcome, *words):
        self.assertNotEqual(0, outcome.returncode)
        self.assertEqual(1, len(outcome.stderr.splitlines()), outcome.stderr)
        for word in words:
            self.assertIn(word, outcome.stderr)


class Refusals(PackagingScript):
    def test_know_every_script(self):
        scripts = [path.name for path in PACKAGING.iterdir() if path.suffix == ""]
        self.assertEqual(SCRIPTS, sorted(scripts))

    def test_without_a_tool_name_it_and_its_origin(self):
        missing = {"build-bundle": (["cmake"], "xcrun"), "dependencies": (["git", "cmake"], "xcrun"),
                   "make-icon": ([], "rsvg-convert"), "make-image": ([], "hdiutil"), "notarise": ([], "xcrun"),
                   "release": ([], "codesign"), "sign": ([], "codesign")}
        self.assertEqual(SCRIPTS, sorted(missing))
        arguments = {"make-icon": ["a.svg", "a.icns"], "make-image": [BUNDLE, "a.dmg"], "notarise": [BUNDLE],
                     "release": ["a.dmg"], "sign": [BUNDLE]}
        for script, (present, absent) in missing.items():
            with self.subTest(script=script):
                for name in present:
                    self.tools.add_tool(name)
                outcome = self.tools.run(script, *arguments.get(script, []))
                self.assertRefuses(outcome, f"{script}: {absent} is missing: ")
        self.assertEqual([], self.tools.calls("cmake") + self.tools.calls("git"), "must refuse before it begins")

    def test_without_arguments_say_how_they_are_used(self):
        for script in ("make-icon", "make-image", "notarise", "release", "sign"):
            with self.subTest(script=script):
                self.assertRefuses(self.tools.run(script), f"usage: {script}")

    def test_without_an_identity(self):
        for name in ("codesign", "security"):
            self.tools.add_tool(name)
        self.assertRefuses(self.tools.run("sign", self.tools.folder(BUNDLE)), "LUMORA_SIGNING_IDENTITY is not set")
        self.assertRefuses(self.tools.run("release", "a.dmg"), "LUMORA_SIGNING_IDENTITY is not set")
        self.assertEqual([], self.tools.calls("codesign"))

    def test_with_an_identity_that_the_keychain_lacks(self):
        self.tools.add_tool("codesign")
        self.tools.add_tool("security", 'echo "0 valid identities found"')
        outcome = self.tools.run("sign", self.tools.folder(BUNDLE), LUMORA_SIGNING_IDENTITY=IDENTITY)
        self.assertRefuses(outcome, "no valid identity", IDENTITY)
        self.assertEqual([], self.tools.calls("codesign"))

    def test_without_a_notary_profile(self):
        for name in ("codesign", "ditto", "xcrun"):
            self.tools.add_tool(name)
        self.assertRefuses(self.tools.run("notarise", self.tools.folder(BUNDLE)), "LUMORA_NOTARY_PROFILE is not set")
        outcome = self.tools.run("release", "a.dmg", LUMORA_SIGNING_IDENTITY=IDENTITY)
        self.assertRefuses(outcome, "LUMORA_NOTARY_PROFILE is not set")
        self.assertEqual([], self.tools.calls("xcrun"))

    def test_without_what_they_work_on(self):
        for name in ("codesign", "ditto", "hdiutil", "rsvg-convert", "iconutil", "security", "xcrun"):
            self.tools.add_tool(name)
        settings = {"LUMORA_SIGNING_IDENTITY": IDENTITY, "LUMORA_NOTARY_PROFILE": "profile"}
        for script, arguments in {"sign": ["gone.app"], "notarise": ["gone.app"], "make-image": ["gone.app", "a.dmg"],
                                  "make-icon": ["gone.svg", "a.icns"]}.items():
            with self.subTest(script=script):
                self.assertRefuses(self.tools.run(script, *arguments, **settings), f"{arguments[0]} does not exist")


class Work(PackagingScript):
    def sign(self, what):
        self.tools.add_tool("codesign")
        self.tools.add_tool("security", f'echo "  1) ABC \\"{IDENTITY}\\""')
        outcome = self.tools.run("sign", what, LUMORA_SIGNING_IDENTITY=IDENTITY)
        self.assertEqual(0, outcome.returncode, outcome.stderr)
        return self.tools.calls("codesign")

    def test_a_bundle_is_signed_with_the_hardened_runtime_and_its_entitlements(self):
        bundle = self.tools.folder(BUNDLE)
        signing, verifying = self.sign(bundle)
        self.assertEqual("runtime", signing[signing.index("--options") + 1])
        entitlements = signing[signing.index("--entitlements") + 1]
        self.assertEqual(str(PACKAGING / "OvraTesselLumora.entitlements"), entitlements)
        self.assertEqual(IDENTITY, signing[signing.index("--sign") + 1])
        self.assertIn("--timestamp", signing)
        self.assertIn("--verify", verifying)

    def test_an_image_is_signed_without_them(self):
        signing, _ = self.sign(self.tools.file("a.dmg"))
        self.assertNotIn("--options", signing)
        self.assertNotIn("--entitlements", signing)

    def test_the_libraries_are_built_for_both_processors_and_the_oldest_system(self):
        self.tools.add_tool("git", 'mkdir -p "${@: -1}"')
        for name in ("cmake", "xcrun"):
            self.tools.add_tool(name)
        for _ in range(2):
            outcome = self.tools.run("dependencies", self.tools.root / "libraries")
            self.assertEqual(0, outcome.returncode, outcome.stderr)
        self.assertEqual(f"{self.tools.root}/libraries", outcome.stdout.splitlines()[-1])
        configured = [call for call in self.tools.calls("cmake") if call[0] == "-S"]
        self.assertEqual(4 * 2, len(configured))
        for call in configured:
            self.assertIn("-DCMAKE_OSX_ARCHITECTURES=arm64;x86_64", call)
            self.assertIn("-DCMAKE_OSX_DEPLOYMENT_TARGET=10.15", call)
            self.assertIn("-DBUILD_SHARED_LIBS=OFF", call)
        self.assertEqual(4, len(self.tools.calls("git")), "a second run clones nothing")

    def build_bundle(self, build, oldest_system):
        """How the script ends when the program's first system is this one."""
        resources = build / BUNDLE / "Contents" / "Resources"
        self.tools.add_tool("git", 'mkdir -p "${@: -1}"')
        self.tools.add_tool("cmake", f'[[ $1 != --build || $2 != "{build}" ]] || mkdir -p "{resources}"')
        self.tools.add_tool("iconutil", 'echo icon > "$4"')
        for name in ("lipo", "rsvg-convert"):
            self.tools.add_tool(name)
        self.tools.add_tool("xcrun", f'echo "    minos {oldest_system}"')
        return self.tools.run("build-bundle", build, self.tools.root / "libraries")

    def test_the_bundle_is_built_with_those_libraries_and_checked_for_both_processors(self):
        build = self.tools.root / "build"
        resources = build / BUNDLE / "Contents" / "Resources"
        outcome = self.build_bundle(build, "10.15")
        self.assertEqual(0, outcome.returncode, outcome.stderr)
        self.assertEqual(str(build / BUNDLE), outcome.stdout.splitlines()[-1])
        (configured,) = [call for call in self.tools.calls("cmake") if "--preset" in call]
        self.assertIn("macos-release", configured)
        self.assertIn(f"-DCMAKE_PREFIX_PATH={self.tools.root / 'libraries'}", configured)
        self.assertTrue((resources / "OvraTesselLumora.icns").is_file())
        self.assertEqual(["arm64", "x86_64"], [call[-1] for call in self.tools.calls("lipo")])
        (looked,) = self.tools.calls("xcrun")
        self.assertEqual(["vtool", "-arch", "x86_64", "-show-build"], looked[:-1])

    def test_a_bundle_that_the_oldest_system_would_not_start_is_refused(self):
        outcome = self.build_bundle(self.tools.root / "build", "11.0")
        self.assertNotEqual(0, outcome.returncode)
        self.assertIn("does not start on macOS 10.15", outcome.stderr.splitlines()[-1])

    def test_the_image_holds_the_bundle_alone_under_the_name_that_self_update_mounts(self):
        bundle = self.tools.folder(BUNDLE)
        self.tools.add_tool("ditto", 'cp -R "$1" "$2"')
        self.tools.add_tool("hdiutil", 'while [[ $1 != -srcfolder ]]; do shift; done; ls -A "$2" > "$HOME/contents"')
        outcome = self.tools.run("make-image", bundle, "a.dmg")
        self.assertEqual(0, outcome.returncode, outcome.stderr)
        (creation,) = self.tools.calls("hdiutil")
        self.assertEqual("Lumora Plugin", creation[creation.index("-volname") + 1])
        self.assertEqual([BUNDLE], (self.tools.root / "contents").read_text().splitlines())
        mounted = f'"/Volumes/Lumora Plugin/{BUNDLE}"'
        self.assertIn(mounted, (ROOT / "src" / "selfupdate" / "staging.cpp").read_text())

    def test_an_image_is_tried_again_while_its_volume_is_busy_and_given_up_in_the_end(self):
        bundle = self.tools.folder(BUNDLE)
        for name in ("ditto", "sleep"):
            self.tools.add_tool(name)
        self.tools.add_tool("hdiutil", '[ "$(grep -c hdiutil "$HOME/calls")" = 3 ]')
        self.assertEqual(0, self.tools.run("make-image", bundle, "a.dmg").returncode)
        self.assertEqual(3, len(self.tools.calls("hdiutil")))
        self.tools.add_tool("hdiutil", "false")
        self.assertRefuses(self.tools.run("make-image", bundle, "a.dmg"), "make-image: hdiutil makes no image")
        self.assertEqual(3 + 5, len(self.tools.calls("hdiutil")))

    def test_a_bundle_is_notarised_as_an_archive_and_stapled_itself(self):
        bundle = self.tools.folder(BUNDLE)
        for name in ("ditto", "xcrun"):
            self.tools.add_tool(name)
        outcome = self.tools.run("notarise", bundle, LUMORA_NOTARY_PROFILE="profile")
        self.assertEqual(0, outcome.returncode, outcome.stderr)
        _, submission, stapling, validation = self.tools.calls("xcrun")
        self.assertEqual(["notarytool", "submit"], submission[:2])
        self.assertTrue(submission[2].endswith(".zip"), submission)
        self.assertEqual("profile", submission[submission.index("--keychain-profile") + 1])
        self.assertIn("--wait", submission)
        self.assertEqual(["stapler", "staple", str(bundle)], stapling)
        self.assertEqual(["stapler", "validate", str(bundle)], validation)

    def test_nothing_is_stapled_when_the_notary_refuses(self):
        self.tools.add_tool("ditto")
        self.tools.add_tool("xcrun", '[[ $1 != notarytool ]]')
        outcome = self.tools.run("notarise", self.tools.file("a.dmg"), LUMORA_NOTARY_PROFILE="profile")
        self.assertNotEqual(0, outcome.returncode)
        self.assertEqual([], [call for call in self.tools.calls("xcrun") if call[0] == "stapler"])


@unittest.skipUnless(shutil.which("shellcheck"), "needs shellcheck")
class Style(unittest.TestCase):
    def test_the_linter_has_nothing_to_say(self):
        paths = [PACKAGING / name for name in SCRIPTS + ["common.sh"]]
        outcome = subprocess.run(["shellcheck", "-x", *paths], cwd=ROOT, capture_output=True, text=True)
        self.assertEqual("", outcome.stdout)
        self.assertEqual(0, outcome.returncode)


if __name__ == "__main__":
    unittest.main()
