#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstdlib>
#include <string_view>

int main(int argc, char** argv) {
    const bool listsOnly = argc > 1 && std::string_view(argv[1]) == "--gtest_list_tests";
    ::testing::InitGoogleTest(&argc, argv);
    if (!listsOnly) {
        g_set_prgname("lumora-web-view-tests");
        gtk_init();
    }
    // The engine's threads still run: the end of the process is theirs too.
    std::_Exit(RUN_ALL_TESTS());
}
