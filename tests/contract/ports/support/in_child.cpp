#include "support/in_child.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <exception>

namespace lumora::contract {

namespace {

constexpr uid_t kOrdinaryUser = 65534;
constexpr int kHighDescriptor = 200; // out of the way of bodies that look at the low ones
constexpr unsigned kDeadlineSeconds = 90;

std::string reportOf(const std::function<std::string()>& body) {
    try {
        return body();
    } catch (const std::exception& raised) {
        return std::string("raised: ") + raised.what();
    }
}

} // namespace

Child::Child(const std::function<std::string()>& body) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        return;
    for (const int end : ends)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    process_ = ::fork();
    if (process_ == 0) {
        ::alarm(kDeadlineSeconds);
        ::close(ends[0]);
        const int report = ::fcntl(ends[1], F_DUPFD_CLOEXEC, kHighDescriptor);
        ::close(ends[1]);
        const std::string text = reportOf(body);
        const bool told = ::write(report, text.data(), text.size()) == static_cast<ssize_t>(text.size());
        ::_exit(told ? 0 : 1);
    }

    ::close(ends[1]);
    reportEnd_ = ends[0];
}

std::string Child::report() {
    if (process_ < 0)
        return "no child";
    std::string text;
    std::array<char, 4096> chunk{};
    for (;;) {
        const ssize_t count = ::read(reportEnd_, chunk.data(), chunk.size());
        if (count > 0)
            text.append(chunk.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            break;
    }
    ::close(reportEnd_);

    int status = 0;
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR)
        ;
    if (WIFSIGNALED(status))
        return text + " [ended by signal " + std::to_string(WTERMSIG(status)) + "]";
    if (WEXITSTATUS(status) != 0)
        return text + " [ended with status " + std::to_string(WEXITSTATUS(status)) + "]";
    return text;
}

std::string inChild(const std::function<std::string()>& body) { return Child(body).report(); }

std::string killedAtItsFirstByte(const std::function<void()>& body) {
    const std::string report = inChild([&]() -> std::string {
        std::signal(SIGXFSZ, [](int) { ::raise(SIGKILL); });
        const rlimit nothing{0, 0};
        if (::setrlimit(RLIMIT_FSIZE, &nothing) != 0)
            return "no limit";
        body();
        return "not killed";
    });
    return report == " [ended by signal " + std::to_string(SIGKILL) + "]" ? "" : report;
}

std::string asOrdinaryUser(const std::function<std::string()>& body) {
    if (::geteuid() != 0)
        return body();
    return inChild([&body]() -> std::string {
        if (::setgid(kOrdinaryUser) != 0 || ::setuid(kOrdinaryUser) != 0)
            return "cannot become an ordinary user";
        return body();
    });
}

} // namespace lumora::contract
