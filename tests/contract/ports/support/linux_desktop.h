#pragma once

#include "support/temporary_folder.h"

#include <fmt/format.h>

#include <cstdlib>
#include <string>

namespace lumora::contract {

/// The desktop's own configuration, in place before GIO first looks for it: a program that handles the addresses of one
/// scheme. A test puts the program there.
class LinuxDesktop {
  public:
    static constexpr const char* kScheme = "lumoratest";

    [[nodiscard]] static const LinuxDesktop& instance() {
        static const LinuxDesktop desktop;
        return desktop;
    }

    /// The program's place; its one argument is the address.
    [[nodiscard]] std::string handler() const { return folder_ / "handler.sh"; }

    /// Makes a shell script the program.
    void handleBy(const std::string& script) const {
        writeFile(handler(), "#!/bin/sh\n" + script);
        std::filesystem::permissions(handler(), std::filesystem::perms(0755));
    }

  private:
    LinuxDesktop() {
        std::filesystem::create_directories(folder_ / "data/applications");
        std::filesystem::create_directories(folder_ / "config");
        ::setenv("XDG_DATA_HOME", (folder_ / "data").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
        ::setenv("XDG_DATA_DIRS", (folder_ / "none").c_str(), 1);
        ::setenv("XDG_CONFIG_DIRS", (folder_ / "none").c_str(), 1);
        ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
        writeFile(folder_ / "data/applications/handler.desktop",
                  fmt::format("[Desktop Entry]\nType=Application\nName=Handler\nExec={} %u\n"
                              "MimeType=x-scheme-handler/{};\n",
                              handler(), kScheme));
        writeFile(folder_ / "config/mimeapps.list",
                  fmt::format("[Default Applications]\nx-scheme-handler/{}=handler.desktop\n", kScheme));
        handleBy("");
    }

    TemporaryFolder folder_;
};

} // namespace lumora::contract
