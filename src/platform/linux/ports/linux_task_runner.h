#pragma once

#include "platform/linux/ports/child_process.h"
#include "platform/task.h"

#include <map>

namespace lumora::platform::linux_backend {

/// Runs tools as child processes.
class LinuxTaskRunner final : public TaskRunner {
  public:
    /// @param substitutions  the tool to run in place of another, e.g. the bundle's own for "/usr/bin/hdiutil"
    explicit LinuxTaskRunner(Environment environment, std::map<std::string, std::string> substitutions = {});

    Result<TaskResult> run(const std::string& executable, const std::vector<std::string>& arguments,
                           TaskOutput output) override;

  private:
    const Environment environment_;
    const std::map<std::string, std::string> substitutions_;
};

} // namespace lumora::platform::linux_backend
