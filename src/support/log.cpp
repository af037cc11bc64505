#include "support/log.h"

#include "platform/ports.h"
#include "platform/process_info.h"
#include "platform/standard_streams.h"

#include <string>

namespace lumora {

void writeLogMessage(std::string_view message) {
    auto& process = *platform::ports().processInfo;
    std::string line = fmt::format("{} {}[{}:{}] {}", process.localTimestamp(), process.processName(),
                                   process.processIdentifier(), process.currentThreadIdentifier(), message);
    if (!line.ends_with('\n'))
        line += '\n';
    platform::ports().standardStreams->writeError(line);
}

void writePrintedLine(std::string_view line) {
    std::string text(line);
    text += '\n';
    platform::ports().standardStreams->writeOutput(text);
}

} // namespace lumora
