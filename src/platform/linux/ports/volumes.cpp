#include "platform/linux/ports/volumes.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace lumora::platform::linux_backend {

int findVolumeObstacle(const std::string& path, const std::string& volumes) {
    const std::string folder = volumes + '/';
    if (!path.starts_with(folder))
        return 0;
    const std::size_t name = path.find_first_not_of('/', folder.size());
    if (name == std::string::npos)
        return 0;
    const std::string volume = path.substr(0, path.find('/', name));
    struct stat status {};
    if (::lstat(volume.c_str(), &status) != 0)
        return errno;
    return status.st_uid == 0 || status.st_uid == ::geteuid() ? 0 : EPERM;
}

} // namespace lumora::platform::linux_backend
