#include "platform/linux/ports/temporary_file.h"

#include "platform/posix/abandoned_entries.h"
#include "platform/posix/posix_files.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

using posix_backend::holdNewEntry;
using posix_backend::removeAbandonedEntries;
using posix_backend::writeAll;

constexpr std::string_view kPrefix = "lumora-download-";
constexpr std::string_view kPattern = "XXXXXX";
constexpr int kAttempts = 100; // each fails only when another process sweeps the folder at that very moment

std::string temporaryFolder() {
    std::error_code missing;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(missing);
    return missing ? "/tmp" : folder.string();
}

bool isOurs(std::string_view name) {
    return name.size() == kPrefix.size() + kPattern.size() && name.starts_with(kPrefix);
}

} // namespace

TemporaryFile::TemporaryFile() {
    const std::string folder = temporaryFolder();
    removeAbandonedEntries(folder, isOurs);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        path_ = fmt::format("{}/{}{}", folder, kPrefix, kPattern);
        file_.reset(::mkostemp(path_.data(), O_CLOEXEC));
        if (!file_ || holdNewEntry(file_.get(), path_))
            return;
    }
    file_.reset();
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : path_(std::exchange(other.path_, {})), file_(std::move(other.file_)) {}

TemporaryFile::~TemporaryFile() {
    if (file_)
        ::unlink(path_.c_str());
}

bool TemporaryFile::append(std::string_view bytes) { return writeAll(file_.get(), bytes) == 0; }

} // namespace lumora::platform::linux_backend
