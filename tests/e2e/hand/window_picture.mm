#include "window_picture.h"

#include <CoreGraphics/CoreGraphics.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <type_traits>
#include <vector>

namespace lumora::hand {

namespace {

constexpr std::size_t kBytes = 4; // red, green, blue, and one that says nothing

template <class Reference, void (*release)(Reference)> struct Releaser {
    void operator()(Reference reference) const { release(reference); }
};
template <class Reference, void (*release)(Reference)>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Releaser<Reference, release>>;

// As the window server shows it, the engine's own processes' parts too; of a process's own windows this takes
// no permission. In the page's colours: the screen's profile is taken out again.
std::vector<unsigned char> pixelsOf(NSWindow* window) {
    const Owned<CGImageRef, CGImageRelease> image(CGWindowListCreateImage(
        CGRectNull, kCGWindowListOptionIncludingWindow, static_cast<CGWindowID>(window.windowNumber),
        kCGWindowImageBoundsIgnoreFraming | kCGWindowImageNominalResolution));
    if (image == nullptr)
        return {};
    const std::size_t width = CGImageGetWidth(image.get());
    const std::size_t height = CGImageGetHeight(image.get());
    std::vector<unsigned char> pixels(width * height * kBytes);
    const Owned<CGColorSpaceRef, CGColorSpaceRelease> colours(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    const Owned<CGContextRef, CGContextRelease> context(
        CGBitmapContextCreate(pixels.data(), width, height, 8, width * kBytes, colours.get(),
                              static_cast<uint32_t>(kCGImageAlphaNoneSkipLast)));
    if (context == nullptr)
        return {};
    CGContextDrawImage(context.get(),
                       CGRectMake(0, 0, static_cast<CGFloat>(width), static_cast<CGFloat>(height)),
                       image.get());
    return pixels;
}

} // namespace

NSDictionary* countedColours(NSWindow* window, NSArray<NSArray<NSNumber*>*>* colours, int tolerance) {
    const auto pixels = pixelsOf(window);
    NSMutableArray<NSNumber*>* counts = [NSMutableArray array];
    for (NSArray<NSNumber*>* colour in colours) {
        const std::array wanted{colour[0].intValue, colour[1].intValue, colour[2].intValue};
        long count = 0;
        for (std::size_t at = 0; at + kBytes <= pixels.size(); at += kBytes) {
            bool near = true;
            for (std::size_t part = 0; part < wanted.size(); ++part)
                near = near && std::abs(pixels[at + part] - wanted[part]) <= tolerance;
            count += near ? 1 : 0;
        }
        [counts addObject:@(count)];
    }
    return @{@"pixels" : @(pixels.size() / kBytes), @"counts" : counts};
}

} // namespace lumora::hand
