#include "authority/openssl_handles.h"

#include <openssl/err.h>

#include <array>

namespace datacentre {

namespace {

std::string describe(const std::string& step) {
    std::string text = step + " failed";
    while (const unsigned long code = ERR_get_error()) {
        std::array<char, 256> buffer{};
        ERR_error_string_n(code, buffer.data(), buffer.size());
        text += std::string("; ") + buffer.data();
    }
    return text;
}

} // namespace

OpensslError::OpensslError(const std::string& step) : std::runtime_error(describe(step)) {}

void requireSuccess(int outcome, const char* step) {
    if (outcome != 1)
        throw OpensslError(step);
}

} // namespace datacentre
