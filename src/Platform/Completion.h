#pragma once

#include <Platform/Result.h>

#include <functional>
#include <utility>

namespace zelto {

// What Callback does about the two mistakes with it. A debug build stops on a second call; a callback that is
// dropped uncalled is told to a handler, which writes to standard error unless a test has set its own.
class CallbackGuard {
  public:
    using DroppedHandler = void (*)();
    // Gives the handler before. Any thread.
    static DroppedHandler setDroppedHandler(DroppedHandler handler) noexcept;

    // What is dropped on this thread while one lives is not told.
    class Abandonment {
      public:
        Abandonment() noexcept;
        ~Abandonment();
        Abandonment(const Abandonment&) = delete;
        Abandonment& operator=(const Abandonment&) = delete;
    };

    static void dropped() noexcept;
    [[noreturn]] static void calledTwice() noexcept;
};

// A function that is called exactly once, on every path. Move-only and passed by value; calling it gives it
// up. It may be called on any thread, and before the operation that took it returns, unless that operation
// says other.
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
            tellIfDropped();
            function_ = std::exchange(other.function_, nullptr);
        }
        return *this;
    }

    ~Callback() { tellIfDropped(); }

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
    void tellIfDropped() const noexcept {
        if (function_) {
            CallbackGuard::dropped();
        }
    }

    std::move_only_function<void(Args...)> function_;
};

// The end of asynchronous work: a value or a typed error.
template <class T, class E> using Completion = Callback<Result<T, E>>;

} // namespace zelto
