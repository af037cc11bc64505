#pragma once

#include "api/api_handler.h"
#include "config/session_details.h"
#include "fakes/core_test.h"
#include "fakes/log_lines.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace lumora {

/// A handler that stands already, a session with a server and versions, and a completion that keeps its answers.
class UpdateCheckTest : public CoreTest {
  protected:
    UpdateCheckTest() {
        session.setWebServerName("com.ovratessel.example");
        session.setLocalOvraAppVersion("3.1");
        session.setLocalOvraLumoraAppVersion("1.0.0");
        static_cast<void>(ApiHandler::getInstance());
        forgetLines();
    }

    ApiHandler::Completion keepAnswer() {
        return [this](bool applied) { answers.push_back(applied); };
    }

    SessionDetails& session = SessionDetails::getInstance();
    std::vector<bool> answers;
};

} // namespace lumora
