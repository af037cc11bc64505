#pragma once

#include <string>
#include <vector>

namespace lumora::platform {

/// The values are the platform's own (`NSAlert.Style`).
enum class AlertStyle { warning = 0, informational = 1, critical = 2 };

/// What an alert says and offers.
struct Alert {
    std::string messageText;
    std::string informativeText;
    AlertStyle style = AlertStyle::warning;

    /// From the first, the default one, on; none: the platform's single "OK".
    std::vector<std::string> buttons;
};

/// `NSAlertFirstButtonReturn`; each further button answers one more.
inline constexpr int kAlertFirstButtonReturn = 1000;

/// Modal alerts. Main thread.
class Alerts {
  public:
    virtual ~Alerts() = default;

    /// Shows the alert and blocks until it is answered; the button's response. An alert that goes without an answer
    /// (closed, or the application ends) answers with a number that is no button's.
    [[nodiscard]] virtual int runModal(const Alert& alert) = 0;
};

} // namespace lumora::platform
