#pragma once

#include "support/eventually.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>

namespace lumora::contract {

/// A session bus of the test's own.
class SessionBus {
  public:
    explicit SessionBus(const std::string& socket) : address_("unix:path=" + socket) {
        child_ = ::fork();
        if (child_ == 0) {
            ::execl("/usr/bin/dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile",
                    ("--address=" + address_).c_str(), nullptr);
            ::_exit(127);
        }
        EXPECT_TRUE(eventually([&] { return std::filesystem::exists(socket); }));
    }
    ~SessionBus() {
        ::kill(child_, SIGTERM);
        ::waitpid(child_, nullptr, 0);
    }
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }

  private:
    const std::string address_;
    pid_t child_;
};

} // namespace lumora::contract
