"""What is in the packages, and that the same sources give the same packages."""

import pathlib
import plistlib
import struct
import subprocess
import tarfile
import tempfile
import unittest
import xml.etree.ElementTree

import release

BUNDLE = f"./Applications/{release.NAME}.app"


def field(name):
    return release.output("dpkg-deb", "--field", release.debian_package(), name).strip()


class DebianPackage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.root = pathlib.Path(folder.name)
        archive = cls.root / "data.tar"
        with open(archive, "wb") as file:
            subprocess.run(["dpkg-deb", "--fsys-tarfile", release.debian_package()], stdout=file, check=True)
        with tarfile.open(archive) as tar:
            cls.entries = {entry.name: entry for entry in tar.getmembers()}
            tar.extractall(cls.root)

    def test_everything_is_roots_readable_by_all_and_writable_by_nobody_else(self):
        for name, entry in self.entries.items():
            self.assertEqual((entry.uid, entry.gid), (0, 0), name)
            if not entry.issym():
                self.assertIn(oct(entry.mode), (oct(0o755),) if entry.isdir() else (oct(0o755), oct(0o644)), name)

    def test_nothing_lies_anywhere_unexpected(self):
        folders = {name.split("/", 2)[1] for name in self.entries if "/" in name[2:]}
        self.assertEqual(folders, {"Applications", "usr"})

    def test_bundle_is_the_built_one(self):
        built = {path.relative_to(release.BUILT_BUNDLE) for path in release.BUILT_BUNDLE.rglob("*")}
        shipped = {path.relative_to(self.root / BUNDLE) for path in (self.root / BUNDLE).rglob("*")}
        self.assertEqual(shipped, built)
        for path in built:
            if (release.BUILT_BUNDLE / path).is_file() and path.parts[1] != "MacOS":
                self.assertEqual((self.root / BUNDLE / path).read_bytes(), (release.BUILT_BUNDLE / path).read_bytes())

    def test_programs_are_stripped_but_call_stacks_have_names(self):
        program = self.root / BUNDLE / f"Contents/MacOS/{release.NAME}"
        sections = release.output("readelf", "--section-headers", "--wide", program)
        self.assertNotIn(".debug_info", sections)
        self.assertNotIn(".symtab", sections)
        self.assertIn("AppDelegate", release.output("nm", "--dynamic", "--demangle", "--defined-only", program))

    def test_programs_are_hardened(self):
        for program in sorted((self.root / BUNDLE / "Contents/MacOS").iterdir()):
            flags = release.output("readelf", "--dynamic", "--wide", program)
            self.assertRegex(flags, r"FLAGS_1\).*NOW.*PIE", program.name)
            self.assertIn("GNU_RELRO", release.output("readelf", "--program-headers", "--wide", program), program.name)
            self.assertIn("__stack_chk_fail", release.output("nm", "--dynamic", "--undefined-only", program), program.name)

    def test_command_is_the_bundles_program(self):
        text = (self.root / "usr/bin/ovra-tessel-lumora").read_text(encoding="ascii")
        program = f"/Applications/{release.NAME}.app/Contents/MacOS/{release.NAME}"
        self.assertEqual(text, f'#!/bin/sh\nexec "{program}" "$@"\n')

    def test_icons_have_the_sizes_of_their_folders(self):
        icons = self.root / "usr/share/icons/hicolor"
        sizes = set()
        for path in icons.rglob("*.png"):
            width, height = struct.unpack(">II", path.read_bytes()[16:24])
            self.assertEqual(path.relative_to(icons).parts, (f"{width}x{height}", "apps", f"{release.DOMAIN}.png"))
            sizes.add(width)
        self.assertEqual(sizes, {16, 22, 24, 32, 48, 64, 128, 256, 512})
        self.assertTrue((icons / f"scalable/apps/{release.DOMAIN}.svg").is_file())

    def test_menu_entry_claims_no_links(self):
        # Deep links belong to another program, which the application hands them to.
        text = (self.root / f"usr/share/applications/{release.DOMAIN}.desktop").read_text(encoding="utf-8")
        self.assertNotIn("MimeType", text)
        self.assertNotIn("ovrajoin", text)
        self.assertIn("\nExec=ovra-tessel-lumora\n", text)

    def test_prompts_program_is_the_packages_own(self):
        policy = xml.etree.ElementTree.parse(self.root / "usr/share/polkit-1/actions/com.ovra.tessel.lumora.policy")
        program = policy.find(".//annotate[@key='org.freedesktop.policykit.exec.path']").text
        self.assertEqual(oct(self.entries["." + program].mode), oct(0o755))
        self.assertEqual({default.text for default in policy.find(".//defaults")}, {"auth_admin"})

    def test_every_library_has_its_package_among_the_dependencies(self):
        packages = {one.split(" ")[0] for one in field("Depends").split(", ")}
        for name in (release.NAME, "hdiutil"):
            program = self.root / BUNDLE / "Contents/MacOS" / name
            for line in release.output("readelf", "--dynamic", "--wide", program).split("\n"):
                if "(NEEDED)" in line:
                    library = line.split("[")[1].rstrip("]")
                    owners = release.output("dpkg-query", "--search", f"*/{library}").split("\n")[:-1]
                    self.assertTrue(packages & {owner.split(":")[0] for owner in owners}, library)

    def test_versions_agree(self):
        information = plistlib.loads((self.root / BUNDLE / "Contents/Info.plist").read_bytes())
        version = information["CFBundleShortVersionString"]
        self.assertEqual(field("Version"), version)
        metainfo = xml.etree.ElementTree.parse(self.root / f"usr/share/metainfo/{release.DOMAIN}.metainfo.xml")
        self.assertEqual(metainfo.find("releases/release").get("version"), version)
        self.assertIn(f"-{version}-", release.installer().name)


class Reproducible(unittest.TestCase):
    def test_same_sources_give_the_same_packages(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([release.LINUX / "make-packages", release.BUILD, folder], check=True, umask=0o077)
            again = {path.name: path.read_bytes() for path in pathlib.Path(folder).iterdir()}
        first = {path.name: path.read_bytes() for path in release.PACKAGES.iterdir()}
        self.assertEqual(again.keys(), first.keys())
        for name in first:
            self.assertTrue(again[name] == first[name], f"{name} differs")
