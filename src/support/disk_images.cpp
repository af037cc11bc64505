#include "support/disk_images.h"

#include "platform/file_manager.h"
#include "platform/ports.h"
#include "support/log.h"
#include "support/rendering.h"

#include <stdexcept>

namespace lumora {

namespace {

constexpr const char* kImageTool = "/usr/bin/hdiutil";
constexpr std::chrono::seconds kImageTimeout{240};

} // namespace

platform::HttpRequest imageRequest(std::optional<std::string> url) {
    platform::HttpRequest request;
    request.url = std::move(url);
    request.timeout = kImageTimeout;
    return request;
}

void startImageDownload(platform::HttpRequest request, platform::HttpDownloadCompletion completion) {
    platform::HttpSessionConfiguration configuration;
    configuration.kind = platform::HttpSessionKind::ephemeral;
    configuration.minimumTls = platform::TlsVersion::tls12;
    platform::ports()
        .httpSessions->makeSession(configuration)
        ->startDownloadTask(std::move(request), std::move(completion));
}

bool saveDownloadedImage(std::string_view operation, const platform::HttpDownload& download,
                         const std::string& destination) {
    auto& files = *platform::ports().fileManager;
    static_cast<void>(
        files.removeItem(destination)); // usually nothing is there; the copy tells if it matters
    const auto copied = files.copyItem(download.temporaryFile.value_or(""), destination);
    if (!copied) {
        log("{} : Error copying file to destination - {}", operation, render(copied.error()));
        return false;
    }
    log("{} : Download finished successfully", operation);
    return true;
}

platform::TaskResult runImageTool(const std::vector<std::string>& arguments, platform::TaskOutput output) {
    auto result = platform::ports().tasks->run(kImageTool, arguments, output);
    if (!result)
        throw std::runtime_error(result.error().localizedDescription);
    return std::move(result.value());
}

} // namespace lumora
