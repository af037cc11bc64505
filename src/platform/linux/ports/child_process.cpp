#include "platform/linux/ports/child_process.h"

#include "platform/posix/posix_error.h"
#include "platform/task.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <thread>

extern "C" char** environ;

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::posixError;

class FileActions {
  public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void openNull(int number, int flags) {
        keep(posix_spawn_file_actions_addopen(get(), number, "/dev/null", flags, 0));
    }
    void duplicate(int from, int to) { keep(posix_spawn_file_actions_adddup2(get(), from, to)); }
    void closeFrom(int first) { keep(posix_spawn_file_actions_addclosefrom_np(get(), first)); }
    void enterFolder(const char* path) { keep(posix_spawn_file_actions_addchdir_np(get(), path)); }

    [[nodiscard]] posix_spawn_file_actions_t* get() { return &actions_; }
    [[nodiscard]] int error() const { return error_; }

  private:
    void keep(int error) { error_ = error_ == 0 ? error : error_; }

    posix_spawn_file_actions_t actions_{};
    int error_ = 0;
};

class Attributes {
  public:
    explicit Attributes(bool detached) {
        posix_spawnattr_init(&attributes_);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
        if (detached)
            flags |= POSIX_SPAWN_SETSID;
        posix_spawnattr_setflags(&attributes_, static_cast<short>(flags));
    }
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_{};
};

// The exec interface takes writable text that it does not write to.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

Environment currentEnvironment() {
    Environment environment;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry)
        environment.emplace_back(*entry);
    return environment;
}

Result<pid_t> spawn(const ChildProcess& child) {
    if (!child.executable.starts_with('/'))
        return posixError(ENOENT, child.executable);
    if (!arriveWhole(child.arguments))
        return posixError(EINVAL, child.executable);

    FileActions actions;
    actions.openNull(STDIN_FILENO, O_RDONLY);
    if (child.standardOutput >= 0)
        actions.duplicate(child.standardOutput, STDOUT_FILENO);
    else
        actions.openNull(STDOUT_FILENO, O_WRONLY);
    actions.openNull(STDERR_FILENO, O_WRONLY);
    actions.closeFrom(STDERR_FILENO + 1);
    if (child.detached)
        actions.enterFolder("/"); // or it would keep the caller's volume busy
    if (actions.error() != 0)
        return posixError(actions.error(), child.executable);

    std::vector<std::string> words = child.arguments;
    words.insert(words.begin(), child.executable);
    std::vector<std::string> environment = child.environment;
    const Attributes attributes(child.detached);

    pid_t identifier = 0;
    const int error = posix_spawn(&identifier, child.executable.c_str(), actions.get(), attributes.get(),
                                  pointersTo(words).data(), pointersTo(environment).data());
    if (error != 0)
        return posixError(error, child.executable);
    return identifier;
}

Result<int> waitForChild(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return posixError(errno, "waiting for a child process");
    }
    return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

void reapInBackground(pid_t child) {
    std::thread([child] {
        static_cast<void>(waitForChild(child));
    }).detach(); // how it ended is nobody's business
}

} // namespace lumora::platform::linux_backend
