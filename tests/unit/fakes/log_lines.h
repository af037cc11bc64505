#pragma once

#include <string>

namespace lumora::fakes {

/// The line that an operation's guard writes, with the call stack of FakeProcessInfo.
inline std::string exceptionLine(const std::string& operation, const std::string& description) {
    return operation +
           " : ************************ EXCEPTION ************************ \n Description :  " + description +
           R"( // Call Stack Symbol : ["frame one","frame two"])";
}

} // namespace lumora::fakes
