#include "support/paths.h"

#include <gtest/gtest.h>

namespace lumora {
namespace {

TEST(Paths, joinsComponentsWithOneSlash) {
    EXPECT_EQ(appendPathComponent("/a/b", "c"), "/a/b/c");
    EXPECT_EQ(appendPathComponent("/a/b/", "c"), "/a/b/c");
    EXPECT_EQ(appendPathComponent("/a/b/", "/c d.app"), "/a/b/c d.app");
    EXPECT_EQ(appendPathComponent("/", "c"), "/c");
    EXPECT_EQ(appendPathComponent("", "c"), "c");
}

TEST(Paths, foldsEveryRunOfSlashes) { EXPECT_EQ(appendPathComponent("/a//b///", "//c//d/"), "/a/b/c/d"); }

TEST(Paths, endsInNoSlashButTheRootsOwn) {
    EXPECT_EQ(appendPathComponent("/a/", ""), "/a");
    EXPECT_EQ(appendPathComponent("/", ""), "/");
}

TEST(Paths, tellsTheLastComponent) {
    EXPECT_EQ(lastPathComponent("/a/Ovra.app"), "Ovra.app");
    EXPECT_EQ(lastPathComponent("/a//Ovra.app//"), "Ovra.app");
    EXPECT_EQ(lastPathComponent("Ovra.app"), "Ovra.app");
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
}

} // namespace
} // namespace lumora
