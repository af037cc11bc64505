#pragma once

#include "platform/result.h"

#include <gio/gio.h>

#include <string>

namespace lumora::platform::linux_backend {

/// A failed load in the terms of the URL loading system that the core knows, with a sentence for a person. What has
/// no counterpart there keeps its own domain, number and words.
[[nodiscard]] Error loadError(const GError& error, const std::string& failingUrl);

/// The load's time ran out before the page answered.
[[nodiscard]] Error timedOutError(const std::string& failingUrl);

/// What the trust evaluation says of a certificate that it rejects.
[[nodiscard]] Error serverTrustError(GTlsCertificateFlags flags, const std::string& host);

/// The load failure that follows a rejected certificate.
[[nodiscard]] Error untrustedServerError(GTlsCertificateFlags flags, const std::string& host,
                                         const std::string& failingUrl);

/// A script that the page could not run.
[[nodiscard]] Error scriptError(const GError& error);

} // namespace lumora::platform::linux_backend
