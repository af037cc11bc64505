#pragma once

#include "platform/linux/glib_handles.h"

#include <webkit/webkit.h>

#include <memory>

namespace lumora::platform::linux_backend {

/// Stops documents of the top frame, and of no other, before anything is sent.
///
/// The engine asks about every frame's navigation without saying which frame it is. A navigation that must not happen in
/// the top frame but may in others is therefore let go with this filter on. What counts is the filter's state at the
/// decision, so every decision sets it.
class TopFrameFilter {
  public:
    /// Compiles the filter in the background (a few milliseconds); until then nothing is stopped.
    explicit TopFrameFilter(WebKitUserContentManager* manager);
    ~TopFrameFilter();
    TopFrameFilter(const TopFrameFilter&) = delete;
    TopFrameFilter& operator=(const TopFrameFilter&) = delete;

    void setActive(bool active);
    [[nodiscard]] bool ready() const { return compiled_->filter != nullptr; }

  private:
    using FilterPointer = std::unique_ptr<WebKitUserContentFilter, Release<webkit_user_content_filter_unref>>;

    /// Outlives this object while the compiler is at work.
    struct Compiled {
        FilterPointer filter;
    };

    static void compiled(GObject* store, GAsyncResult* result, gpointer data);

    WebKitUserContentManager* manager_;
    std::shared_ptr<Compiled> compiled_ = std::make_shared<Compiled>();
    bool active_ = false;
};

} // namespace lumora::platform::linux_backend
