#pragma once

#include "agent/join_details.h"

namespace datacentre::agent {

/// Shows the session's window and returns when the user has closed it (by its button or Escape). Returns at once when
/// there is no display. Main thread.
void showAgentWindow(const JoinDetails& details);

/// Instead of a window: tells a system that waits for a started application to be ready that this one is. Main thread.
void standWithoutWindow();

} // namespace datacentre::agent
