#pragma once

#include "desktop.h"

#include <gtest/gtest.h>

namespace lumora::contract {

/// Notes what is chosen; answers validation as told.
class Target final : public platform::MenuTarget {
  public:
    std::vector<std::string> performed;
    std::vector<std::string> validated;
    bool valid = true;

    bool validateMenuItem(platform::MenuItem& item) override {
        validated.push_back(item.title());
        return valid;
    }
    void performAction(const std::string& action) override { performed.push_back(action); }
};

/// The menu bar, whose rows a test chooses.
template <class OnScreen>
class MenuFixture : public ::testing::Test {
  protected:
    explicit MenuFixture(std::unique_ptr<OnScreen> made) : screen(std::move(made)) {}

    [[nodiscard]] std::shared_ptr<platform::MenuItem> entry(const std::string& title) const {
        for (const auto& top : screen->menu().items())
            for (const auto& item : top->submenu()->items())
                if (item->title() == title)
                    return item;
        return nullptr;
    }

    static constexpr const char* kUninstall = "Uninstall Ovra Tessel Lumora";
    static constexpr const char* kQuit = "Quit Ovra Tessel Lumora";

    const std::unique_ptr<OnScreen> screen;
    Target target;
};

} // namespace lumora::contract
