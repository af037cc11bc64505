#include "image_maker.h"

#include "processes.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace lumora::testing {

void makeImage(const std::filesystem::path& tree, const std::string& volumeName,
               const std::filesystem::path& image, const std::vector<std::string>& moreOptions) {
    std::vector<std::string> arguments{"-as", "mkisofs",  "-quiet", "-R",
                                       "-V",  volumeName, "-o",     image.string()};
    arguments.insert(arguments.end(), moreOptions.begin(), moreOptions.end());
    arguments.push_back(tree.string());
    const Outcome outcome = runProgram(LUMORA_XORRISO, arguments);
    if (outcome.status != 0) {
        throw std::runtime_error("xorriso: " + outcome.standardError);
    }
}

void writeFile(const std::filesystem::path& file, std::string_view contents) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    if (!stream.flush()) {
        throw std::runtime_error("cannot write " + file.string());
    }
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("cannot read " + file.string());
    }
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string noise(std::size_t size, unsigned seed) {
    std::mt19937 generator(seed);
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(generator() & 0xff);
    }
    return bytes;
}

} // namespace lumora::testing
