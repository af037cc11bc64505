#include "private_world.h"

#include <fmt/format.h>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace lumora::testing {
namespace {

constexpr int kImpossible = 125;
constexpr int kUsage = 64;

void require(bool done, const char* what) {
    if (!done) {
        std::fprintf(stderr, "%s: %s\n", what, std::strerror(errno));
        std::fflush(stderr);
        ::_exit(kImpossible);
    }
}

void becomeRootOfOwnNamespace() {
    const auto user = ::geteuid();
    const auto group = ::getegid();
    require(::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "user namespace");
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << fmt::format("0 {} 1", user);
    std::ofstream("/proc/self/gid_map") << fmt::format("0 {} 1", group);
}

} // namespace

PrivateWorld::PrivateWorld(const std::filesystem::path& scratch, const std::filesystem::path& volumes)
    : root_(scratch / "world"), volumes_(volumes) {
    probe();
}

PrivateWorld::PrivateWorld(const std::filesystem::path& scratch, NoVolumes /*noVolumes*/)
    : root_(scratch / "world") {
    probe();
}

PrivateWorld::PrivateWorld(const std::filesystem::path& scratch, SmallVolumes smallVolumes)
    : root_(scratch / "world"), volumesBytes_(smallVolumes.bytes) {
    probe();
}

void PrivateWorld::probe() {
    std::filesystem::create_directories(root_);
    // Without arguments the program explains itself, if it can be run at all.
    if (const Outcome outcome = hdiutil({}); outcome.status != kUsage) {
        obstacle_ = "no private world: " + outcome.standardError;
    }
}

Outcome PrivateWorld::hdiutil(const std::vector<std::string>& arguments) const {
    return run(LUMORA_HDIUTIL, arguments);
}

Outcome PrivateWorld::run(const std::string& program, const std::vector<std::string>& arguments) const {
    return runProgram(program, arguments, [this] { enter(); });
}

void PrivateWorld::enter() const {
    if (::geteuid() == 0) {
        require(::unshare(CLONE_NEWNS) == 0, "mount namespace");
    } else {
        becomeRootOfOwnNamespace();
    }
    require(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "private mounts");
    require(::mount("tmpfs", root_.c_str(), "tmpfs", 0, nullptr) == 0, "root folder");
    for (const auto& entry : std::filesystem::directory_iterator("/")) {
        const auto copy = root_ / entry.path().filename();
        if (entry.path() == "/Volumes") {
            continue;
        }
        if (entry.is_symlink()) {
            std::filesystem::copy_symlink(entry.path(), copy);
        } else if (entry.is_directory()) {
            std::filesystem::create_directory(copy);
            require(::mount(entry.path().c_str(), copy.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0,
                    "bound folder");
        }
    }
    const auto volumes = root_ / "Volumes";
    if (volumes_) {
        std::filesystem::create_directory(volumes);
        require(::mount(volumes_->c_str(), volumes.c_str(), nullptr, MS_BIND, nullptr) == 0, "volumes");
    } else if (volumesBytes_ > 0) {
        std::filesystem::create_directory(volumes);
        const std::string options = fmt::format("size={}", volumesBytes_);
        require(::mount("tmpfs", volumes.c_str(), "tmpfs", 0, options.c_str()) == 0, "volumes");
    }
    require(::chroot(root_.c_str()) == 0 && ::chdir("/") == 0, "new root");
}

} // namespace lumora::testing
