#pragma once

namespace lumora::platform {

class Menu;

/// The running application object. Main thread.
class Application {
  public:
    virtual ~Application() = default;

    /// Ends the main loop and with it the process; returns to the caller first.
    virtual void terminate() = 0;

    /// The menu bar; null while there is none.
    [[nodiscard]] virtual Menu* mainMenu() = 0;
};

} // namespace lumora::platform
