#pragma once

#include "platform/path_monitor.h"

#include <memory>
#include <vector>

namespace lumora::fakes {

class FakePathMonitors final : public platform::PathMonitors {
  public:
    struct State {
        std::function<void(platform::PathStatus)> handler;
        int starts = 0;
        bool cancelled = false;
    };

    std::vector<std::shared_ptr<State>> made; ///< every monitor ever made, in order

    std::unique_ptr<platform::PathMonitor> makePathMonitor() override {
        made.push_back(std::make_shared<State>());
        return std::make_unique<Monitor>(made.back());
    }

    /// Reports a path update to the newest monitor's handler.
    void update(platform::PathStatus status) { made.back()->handler(status); }

  private:
    class Monitor final : public platform::PathMonitor {
      public:
        explicit Monitor(std::shared_ptr<State> state) : state_(std::move(state)) {}
        void setUpdateHandler(std::function<void(platform::PathStatus)> handler) override {
            state_->handler = std::move(handler);
        }
        void start() override { ++state_->starts; }
        void cancel() override { state_->cancelled = true; }

      private:
        std::shared_ptr<State> state_;
    };
};

} // namespace lumora::fakes
