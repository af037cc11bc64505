#pragma once

#include "platform/application.h"
#include "platform/menu.h"

#include <memory>

namespace lumora::platform::macos_backend {

/// The shared application object. Gives it its menu bar.
class AppKitApplication final : public Application {
  public:
    AppKitApplication();

    /// Callable from any thread. The delegate is the request's sender.
    void terminate() override;

    [[nodiscard]] Menu* mainMenu() override { return mainMenu_.get(); }

  private:
    const std::unique_ptr<Menu> mainMenu_;
};

} // namespace lumora::platform::macos_backend
