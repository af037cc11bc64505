#pragma once

#include "platform/alerts.h"
#include "platform/application.h"
#include "platform/menu.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// What a test does on the screen in its user's stead. Main thread. One implementation a desktop.
namespace lumora::contract {

/// Alerts, and the one that stands on the screen.
class AlertsOnScreen {
  public:
    virtual ~AlertsOnScreen() = default;
    [[nodiscard]] virtual platform::Alerts& alerts() = 0;

    [[nodiscard]] virtual bool isOneThere() = 0;
    /// Of the one that is there: whether the rest of the application waits for its answer.
    [[nodiscard]] virtual bool isModal() = 0;
    [[nodiscard]] virtual std::vector<std::string> texts() = 0; ///< from top to bottom
    [[nodiscard]] virtual std::vector<std::string> buttons() = 0;
    virtual void press(const std::string& button) = 0;
    virtual void dismiss() = 0; ///< ends it without an answer
};

[[nodiscard]] std::unique_ptr<AlertsOnScreen> makeAlertsOnScreen();

/// The menu bar that the application begins with.
class MenuBarOnScreen {
  public:
    virtual ~MenuBarOnScreen() = default;
    [[nodiscard]] virtual platform::Menu& menu() = 0;

    /// A row's title, as its user reads it, and what it does; one that opens a menu does nothing.
    struct Row {
        std::string title;
        std::string action;
    };
    /// Every menu and after it its rows, separators left out.
    [[nodiscard]] virtual std::vector<Row> rows() = 0;

    /// As a click on the row does; false when it is disabled or hidden.
    [[nodiscard]] virtual bool choose(const std::string& title) = 0;
};

[[nodiscard]] std::unique_ptr<MenuBarOnScreen> makeMenuBarOnScreen();

/// Launches the application, does the steps on its loop, and ends the process with the status that the application ends
/// with.
[[noreturn]] void runApplication(const std::function<void(platform::Application&)>& steps);

} // namespace lumora::contract
