#include "processes.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace lumora::testing {
namespace {

struct Pipe {
    std::array<int, 2> ends{-1, -1};
    Pipe() {
        if (::pipe(ends.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
    }
};

void drain(std::array<pollfd, 2>& sources, std::array<std::string*, 2> sinks) {
    std::array<char, 4096> buffer{};
    for (int open = 2; open > 0;) {
        if (::poll(sources.data(), sources.size(), -1) < 0 && errno != EINTR) {
            throw std::runtime_error("poll failed");
        }
        for (std::size_t index = 0; index < sources.size(); ++index) {
            if (sources[index].fd < 0 || sources[index].revents == 0) {
                continue;
            }
            const ssize_t count = ::read(sources[index].fd, buffer.data(), buffer.size());
            if (count > 0) {
                sinks[index]->append(buffer.data(), static_cast<std::size_t>(count));
            } else {
                ::close(sources[index].fd);
                sources[index].fd = -1;
                --open;
            }
        }
    }
}

} // namespace

int startProcess(const std::function<int()>& body) {
    const pid_t process = ::fork();
    if (process < 0) {
        throw std::runtime_error("no process");
    }
    if (process == 0) {
        // Never returns into the test runner of the copy.
        int status = 99;
        try {
            status = body();
        } catch (...) {
            status = 98;
        }
        ::_exit(status);
    }
    return process;
}

int waitForProcess(int process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            throw std::runtime_error("no such process");
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

Outcome runProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const std::function<void()>& prepare) {
    const Pipe output;
    const Pipe errors;
    const int process = startProcess([&] {
        ::dup2(output.ends[1], STDOUT_FILENO);
        ::dup2(errors.ends[1], STDERR_FILENO);
        for (const int end : {output.ends[0], output.ends[1], errors.ends[0], errors.ends[1]}) {
            ::close(end);
        }
        prepare();
        std::vector<char*> words{const_cast<char*>(program.c_str())};
        for (const std::string& argument : arguments) {
            words.push_back(const_cast<char*>(argument.c_str()));
        }
        words.push_back(nullptr);
        ::execv(program.c_str(), words.data());
        return 127;
    });
    ::close(output.ends[1]);
    ::close(errors.ends[1]);
    Outcome outcome;
    std::array<pollfd, 2> sources{pollfd{output.ends[0], POLLIN, 0}, pollfd{errors.ends[0], POLLIN, 0}};
    drain(sources, {&outcome.standardOutput, &outcome.standardError});
    outcome.status = waitForProcess(process);
    return outcome;
}

} // namespace lumora::testing
