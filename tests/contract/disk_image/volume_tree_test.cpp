#include "platform/linux/hdiutil/failure.h"
#include "platform/linux/hdiutil/volume_tree.h"

#include <gtest/gtest.h>

#include <string>

namespace lumora::platform::linux_backend {
namespace {

TEST(VolumeTrees, entriesNeedTheirFolderFirst) {
    VolumeTree tree;
    tree.add("file", EntryKind::file);
    tree.add("link", EntryKind::link, "folder");
    tree.add("folder", EntryKind::folder);

    EXPECT_NO_THROW(tree.add("folder/inner", EntryKind::file));
    EXPECT_THROW(tree.add("other/inner", EntryKind::file), DiskImageFailure);
    EXPECT_THROW(tree.add("file/inner", EntryKind::file), DiskImageFailure);
    EXPECT_THROW(tree.add("link/inner", EntryKind::file), DiskImageFailure);
}

TEST(VolumeTrees, unusablePathsAreRefused) {
    VolumeTree tree;
    tree.add("folder", EntryKind::folder);
    for (const char* path : {"", ".", "..", "/", "/folder", "folder/", "folder//inner", "folder/.",
                             "folder/..", "../folder", "folder/../inner", "./inner"}) {
        EXPECT_THROW(tree.add(path, EntryKind::file), DiskImageFailure) << path;
    }
    EXPECT_THROW(tree.add(std::string(256, 'n'), EntryKind::file), DiskImageFailure);
    EXPECT_NO_THROW(tree.add(std::string(255, 'n'), EntryKind::file));
}

TEST(VolumeTrees, depthIsLimited) {
    VolumeTree tree;
    std::string path = "f";
    for (std::size_t depth = 1; depth < VolumeTree::kMaximumDepth; ++depth) {
        tree.add(path, EntryKind::folder);
        path += "/f";
    }
    EXPECT_NO_THROW(tree.add(path, EntryKind::folder));
    EXPECT_THROW(tree.add(path + "/f", EntryKind::folder), DiskImageFailure);
}

TEST(VolumeTrees, linksWithinTheVolumeAreAccepted) {
    VolumeTree tree;
    tree.add("a", EntryKind::folder);
    tree.add("a/b", EntryKind::folder);
    tree.add("a/up", EntryKind::link, "..");
    tree.add("a/b/top", EntryKind::link, "../../a/./b//");
    tree.add("chain", EntryKind::link, "a/up/a/up/a/b/top/../b");
    tree.add("dangling", EntryKind::link, "missing/file");
    EXPECT_NO_THROW(tree.checkLinks());
}

TEST(VolumeTrees, linksOutOfTheVolumeAreRefused) {
    for (const char* target : {"/", "/a", "..", "a/../..", "a/up/..", "a/up/a/../../x", "missing/../../x",
                               "a/abs/x", "self", "a/b/../../../x"}) {
        VolumeTree tree;
        tree.add("a", EntryKind::folder);
        tree.add("a/b", EntryKind::folder);
        tree.add("a/up", EntryKind::link, "..");
        ASSERT_NO_THROW(tree.checkLinks());
        if (std::string(target).starts_with("a/abs")) {
            tree.add("a/abs", EntryKind::link, "/etc");
        }
        tree.add("self", EntryKind::link, target);
        EXPECT_THROW(tree.checkLinks(), DiskImageFailure) << target;
    }
}

TEST(VolumeTrees, linksThatMultiplyAreGivenUp) {
    // Each link walks the one before twice: without a bound, 2 to the power of 30 steps.
    VolumeTree tree;
    tree.add("f", EntryKind::folder);
    tree.add("f/link0", EntryKind::link, ".");
    for (int index = 1; index < 30; ++index) {
        const std::string before = "link" + std::to_string(index - 1);
        tree.add("f/link" + std::to_string(index), EntryKind::link, before + "/" + before);
    }
    EXPECT_THROW(tree.checkLinks(), DiskImageFailure);
}

} // namespace
} // namespace lumora::platform::linux_backend
