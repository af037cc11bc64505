#pragma once

#include "support/backend.h"
#include "support/in_child.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>

namespace lumora::contract {

/// A bundle in a folder. What a removal that is refused must not have touched.
class FileRemovalContract : public testing::Test {
  protected:
    FileRemovalContract() {
        std::filesystem::create_directories(bundle_ + "/Contents/MacOS");
        for (int file = 0; file < kFiles; ++file)
            writeFile(bundle_ + "/Contents/MacOS/" + std::to_string(file), "x");
        std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
    }

    static std::size_t entriesIn(const std::string& path) {
        std::error_code missing;
        const auto entries = std::filesystem::recursive_directory_iterator(path, missing);
        return missing ? 0 : static_cast<std::size_t>(std::distance(entries, {}));
    }

    std::string removedByAnOrdinaryUser(int expectedError) {
        return asOrdinaryUser([&]() -> std::string {
            const auto removed = files_.removeItem(bundle_);
            if (removed)
                return "removed";
            return errnoOf(removed.error()) == expectedError ? "" : removed.error().localizedDescription;
        });
    }

    void expectUntouched() {
        EXPECT_EQ(kWhole, entriesIn(bundle_));
        EXPECT_EQ(kWhole + 1, entriesIn(around_)) << "something else was left beside it";
    }

    static constexpr int kFiles = 50;
    static constexpr std::size_t kWhole = kFiles + 2;
    TemporaryFolder folder_;
    const std::string around_ = folder_ / "Applications";
    const std::string bundle_ = around_ + "/Bundle.app";
    FileManager files_ = makeFileManager(folder_ / "home");
};

} // namespace lumora::contract
