#pragma once

#include "platform/http_session.h"

#include <optional>

namespace lumora {

/// Why a request is not even tried, on any backend; absent when it is. Systems would guess a scheme where none is given,
/// speak many others, and send a head whose texts reach beyond their places.
[[nodiscard]] std::optional<platform::Error> refusalOf(const platform::HttpRequest& request);

/// Sends over a session of the platform's usual kind and blocks the calling thread until the answer or its time-out.
[[nodiscard]] platform::HttpAnswer sendAndWait(platform::HttpSessions& sessions,
                                               const platform::HttpRequest& request);

} // namespace lumora
