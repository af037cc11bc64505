#include "platform/linux/ports/shell_script_statement.h"

#include <algorithm>

namespace lumora::platform::linux_backend {

namespace {

/// The argument as one word of a shell: single quotes around it, its own ones outside of them.
std::string quotedForm(std::string_view text) {
    std::string quoted = "'";
    for (const char character : text) {
        if (character == '\'')
            quoted += "'\\''";
        else
            quoted += character;
    }
    return quoted + "'";
}

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

class Reader {
  public:
    explicit Reader(std::string_view source) : rest_(source) {}

    /// The words, or the mark, when they come next; blanks stand between words, and may stand before them.
    bool accept(std::string_view words) {
        auto after = rest_;
        while (!words.empty()) {
            after.remove_prefix(std::min(after.find_first_not_of(" \t"), after.size()));
            const auto word = words.substr(0, words.find(' '));
            words.remove_prefix(std::min(word.size() + 1, words.size()));
            if (!after.starts_with(word))
                return false;
            after.remove_prefix(word.size());
            if (isLetter(word.back()) && !after.empty() && isLetter(after.front()))
                return false; // a longer word
        }
        rest_ = after;
        return true;
    }

    std::optional<std::string> literal() {
        if (!accept("\""))
            return std::nullopt;
        std::string text;
        while (!rest_.empty()) {
            char character = take();
            if (character == '"')
                return text;
            if (character == '\\') {
                const auto escaped = escape();
                if (!escaped)
                    return std::nullopt;
                character = *escaped;
            }
            text += character;
        }
        return std::nullopt; // not closed
    }

    [[nodiscard]] bool atEnd() const { return rest_.find_first_not_of(" \t\r\n") == std::string_view::npos; }

  private:
    char take() {
        const char character = rest_.front();
        rest_.remove_prefix(1);
        return character;
    }

    std::optional<char> escape() {
        if (rest_.empty())
            return std::nullopt;
        switch (take()) {
        case '"':
            return '"';
        case '\\':
            return '\\';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return std::nullopt;
        }
    }

    std::string_view rest_;
};

std::optional<std::string> readTerm(Reader& reader) {
    if (!reader.accept("quoted form of"))
        return reader.literal();
    const auto text = reader.literal();
    return text ? std::optional(quotedForm(*text)) : std::nullopt;
}

} // namespace

std::optional<ShellScriptStatement> parseShellScriptStatement(std::string_view source) {
    Reader reader(source);
    if (!reader.accept("do shell script"))
        return std::nullopt;
    ShellScriptStatement statement;
    do {
        const auto term = readTerm(reader);
        if (!term)
            return std::nullopt;
        statement.command += *term;
    } while (reader.accept("&"));
    statement.administratorPrivileges = reader.accept("with administrator privileges");
    return reader.atEnd() ? std::optional(statement) : std::nullopt;
}

} // namespace lumora::platform::linux_backend
