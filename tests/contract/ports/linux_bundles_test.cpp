#include "platform/linux/ports/linux_bundles.h"
#include "support/backend.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;
using platform::PropertyListDictionary;
using platform::PropertyListValue;

TEST(LinuxBundlesContract, insideTheHomeFolderABundleIsFoundWhateverItsCase) {
    const TemporaryFolder folder;
    PropertyLists lists;
    fs::create_directories(folder / "home/Ovra.App/Contents");
    writeFile(folder / "home/Ovra.App/Contents/Info.plist",
              lists.serializeXml(PropertyListDictionary{{"k", "v"}}).value());

    backend::LinuxBundles bundles("/usr/bin/tool", backend::HomeFolder(folder / "home"), lists);

    EXPECT_EQ(PropertyListValue("v"), bundles.infoDictionaryValue(folder / "home//Ovra.app", "k"));
}

} // namespace
} // namespace lumora::contract
