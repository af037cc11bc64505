#pragma once

#include "platform/property_list.h"
#include "platform/workspace.h"

#include <memory>
#include <string>

namespace lumora::contract {

/// What the desktop knows of applications, for the time of a test. One implementation a backend.
class WorkspaceWorld {
  public:
    WorkspaceWorld();
    ~WorkspaceWorld();
    WorkspaceWorld(const WorkspaceWorld&) = delete;
    WorkspaceWorld& operator=(const WorkspaceWorld&) = delete;

    [[nodiscard]] platform::Workspace& workspace();

    /// A scheme that no other application handles.
    [[nodiscard]] std::string scheme() const;

    /// Makes a bundle, whose Info.plist tells the scheme, the application that handles the scheme.
    void registerHandler(const std::string& bundle);

    /// Whether the system asks a person what is to become of an address that no application handles.
    [[nodiscard]] static bool asksAPerson();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumora::contract
