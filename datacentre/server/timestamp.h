#pragma once

#include <string>

namespace datacentre {

/// Now, as "2024-05-06T07:08:09.123Z".
[[nodiscard]] std::string timestamp();

} // namespace datacentre
