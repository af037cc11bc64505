// The macros by which macOS's headers tell since when something exists. clang enforces them for macOS targets.
#pragma once

#define LUMORA_SINCE_macos(version) macos, introduced = version
#define LUMORA_SINCE_macosx(version) macos, introduced = version
#define LUMORA_SINCE_ios(version) ios, introduced = version
#define LUMORA_SINCE_watchos(version) watchos, introduced = version
#define LUMORA_SINCE_tvos(version) tvos, introduced = version
#define LUMORA_SINCE(platform) __attribute__((availability(LUMORA_SINCE_##platform)))

#define LUMORA_UNTIL_macos(from, to) macos, introduced = from, deprecated = to
#define LUMORA_UNTIL_macosx(from, to) macos, introduced = from, deprecated = to
#define LUMORA_UNTIL_ios(from, to) ios, introduced = from, deprecated = to
#define LUMORA_UNTIL_watchos(from, to) watchos, introduced = from, deprecated = to
#define LUMORA_UNTIL_tvos(from, to) tvos, introduced = from, deprecated = to
#define LUMORA_UNTIL(text, platform) __attribute__((availability(LUMORA_UNTIL_##platform, message = text)))

#define LUMORA_SINCE_1(a) LUMORA_SINCE(a)
#define LUMORA_SINCE_2(a, b) LUMORA_SINCE(a) LUMORA_SINCE(b)
#define LUMORA_SINCE_3(a, b, c) LUMORA_SINCE_2(a, b) LUMORA_SINCE(c)
#define LUMORA_SINCE_4(a, b, c, d) LUMORA_SINCE_3(a, b, c) LUMORA_SINCE(d)
#define LUMORA_UNTIL_1(text, a) LUMORA_UNTIL(text, a)
#define LUMORA_UNTIL_2(text, a, b) LUMORA_UNTIL(text, a) LUMORA_UNTIL(text, b)
#define LUMORA_UNTIL_3(text, a, b, c) LUMORA_UNTIL_2(text, a, b) LUMORA_UNTIL(text, c)
#define LUMORA_UNTIL_4(text, a, b, c, d) LUMORA_UNTIL_3(text, a, b, c) LUMORA_UNTIL(text, d)
#define LUMORA_FIFTH(a, b, c, d, name, ...) name

#define API_AVAILABLE(...)                                                                                   \
    LUMORA_FIFTH(__VA_ARGS__, LUMORA_SINCE_4, LUMORA_SINCE_3, LUMORA_SINCE_2, LUMORA_SINCE_1, )(__VA_ARGS__)
#define API_DEPRECATED(text, ...)                                                                            \
    LUMORA_FIFTH(__VA_ARGS__, LUMORA_UNTIL_4, LUMORA_UNTIL_3, LUMORA_UNTIL_2, LUMORA_UNTIL_1, )              \
    (text, __VA_ARGS__)
#define API_UNAVAILABLE(...)
