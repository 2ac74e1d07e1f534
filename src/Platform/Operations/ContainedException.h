#pragma once

#include <exception>
#include <new>
#include <string_view>

namespace zelto {

// Called with an exception that a caller's function threw where none may pass: in an operation, a completion
// block, a job of the pool or a cancellation handler. The work continues as if the function had returned.
using ContainedExceptionHandler = void (*)(std::string_view where, const std::exception_ptr& exception);

// Gives the previous handler. Any thread; a handler is called on the thread that caught, and must not throw.
// The initial one writes the place and the exception's type to standard error, and never its text, which may
// contain anything.
ContainedExceptionHandler setContainedExceptionHandler(ContainedExceptionHandler handler) noexcept;

// For a catch clause: passes the current exception to the handler.
void reportContainedException(std::string_view where) noexcept;

// Calls the function and contains what it throws. False if it threw: the caller then reports a failure of its
// own.
template <class F> [[nodiscard]] bool returnsNormally(std::string_view where, F&& function) noexcept {
    try {
        function();
        return true;
    } catch (...) {
        reportContainedException(where);
        return false;
    }
}

// The same where nobody could be told of a failure. Memory that runs out there ends the process
// (std::terminate): whoever waits for what the function was to do would wait for ever.
template <class F> void containingExceptions(std::string_view where, F&& function) noexcept {
    try {
        function();
    } catch (const std::bad_alloc&) {
        std::terminate();
    } catch (...) {
        reportContainedException(where);
    }
}

} // namespace zelto
