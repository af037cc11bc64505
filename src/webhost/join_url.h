#pragma once

#include "platform/web_view.h"

#include <string>

namespace lumora {

/// Whether the session record names a web server and a path that are more than white space.
[[nodiscard]] bool isWebServerNameAndPathKnown();

/// The join page's address from the session record as it is now: "https://SERVER/PATH", and "?lumora_token=TOKEN" when
/// there is a token that is not empty. Nothing is trimmed or escaped; whether it parses is the caller's question.
[[nodiscard]] std::string joinUrl();

/// How the join page is asked for: a cached copy is welcome, and ten seconds are enough.
[[nodiscard]] platform::PageRequest joinRequest(std::string url);

} // namespace lumora
