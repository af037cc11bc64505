#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace lumora::testing {

/// Makes an image of the folder with xorriso, the way release images are made. Throws if xorriso fails.
void makeImage(const std::filesystem::path& tree, const std::string& volumeName,
               const std::filesystem::path& image, const std::vector<std::string>& moreOptions = {});

void writeFile(const std::filesystem::path& file, std::string_view contents);
[[nodiscard]] std::string readFile(const std::filesystem::path& file);

/// Bytes without a pattern, the same for the same seed.
[[nodiscard]] std::string noise(std::size_t size, unsigned seed);

} // namespace lumora::testing
