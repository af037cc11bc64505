#pragma once

#include "agent/join_details.h"

namespace datacentre::agent {

// Shows the session's window and returns when the user has closed it (by its button or Escape). Returns at once when there
// is no display. Main thread.
void showAgentWindow(const JoinDetails& details);

} // namespace datacentre::agent
