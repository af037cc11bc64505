#include "disk_image_fixture.h"

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lumora::testing {
namespace {

using platform::linux_backend::DiskImages;

class MountPoints : public DiskImageFixture {
  protected:
    void SetUp() override {
        fillTree();
        image_ = makeOvraImage();
    }
    std::filesystem::path image_;
    std::filesystem::path ovra_ = volumes_ / "Ovra";
};

TEST_F(MountPoints, volumeLeftFromBeforeIsExchanged) {
    ASSERT_TRUE(images().mount(image_));
    writeFile(ovra_ / "left from before", "");
    writeFile(tree_ / "new", "new");
    const auto newer = makeOvraImage("newer.iso");

    const auto mounted = images().mount(newer);

    ASSERT_TRUE(mounted) << mounted.error().localizedDescription;
    EXPECT_EQ(mounted.value().mountPoint, ovra_);
    EXPECT_EQ(pictureOf(ovra_), pictureOf(tree_));
    expectVolumes({"Ovra"});
}

TEST_F(MountPoints, refusedImageLeavesTheFormerVolumeInPlace) {
    ASSERT_TRUE(images().mount(image_));
    const auto before = pictureOf(ovra_);
    std::filesystem::create_symlink("/etc", tree_ / "link");

    EXPECT_FALSE(images().mount(makeOvraImage("hostile.iso")));

    EXPECT_EQ(pictureOf(ovra_), before);
    expectVolumes({"Ovra"});
    EXPECT_TRUE(images().detach(ovra_));
}

TEST_F(MountPoints, foreignEntriesOfTheNameStayUntouched) {
    const std::vector<std::function<void()>> makers{
        [&] { writeFile(ovra_ / "precious", "precious"); },
        [&] { std::filesystem::create_directory(ovra_); },
        [&] { writeFile(ovra_, "precious"); },
        [&] { std::filesystem::create_symlink(tree_, ovra_); },
        [&] { std::filesystem::create_symlink("nowhere", ovra_); },
    };
    for (const auto& make : makers) {
        make();
        const auto before = pictureOf(volumes_);

        const auto mounted = images().mount(image_);
        const auto detached = images().detach(ovra_);

        ASSERT_FALSE(mounted);
        EXPECT_NE(mounted.error().localizedDescription.find("not a volume attached by this user"),
                  std::string::npos);
        EXPECT_FALSE(detached);
        EXPECT_EQ(pictureOf(volumes_), before);
        std::filesystem::remove_all(ovra_);
    }
}

TEST_F(MountPoints, folderThatTookTheVolumesPlaceIsNotTakenForIt) {
    ASSERT_TRUE(images().mount(image_));
    // A file system likes to give the new folder the old one's inode number.
    std::filesystem::remove_all(ovra_);
    std::filesystem::create_directory(ovra_);
    writeFile(ovra_ / "precious", "precious");

    EXPECT_FALSE(images().detach(ovra_));
    EXPECT_FALSE(images().mount(image_));

    EXPECT_EQ(readFile(ovra_ / "precious"), "precious");
}

TEST_F(MountPoints, renamedVolumeIsNotDetachedUnderItsNewName) {
    ASSERT_TRUE(images().mount(image_));
    std::filesystem::rename(ovra_, volumes_ / "Other");

    EXPECT_FALSE(images().detach(ovra_));
    EXPECT_FALSE(images().detach(volumes_ / "Other"));

    EXPECT_TRUE(std::filesystem::exists(volumes_ / "Other/OvraCrashDetector"));
}

TEST_F(MountPoints, detachRemovesTheVolumeAndItsRecord) {
    ASSERT_TRUE(images().mount(image_));

    const auto detached = images().detach(ovra_);

    EXPECT_TRUE(detached) << detached.error().localizedDescription;
    expectNoVolumes();
}

TEST_F(MountPoints, detachAcceptsTrailingSlashes) {
    ASSERT_TRUE(images().mount(image_));
    EXPECT_TRUE(images().detach(ovra_.string() + "//"));
    expectNoVolumes();
}

TEST_F(MountPoints, secondDetachFails) {
    ASSERT_TRUE(images().mount(image_));
    ASSERT_TRUE(images().detach(ovra_));

    const auto second = images().detach(ovra_);

    ASSERT_FALSE(second);
    EXPECT_NE(second.error().localizedDescription.find("no volume attached"), std::string::npos);
}

TEST_F(MountPoints, detachTakesMountPointsOnly) {
    ASSERT_TRUE(images().mount(image_));
    for (const std::filesystem::path& path :
         {std::filesystem::path(), std::filesystem::path("/"), std::filesystem::path("Ovra"), volumes_, tree_,
          ovra_ / "Ovra.app", ovra_ / "..", ovra_ / ".", volumes_ / ".." / "Volumes" / "Ovra",
          volumes_ / "..", volumes_ / ("." + std::string("attachments.") + std::to_string(::geteuid()))}) {
        SCOPED_TRACE(path);
        EXPECT_FALSE(images().detach(path));
    }
    EXPECT_EQ(pictureOf(ovra_), pictureOf(tree_));
}

TEST_F(MountPoints, detachRemovesLinksAndNotWhatTheyLeadTo) {
    ASSERT_TRUE(images().mount(image_));
    std::filesystem::create_symlink(folder_, ovra_ / "out");
    std::filesystem::create_symlink(outside_, ovra_ / "Ovra.app/out");

    EXPECT_TRUE(images().detach(ovra_));

    expectNoVolumes();
    EXPECT_EQ(readFile(outside_), "untouched");
}

TEST_F(MountPoints, detachLeavesOtherVolumesAlone) {
    makeImage(tree_, "Lumora Plugin", folder_ / "plugin.iso");
    ASSERT_TRUE(images().mount(image_));
    ASSERT_TRUE(images().mount(folder_ / "plugin.iso"));

    EXPECT_TRUE(images().detach(ovra_));

    expectVolumes({"Lumora Plugin"});
    EXPECT_EQ(pictureOf(volumes_ / "Lumora Plugin"), pictureOf(tree_));
}

TEST_F(MountPoints, attachmentsListsWhatStandsMounted) {
    makeImage(tree_, "Lumora Plugin", folder_ / "plugin.iso");
    ASSERT_TRUE(images().mount(image_));
    ASSERT_TRUE(images().mount(folder_ / "plugin.iso"));
    std::filesystem::create_directory(volumes_ / "foreign");

    const auto listed = images().attachments();

    ASSERT_TRUE(listed);
    ASSERT_EQ(listed.value().size(), 2U);
    EXPECT_EQ(listed.value()[0].mountPoint, volumes_ / "Lumora Plugin");
    EXPECT_EQ(listed.value()[1].mountPoint, ovra_);
    EXPECT_EQ(listed.value()[1].image, image_.string());
}

TEST_F(MountPoints, damagedRecordMakesTheVolumeForeign) {
    ASSERT_TRUE(images().mount(image_));
    writeFile(volumes_ / (".attachments." + std::to_string(::geteuid())) / "Ovra", "volume x\n");

    EXPECT_FALSE(images().detach(ovra_));

    EXPECT_EQ(pictureOf(ovra_), pictureOf(tree_));
}

/// What an ordinary user sees; run by root, in a process that has become one.
int asOrdinaryUser(const std::function<int()>& body) {
    return waitForProcess(startProcess([&] {
        constexpr unsigned kNobody = 65534;
        if (::geteuid() == 0 &&
            (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) {
            return 97;
        }
        return body();
    }));
}

TEST_F(MountPoints, unwritableFolderIsAPlainError) {
    ::chmod(folder_.c_str(), 0755);
    ::chmod(volumes_.c_str(), 0555);

    const int status = asOrdinaryUser([&] {
        const auto mounted = images().mount(image_);
        return !mounted && mounted.error().code == EACCES &&
                       mounted.error().localizedDescription.find("cannot write to") != std::string::npos
                   ? 0
                   : 1;
    });

    EXPECT_EQ(status, 0);
    expectNoVolumes();
}

TEST_F(MountPoints, readOnlyFoldersAndFilesMountAndDetachForAnOrdinaryUser) {
    ::chmod(tree_.c_str(), 0555);
    ImageBytes bytes(makeOvraImage("readonly.iso"));
    bytes.setMode("Contents", 0040555);
    bytes.setMode("MacOS", 0040111);
    bytes.setMode("Ovra", 0100000);
    bytes.save(folder_ / "readonly.iso");
    const auto image = folder_ / "readonly.iso";
    ::chmod(folder_.c_str(), 0755);
    ::chmod(volumes_.c_str(), 01777);

    const int status = asOrdinaryUser([&] {
        if (!images().mount(image) || !images().mount(image)) {
            return 1;
        }
        struct stat attributes {};
        if (::stat((ovra_ / "Ovra.app/Contents/MacOS").c_str(), &attributes) != 0 ||
            attributes.st_mode != (S_IFDIR | 0111)) {
            return 2;
        }
        return images().detach(ovra_) ? 0 : 3;
    });

    EXPECT_EQ(status, 0);
    expectNoVolumes();
}

TEST_F(MountPoints, anotherUsersVolumeIsForeign) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "takes two users";
    }
    ::chmod(folder_.c_str(), 0755);
    ::chmod(volumes_.c_str(), 01777);
    ASSERT_EQ(asOrdinaryUser([&] { return images().mount(image_) ? 0 : 1; }), 0);
    const auto before = pictureOf(ovra_);

    EXPECT_FALSE(images().detach(ovra_));
    EXPECT_FALSE(images().mount(image_));
    EXPECT_EQ(pictureOf(ovra_), before);

    EXPECT_EQ(asOrdinaryUser([&] { return images().detach(ovra_) ? 0 : 1; }), 0);
    expectNoVolumes();
}

TEST_F(MountPoints, recordsPlantedByAnotherUserAreRefused) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "takes two users";
    }
    const auto records = volumes_ / ".attachments.0";
    std::filesystem::create_directory(records);
    ASSERT_EQ(::chown(records.c_str(), 65534, 65534), 0);

    EXPECT_FALSE(images().mount(image_));

    EXPECT_EQ(namesIn(volumes_), std::vector<std::string>{".attachments.0"});
}

} // namespace
} // namespace lumora::testing
