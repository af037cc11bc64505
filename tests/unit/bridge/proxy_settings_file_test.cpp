#include "bridge/bridge_test.h"

namespace lumora {
namespace {

using platform::PropertyListDictionary;
using platform::PropertyListValue;

class ProxySettingsFile : public BridgeTest {
  protected:
    static constexpr const char* kFolder = "/Users/casey/Library/Logs/OvraTessel";
    static constexpr const char* kPath = "/Users/casey/Library/Logs/OvraTessel/ConnectionSettings.plist";
    static constexpr const char* kUnableToCreate =
        "setupProxyDetails() : Unable to create the connection plist file at the desired path.";
    static constexpr const char* kUnableToWrite =
        "setupProxyDetails() : Unable to write connection settings to ConnectionSettings.plist.";

    void storeSettings(bool authRequired, std::int64_t port = 8080, const std::string& host = "proxy") {
        preferences.user.insert_or_assign("host", host);
        preferences.user.insert_or_assign("port", port);
        preferences.user.insert_or_assign("authRequired", authRequired);
        preferences.user.insert_or_assign("userName", "u");
        preferences.user.insert_or_assign("password", "p");
    }

    void putSettingsFile(const PropertyListValue& content) {
        files.putFolder(kFolder);
        files.putFile(kPath, propertyLists.tokenFor(content));
    }

    /// What the file holds now; an empty dictionary when there is none.
    PropertyListDictionary content() {
        const auto* file = files.file(kPath);
        const auto root = file != nullptr ? propertyLists.parse(file->contents)
                                          : platform::Result<PropertyListValue>(PropertyListDictionary{});
        return *root.value().as<PropertyListDictionary>();
    }

