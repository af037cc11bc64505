#pragma once

#include "image_bytes.h"
#include "image_maker.h"
#include "platform/linux/hdiutil/disk_images.h"
#include "processes.h"
#include "tree_picture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace lumora::testing {

/// A folder for volumes, a folder to make images of, and something beside them that nothing may touch.
class DiskImageFixture : public ::testing::Test {
  protected:
    DiskImageFixture();
    ~DiskImageFixture() override;
    DiskImageFixture(const DiskImageFixture&) = delete;
    DiskImageFixture& operator=(const DiskImageFixture&) = delete;

    [[nodiscard]] platform::linux_backend::DiskImages images() const {
        return platform::linux_backend::DiskImages(volumes_);
    }

    /// An image of tree_ named "Ovra", without padding.
    std::filesystem::path makeOvraImage(const std::string& fileName = "ovra.iso");
    /// A small tree with a folder, two files and a link.
    void fillTree();

    /// The image is refused, nothing of it is left, and nothing outside has changed.
    void expectRefused(const std::filesystem::path& image, const std::string& reason);
    /// No volume, no record, no leftover.
    void expectNoVolumes();
    /// The folder holds the records and the named volumes only.
    void expectVolumes(std::vector<std::string> names);

    std::filesystem::path folder_;  ///< of this test
    std::filesystem::path volumes_; ///< stands for /Volumes
    std::filesystem::path tree_;    ///< what images are made of
    std::filesystem::path outside_; ///< a file with known contents
};

} // namespace lumora::testing
