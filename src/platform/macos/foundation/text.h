#pragma once

#include "platform/result.h"

#import <Foundation/Foundation.h>
#include <string>
#include <string_view>
#include <vector>

namespace lumora::platform::macos_backend {

/// Bytes as the platform holds them, and back; nil is none.
inline NSData* dataOf(std::string_view bytes) {
    return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}
inline std::string bytesOf(NSData* data) { return {static_cast<const char*>(data.bytes), data.length}; }

/// The text as the platform holds it; bytes that are no UTF-8 give an empty one.
inline NSString* nsString(const std::string& text) {
    NSString* converted = [[NSString alloc] initWithBytes:text.data()
                                                   length:text.size()
                                                 encoding:NSUTF8StringEncoding];
    return converted != nil ? converted : @"";
}

/// The text in UTF-8, whole, with any NUL in it; nil is empty.
inline std::string textOf(NSString* text) { return bytesOf([text dataUsingEncoding:NSUTF8StringEncoding]); }

/// Texts as the platform holds them.
inline NSArray<NSString*>* listOf(const std::vector<std::string>& texts) {
    NSMutableArray<NSString*>* list = [NSMutableArray arrayWithCapacity:texts.size()];
    for (const std::string& text : texts)
        [list addObject:nsString(text)];
    return list;
}

/// A platform error as the core's; nil, which no failure should give, is one without domain.
inline Error errorOf(NSError* error) {
    NSString* failing = [error.userInfo objectForKey:NSURLErrorFailingURLStringErrorKey];
    if (failing == nil) // told as an address alone
        failing = [[error.userInfo objectForKey:NSURLErrorFailingURLErrorKey] absoluteString];
    return {textOf(error.domain), static_cast<int>(error.code), textOf(error.localizedDescription),
            failing == nil ? std::nullopt : std::optional(textOf(failing))};
}

} // namespace lumora::platform::macos_backend
