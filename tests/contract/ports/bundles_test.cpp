#include "platform/linux/ports/linux_bundles.h"
#include "platform/linux/ports/linux_property_lists.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;
using platform::PropertyListDictionary;
using platform::PropertyListValue;
using platform::linux_backend::HomeFolder;
using platform::linux_backend::LinuxBundles;

class BundlesContract : public testing::Test {
  protected:
    BundlesContract() {
        makeBundle(app_,
                   {{"CFBundleIdentifier", "com.example.app"}, {"CFBundleShortVersionString", "1.2.3"}});
        fs::create_directories(app_ + "/Contents/Resources");
        writeFile(app_ + "/Contents/Resources/NoInternetPage.html", "page");
    }

    void makeBundle(const std::string& path, const PropertyListDictionary& info) {
        fs::create_directories(path + "/Contents");
        writeFile(path + "/Contents/Info.plist", lists_.serializeXml(info).value());
    }

    TemporaryFolder folder_;
    const std::string app_ = folder_ / "Ovra Tessel Lumora.app";
    platform::linux_backend::LinuxPropertyLists lists_;
    LinuxBundles bundles_{app_ + "/Contents/MacOS/Ovra Tessel Lumora", HomeFolder(folder_ / "home"), lists_};
};

TEST_F(BundlesContract, theMainBundleIsTheRunningProgramsOwn) {
    EXPECT_EQ(app_, bundles_.mainBundlePath());
    EXPECT_EQ("com.example.app", bundles_.mainBundleIdentifier());
    EXPECT_EQ(fs::read_symlink("/proc/self/exe").string(), LinuxBundles::runningExecutable());
}

TEST_F(BundlesContract, aProgramOutsideABundleHasItsFolderAndNoIdentifier) {
    LinuxBundles bundles("/usr/bin/tool", HomeFolder("/nowhere"), lists_);

    EXPECT_EQ("/usr/bin", bundles.mainBundlePath());
    EXPECT_EQ(std::nullopt, bundles.mainBundleIdentifier());
}

TEST_F(BundlesContract, resourcesAreFoundByNameAndType) {
    EXPECT_EQ(app_ + "/Contents/Resources/NoInternetPage.html",
              bundles_.pathForResource("NoInternetPage", "html"));
    EXPECT_EQ(app_ + "/Contents/Resources/NoInternetPage.html",
              bundles_.pathForResource("NoInternetPage.html", ""));
    EXPECT_EQ(std::nullopt, bundles_.pathForResource("NoInternetPage", "sh"));
}

TEST_F(BundlesContract, informationIsReadAfresh) {
    EXPECT_EQ(PropertyListValue("1.2.3"), bundles_.infoDictionaryValue(app_, "CFBundleShortVersionString"));
    makeBundle(app_, {{"CFBundleShortVersionString", std::int64_t{4}}});
    EXPECT_EQ(PropertyListValue(std::int64_t{4}),
              bundles_.infoDictionaryValue(app_, "CFBundleShortVersionString"));
    EXPECT_EQ(std::nullopt, bundles_.infoDictionaryValue(app_, "CFBundleIdentifier"));
}

TEST_F(BundlesContract, whateverIsMissingOrMalformedIsAbsent) {
    EXPECT_EQ(std::nullopt, bundles_.infoDictionaryValue(folder_ / "missing.app", "k"));
    writeFile(app_ + "/Contents/Info.plist", "junk");
    EXPECT_EQ(std::nullopt, bundles_.infoDictionaryValue(app_, "k"));
    writeFile(app_ + "/Contents/Info.plist", lists_.serializeXml("no dictionary").value());
    EXPECT_EQ(std::nullopt, bundles_.infoDictionaryValue(app_, "k"));
}

TEST_F(BundlesContract, insideTheHomeFolderABundleIsFoundWhateverItsCase) {
    makeBundle(folder_ / "home/Ovra.App", {{"k", "v"}});

    EXPECT_EQ(PropertyListValue("v"), bundles_.infoDictionaryValue(folder_ / "home//Ovra.app", "k"));
}

} // namespace
} // namespace lumora::contract
