#include "platform/linux/ports/linux_task_runner.h"

#include "platform/posix/posix_error.h"
#include "platform/posix/unique_fd.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::posixError;
using posix_backend::UniqueFd;

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;
};

Result<Pipe> makePipe() {
    std::array<int, 2> ends{-1, -1};
    // Closed on exec: a child that another thread starts meanwhile would keep the pipe from ever ending.
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return posixError(errno, "pipe");
    return Pipe{UniqueFd(ends[0]), UniqueFd(ends[1])};
}

std::string readToEnd(int descriptor) {
    std::string text;
    std::array<char, 16384> chunk{};
    for (;;) {
        const ssize_t count = ::read(descriptor, chunk.data(), chunk.size());
        if (count > 0)
            text.append(chunk.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return text;
    }
}

} // namespace

LinuxTaskRunner::LinuxTaskRunner(Environment environment, std::map<std::string, std::string> substitutions)
    : environment_(std::move(environment)), substitutions_(std::move(substitutions)) {}

Result<TaskResult> LinuxTaskRunner::run(const std::string& executable,
                                        const std::vector<std::string>& arguments, TaskOutput output) {
    const auto substitution = substitutions_.find(executable);
    ChildProcess child;
    child.executable = substitution == substitutions_.end() ? executable : substitution->second;
    child.arguments = arguments;
    child.environment = environment_;

    Pipe pipe;
    if (output == TaskOutput::capture) {
        Result<Pipe> made = makePipe();
        if (!made)
            return made.error();
        pipe = std::move(made.value());
        child.standardOutput = pipe.writeEnd.get();
    }

    const Result<pid_t> started = spawn(child);
    if (!started)
        return started.error();
    pipe.writeEnd.reset();

    TaskResult result;
    if (output == TaskOutput::capture)
        result.standardOutput = readToEnd(pipe.readEnd.get());
    const Result<int> status = waitForChild(started.value());
    if (!status)
        return status.error();
    result.terminationStatus = status.value();
    return result;
}

} // namespace lumora::platform::linux_backend
