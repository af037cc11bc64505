#pragma once

#include "platform/task.h"

namespace lumora::platform::macos_backend {

/// `NSTask`. Its tools get this process's environment.
class FoundationTasks final : public TaskRunner {
  public:
    Result<TaskResult> run(const std::string& executable, const std::vector<std::string>& arguments,
                           TaskOutput output) override;
};

} // namespace lumora::platform::macos_backend
