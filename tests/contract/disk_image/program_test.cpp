#include "disk_image_fixture.h"
#include "private_world.h"

#include <memory>

namespace lumora::testing {
namespace {

/// The program itself, with its own /Volumes.
class Program : public DiskImageFixture {
  protected:
    void SetUp() override {
        fillTree();
        image_ = folder_ / "image.iso";
        makeImage(tree_, "Lumora Plugin", image_);
        world_ = std::make_unique<PrivateWorld>(folder_, volumes_);
        if (!world_->isPossible()) {
            GTEST_SKIP() << world_->obstacle();
        }
    }
    [[nodiscard]] Outcome hdiutil(const std::vector<std::string>& arguments) const {
        return world_->hdiutil(arguments);
    }
    /// Nothing on standard output and one line on standard error.
    static void expectFailure(const Outcome& outcome, int status) {
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.standardOutput, "");
        EXPECT_EQ(outcome.standardError.find('\n'), outcome.standardError.size() - 1)
            << outcome.standardError;
        EXPECT_TRUE(outcome.standardError.starts_with("hdiutil: ")) << outcome.standardError;
    }

    std::filesystem::path image_;
    std::unique_ptr<PrivateWorld> world_;
};

TEST_F(Program, mountPrintsOneLineThatEndsInTheMountPoint) {
    const Outcome outcome = hdiutil({"mount", image_.string()});

    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    EXPECT_EQ(outcome.standardOutput, image_.string() + "\tISO9660\t/Volumes/Lumora Plugin\n");
    EXPECT_EQ(outcome.standardError, "");
    EXPECT_EQ(pictureOf(volumes_ / "Lumora Plugin"), pictureOf(tree_));
}

TEST_F(Program, lineStaysOneLineWhateverTheImagesPath) {
    const auto odd = folder_ / "tab\tand\nnewline.iso";
    std::filesystem::rename(image_, odd);

    const Outcome outcome = hdiutil({"mount", odd.string()});

    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    EXPECT_EQ(outcome.standardOutput,
              (folder_ / "tab?and?newline.iso\tISO9660\t/Volumes/Lumora Plugin\n").string());
}

TEST_F(Program, lineCanBeDecodedWhateverTheImagesPath) {
    const auto odd = folder_ / "M\xfcller.iso";
    std::filesystem::rename(image_, odd);

    const Outcome outcome = hdiutil({"mount", odd.string()});

    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    EXPECT_EQ(outcome.standardOutput, (folder_ / "M?ller.iso\tISO9660\t/Volumes/Lumora Plugin\n").string());
}

TEST_F(Program, detachRemovesTheVolumeOnce) {
    ASSERT_EQ(hdiutil({"mount", image_.string()}).status, 0);

    const Outcome first = hdiutil({"detach", "/Volumes/Lumora Plugin"});
    const Outcome second = hdiutil({"detach", "/Volumes/Lumora Plugin"});

    EXPECT_EQ(first.status, 0) << first.standardError;
    expectNoVolumes();
    expectFailure(second, 1);
}

TEST_F(Program, infoListsTheVolumes) {
    EXPECT_EQ(hdiutil({"info"}).standardOutput, "");
    ASSERT_EQ(hdiutil({"mount", image_.string()}).status, 0);

    const Outcome outcome = hdiutil({"info"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.standardOutput, image_.string() + "\tISO9660\t/Volumes/Lumora Plugin\n");
}

TEST_F(Program, unreadableImageFailsWithOneLine) {
    writeFile(folder_ / "page.html", "<html>404</html>");
    expectFailure(hdiutil({"mount", (folder_ / "page.html").string()}), 1);
    expectFailure(hdiutil({"mount", (folder_ / "missing\nimage").string()}), 1);
    expectFailure(hdiutil({"detach", ""}), 1);
    expectNoVolumes();
}

TEST_F(Program, whatItDoesNotUnderstandIsAUsageError) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"attach", image_.string()},
                                               {"eject", "/Volumes/Lumora Plugin"},
                                               {"mount"},
                                               {"mount", image_.string(), image_.string()},
                                               {"mount", "-nobrowse", image_.string()},
                                               {"mount", image_.string(), "-force"},
                                               {"detach"},
                                               {"detach", "-force", "/Volumes/Lumora Plugin"},
                                               {"info", "-plist"},
                                               {"info", "more"},
                                               {"-help"},
                                               {"verb\nline"}}) {
        SCOPED_TRACE(::testing::PrintToString(arguments));
        expectFailure(hdiutil(arguments), 64);
    }
    expectNoVolumes();
}

TEST_F(Program, outputThatCannotBeWrittenIsReported) {
    ASSERT_EQ(hdiutil({"mount", image_.string()}).status, 0);

    const Outcome outcome = world_->run("/bin/sh", {"-c", "exec \"$0\" info >/dev/full", LUMORA_HDIUTIL});

    expectFailure(outcome, 1);
    EXPECT_NE(outcome.standardError.find("standard output"), std::string::npos) << outcome.standardError;
}

TEST_F(Program, withoutAFolderForVolumesItFailsPlainly) {
    const PrivateWorld bare(folder_, PrivateWorld::NoVolumes{});

    const Outcome mounted = bare.hdiutil({"mount", image_.string()});

    expectFailure(mounted, 1);
    EXPECT_NE(mounted.standardError.find("cannot open /Volumes: No such file"), std::string::npos)
        << mounted.standardError;
    expectFailure(bare.hdiutil({"detach", "/Volumes/Ovra"}), 1);
    expectFailure(bare.hdiutil({"info"}), 1);
}

} // namespace
} // namespace lumora::testing
