"""The bundle's Info.plist, its entitlements and the example of a management profile say what the system asks for."""
import plistlib
import re
import unittest
import uuid

from places import DOMAIN, PACKAGING, RESOURCES, ROOT


def parsed(path):
    with path.open("rb") as file:
        return plistlib.load(file)


def read_by_core():
    """The configuration keys that the core copies to every level."""
    source = (ROOT / "src" / "config" / "preferences.cpp").read_text()
    return set(re.findall(r'"(LumoraToken|DC|pathForLumora|WebServer)"', source))


class InfoPropertyList(unittest.TestCase):
    def setUp(self):
        self.info = parsed(RESOURCES / "Info.plist.in")

    def test_names_the_application(self):
        self.assertEqual(DOMAIN, self.info["CFBundleIdentifier"])
        self.assertEqual("Ovra Tessel Lumora", self.info["CFBundleName"])
        self.assertEqual("Ovra Tessel Lumora", self.info["CFBundleExecutable"])
        self.assertEqual("APPL", self.info["CFBundlePackageType"])

    def test_takes_both_versions_from_the_project(self):
        self.assertEqual("@PROJECT_VERSION@", self.info["CFBundleShortVersionString"])
        self.assertEqual("@PROJECT_VERSION@", self.info["CFBundleVersion"])

    def test_names_a_principal_class_that_exists(self):
        name = self.info["NSPrincipalClass"]
        sources = [path.read_text() for path in (ROOT / "src" / "platform" / "macos").rglob("*.mm")]
        self.assertTrue([text for text in sources if f"@implementation {name} " in text], name)

    def test_says_where_it_runs_and_how(self):
        self.assertEqual("10.15", self.info["LSMinimumSystemVersion"])
        self.assertIs(True, self.info["NSHighResolutionCapable"])
        self.assertTrue(self.info["LSApplicationCategoryType"].startswith("public.app-category."))
        self.assertEqual("OvraTesselLumora", self.info["CFBundleIconFile"])

    def test_explains_why_it_sends_apple_events(self):
        self.assertGreater(len(self.info["NSAppleEventsUsageDescription"]), 20)

    def test_explains_why_it_reads_a_mounted_image(self):
        self.assertIn("disk image", self.info["NSRemovableVolumesUsageDescription"])

    def test_loosens_transport_security_for_links_of_the_page_only(self):
        """A link may lead to any site; the application's own requests stay as protected as the system has them."""
        self.assertEqual({"NSAllowsArbitraryLoadsInWebContent": True}, self.info["NSAppTransportSecurity"])


class Entitlements(unittest.TestCase):
    def test_ask_for_apple_events_and_nothing_else(self):
        self.assertEqual({"com.apple.security.automation.apple-events": True},
                         parsed(PACKAGING / "OvraTesselLumora.entitlements"))


class ManagementProfile(unittest.TestCase):
    def setUp(self):
        self.profile = parsed(PACKAGING / "OvraTesselLumora.mobileconfig")
        (self.payload,) = self.profile["PayloadContent"]

    def test_is_a_profile_of_managed_preferences(self):
        self.assertEqual("Configuration", self.profile["PayloadType"])
        self.assertEqual("com.apple.ManagedClient.preferences", self.payload["PayloadType"])

    def test_forces_keys_that_the_application_reads(self):
        (forced,) = self.payload["PayloadContent"][DOMAIN]["Forced"]
        settings = forced["mcx_preference_settings"]
        self.assertEqual({"DC", "LumoraToken", "pathForLumora"}, set(settings))
        self.assertLessEqual(set(settings), read_by_core())
        self.assertTrue(all(isinstance(value, str) and value for value in settings.values()))

    def test_identifies_itself_and_its_payload(self):
        both = (self.profile, self.payload)
        self.assertEqual(2, len({uuid.UUID(part["PayloadUUID"]) for part in both}))
        self.assertEqual(2, len({part["PayloadIdentifier"] for part in both}))
        self.assertEqual([1, 1], [part["PayloadVersion"] for part in both])


if __name__ == "__main__":
    unittest.main()
