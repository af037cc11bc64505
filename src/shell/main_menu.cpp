#include "shell/main_menu.h"

namespace lumora {

namespace {

constexpr const char* kApplication = "_Lumora"; // a platform may put the application's name in its place

constexpr MenuRow kRows[] = {
    {kApplication, "_About Ovra Tessel Lumora", "orderFrontStandardAboutPanel:"},
    {kApplication},
    {kApplication, "_Hide Ovra Tessel Lumora", "hide:", "h"},
    {kApplication, "Hide _Others", "hideOtherApplications:", "h", true},
    {kApplication, "_Show All", "unhideAllApplications:"},
    {kApplication},
    {kApplication, "_Uninstall Ovra Tessel Lumora", "uninstallApp:"},
    {kApplication},
    {kApplication, "_Quit Ovra Tessel Lumora", "terminate:", "q"},
    {"_Edit", "_Undo", "undo:", "z"},
    {"_Edit", "_Redo", "redo:", "Z"},
    {"_Edit"},
    {"_Edit", "Cu_t", "cut:", "x"},
    {"_Edit", "_Copy", "copy:", "c"},
    {"_Edit", "_Paste", "paste:", "v"},
    {"_Edit"},
    {"_Edit", "Select _All", "selectAll:", "a"},
    {"_View", "_Reload", "reload:", "r"},
    {"_View"},
    {"_View", "_Actual Size", "actualSize:", "0"},
    {"_View", "Zoom _In", "zoomIn:", "+"},
    {"_View", "Zoom _Out", "zoomOut:", "-"},
    {"_Window", "_Minimize", "performMiniaturize:", "m"},
    {"_Window", "_Zoom", "performZoom:"},
    {"_Window", "_Close", "performClose:", "w"},
    {"_Help", "Open _Log Folder", "openLogFolder:"},
};

} // namespace

std::string readableTitle(const std::string& title) {
    std::string readable = title;
    std::erase(readable, '_');
    return readable;
}

void MenuEntry::setTarget(platform::MenuTarget* target) {
    target_ = target;
    changed();
}

void MenuEntry::setAction(const std::string& action) {
    action_ = action;
    changed();
}

void MenuEntry::setHidden(bool hidden) {
    hidden_ = hidden;
    changed();
}

void MenuEntry::setEnabled(bool enabled) {
    enabled_ = enabled;
    changed();
}

bool MenuEntry::isAllowed() { return target_ != nullptr && target_->validateMenuItem(*this); }

void MenuEntry::choose() {
    if (isAllowed())
        target_->performAction(action_);
}

MainMenu::MainMenu(const std::function<bool(const std::string& action)>& offers) {
    for (const MenuRow& row : kRows) {
        const auto entry = std::make_shared<MenuEntry>(row);
        if (!entry->isSeparator() && !offers(row.action))
            continue;
        if (headings.empty() || headings.back()->markedTitle != row.menu)
            headings.push_back(std::make_shared<MenuHeading>(row.menu));
        auto& entries = headings.back()->entries;
        if (!entry->isSeparator() || (!entries.empty() && !entries.back()->isSeparator()))
            entries.push_back(entry);
    }
}

} // namespace lumora
