#include "disk_image_fixture.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace lumora::testing {
namespace {

using RoundTrips = DiskImageFixture;

/// Whole seconds, the precision of an image, and a different one for every entry. Folders last and from the inside
/// out, for creating an entry touches its folder.
void setDistinctTimes(const std::filesystem::path& tree) {
    std::vector<std::filesystem::path> entries{tree};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(tree)) {
        entries.push_back(entry.path());
    }
    time_t seconds = 1'500'000'000;
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
        const timespec stamp[2] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, entry->c_str(), stamp, AT_SYMLINK_NOFOLLOW), 0);
        seconds += 86'413;
    }
}

TEST_F(RoundTrips, mountedVolumeEqualsTheFolderItWasMadeOf) {
    writeFile(tree_ / "Ovra.app/Contents/MacOS/Ovra", noise(100'000, 1));
    writeFile(tree_ / "Ovra.app/Contents/Resources/größe – 名前 🙂.txt", "non-ASCII");
    writeFile(tree_ / "empty", "");
    writeFile(tree_ / "big", noise(5 * 1024 * 1024 + 17, 2));
    writeFile(tree_ / std::string(240, 'n'), "long name");
    writeFile(tree_ / "1/2/3/4/5/6/7/8/9/10/11/12/deep", "deep");
    writeFile(tree_ / "two words & a 'quote'", "blank");
    std::filesystem::create_directories(tree_ / "hollow/inner");
    std::filesystem::create_symlink("Contents/MacOS/Ovra", tree_ / "Ovra.app/current");
    std::filesystem::create_symlink("../hollow", tree_ / "Ovra.app/aside");
    std::filesystem::create_symlink("missing", tree_ / "dangling");
    ::chmod((tree_ / "Ovra.app/Contents/MacOS/Ovra").c_str(), 0755);
    ::chmod((tree_ / "empty").c_str(), 0400);
    ::chmod((tree_ / "big").c_str(), 0666);
    ::chmod((tree_ / "hollow/inner").c_str(), 0711);
    ::chmod((tree_ / "Ovra.app").c_str(), 0555);
    setDistinctTimes(tree_);
    const auto expected = pictureOf(tree_);

    const auto mounted = images().mount(makeOvraImage());

    ASSERT_TRUE(mounted) << mounted.error().localizedDescription;
    EXPECT_EQ(mounted.value().mountPoint, volumes_ / "Ovra");
    EXPECT_EQ(pictureOf(volumes_ / "Ovra"), expected);
    expectVolumes({"Ovra"});
}

TEST_F(RoundTrips, volumeNameKeepsItsInnerBlankAndLosesItsPadding) {
    fillTree();
    makeImage(tree_, "Lumora Plugin", folder_ / "padded.iso");

    const auto mounted = images().mount(folder_ / "padded.iso");

    ASSERT_TRUE(mounted) << mounted.error().localizedDescription;
    EXPECT_EQ(mounted.value().mountPoint.filename(), "Lumora Plugin");
    EXPECT_EQ(pictureOf(volumes_ / "Lumora Plugin"), pictureOf(tree_));
}

TEST_F(RoundTrips, emptyVolumeMounts) {
    const auto mounted = images().mount(makeOvraImage());

    ASSERT_TRUE(mounted) << mounted.error().localizedDescription;
    EXPECT_TRUE(std::filesystem::is_empty(volumes_ / "Ovra"));
}

TEST_F(RoundTrips, folderOfManyEntriesIsWhole) {
    for (int index = 0; index < 3000; ++index) {
        writeFile(tree_ / "many" / ("entry-" + std::to_string(index)), std::to_string(index));
    }

    const auto mounted = images().mount(makeOvraImage());

    ASSERT_TRUE(mounted) << mounted.error().localizedDescription;
    EXPECT_EQ(pictureOf(volumes_ / "Ovra"), pictureOf(tree_));
}

TEST_F(RoundTrips, namesThatShareContentsBecomeSeparateFiles) {
    const std::string contents = noise(10'000, 3);
    const std::vector<std::string> names{"first", "second", "third"};
    writeFile(tree_ / names[0], contents);
    std::filesystem::create_hard_link(tree_ / names[0], tree_ / names[1]);
    std::filesystem::create_hard_link(tree_ / names[0], tree_ / names[2]);
    ImageBytes image(makeOvraImage());
    for (const std::string& name : names) {
        image.setMode(name, 0100200); // unreadable, so the copies cannot be made by opening the first again
    }
    image.save(folder_ / "shared.iso");

    const auto mounted = images().mount(folder_ / "shared.iso");

    ASSERT_TRUE(mounted) << mounted.error().localizedDescription;
    for (const std::string& name : names) {
        const auto file = volumes_ / "Ovra" / name;
        EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms::owner_write);
        EXPECT_EQ(std::filesystem::hard_link_count(file), 1U);
        std::filesystem::permissions(file, std::filesystem::perms::owner_read);
        EXPECT_EQ(readFile(file), contents);
    }
}

TEST_F(RoundTrips, otherUsersDoNotGetIntoAVolume) {
    fillTree();
    ::chmod((tree_ / "Ovra.app").c_str(), 0777);
    ::chmod(tree_.c_str(), 0777);

    ASSERT_TRUE(images().mount(makeOvraImage()));

    struct stat attributes {};
    ASSERT_EQ(::stat((volumes_ / "Ovra").c_str(), &attributes), 0);
    EXPECT_EQ(attributes.st_mode, static_cast<mode_t>(S_IFDIR | 0700));
    ASSERT_EQ(::stat((volumes_ / "Ovra/Ovra.app").c_str(), &attributes), 0);
    EXPECT_EQ(attributes.st_mode, static_cast<mode_t>(S_IFDIR | 0777));
}

TEST_F(RoundTrips, setUserIdBitsAreDropped) {
    fillTree();
    ImageBytes image(makeOvraImage());
    image.setMode("OvraCrashDetector", 0107755);
    image.save(folder_ / "setuid.iso");

    ASSERT_TRUE(images().mount(folder_ / "setuid.iso"));

    struct stat attributes {};
    ASSERT_EQ(::stat((volumes_ / "Ovra/OvraCrashDetector").c_str(), &attributes), 0);
    EXPECT_EQ(attributes.st_mode, static_cast<mode_t>(S_IFREG | 0755));
}

} // namespace
} // namespace lumora::testing
