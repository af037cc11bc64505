#include "platform/linux/ports/temporary_file.h"

#include "platform/linux/ports/file_contents.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

std::string temporaryFolder() {
    std::error_code missing;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(missing);
    return missing ? "/tmp" : folder.string();
}

} // namespace

TemporaryFile::TemporaryFile() : path_(temporaryFolder() + "/lumora-download-XXXXXX") {
    file_.reset(::mkostemp(path_.data(), O_CLOEXEC));
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : path_(std::exchange(other.path_, {})), file_(std::move(other.file_)) {}

TemporaryFile::~TemporaryFile() {
    if (file_)
        ::unlink(path_.c_str());
}

bool TemporaryFile::append(std::string_view bytes) { return writeAll(file_.get(), bytes) == 0; }

} // namespace lumora::platform::linux_backend
