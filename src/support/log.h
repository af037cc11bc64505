#pragma once

#include <fmt/format.h>

#include <string_view>

namespace lumora {

/// Writes one message to standard error behind date, time, process name and identifiers, as the platform's logging
/// call does. A line feed is added unless the message ends in one. Any thread.
void writeLogMessage(std::string_view message);

/// Writes one line to standard output, as it is. Any thread.
void writePrintedLine(std::string_view line);

/// The model classes' log call. Every format begins with the operation's full name in method notation, for example
/// log("{} : Update Info Object Allocated", "+[ApiHandler getInstance]").
template <class... Args>
void log(fmt::format_string<Args...> format, Args&&... args) {
    writeLogMessage(fmt::format(format, std::forward<Args>(args)...));
}

/// The window, web-view and bridge classes' print call.
template <class... Args>
void print(fmt::format_string<Args...> format, Args&&... args) {
    writePrintedLine(fmt::format(format, std::forward<Args>(args)...));
}

} // namespace lumora
