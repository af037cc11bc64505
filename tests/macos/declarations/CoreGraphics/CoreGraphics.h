// What the end-to-end tests' hand uses of Core Graphics, as its headers declare it.
#pragma once

#include <os/availability.h>
#include <stddef.h>
#include <stdint.h>

#import <AppKit/AppKit.h>
#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct CGImage* CGImageRef;
typedef struct CGContext* CGContextRef;
typedef struct CGColorSpace* CGColorSpaceRef;
typedef uint32_t CGWindowID;

typedef uint32_t CGWindowListOption;
enum {
    kCGWindowListOptionIncludingWindow = (1 << 3),
};

typedef uint32_t CGWindowImageOption;
enum {
    kCGWindowImageBoundsIgnoreFraming = (1 << 0),
    kCGWindowImageNominalResolution = (1 << 4),
};

typedef uint32_t CGImageAlphaInfo;
enum {
    kCGImageAlphaNoneSkipLast = 5,
};

extern const CGRect CGRectNull;
extern const CFStringRef kCGColorSpaceSRGB API_AVAILABLE(macos(10.5));

static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    return NSMakeRect(x, y, width, height);
}

CGImageRef CGWindowListCreateImage(CGRect screenBounds, CGWindowListOption listOption, CGWindowID windowID,
                                   CGWindowImageOption imageOption)
    API_DEPRECATED("Please use ScreenCaptureKit instead.", macos(10.5, 14.0));
size_t CGImageGetWidth(CGImageRef image);
size_t CGImageGetHeight(CGImageRef image);
void CGImageRelease(CGImageRef image);

CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name);
void CGColorSpaceRelease(CGColorSpaceRef space);

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space, uint32_t bitmapInfo);
void CGContextDrawImage(CGContextRef c, CGRect rect, CGImageRef image);
void CGContextRelease(CGContextRef c);

#ifdef __cplusplus
}
#endif
