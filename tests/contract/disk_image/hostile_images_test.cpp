#include "disk_image_fixture.h"
#include "private_world.h"

#include <sys/stat.h>

namespace lumora::testing {
namespace {

using platform::linux_backend::DiskImageLimits;
using platform::linux_backend::DiskImages;

class HostileImages : public DiskImageFixture {
  protected:
    /// The image of tree_ after `change`.
    template <class Change>
    std::filesystem::path patched(Change change) {
        ImageBytes image(makeOvraImage());
        change(image);
        image.save(folder_ / "patched.iso");
        return folder_ / "patched.iso";
    }

    void expectLinkRefused(const std::filesystem::path& target, const std::filesystem::path& link) {
        SCOPED_TRACE(target);
        std::filesystem::create_directories((tree_ / link).parent_path());
        std::filesystem::create_symlink(target, tree_ / link);
        expectRefused(makeOvraImage(), "points out of the volume");
        std::filesystem::remove(tree_ / link);
    }
};

TEST_F(HostileImages, linksOutOfTheVolumeAreRefused) {
    fillTree();
    expectLinkRefused("/etc/passwd", "link");
    expectLinkRefused(volumes_ / "Ovra/OvraCrashDetector", "link");
    expectLinkRefused("..", "link");
    expectLinkRefused("../outside", "link");
    expectLinkRefused("../../../outside", "folder/inner/link");
    expectLinkRefused("Ovra.app/../../outside", "link");
    expectLinkRefused("../Ovra/OvraCrashDetector", "link");
    expectLinkRefused("missing/../../outside", "link");
}

TEST_F(HostileImages, linkThatEscapesByWayOfAnotherLinkIsRefused) {
    std::filesystem::create_directories(tree_ / "a/b/c");
    std::filesystem::create_symlink("../../..", tree_ / "a/b/c/up"); // the mount point itself: harmless
    ASSERT_TRUE(images().mount(makeOvraImage()));
    ASSERT_TRUE(images().detach(volumes_ / "Ovra"));

    expectLinkRefused("a/b/c/up/../outside", "link");
}

TEST_F(HostileImages, linksThatLeadInCirclesAreRefused) {
    std::filesystem::create_symlink("two", tree_ / "one");
    std::filesystem::create_symlink("one", tree_ / "two");

    expectRefused(makeOvraImage(), "points out of the volume");
}

TEST_F(HostileImages, parentFolderAsNameIsRefused) {
    writeFile(tree_ / "folder/xx", "escaped");
    expectRefused(patched([](ImageBytes& image) { image.rename("xx", ".."); }), "unusable path");
}

TEST_F(HostileImages, parentFolderWithinANameIsRefused) {
    writeFile(tree_ / "xxxoutside", "escaped");
    expectRefused(patched([](ImageBytes& image) { image.rename("xxxoutside", "../outside"); }),
                  "unusable path");
}

TEST_F(HostileImages, absoluteNameIsRefused) {
    writeFile(tree_ / "xtmp", "escaped");
    expectRefused(patched([](ImageBytes& image) { image.rename("xtmp", "/tmp"); }), "unusable path");
}

TEST_F(HostileImages, nameWithASlashIsRefused) {
    writeFile(tree_ / "nowherexfile", "escaped");
    expectRefused(patched([](ImageBytes& image) { image.rename("nowherexfile", "nowhere/file"); }),
                  "no folder for");
}

TEST_F(HostileImages, linkAndFolderOfTheSameNameAreRefused) {
    writeFile(tree_ / "ax/outside", "escaped");
    std::filesystem::create_symlink("..", tree_ / "ay");
    expectRefused(patched([](ImageBytes& image) { image.rename("ay", "ax"); }), "two entries named");
}

TEST_F(HostileImages, fileBehindALinkIsRefused) {
    // The name of the file leads through the link beside it.
    std::filesystem::create_symlink("folder", tree_ / "link");
    std::filesystem::create_directory(tree_ / "folder");
    writeFile(tree_ / "linkxfile", "escaped");
    expectRefused(patched([](ImageBytes& image) { image.rename("linkxfile", "link/file"); }),
                  "no folder for");
}

TEST_F(HostileImages, specialFilesAreRefused) {
    writeFile(tree_ / "special", "contents");
    for (const unsigned type : {0020000U, 0060000U, 0010000U, 0140000U}) {
        SCOPED_TRACE(type);
        expectRefused(patched([&](ImageBytes& image) { image.setMode("special", type | 0666); }),
                      "neither a file, a folder nor a link");
    }
}

TEST_F(HostileImages, namesThatCannotNameAVolumeAreRefused) {
    const std::vector<std::string> names{"",
                                         ".",
                                         "..",
                                         "../x",
                                         "a/b",
                                         "/",
                                         ".hidden",
                                         "new\nline",
                                         "t\tab",
                                         "\x7f",
                                         "bad\xff"
                                         "utf",
                                         ".Ovra.aside-0123456789abcdef"};
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        expectRefused(patched([&](ImageBytes& image) { image.setVolumeName(name); }), "cannot name a volume");
    }
}

TEST_F(HostileImages, imageBeyondTheSizeLimitIsRefused) {
    writeFile(tree_ / "one", noise(60'000, 1));
    writeFile(tree_ / "two", noise(60'000, 2));
    const auto image = makeOvraImage();

    const auto refused = DiskImages(volumes_, DiskImageLimits{119'999, 100}).mount(image);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().localizedDescription, "the image unpacks to more than is accepted");
    expectNoVolumes();

    EXPECT_TRUE(DiskImages(volumes_, DiskImageLimits{120'000, 100}).mount(image));
}

TEST_F(HostileImages, sharedContentsCountOncePerName) {
    writeFile(tree_ / "name0", noise(60'000, 1));
    for (int index = 1; index < 10; ++index) {
        std::filesystem::create_hard_link(tree_ / "name0", tree_ / ("name" + std::to_string(index)));
    }

    const auto refused = DiskImages(volumes_, DiskImageLimits{599'999, 100}).mount(makeOvraImage());

    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().localizedDescription, "the image unpacks to more than is accepted");
    expectNoVolumes();
}

TEST_F(HostileImages, imageWithTooManyEntriesIsRefused) {
    for (int index = 0; index < 50; ++index) {
        writeFile(tree_ / std::to_string(index), "x");
    }
    const auto image = makeOvraImage();

    const auto refused = DiskImages(volumes_, DiskImageLimits{1'000'000, 49}).mount(image);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().localizedDescription, "the image has too many entries");
    expectNoVolumes();

    EXPECT_TRUE(DiskImages(volumes_, DiskImageLimits{1'000'000, 50}).mount(image));
}

TEST_F(HostileImages, imageBeyondTheFreeSpaceIsRefused) {
    writeFile(tree_ / "big", noise(3'000'000, 1));
    const auto image = makeOvraImage();
    PrivateWorld world(folder_, PrivateWorld::SmallVolumes{1'000'000});
    if (!world.isPossible()) {
        GTEST_SKIP() << world.obstacle();
    }

    const Outcome outcome = world.hdiutil({"mount", image.string()});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_NE(outcome.standardError.find("than there is room for"), std::string::npos)
        << outcome.standardError;
}

} // namespace
} // namespace lumora::testing
