#include "images/tool.h"

#include "images/image_maker.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

extern char** environ; // NOLINT(readability-redundant-declaration): not every system declares it

namespace datacentre {

namespace fs = std::filesystem;

namespace {

std::string readText(const fs::path& file) {
    const std::ifstream input(file, std::ios::binary);
    return (std::ostringstream() << input.rdbuf()).str();
}

// Both output streams go to a file; answers the exit status, 128 and more for a signal.
int statusOf(const std::vector<std::string>& words, const fs::path& output) {
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
            throw std::system_error(errno, std::generic_category(), "waiting for " + words.front());
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

void runTool(const std::vector<std::string>& words) {
    const ScratchFolder scratch;
    const fs::path log = scratch.path() / "log";
    if (const int status = statusOf(words, log); status != 0)
        throw std::runtime_error(
            fmt::format("{} ended with status {}:\n{}", words.front(), status, readText(log)));
}

} // namespace datacentre
