// How copying a bundle-like folder compares with the system's own copy of everything (cp -a), in the same run and on
// the same file system. Prints the ratio of the two medians: 1.0 is as quick, less is quicker.
//
//   copy_bundle [ROUNDS]     below the folder for temporary files

#include "platform/linux/ports/linux_file_manager.h"
#include "platform/linux/ports/linux_task_runner.h"

#include <fmt/core.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace lumora::platform;
using namespace lumora::platform::linux_backend;

constexpr int kFolders = 20;
constexpr int kFilesPerFolder = 50;
constexpr std::size_t kSmallFile = 4 * 1024;
constexpr std::size_t kLargeFile = 32 * 1024 * 1024;

void makeBundle(const std::filesystem::path& bundle) {
    for (int folder = 0; folder < kFolders; ++folder) {
        const auto place = bundle / "Contents" / fmt::format("Resources{}", folder);
        std::filesystem::create_directories(place);
        for (int file = 0; file < kFilesPerFolder; ++file)
            std::ofstream(place / fmt::format("file{}", file)) << std::string(kSmallFile, 'x');
    }
    std::ofstream(bundle / "Contents" / "executable") << std::string(kLargeFile, 'y');
}

double secondsOf(const std::function<bool()>& work) {
    const auto start = std::chrono::steady_clock::now();
    if (!work()) {
        fmt::print(stderr, "copy_bundle: a copy failed\n");
        std::exit(1);
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

} // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 9;
    std::string pattern = (std::filesystem::temp_directory_path() / "copy-bundle-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        return 1;
    const std::filesystem::path scratch(pattern);
    const auto source = scratch / "Source.app";
    const auto copy = scratch / "Copy.app";
    makeBundle(source);

    LinuxFileManager files{HomeFolder(scratch.string())};
    linux_backend::LinuxTaskRunner tools(linux_backend::currentEnvironment());
    const auto own = [&] { return static_cast<bool>(files.copyItem(source.string(), copy.string())); };
    const auto systems = [&] {
        const auto result = tools.run("/bin/cp", {"-a", source.string(), copy.string()}, TaskOutput::discard);
        return result && result.value().terminationStatus == 0;
    };

    std::vector<double> ownTimes;
    std::vector<double> systemTimes;
    for (int round = 0; round < rounds; ++round) { // in turn: what slows the machine slows both
        ownTimes.push_back(secondsOf(own));
        std::filesystem::remove_all(copy);
        systemTimes.push_back(secondsOf(systems));
        std::filesystem::remove_all(copy);
    }
    std::filesystem::remove_all(scratch);
    fmt::print("copy_bundle: {} files, {} rounds: copyItem {:.1f} ms, cp -a {:.1f} ms, ratio {:.2f}\n",
               kFolders * kFilesPerFolder + 1, rounds, median(ownTimes) * 1e3, median(systemTimes) * 1e3,
               median(ownTimes) / median(systemTimes));
    return 0;
}