    static PropertyListDictionary settings(const std::string& userName, const std::string& password,
                                           std::int64_t port = 8080, const std::string& host = "proxy") {
        return {{"ProxyIpAddress", host},
                {"ProxyServerPort", port},
                {"UserName", userName},
                {"Password", password}};
    }
};

TEST_F(ProxySettingsFile, withoutPreferencesNeitherFolderNorFileIsMade) {
    handler.setupProxyDetails();

    EXPECT_TRUE(files.journal.empty());
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ProxySettingsFile, needsEveryPreference) {
    for (const char* key : {"host", "port", "authRequired", "userName", "password"}) {
        storeSettings(true);
        preferences.user.erase(key);

        handler.setupProxyDetails();

        EXPECT_TRUE(files.journal.empty()) << key;
        EXPECT_TRUE(streams.printed().empty()) << key;
    }
}

TEST_F(ProxySettingsFile, needsEveryPreferenceInItsOwnType) {
    const std::pair<const char*, PropertyListValue> misfits[] = {
        {"host", std::int64_t{1}},
        {"host", true},
        {"host", data()},
        {"port", "8080"},
        {"port", true},
        {"port", 8080.0},
        {"authRequired", std::int64_t{1}},
        {"authRequired", "true"},
        {"userName", std::int64_t{1}},
        {"userName", PropertyListDictionary{}},
        {"password", platform::PropertyListArray{}},
        {"password", false},
    };
    for (const auto& [key, value] : misfits) {
        storeSettings(true);
        preferences.user.insert_or_assign(key, value);

        handler.setupProxyDetails();

        EXPECT_TRUE(files.journal.empty()) << key;
        EXPECT_TRUE(streams.printed().empty()) << key;
    }
}

TEST_F(ProxySettingsFile, isWrittenForPortsFrom0To65535) {
    for (const std::int64_t port : {0, 65535}) {
        storeSettings(false, port);
        handler.setupProxyDetails();
        EXPECT_EQ(content().at("ProxyServerPort"), PropertyListValue(port));
    }
}

TEST_F(ProxySettingsFile, isNotWrittenForOtherPorts) {
    for (const std::int64_t port : {std::int64_t{-1}, std::int64_t{65536}, std::int64_t{1} << 40}) {
        storeSettings(true, port);
        handler.setupProxyDetails();
        EXPECT_TRUE(files.journal.empty()) << port;
        EXPECT_TRUE(streams.printed().empty()) << port;
    }
}

TEST_F(ProxySettingsFile, isNotWrittenForAnEmptyHost) {
    storeSettings(true, 8080, "");

    handler.setupProxyDetails();

    EXPECT_TRUE(files.journal.empty());
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ProxySettingsFile, isWrittenForAHostOfOneBlank) {
    storeSettings(true, 8080, " ");

    handler.setupProxyDetails();

    EXPECT_EQ(content(), settings("u", "p", 8080, " "));
}

TEST_F(ProxySettingsFile, isCreatedInANewFolderWithCredentials) {
    storeSettings(true);

    handler.setupProxyDetails();

    EXPECT_EQ(files.journal, (Lines{std::string("mkdir ") + kFolder, std::string("create ") + kPath}));
    EXPECT_EQ(content(), settings("u", "p"));
    EXPECT_EQ(files.file(kPath)->attributes.posixPermissions, std::nullopt);
    EXPECT_FALSE(files.file(kPath)->attributes.completeProtection);
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ProxySettingsFile, isCreatedWithEmptyCredentialsWhenTheProxyNeedsNone) {
    storeSettings(false);

    handler.setupProxyDetails();

    EXPECT_EQ(content(), settings("", ""));
}

TEST_F(ProxySettingsFile, isReportedWhenItsFolderCannotBeMade) {
    storeSettings(true);
    files.failCreateFolder(kFolder);

    handler.setupProxyDetails();

    EXPECT_EQ(files.file(kPath), nullptr);
    EXPECT_EQ(streams.printed(), Lines{kUnableToCreate});
}

TEST_F(ProxySettingsFile, isReportedWhenNewContentHasNoXmlForm) {
    storeSettings(true);
    propertyLists.failSerialize = true;

    handler.setupProxyDetails();

    EXPECT_TRUE(files.folderExists(kFolder));
    EXPECT_EQ(files.file(kPath), nullptr);
    EXPECT_EQ(streams.printed(), Lines{kUnableToCreate});
}

TEST_F(ProxySettingsFile, isNotReportedWhenItCannotBeCreated) {
    storeSettings(true);
    files.failCreateFile(kPath);

    handler.setupProxyDetails();

    EXPECT_EQ(files.file(kPath), nullptr);
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ProxySettingsFile, isUpdatedInPlace) {
    putSettingsFile(settings("old", "older", 1, "gone"));
    storeSettings(true);

    handler.setupProxyDetails();

    EXPECT_EQ(files.journal, Lines{std::string("overwrite ") + kPath});
    EXPECT_EQ(content(), settings("u", "p"));
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ProxySettingsFile, keepsItsCredentialsWhenTheProxyNeedsNoneAnyMore) {
    storeSettings(true);
    handler.setupProxyDetails();
    storeSettings(false, 3128, "other");

    handler.setupProxyDetails();

    EXPECT_EQ(content(), settings("u", "p", 3128, "other"));
}

TEST_F(ProxySettingsFile, withoutCredentialsGetsNoneInAnUpdateWithoutAuthentication) {
    putSettingsFile(PropertyListDictionary{});
    storeSettings(false);

    handler.setupProxyDetails();

    EXPECT_EQ(content(),
              (PropertyListDictionary{{"ProxyIpAddress", "proxy"}, {"ProxyServerPort", std::int64_t{8080}}}));
}

TEST_F(ProxySettingsFile, keepsKeysThatItDoesNotKnow) {
    auto old = settings("old", "older");
    old.emplace("Agent", PropertyListDictionary{{"Mode", true}});
    putSettingsFile(old);
    storeSettings(true);

    handler.setupProxyDetails();

    auto expected = settings("u", "p");
    expected.emplace("Agent", PropertyListDictionary{{"Mode", true}});
    EXPECT_EQ(content(), expected);
}

TEST_F(ProxySettingsFile, isLeftAloneWithoutPreferences) {
    putSettingsFile(settings("old", "older"));

    handler.setupProxyDetails();

    EXPECT_TRUE(files.journal.empty());
    EXPECT_EQ(content(), settings("old", "older"));
}

TEST_F(ProxySettingsFile, thatIsNoDictionaryIsLeftAlone) {
    storeSettings(true);
    putSettingsFile(platform::PropertyListArray{"a"});
    handler.setupProxyDetails();
    files.putFile(kPath, "no property list");
    handler.setupProxyDetails();

    EXPECT_TRUE(files.journal.empty());
    EXPECT_EQ(files.file(kPath)->contents, "no property list");
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ProxySettingsFile, thatIsAFolderIsLeftAlone) {
    storeSettings(true);
    files.putFolder(kPath);

    handler.setupProxyDetails();

    EXPECT_TRUE(files.journal.empty());
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ProxySettingsFile, isReportedWhenUpdatedContentHasNoXmlForm) {
    putSettingsFile(settings("old", "older"));
    storeSettings(true);
    propertyLists.failSerialize = true;

    handler.setupProxyDetails();

    EXPECT_EQ(content(), settings("old", "older"));
    EXPECT_EQ(streams.printed(), Lines{kUnableToWrite});
}

TEST_F(ProxySettingsFile, isReportedWhenItCannotBeWritten) {
    putSettingsFile(settings("old", "older"));
    storeSettings(true);
    files.failWrite(kPath);

    handler.setupProxyDetails();

    EXPECT_EQ(content(), settings("old", "older"));
    EXPECT_EQ(streams.printed(), Lines{kUnableToWrite});
}

} // namespace
} // namespace lumora
