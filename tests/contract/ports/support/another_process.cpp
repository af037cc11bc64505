#include "support/another_process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>

extern char** environ;

namespace lumora::contract {

namespace {

constexpr unsigned kDeadlineSeconds = 90;

std::string& program() {
    static std::string path;
    return path;
}

} // namespace

AnotherProcess::AnotherProcess(const std::vector<std::string>& arguments, const std::string& program) {
    const std::string path = program.empty() ? thisProgram() : program;
    std::vector<char*> words{const_cast<char*>(path.c_str())}; // read only
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);

    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        return;
    for (const int end : ends)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    if (const int error = ::posix_spawn(&process_, path.c_str(), &actions, nullptr, words.data(), environ)) {
        ADD_FAILURE() << path << " does not start: error " << error;
        process_ = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    output_ = ends[0];
}

AnotherProcess::~AnotherProcess() {
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    if (output_ >= 0)
        ::close(output_);
}

bool AnotherProcess::readMore() {
    std::array<char, 4096> chunk{};
    ssize_t count = -1;
    do {
        count = ::read(output_, chunk.data(), chunk.size());
    } while (count < 0 && errno == EINTR);
    if (count <= 0)
        return false;
    received_.append(chunk.data(), static_cast<std::size_t>(count));
    return true;
}

std::string AnotherProcess::nextLine() {
    while (received_.find('\n') == std::string::npos && readMore())
        ;
    const std::size_t end = received_.find('\n');
    const std::string line = received_.substr(0, end);
    received_.erase(0, end == std::string::npos ? end : end + 1);
    return line;
}

std::string AnotherProcess::output() {
    while (readMore())
        ;
    int status = -1;
    while (process_ > 0 && ::waitpid(process_, &status, 0) < 0 && errno == EINTR)
        ;
    process_ = -1;
    if (WIFSIGNALED(status))
        received_ += " [ended by signal " + std::to_string(WTERMSIG(status)) + "]";
    else if (status != 0)
        received_ += " [ended with status " + std::to_string(WEXITSTATUS(status)) + "]";
    return received_;
}

const std::string& thisProgram() { return program(); }

int runContract(int argc, char** argv) {
    program() = std::filesystem::canonical(argv[0]).string();
    if (argc > 1 && argv[1][0] != '-') {
        ::alarm(kDeadlineSeconds);
        return asAnotherProcess({argv + 1, argv + argc});
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}

} // namespace lumora::contract
