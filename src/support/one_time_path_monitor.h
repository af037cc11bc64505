#pragma once

#include "platform/path_monitor.h"

#include <memory>

namespace lumora {

/// What the path monitors of every backend do alike: they begin once, end once and for all, and tell each update to the
/// handler of that moment, after their end to nobody. Started and cancelled on one thread; derived classes cancel as they
/// end.
class OneTimePathMonitor : public platform::PathMonitor {
  public:
    OneTimePathMonitor();
    ~OneTimePathMonitor() override;
    OneTimePathMonitor(const OneTimePathMonitor&) = delete;
    OneTimePathMonitor& operator=(const OneTimePathMonitor&) = delete;

    void setUpdateHandler(std::function<void(platform::PathStatus)> handler) final;
    void start() final;
    void cancel() final;

  protected:
    /// Begins to watch. The report may be called on any thread, one call at a time, also when the monitor has gone.
    virtual void begin(std::function<void(platform::PathStatus)> report) = 0;

    /// Ends what was begun.
    virtual void end() = 0;

  private:
    class Reporter;
    enum class State { fresh, begun, ended };

    const std::shared_ptr<Reporter> reporter_;
    State state_ = State::fresh;
};

} // namespace lumora
