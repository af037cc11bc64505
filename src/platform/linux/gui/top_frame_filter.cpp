#include "platform/linux/gui/top_frame_filter.h"

#include <string_view>

namespace lumora::platform::linux_backend {

namespace {

constexpr const char* kIdentifier = "top-frame";
constexpr std::string_view kRules =
    R"([{"trigger":{"url-filter":".*","resource-type":["document"],"load-context":["top-frame"]},)"
    R"("action":{"type":"block"}}])";

} // namespace

TopFrameFilter::TopFrameFilter(WebKitUserContentManager* manager) : manager_(manager) {
    const CharPointer folder(
        g_build_filename(g_get_user_cache_dir(), g_get_prgname(), "content-filters", nullptr));
    const auto store =
        ObjectRef<WebKitUserContentFilterStore>::adopt(webkit_user_content_filter_store_new(folder.get()));
    const BytesPointer rules(g_bytes_new_static(kRules.data(), kRules.size()));
    webkit_user_content_filter_store_save(store.get(), kIdentifier, rules.get(), nullptr,
                                          &TopFrameFilter::compiled,
                                          new std::shared_ptr<Compiled>(compiled_));
}

TopFrameFilter::~TopFrameFilter() { setActive(false); }

void TopFrameFilter::compiled(GObject* store, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<std::shared_ptr<Compiled>> target(static_cast<std::shared_ptr<Compiled>*>(data));
    GError* error = nullptr;
    (*target)->filter.reset(webkit_user_content_filter_store_save_finish(
        WEBKIT_USER_CONTENT_FILTER_STORE(store), result, &error));
    if (const ErrorPointer failure{error})
        g_warning("The top frame cannot be guarded: %s", failure->message);
}

void TopFrameFilter::setActive(bool active) {
    if (active == active_ || !ready())
        return;
    active_ = active;
    if (active)
        webkit_user_content_manager_add_filter(manager_, compiled_->filter.get());
    else
        webkit_user_content_manager_remove_filter(manager_, compiled_->filter.get());
}

} // namespace lumora::platform::linux_backend
