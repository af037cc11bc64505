#include "disk_image_fixture.h"

#include "platform/linux/hdiutil/tree_removal.h"
#include "platform/posix/unique_fd.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace lumora::testing {

DiskImageFixture::DiskImageFixture() {
    std::string pattern = (std::filesystem::temp_directory_path() / "lumora-disk-image-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder");
    }
    folder_ = pattern;
    volumes_ = folder_ / "Volumes";
    tree_ = folder_ / "tree";
    outside_ = folder_ / "outside";
    std::filesystem::create_directory(volumes_);
    std::filesystem::create_directory(tree_);
    std::filesystem::permissions(tree_, std::filesystem::perms::owner_all); // as every volume
    writeFile(outside_, "untouched");
}

DiskImageFixture::~DiskImageFixture() {
    EXPECT_EQ(readFile(outside_), "untouched");
    const platform::posix_backend::UniqueFd parent(
        ::open(folder_.parent_path().c_str(), O_RDONLY | O_DIRECTORY));
    platform::linux_backend::removeTree(parent.get(), folder_.filename().string());
}

std::filesystem::path DiskImageFixture::makeOvraImage(const std::string& fileName) {
    const auto image = folder_ / fileName;
    makeImage(tree_, "Ovra", image, {"-no-pad"});
    return image;
}

void DiskImageFixture::fillTree() {
    writeFile(tree_ / "Ovra.app/Contents/MacOS/Ovra", noise(5000, 1));
    writeFile(tree_ / "Ovra.app/Contents/Info.plist", "<plist/>");
    writeFile(tree_ / "OvraCrashDetector", noise(3000, 2));
    std::filesystem::create_symlink("MacOS/Ovra", tree_ / "Ovra.app/Contents/current");
}

void DiskImageFixture::expectRefused(const std::filesystem::path& image, const std::string& reason) {
    const auto mounted = images().mount(image);
    ASSERT_FALSE(mounted) << "mounted at " << mounted.value().mountPoint;
    EXPECT_NE(mounted.error().localizedDescription.find(reason), std::string::npos)
        << mounted.error().localizedDescription;
    EXPECT_EQ(mounted.error().localizedDescription.find('\n'), std::string::npos);
    expectNoVolumes();
}

void DiskImageFixture::expectNoVolumes() { EXPECT_EQ(namesIn(volumes_), std::vector<std::string>()); }

void DiskImageFixture::expectVolumes(std::vector<std::string> names) {
    names.push_back(fmt::format(".attachments.{}", ::geteuid()));
    std::sort(names.begin(), names.end());
    EXPECT_EQ(namesIn(volumes_), names);
}

} // namespace lumora::testing
