"""The report-abuse link, opened by the desktop's default handler."""

from harness import waiting
from harness.case import (EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401


class AbuseLink(EndToEndCase):
    def test_opens_in_the_default_handler(self):
        opened = self.home.path / "opened"
        script = self.home.path / "handler"
        script.write_text(f"#!/bin/sh\nprintf '%s' \"$1\" > '{opened}.new' && mv '{opened}.new' '{opened}'\n")
        script.chmod(0o755)
        folder = self.home.path / ".local/share/applications"
        folder.mkdir(parents=True)
        (folder / "handler.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=Handler\nExec={script} %u\n"
            "MimeType=x-scheme-handler/https;\n")
        (folder / "mimeapps.list").write_text("[Default Applications]\nx-scheme-handler/https=handler.desktop\n")
        self.start()

        self.page.post("sendJoinReportAbuseLinkToNative", "https://abuse.example/report?session=1&x=%20y")

        waiting.until(opened.exists, "the handler's start")
        self.assertEqual(opened.read_text(), "https://abuse.example/report?session=1&x=%20y")
        self.log.wait_for("handleMessageFromWebView(message:) Opened Report Abuse Page in the Default browser")
