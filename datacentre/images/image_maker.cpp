#include "images/image_maker.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace datacentre {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void throwErrno(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

std::string readText(const fs::path& file) {
    const std::ifstream input(file, std::ios::binary);
    return (std::ostringstream() << input.rdbuf()).str();
}

// Runs a program with both output streams going to a file; answers its exit status, 128 and more for a signal.
int run(const std::vector<std::string>& words, const fs::path& output) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const auto& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    pid_t child = 0;
    const int failure =
        posix_spawnp(&child, words.front().c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0)
        throw std::system_error(failure, std::generic_category(), "starting " + words.front());

    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            throwErrno("waiting for " + words.front());
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

ScratchFolder::ScratchFolder() {
    std::string pattern = (fs::temp_directory_path() / "datacentre-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throwErrno("making a temporary folder");
    path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
    std::error_code leftBehind; // nothing better can be done about it here
    fs::remove_all(path_, leftBehind);
}

void writeFile(const fs::path& file, std::string_view content, unsigned mode) {
    fs::create_directories(file.parent_path());
    std::ofstream output(file, std::ios::binary | std::ios::trunc);
    output.write(content.data(), static_cast<std::streamsize>(content.size()));
    output.close();
    if (!output)
        throw std::runtime_error(fmt::format("cannot write {}", file.string()));
    fs::permissions(file, fs::perms(mode));
}

void makeImage(const fs::path& folder, const std::string& volumeName, const fs::path& image) {
    const ScratchFolder scratch;
    const fs::path log = scratch.path() / "xorriso.log";
    const fs::path unfinished = fmt::format("{}.{}.new", image.string(), getpid());
    fs::remove(unfinished);
    const int status =
        run({"xorriso", "-as", "mkisofs", "-R", "-V", volumeName, "-o", unfinished.string(), folder.string()},
            log);
    if (status != 0) {
        fs::remove(unfinished);
        throw std::runtime_error(fmt::format("xorriso ended with status {}:\n{}", status, readText(log)));
    }
    fs::rename(unfinished, image);
}

} // namespace datacentre
