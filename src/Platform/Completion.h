#pragma once

#include <Platform/Operations/ContainedException.h>
#include <Platform/Result.h>

#include <concepts>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace zelto {

// What Callback does about the two mistakes with it. A debug build stops on a second call; a callback that is
// dropped uncalled is reported to a handler, which writes to standard error unless a test has set its own.
class CallbackGuard {
  public:
    using DroppedHandler = void (*)();
    // Gives the handler before. Any thread.
    static DroppedHandler setDroppedHandler(DroppedHandler handler) noexcept;

    // What is dropped on this thread while one lives is neither reported nor called.
    class Abandonment {
      public:
        Abandonment() noexcept;
        ~Abandonment();
        Abandonment(const Abandonment&) = delete;
        Abandonment& operator=(const Abandonment&) = delete;
    };

    // Reports it; false within an Abandonment.
    static bool dropped() noexcept;
    [[noreturn]] static void calledTwice() noexcept;
};

// What a callback is called with when it was dropped uncalled: the error type's `internalError`, no value, or
// false. A type that has none of these is not called.
template <class T> struct DroppedValue {};

template <class T> struct DroppedValue<std::optional<T>> {
    static std::optional<T> value() { return std::nullopt; }
};

template <> struct DroppedValue<bool> {
    static bool value() { return false; }
};

template <class T, class E>

requires requires {
    E::internalError;
}

struct DroppedValue<Result<T, E>> {
    static Result<T, E> value() { return failure(E::internalError); }
};

template <class T>
concept HasDroppedValue = requires {
    DroppedValue<T>::value();
};

// A function that is called exactly once, on every path. Move-only and passed by value; calling it gives it
// up. It may be called on any thread, and before the operation that took it returns, unless that operation
// says other. One that is dropped uncalled is called with its DroppedValue by whoever drops it, so that
// nobody waits for it forever; what it throws then is contained.
template <class... Args> class Callback {
  public:
    Callback() = default;

    template <class F>

    requires std::is_invocable_v<F&, Args...> &&
        (!std::is_same_v<std::remove_cvref_t<F>, Callback>)Callback(F&& function)
        : function_(std::forward<F>(function)) {}

    Callback(Callback&& other) noexcept : function_(std::exchange(other.function_, nullptr)) {}

    Callback& operator=(Callback&& other) noexcept {
        if (this != &other) {
            callIfDropped();
            function_ = std::exchange(other.function_, nullptr);
        }
        return *this;
    }

    ~Callback() { callIfDropped(); }

    explicit operator bool() const noexcept { return static_cast<bool>(function_); }

    void operator()(Args... args) {
        auto function = std::exchange(function_, nullptr);
        if (!function) {
#ifndef NDEBUG
            CallbackGuard::calledTwice();
#else
            return;
#endif
        }
        function(std::forward<Args>(args)...);
    }

    // For the few that are never called on purpose; what the function holds is abandoned with it.
    void abandon() noexcept {
        const CallbackGuard::Abandonment abandonment;
        function_ = nullptr;
    }

  private:
    void callIfDropped() noexcept {
        if (!function_ || !CallbackGuard::dropped()) {
            return;
        }
        if constexpr ((HasDroppedValue<std::decay_t<Args>> && ...)) {
            auto function = std::exchange(function_, nullptr);
            containingExceptions("A callback that was dropped",
                                 [&] { function(DroppedValue<std::decay_t<Args>>::value()...); });
        }
    }

    std::move_only_function<void(Args...)> function_;
};

// The end of asynchronous work: a value or a typed error.
template <class T, class E> using Completion = Callback<Result<T, E>>;

} // namespace zelto
