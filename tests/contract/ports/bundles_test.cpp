#include "support/another_process.h"
#include "support/backend.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <iostream>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;
using platform::PropertyListDictionary;
using platform::PropertyListValue;

/// This program lies in a bundle of the build's making, which stands for the application's.
class BundlesContract : public testing::Test {
  protected:
    BundlesContract() {
        makeBundle({{"CFBundleIdentifier", "com.example.app"}, {"CFBundleShortVersionString", "1.2.3"}});
    }

    void makeBundle(const PropertyListDictionary& info) {
        fs::create_directories(other_ + "/Contents");
        writeFile(other_ + "/Contents/Info.plist", lists_.serializeXml(info).value());
    }

    TemporaryFolder folder_;
    const std::string own_ = fs::path(thisProgram()).parent_path().parent_path().parent_path().string();
    const std::string other_ = folder_ / "Ovra Tessel Lumora.app";
    PropertyLists lists_;
    std::unique_ptr<platform::Bundles> bundles_ = makeBundles();
};

TEST_F(BundlesContract, theMainBundleIsTheRunningProgramsOwn) {
    EXPECT_EQ(own_, fs::canonical(bundles_->mainBundlePath()).string());
    EXPECT_FALSE(bundles_->mainBundlePath().ends_with('/'));
    EXPECT_EQ("com.ovra.tessel.contract.bundles", bundles_->mainBundleIdentifier());
}

TEST_F(BundlesContract, aProgramOutsideABundleHasItsFolderAndNoIdentifier) {
    const std::string tool = folder_ / "tool";
    fs::copy_file(thisProgram(), tool);

    AnotherProcess process({"tell"}, tool);

    EXPECT_EQ(fs::canonical(folder_.path()), fs::canonical(process.nextLine()));
    EXPECT_EQ("no identifier", process.output());
}

TEST_F(BundlesContract, resourcesAreFoundByNameAndType) {
    const auto canonical = [](const std::optional<std::string>& path) {
        return path ? fs::canonical(*path).string() : "absent";
    };
    EXPECT_EQ(own_ + "/Contents/Resources/Page.html", canonical(bundles_->pathForResource("Page", "html")));
    EXPECT_EQ(own_ + "/Contents/Resources/Page.html", canonical(bundles_->pathForResource("Page.html", "")));
    EXPECT_EQ(std::nullopt, bundles_->pathForResource("Page", "sh"));
}

TEST_F(BundlesContract, informationIsReadAfresh) {
    EXPECT_EQ(PropertyListValue("1.2.3"),
              bundles_->infoDictionaryValue(other_, "CFBundleShortVersionString"));
    makeBundle({{"CFBundleShortVersionString", std::int64_t{4}}});
    EXPECT_EQ(PropertyListValue(std::int64_t{4}),
              bundles_->infoDictionaryValue(other_, "CFBundleShortVersionString"));
    EXPECT_EQ(std::nullopt, bundles_->infoDictionaryValue(other_, "CFBundleIdentifier"));
}

TEST_F(BundlesContract, whateverIsMissingOrMalformedIsAbsent) {
    EXPECT_EQ(std::nullopt, bundles_->infoDictionaryValue(folder_ / "missing.app", "k"));
    writeFile(other_ + "/Contents/Info.plist", "junk");
    EXPECT_EQ(std::nullopt, bundles_->infoDictionaryValue(other_, "k"));
    writeFile(other_ + "/Contents/Info.plist", lists_.serializeXml("no dictionary").value());
    EXPECT_EQ(std::nullopt, bundles_->infoDictionaryValue(other_, "k"));
}

} // namespace

int asAnotherProcess(const std::vector<std::string>& arguments) {
    if (arguments.front() != "tell")
        return 1;
    const auto bundles = makeBundles();
    std::cout << bundles->mainBundlePath() << '\n'
              << bundles->mainBundleIdentifier().value_or("no identifier");
    return 0;
}

} // namespace lumora::contract
