#include "bridge/bridge_test.h"

namespace lumora {
namespace {

class ProxyDetails : public BridgeTest {
  protected:
    /// The customer details' words, and no colon: the line that the proxy's failure is known by.
    static constexpr const char* kNotInitialized =
        "handleMessageFromWebView(message:)Customer Details Not Initialized.";
};

TEST_F(ProxyDetails, onAFreshInstallationAreAllNull) {
    post("getProxyDetails");

    EXPECT_EQ(
        page.journal,
        Lines{
            R"(script window.receiveProxyDetails({"host":null,"port":null,"authRequired":null,"userName":null,"password":null});)"});
}

TEST_F(ProxyDetails, areStoredWithTheirTypesInTheirOrder) {
    post("sendProxyDetailsToNative",
         R"({"password":"p","userName":"u","authRequired":true,"port":8080,"host":"proxy"})");

    EXPECT_EQ(preferences.journal, (Lines{"set host", "set port", "set authRequired", "set userName",
                                          "set password", "synchronize"}));
    EXPECT_EQ(preferences.user.at("host"), platform::PropertyListValue("proxy"));
    EXPECT_EQ(preferences.user.at("port"), platform::PropertyListValue(std::int64_t{8080}));
    EXPECT_EQ(preferences.user.at("authRequired"), platform::PropertyListValue(true));
    EXPECT_EQ(preferences.user.at("userName"), platform::PropertyListValue("u"));
    EXPECT_EQ(preferences.user.at("password"), platform::PropertyListValue("p"));
    EXPECT_TRUE(page.journal.empty());
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ProxyDetails, areNotWrittenToTheSettingsFileYet) {
    post("sendProxyDetailsToNative",
         R"({"host":"proxy","port":8080,"authRequired":true,"userName":"u","password":"p"})");

    EXPECT_TRUE(files.journal.empty());
}

TEST_F(ProxyDetails, comeBackWithThePasswordInClear) {
    post("sendProxyDetailsToNative",
         R"({"host":"proxy","port":8.08e3,"authRequired":false,"userName":"u","password":"s€\"cret"})");
    post("getProxyDetails");

    EXPECT_EQ(
        page.journal,
        Lines{
            R"(script window.receiveProxyDetails({"host":"proxy","port":8080,"authRequired":false,"userName":"u","password":"s€\"cret"});)"});
}

TEST_F(ProxyDetails, keepThePortUncheckedHere) {
    post("sendProxyDetailsToNative",
         R"({"host":"","port":70000,"authRequired":false,"userName":"","password":""})");

    EXPECT_EQ(preferences.user.at("port"), platform::PropertyListValue(std::int64_t{70000}));
}

TEST_F(ProxyDetails, thatHaveNoJsonFormAreLoggedAndAnsweredWithoutAnArgument) {
    preferences.user.emplace("host", "proxy");
    preferences.user.emplace("userName", data());

    post("getProxyDetails");

    EXPECT_EQ(page.journal, Lines{"script window.receiveProxyDetails();"});
    EXPECT_EQ(streams.printed(),
              Lines{"handleMessageFromWebView(message:) : Unable to convert dictionary to JSON: Error "
                    "Domain=NSCocoaErrorDomain Code=3852 \"The value of userName has no JSON form.\""});
}

TEST_F(ProxyDetails, thatDoNotDecodeStoreNothing) {
    const Lines bodies{"",
                       "text",
                       "null",
                       R"({"host":"h","port":"1","authRequired":true,"userName":"u","password":"p"})",
                       R"({"host":"h","port":1,"authRequired":"true","userName":"u","password":"p"})",
                       R"({"host":"h","port":true,"authRequired":true,"userName":"u","password":"p"})",
                       R"({"host":"h","port":1,"authRequired":true,"userName":"u"})"};
    for (const auto& body : bodies)
        post("sendProxyDetailsToNative", body);

    EXPECT_EQ(streams.printed(), Lines(bodies.size(), kNotInitialized));
    EXPECT_TRUE(preferences.journal.empty());
    EXPECT_TRUE(page.journal.empty());
}

} // namespace
} // namespace lumora
