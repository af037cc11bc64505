#pragma once

#include "platform/http_session.h"
#include "platform/task.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

/// What the agent's and the application's own disk image have in common on their way to this machine.

/// Posted on the local notification centre, with the downloader as its sender, when a download fails. The name is
/// spelled so.
inline constexpr const char* kRetryDownloadNotification = "RetryDMGDownloadig";

/// A request for an image: large, from servers that may stall for minutes.
[[nodiscard]] platform::HttpRequest imageRequest(std::optional<std::string> url);

/// Starts a download in an ephemeral session of its own. Returns at once; the completion runs on that session's
/// thread.
void startImageDownload(platform::HttpRequest request, platform::HttpDownloadCompletion completion);

/// Puts a finished download's file in the place of whatever stands at the destination, and logs the outcome under the
/// operation's name. Only during the download's completion: the file is gone afterwards.
/// @return whether the image stands at the destination.
[[nodiscard]] bool saveDownloadedImage(std::string_view operation, const platform::HttpDownload& download,
                                       const std::string& destination);

/// Runs the platform's disk-image tool and waits for its end.
/// @throws std::runtime_error when the tool never started.
platform::TaskResult runImageTool(const std::vector<std::string>& arguments,
                                  platform::TaskOutput output = platform::TaskOutput::discard);

} // namespace lumora
