#pragma once

#include "support/temporary_folder.h"

#include <fmt/format.h>

#include <unistd.h>

#include <filesystem>
#include <string>

namespace lumora::contract {

/// What a recording application does: it lets the suite of the workspace know beside its bundle how it was started
/// ("launched") and what it was asked to open ("opened").
class Recorder {
  public:
    /// @param program  of the bundle, by any path
    explicit Recorder(const char* program)
        : bundle_(std::filesystem::canonical(program).parent_path().parent_path().parent_path()) {}

    void launched(int argc, char** argv) const {
        std::string text = fmt::format("program={}\ngroup={}\nfolder={}\n", ::getpid(), ::getpgrp(),
                                       std::filesystem::current_path().string());
        for (int argument = 1; argument < argc; ++argument)
            text += fmt::format("[{}]\n", argv[argument]);
        write("launched", text);
    }

    void opened(const std::string& address) const { write("opened", address); }

  private:
    /// Whoever sees the file sees it whole.
    void write(const std::string& name, const std::string& text) const {
        const auto part = bundle_.parent_path() / (name + ".part");
        writeFile(part, text);
        std::filesystem::rename(part, bundle_.parent_path() / name);
    }

    std::filesystem::path bundle_;
};

} // namespace lumora::contract
