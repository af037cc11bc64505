import json
import os
import unittest

from datacentre_world import World, skip_without

AGENT_CHECK = "/api/v2/agent/check_update"
SELF_CHECK = "/api/v1/customer_plugin/check_update"
PLIST = b"<key>CFBundleShortVersionString</key>\n<string>12.4.0</string>"


class Serving(World):
    images = {"OvraMac.dmg": b"x" * 5000 + PLIST + b"y" * 5000}

    def agent_answer(self, version):
        return json.loads(self.fetch(f"{AGENT_CHECK}?agent_version={version}&agent=mac%2064"))["representation"]["AGENT"]

    def test_the_page_carries_everything_it_needs(self):
        page = self.fetch("/join?lumora_token=a%20b").decode()
        self.assertIn("/assets/join.js", page)
        self.assertNotIn("drive.js", page)
        for asset in ("/assets/join.css", "/assets/join.js", "/assets/icon.svg", "/favicon.ico"):
            self.assertEqual(self.status_of(asset), 200, asset)
        self.assertEqual(self.status_of("/assets/drive.js"), 404)
        self.assertEqual(self.control("GET", "/status")["last_lumora_token"], "a b")

    def test_an_older_agent_needs_an_update(self):
        older = self.agent_answer("0")
        self.assertIs(older["update_needed"], True)
        self.assertEqual(older["download_url"], "https://cdn.ovratessel.example/cdn/OvraMac.dmg")
        self.assertEqual(older["fallback_url"], f"https://localhost:{self.port}/agent/OvraMac.dmg")
        self.assertIs(self.agent_answer("12.4.0")["update_needed"], False)

    def test_an_exchanged_image_is_noticed(self):
        path = os.path.join(self.image_folder, "OvraMac.dmg")
        self.addCleanup(lambda: open(path, "wb").write(self.images["OvraMac.dmg"]) and None)
        with open(path, "wb") as file:
            file.write(PLIST.replace(b"12.4.0", b"12.5.0"))
        self.assertIs(self.agent_answer("12.4.0")["update_needed"], True)

    def test_the_other_questions_have_quiet_answers(self):
        self.assertEqual(json.loads(self.fetch(SELF_CHECK)), {"representation": {"update": False}})
        self.assertEqual(json.loads(self.fetch("/api/v2/service_domain?src=rs&lumora_token=")),
                         {"representation": {"service_domain": ""}})

    def test_images_are_served_under_both_addresses(self):
        for path in ("/agent/OvraMac.dmg", "/cdn/OvraMac.dmg"):
            self.assertEqual(self.fetch(path), self.images["OvraMac.dmg"])
        self.assertEqual(self.status_of("/agent/OvraTesselLumora.dmg"), 404)

    def test_answers_can_be_replaced_and_given_back(self):
        self.control("PUT", "/answers", {"agent": "[" * 100000, "application": {"representation": {"update": "Yes"}}})
        self.assertEqual(self.fetch(AGENT_CHECK), b"[" * 100000)
        self.assertEqual(json.loads(self.fetch(SELF_CHECK)), {"representation": {"update": "Yes"}})
        self.control("PUT", "/answers", {"application": None})
        self.assertEqual(json.loads(self.fetch(SELF_CHECK)), {"representation": {"update": False}})
        self.assertEqual(self.fetch(AGENT_CHECK), b"[" * 100000)
        self.control("PUT", "/answers", {"agnet": {}}, expect=400)

    def test_every_request_is_listed_as_it_was_sent(self):
        self.control("DELETE", "/requests")
        self.fetch("/a%2fb?x=%41&y", "-H", "Host: any.example", "-H", "X-Mine: 7", "-A", "Debian 12")
        self.fetch("/join", "-I")
        first, second = self.requests()
        self.assertEqual((first["path"], first["query"], first["target"]), ("/a%2fb", "x=%41&y", "/a%2fb?x=%41&y"))
        self.assertEqual((first["host"], first["method"], first["tls"]), ("any.example", "GET", "TLSv1.3"))
        self.assertEqual((first["headers"]["x-mine"], first["headers"]["user-agent"]), ("7", "Debian 12"))
        self.assertNotIn("remote_addr", first["headers"])
        self.assertEqual((first["local_port"], first["sni"]), (self.port, "localhost"))
        self.assertEqual((second["method"], second["sequence"]), ("HEAD", first["sequence"] + 1))

    def test_unknown_paths_and_methods(self):
        self.assertEqual(self.status_of("/nothing"), 404)
        self.assertEqual(self.status_of("/join", "-X", "POST", "-d", "x"), 405)

    def test_the_page_can_be_replaced(self):
        hostile = "<script>alert(1)</script>" + "é" * 20000
        self.control("PUT", "/page", {"html": hostile})
        self.assertEqual(self.fetch("/join").decode(), hostile)
        self.control("DELETE", "/page")
        self.assertNotEqual(self.fetch("/join").decode(), hostile)


class OtherPagePath(World):
    serve_arguments = ["--page", "remote/support"]

    def test_the_page_lies_where_it_was_put(self):
        self.assertEqual(self.status_of("/remote/support?lumora_token=t"), 200)
        self.assertEqual(self.status_of("/join"), 404)


if __name__ == "__main__":
    skip_without("curl")
    unittest.main()
