#include "bridge/bridge_test.h"

namespace lumora {
namespace {

class CustomerDetails : public BridgeTest {
  protected:
    static constexpr const char* kNotInitialized =
        "handleMessageFromWebView(message:) : Customer Details Not Initialized.";
};

TEST_F(CustomerDetails, onAFreshInstallationAreNullAndEnglish) {
    post("getCustomerDetails");

    EXPECT_EQ(
        page.journal,
        Lines{
            R"(script window.receiveCustomerDetails({"name":null,"company":null,"email":null,"language":"en"});)"});
    EXPECT_TRUE(preferences.journal.empty());
}

TEST_F(CustomerDetails, areStoredInTheirOrder) {
    post("sendCustomerDetailsToNative",
         R"({"language":"de","name":"Casey","company":"Acme","email":"c@x","more":1})");

    EXPECT_EQ(preferences.journal,
              (Lines{"set name", "set email", "set company", "set language", "synchronize"}));
    EXPECT_EQ(preferences.user.at("name"), platform::PropertyListValue("Casey"));
    EXPECT_EQ(preferences.user.at("email"), platform::PropertyListValue("c@x"));
    EXPECT_EQ(preferences.user.at("company"), platform::PropertyListValue("Acme"));
    EXPECT_EQ(preferences.user.at("language"), platform::PropertyListValue("de"));
    EXPECT_TRUE(page.journal.empty());
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(CustomerDetails, comeBackAsTheyWereSent) {
    post("sendCustomerDetailsToNative",
         R"({"name":"Ca\"sey\n\u0000é","company":"A</script>","email":"","language":"de"})");
    post("getCustomerDetails");

    EXPECT_EQ(
        page.journal,
        Lines{
            R"(script window.receiveCustomerDetails({"name":"Ca\"sey\n\u0000é","company":"A</script>","email":"","language":"de"});)"});
}

TEST_F(CustomerDetails, emptyLanguageBecomesEnglish) {
    preferences.user.emplace("language", "");

    post("getCustomerDetails");

    EXPECT_TRUE(page.journal.at(0).ends_with(R"("language":"en"});)"));
}

TEST_F(CustomerDetails, languageThatIsNoStringIsLeftAsItIs) {
    preferences.user.emplace("language", std::int64_t{0});
    post("getCustomerDetails");
    preferences.user.insert_or_assign("language", false);
    post("getCustomerDetails");
    preferences.user.insert_or_assign("language", platform::PropertyListArray{});
    post("getCustomerDetails");

    EXPECT_TRUE(page.journal.at(0).ends_with(R"("language":0});)"));
    EXPECT_TRUE(page.journal.at(1).ends_with(R"("language":false});)"));
    EXPECT_TRUE(page.journal.at(2).ends_with(R"("language":[]});)"));
}

TEST_F(CustomerDetails, keepTheTypesTheyWereStoredWith) {
    preferences.user.emplace("name", std::int64_t{7});
    preferences.user.emplace("company", true);
    preferences.arguments.emplace("email", "from@arguments");

    post("getCustomerDetails");

    EXPECT_EQ(
        page.journal,
        Lines{
            R"(script window.receiveCustomerDetails({"name":7,"company":true,"email":"from@arguments","language":"en"});)"});
}

TEST_F(CustomerDetails, thatHaveNoJsonFormAreAnsweredWithoutAnArgument) {
    preferences.user.emplace("company", data());

    post("getCustomerDetails");

    EXPECT_EQ(page.journal, Lines{"script window.receiveCustomerDetails();"});
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(CustomerDetails, inALanguageThatHasNoJsonFormAreAnsweredWithoutAnArgument) {
    preferences.user.emplace("language", data());

    post("getCustomerDetails");

    EXPECT_EQ(page.journal, Lines{"script window.receiveCustomerDetails();"});
}

TEST_F(CustomerDetails, thatDoNotDecodeStoreNothing) {
    const Lines bodies{"",
                       "text",
                       "[]",
                       R"({"name":"n","company":"c","email":"e"})",
                       R"({"name":"n","company":"c","email":"e","language":null})",
                       R"({"name":1,"company":"c","email":"e","language":"l"})"};
    for (const auto& body : bodies)
        post("sendCustomerDetailsToNative", body);

    EXPECT_EQ(streams.printed(), Lines(bodies.size(), kNotInitialized));
    EXPECT_TRUE(preferences.journal.empty());
    EXPECT_TRUE(page.journal.empty());
}

} // namespace
} // namespace lumora
