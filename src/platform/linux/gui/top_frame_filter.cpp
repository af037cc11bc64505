#include "platform/linux/gui/top_frame_filter.h"

#include <string_view>
#include <utility>

namespace lumora::platform::linux_backend {

namespace {

constexpr guint kPatienceSeconds = 2;
constexpr const char* kIdentifier = "top-frame";
constexpr std::string_view kRules =
    R"([{"trigger":{"url-filter":".*","resource-type":["document"],"load-context":["top-frame"]},)"
    R"("action":{"type":"block"}}])";

} // namespace

TopFrameFilter::TopFrameFilter(WebKitUserContentManager* manager, const std::string& folder,
                               std::function<void()> settled)
    : manager_(manager), patience_(g_timeout_source_new_seconds(kPatienceSeconds)) {
    compilation_->settled = std::move(settled);
    const auto store =
        ObjectRef<WebKitUserContentFilterStore>::adopt(webkit_user_content_filter_store_new(folder.c_str()));
    const BytesPointer rules(g_bytes_new_static(kRules.data(), kRules.size()));
    webkit_user_content_filter_store_save(store.get(), kIdentifier, rules.get(), nullptr,
                                          &TopFrameFilter::compiled,
                                          new std::shared_ptr<Compilation>(compilation_));
    g_source_set_callback(
        patience_.get(),
        [](gpointer compilation) -> gboolean {
            static_cast<Compilation*>(compilation)->settle();
            return G_SOURCE_REMOVE;
        },
        compilation_.get(), nullptr);
    g_source_attach(patience_.get(), nullptr);
}

TopFrameFilter::~TopFrameFilter() {
    compilation_->settled = nullptr;
    g_source_destroy(patience_.get());
    setActive(false);
}

void TopFrameFilter::Compilation::settle() {
    if (const auto tell = std::exchange(settled, nullptr))
        tell();
}

void TopFrameFilter::compiled(GObject* store, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<std::shared_ptr<Compilation>> target(
        static_cast<std::shared_ptr<Compilation>*>(data));
    GError* error = nullptr;
    (*target)->filter.reset(webkit_user_content_filter_store_save_finish(
        WEBKIT_USER_CONTENT_FILTER_STORE(store), result, &error));
    if (const ErrorPointer failure{error})
        g_warning("The top frame is guarded at the answers alone: %s", failure->message);
    (*target)->settle();
}

void TopFrameFilter::setActive(bool active) {
    if (active == active_ || !ready())
        return;
    active_ = active;
    if (active)
        webkit_user_content_manager_add_filter(manager_, compilation_->filter.get());
    else
        webkit_user_content_manager_remove_filter(manager_, compilation_->filter.get());
}

} // namespace lumora::platform::linux_backend
