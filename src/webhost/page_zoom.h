#pragma once

#include <algorithm>

namespace lumora {

/// The zoom levels of the page that the View menu steps through; 1 is its actual size.
inline constexpr double kPageZoomStep = 1.1;
inline constexpr double kSmallestPageZoom = 0.5;
inline constexpr double kLargestPageZoom = 3.0;

[[nodiscard]] constexpr double zoomedIn(double level) {
    return std::clamp(level * kPageZoomStep, kSmallestPageZoom, kLargestPageZoom);
}

[[nodiscard]] constexpr double zoomedOut(double level) {
    return std::clamp(level / kPageZoomStep, kSmallestPageZoom, kLargestPageZoom);
}

} // namespace lumora
