#pragma once

#include "platform/linux/glib_handles.h"

#include <webkit/webkit.h>

#include <functional>
#include <memory>
#include <string>

namespace lumora::platform::linux_backend {

/// Stops documents of the top frame, and of no other, before anything is sent.
///
/// The engine asks about every frame's navigation without saying which frame it is. A navigation that must not happen in
/// the top frame but may in others is therefore let go with this filter on. What counts is the filter's state at the
/// decision, so every decision sets it. Main thread.
class TopFrameFilter {
  public:
    /// Compiles the filter in the background: a few milliseconds, unless the disk is slow.
    /// @param folder   the compiler's store
    /// @param settled  called once, later: the filter is ready, or it will not be in time
    TopFrameFilter(WebKitUserContentManager* manager, const std::string& folder,
                   std::function<void()> settled);
    ~TopFrameFilter();
    TopFrameFilter(const TopFrameFilter&) = delete;
    TopFrameFilter& operator=(const TopFrameFilter&) = delete;

    [[nodiscard]] bool isSettled() const { return !compilation_->settled; }
    [[nodiscard]] bool ready() const { return compilation_->filter != nullptr; }

    /// Without effect while the filter is not ready.
    void setActive(bool active);

  private:
    using FilterPointer = std::unique_ptr<WebKitUserContentFilter, Release<webkit_user_content_filter_unref>>;

    /// Outlives this object while the compiler is at work.
    struct Compilation {
        FilterPointer filter;
        std::function<void()> settled; ///< until it has been called, or nobody waits any more
        void settle();
    };

    static void compiled(GObject* store, GAsyncResult* result, gpointer data);

    WebKitUserContentManager* manager_;
    std::shared_ptr<Compilation> compilation_ = std::make_shared<Compilation>();
    SourcePointer patience_;
    bool active_ = false;
};

} // namespace lumora::platform::linux_backend
