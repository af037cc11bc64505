#pragma once

#include "platform/main_loop.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace lumora {

/// Points the standard streams at the log file and rotates it by size, ten times a second, for the whole run.
/// Main thread. Made with std::make_shared: its timer shares it.
class LogHandler : public std::enable_shared_from_this<LogHandler> {
  public:
    /// Where the log files lie, with a trailing slash. Known before the folder is made.
    [[nodiscard]] static std::string logFolder();

    /// Sets and creates the log folder, makes one rotation pass and starts the timer.
    void createOvraLumoraLogFolder();

    /// Starts the repeating timer. The timer keeps this handler alive.
    void startLoggingTimer();

    /// One redirection and rotation pass; the timer is not used.
    void loggingFile(platform::Timer* timer);

    [[nodiscard]] std::int32_t logFileNameCount() const { return logFileNameCount_; }
    void setLogFileNameCount(std::int32_t count) { logFileNameCount_ = count; }
    [[nodiscard]] const std::string& ovraLumoraLogFolder() const { return ovraLumoraLogFolder_; }
    void setOvraLumoraLogFolder(std::string folder) { ovraLumoraLogFolder_ = std::move(folder); }
    [[nodiscard]] platform::Timer* loggingTimer() const { return loggingTimer_.get(); }
    void setLoggingTimer(std::unique_ptr<platform::Timer> timer) { loggingTimer_ = std::move(timer); }

  private:
    void rotate(const std::string& liveLog);

    std::int32_t logFileNameCount_ = 0; ///< highest backup index in use in this run, at most 10
    std::string ovraLumoraLogFolder_;   ///< with a trailing slash
    std::unique_ptr<platform::Timer> loggingTimer_;
};

} // namespace lumora
