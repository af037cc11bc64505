#include "view_test.h"

#include <glib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace lumora::contract {

class CookiesOfAPage : public ViewTest {
  protected:
    const std::filesystem::path file_ =
        std::filesystem::path(g_get_user_data_dir()) / g_get_prgname() / "cookies.sqlite";

    [[nodiscard]] std::string stored() const {
        std::ostringstream bytes;
        bytes << std::ifstream(file_, std::ios::binary).rdbuf();
        return bytes.str();
    }
};

TEST_F(CookiesOfAPage, areStoredForTheUserAloneIfTheyAreToLast) {
    server.page("/page", "<title>page</title>");
    show(server.url("/page"));
    run("document.cookie = 'brief=until-the-end'");
    run("document.cookie = 'lasting=beyond-the-end; max-age=86400'");
    ASSERT_TRUE(runUntil([this] { return stored().find("beyond-the-end") != std::string::npos; }));
    EXPECT_EQ(stored().find("until-the-end"), std::string::npos);
    EXPECT_EQ(std::filesystem::status(file_).permissions(), std::filesystem::perms(0600));
}

} // namespace lumora::contract
