#include "platform/linux/gui/page_announcement.h"

#include <utility>

namespace lumora::platform::linux_backend {

namespace {

/// Scripts of the page see neither this world nor its message handler.
constexpr const char* kWorld = "announcement";
constexpr const char* kMessage = "ownPage";
constexpr const char* kSignal = "script-message-received::ownPage";

/// The application's own pages, and nobody else's.
constexpr const char* kPages[] = {"file:///*", nullptr};

/// After the page's own scripts, which put it into the reader's language; then whenever its text changes.
constexpr const char* kScript = R"(
addEventListener("load", () => {
  const page = document.querySelector("main") ?? document.body;
  let told = "";
  const tell = () => {
    const text = page.innerText.trim().replace(/\s*\n\s*/g, "\n");
    if (text !== told)
      webkit.messageHandlers.ownPage.postMessage([document.title, told = text]);
  };
  tell();
  new MutationObserver(tell).observe(page, { subtree: true, childList: true, characterData: true, attributes: true });
});
)";

using UserScriptPointer = std::unique_ptr<WebKitUserScript, Release<webkit_user_script_unref>>;

bool isOwnPage(WebKitWebView* view) { return textOf(webkit_web_view_get_uri(view)).starts_with("file:"); }

std::string itemOf(JSCValue* array, guint index) {
    const auto item = ObjectRef<JSCValue>::adopt(jsc_value_object_get_property_at_index(array, index));
    const CharPointer text(jsc_value_to_string(item.get()));
    return textOf(text.get());
}

} // namespace

PageAnnouncement::PageAnnouncement(WebKitWebView* view)
    : view_(view), manager_(webkit_web_view_get_user_content_manager(view)), viewSignals_(view),
      managerSignals_(manager_) {
    g_object_set(view, "accessible-role", GTK_ACCESSIBLE_ROLE_DOCUMENT, nullptr);
    viewSignals_.connect("notify::title", &PageAnnouncement::titleChanged, this);
    viewSignals_.connect("load-changed", &PageAnnouncement::loadChanged, this);
    managerSignals_.connect(kSignal, &PageAnnouncement::ownPageSpoke, this);
    webkit_user_content_manager_register_script_message_handler(manager_, kMessage, kWorld);
    const UserScriptPointer script(webkit_user_script_new_for_world(
        kScript, WEBKIT_USER_CONTENT_INJECT_TOP_FRAME, WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, kWorld,
        kPages, nullptr));
    webkit_user_content_manager_add_script(manager_, script.get());
}

PageAnnouncement::~PageAnnouncement() {
    webkit_user_content_manager_unregister_script_message_handler(manager_, kMessage, kWorld);
}

void PageAnnouncement::titleChanged(WebKitWebView* view, GParamSpec*, gpointer data) {
    auto* self = static_cast<PageAnnouncement*>(data);
    // Between two pages there is no title; an own page's is at first in a language that is not the reader's.
    if (webkit_web_view_is_loading(view) == FALSE && !isOwnPage(view))
        self->name(textOf(webkit_web_view_get_title(view)));
}

void PageAnnouncement::loadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer data) {
    auto* self = static_cast<PageAnnouncement*>(data);
    if (isOwnPage(view))
        return;
    if (event == WEBKIT_LOAD_COMMITTED)
        self->describe("");
    else if (event == WEBKIT_LOAD_FINISHED)
        self->name(textOf(webkit_web_view_get_title(view)));
}

void PageAnnouncement::ownPageSpoke(WebKitUserContentManager*, JSCValue* said, gpointer data) {
    auto* self = static_cast<PageAnnouncement*>(data);
    self->name(itemOf(said, 0));
    self->describe(itemOf(said, 1));
}

// A page without a title goes by the application's name: the toolkit would tell the name of a class.
void PageAnnouncement::name(const std::string& title) {
    const std::string name = title.empty() ? textOf(g_get_application_name()) : title;
    if (std::exchange(name_, name) != name)
        gtk_accessible_update_property(GTK_ACCESSIBLE(view_), GTK_ACCESSIBLE_PROPERTY_LABEL, name.c_str(),
                                       -1);
}

void PageAnnouncement::describe(const std::string& text) {
    if (std::exchange(description_, text) != text)
        gtk_accessible_update_property(GTK_ACCESSIBLE(view_), GTK_ACCESSIBLE_PROPERTY_DESCRIPTION,
                                       text.c_str(), -1);
}

} // namespace lumora::platform::linux_backend
