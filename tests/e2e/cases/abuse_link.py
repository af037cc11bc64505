"""The report-abuse link, opened by the desktop's default handler."""

from harness import link_handlers, waiting
from harness.case import (EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401
from harness.system import linux_only


class AbuseLink(EndToEndCase):
    @linux_only("only the user can choose another default browser")
    def test_opens_in_the_default_handler(self):
        handler = link_handlers.Handler(self.home, "https")
        self.addCleanup(handler.remove)
        self.start()

        self.page.post("sendJoinReportAbuseLinkToNative", "https://abuse.example/report?session=1&x=%20y")

        waiting.until(handler.opened, "the handler's start")
        self.assertEqual(handler.opened(), ["https://abuse.example/report?session=1&x=%20y"])
        self.log.wait_for("handleMessageFromWebView(message:) Opened Report Abuse Page in the Default browser")
