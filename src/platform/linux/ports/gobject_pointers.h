#pragma once

#include <glib-object.h>

#include <memory>

namespace lumora::platform::linux_backend {

struct ObjectUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// Owns one reference of a GObject.
template <class T>
using ObjectPointer = std::unique_ptr<T, ObjectUnref>;

struct ErrorFree {
    void operator()(GError* error) const { g_error_free(error); }
};
using ErrorPointer = std::unique_ptr<GError, ErrorFree>;

struct MemoryFree {
    void operator()(gpointer memory) const { g_free(memory); }
};
using GText = std::unique_ptr<gchar, MemoryFree>;

} // namespace lumora::platform::linux_backend
