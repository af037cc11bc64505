#include "bridge/bridge_test.h"
#include "config/session_details.h"

#include <algorithm>

namespace lumora {
namespace {

class MessageCatalogue : public BridgeTest {
  protected:
    /// Nothing was stored, answered, printed, opened, asked for or written.
    void expectNoTrace(const std::string& message) {
        EXPECT_TRUE(preferences.journal.empty()) << message;
        EXPECT_TRUE(page.journal.empty()) << message;
        EXPECT_TRUE(streams.printed().empty()) << message;
        EXPECT_TRUE(streams.logged().empty()) << message;
        EXPECT_TRUE(workspace.opened.empty()) << message;
        EXPECT_TRUE(http.tasks.empty()) << message;
        EXPECT_TRUE(files.journal.empty()) << message;
        EXPECT_TRUE(appleScripts.sources.empty()) << message;
    }
};

TEST_F(MessageCatalogue, registersItsNamesInTheirOrder) {
    EXPECT_EQ(
        NativeMessageHandler::messageNames(),
        (Lines{"getRRSessionDigest", "sendRRSessionDigestToNative", "getCustomerDetails",
               "sendCustomerDetailsToNative", "getProxyDetails", "sendProxyDetailsToNative",
               "getActiveSessionKey", "lumoraLoaded", "sendRRSessionKeyToNative", "sendJoinDetailsToNative",
               "clearRRSessionDigest", "sendJoinReportAbuseLinkToNative", "sendLumoraTitleToNative",
               "clearLumoraDigest", "clearActiveSessionKey", "openProxy", "consoleHandler", "getSystemOs"}));
}

TEST_F(MessageCatalogue, ignoresNamesThatItDoesNotKnow) {
    for (const char* name : {"", "jsToNative", "getsystemos", "GetSystemOs", "getSystemOs ", " getSystemOs",
                             "getSystem", "getSystemOsX"}) {
        post(name, "body");
        expectNoTrace(name);
    }
    post(std::string("getSystemOs\0", 12), "body");
    expectNoTrace("a name with a NUL behind it");
}

TEST_F(MessageCatalogue, ignoresABodyThatIsNoStringWhereItNeedsOne) {
    for (const char* name :
         {"sendRRSessionDigestToNative", "sendCustomerDetailsToNative", "sendProxyDetailsToNative",
          "sendRRSessionKeyToNative", "sendJoinDetailsToNative", "sendJoinReportAbuseLinkToNative",
          "consoleHandler"}) {
        post(name);
        expectNoTrace(name);
    }
}

TEST_F(MessageCatalogue, ignoresABodyToDecodeThatHasNoBytes) {
    for (const char* name :
         {"sendCustomerDetailsToNative", "sendProxyDetailsToNative", "sendJoinDetailsToNative"}) {
        post(name, "{\"email\":\"\xED\xA0\x80\"}");
        expectNoTrace(name);
    }
}

TEST_F(MessageCatalogue, takesATextThatHasNoBytesWithReplacements) {
    post("sendRRSessionDigestToNative", "a\xED\xA0\xBD");
    post("sendLumoraTitleToNative", "b\xED\xA0\xBD");
    post("consoleHandler", "c\xED\xA0\xBD");
    post("sendRRSessionKeyToNative", "12345678\xED\xA0\xBD");

    EXPECT_EQ(preferences.user.at("RRSessionDigest"), platform::PropertyListValue("a\uFFFD"));
    EXPECT_EQ(preferences.user.at("WindowTitle"), platform::PropertyListValue("b\uFFFD"));
    EXPECT_EQ(page.journal, Lines{"title b\uFFFD"});
    EXPECT_EQ(streams.printed(),
              Lines{"handleMessageFromWebView(message:) : Console Message from WebView: c\uFFFD"});
    EXPECT_EQ(SessionDetails::getInstance().sessionKey(), "12345678\uFFFD");
}

TEST_F(MessageCatalogue, doesNotLookAtTheBodyOfAQuestion) {
    for (const char* name : {"getRRSessionDigest", "getCustomerDetails", "getProxyDetails", "getSystemOs"}) {
        post(name);
        post(name, "\xff");
        ASSERT_EQ(page.journal.size(), 2U) << name;
        EXPECT_EQ(page.journal[0], page.journal[1]);
        page.journal.clear();
    }
}

TEST_F(MessageCatalogue, worksWithoutADelegateButForTheReplies) {
    handler.setNativeMessageHandlerDelegate(nullptr);

    for (const auto& name : NativeMessageHandler::messageNames())
        post(name, "text");

    EXPECT_TRUE(page.journal.empty());
    EXPECT_EQ(preferences.user.at("RRSessionDigest"), platform::PropertyListValue(""));
    EXPECT_EQ(preferences.user.at("WindowTitle"), platform::PropertyListValue("text"));
    EXPECT_EQ(std::ranges::count(preferences.journal, "synchronize"), 5);
}

} // namespace
} // namespace lumora
