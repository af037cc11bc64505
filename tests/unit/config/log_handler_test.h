#pragma once

#include "config/log_handler.h"
#include "fakes/core_test.h"

#include <cstddef>
#include <memory>
#include <string>

namespace lumora {

/// A log handler whose folder is known, and whose timer does not run.
class Logging : public CoreTest {
  protected:
    static inline const std::string kLogFolder = "/Users/casey/Library/Logs//OvraTessel/OvraLumora/";
    static inline const std::string kLive = kLogFolder + "ovraLumora.log";
    static constexpr std::size_t kLimit = 262145;

    static std::string backup(int index) {
        return kLogFolder + "ovraLumora" + std::to_string(index) + ".log";
    }

    Logging() { handler->setOvraLumoraLogFolder(kLogFolder); }

    /// A live log over the limit that can be told from every other.
    static std::string full(char mark) { return std::string(kLimit, mark); }

    void pass() { handler->loggingFile(nullptr); }

    /// What a backup holds, as its mark; '-' when it is absent.
    char mark(int index) {
        const auto* file = files.file(backup(index));
        return file == nullptr ? '-' : file->contents.front();
    }

    std::string marks() {
        std::string all;
        for (int index = 0; index <= 11; ++index)
            all += mark(index);
        return all;
    }

    void rotateWith(char character) {
        files.putFile(kLive, full(character));
        pass();
    }

    std::shared_ptr<LogHandler> handler = std::make_shared<LogHandler>();
};

} // namespace lumora
