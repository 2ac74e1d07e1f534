#pragma once

// Only for the sources of the key chain: brings in GLib.

#include <gio/gio.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stop_token>
#include <system_error>
#include <thread>

namespace zelto {

template <auto Free> struct GLibDeleter {
    template <class T> void operator()(T* pointer) const { Free(pointer); }
};

template <class T> using GObjectPtr = std::unique_ptr<T, GLibDeleter<g_object_unref>>;
using GVariantPtr = std::unique_ptr<GVariant, GLibDeleter<g_variant_unref>>;
using GHashTablePtr = std::unique_ptr<GHashTable, GLibDeleter<g_hash_table_unref>>;
using GStringPtr = std::unique_ptr<char, GLibDeleter<g_free>>;

// Receives and owns an error of GLib's functions.
class GErrorHolder {
  public:
    GErrorHolder() = default;

    ~GErrorHolder() { g_clear_error(&error_); }

    GErrorHolder(const GErrorHolder&) = delete;
    GErrorHolder& operator=(const GErrorHolder&) = delete;

    GError** out() {
        g_clear_error(&error_);
        return &error_;
    }

    const GError* get() const { return error_; }

  private:
    GError* error_ = nullptr;
};

// A cancellable that cancels the calls it is passed to when its time limit is reached.
class TimedCancellable {
  public:
    explicit TimedCancellable(std::chrono::milliseconds limit) : cancellable_(g_cancellable_new()) {
        try {
            timer_ = std::jthread([this, limit](const std::stop_token& stop) { cancelAfter(limit, stop); });
        } catch (const std::system_error&) {
            // Without a thread for the limit a call could take for ever.
            g_cancellable_cancel(cancellable_.get());
        }
    }

    GCancellable* get() const { return cancellable_.get(); }

    bool isOver() const { return g_cancellable_is_cancelled(cancellable_.get()) != FALSE; }

  private:
    void cancelAfter(std::chrono::milliseconds limit, const std::stop_token& stop) {
        std::unique_lock guard(lock_);
        const bool isDone = ended_.wait_for(guard, stop, limit, [&] { return stop.stop_requested(); });
        if (!isDone) {
            g_cancellable_cancel(cancellable_.get());
        }
    }

    GObjectPtr<GCancellable> cancellable_;
    std::mutex lock_;
    std::condition_variable_any ended_;
    std::jthread timer_; // last: ends before the members that it uses
};

} // namespace zelto
