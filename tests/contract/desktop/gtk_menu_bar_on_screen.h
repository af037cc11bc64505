#pragma once

#include "desktop.h"
#include "platform/linux/glib_handles.h"

#include <gtk/gtk.h>

namespace lumora::contract {

/// The menu bar of a GTK application.
class GtkMenuBarOnScreen final : public MenuBarOnScreen {
  public:
    GtkMenuBarOnScreen();

    platform::Menu& menu() override { return *menu_; }
    std::vector<Row> rows() override;
    bool choose(const std::string& title) override;

    // How often the built-in commands ran.
    int quits = 0;
    int logFolders = 0;

  private:
    platform::linux_backend::ObjectRef<GtkApplication> application_;
    std::unique_ptr<platform::Menu> menu_;
};

} // namespace lumora::contract
