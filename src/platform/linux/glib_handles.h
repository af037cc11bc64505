#pragma once

#include <gio/gio.h>
#include <glib-object.h>

#include <memory>
#include <string>
#include <utility>

namespace lumora::platform::linux_backend {

/// Owns one reference to a GObject.
template <class T>
class ObjectRef {
  public:
    ObjectRef() = default;

    /// Takes over a reference that the caller owns.
    [[nodiscard]] static ObjectRef adopt(T* object) { return ObjectRef(object); }

    /// Adds a reference; a floating one is taken over.
    [[nodiscard]] static ObjectRef retain(T* object) {
        return ObjectRef(object == nullptr ? nullptr : static_cast<T*>(g_object_ref_sink(object)));
    }

    ObjectRef(ObjectRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ObjectRef& operator=(ObjectRef&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ObjectRef(const ObjectRef&) = delete;
    ObjectRef& operator=(const ObjectRef&) = delete;
    ~ObjectRef() {
        if (object_ != nullptr)
            g_object_unref(object_);
    }

    [[nodiscard]] T* get() const { return object_; }
    [[nodiscard]] explicit operator bool() const { return object_ != nullptr; }

  private:
    explicit ObjectRef(T* object) : object_(object) {}
    T* object_ = nullptr;
};

/// Calls a GLib release function; for std::unique_ptr.
template <auto release>
struct Release {
    template <class T>
    void operator()(T* pointer) const {
        release(pointer);
    }
};

using CharPointer = std::unique_ptr<char, Release<g_free>>;
using ErrorPointer = std::unique_ptr<GError, Release<g_error_free>>;
using BytesPointer = std::unique_ptr<GBytes, Release<g_bytes_unref>>;
using SourcePointer = std::unique_ptr<GSource, Release<g_source_unref>>;

/// C text that may be absent, as a string.
[[nodiscard]] inline std::string textOf(const char* text) { return text == nullptr ? std::string() : text; }

/// The signal handlers of one object; they end with this one. The instance outlives it.
class SignalConnections {
  public:
    explicit SignalConnections(void* instance) : instance_(instance) {}
    SignalConnections(const SignalConnections&) = delete;
    SignalConnections& operator=(const SignalConnections&) = delete;
    ~SignalConnections() {
        if (data_ != nullptr)
            g_signal_handlers_disconnect_by_data(instance_, data_);
    }

    /// Every handler gets the same data.
    template <class Callback>
    void connect(const char* signal, Callback* callback, void* data) {
        data_ = data;
        g_signal_connect(instance_, signal, G_CALLBACK(callback), data);
    }

  private:
    void* instance_;
    void* data_ = nullptr;
};

} // namespace lumora::platform::linux_backend
