#pragma once

#include <exception>
#include <string_view>

namespace zelto {

// What a caller's function threw where nothing may pass: in an operation, a completion block, a job of the
// pool or a cancellation handler. The work around it goes on as if the function had returned; the handler is
// told.
using ContainedExceptionHandler = void (*)(std::string_view where, const std::exception_ptr& exception);

// Gives the handler before. Any thread; the handler is called on the thread that caught, and must not throw.
// The one that is there from the start writes the place and the exception's type to standard error, and never
// its text, which may hold anything.
ContainedExceptionHandler setContainedExceptionHandler(ContainedExceptionHandler handler) noexcept;

// For a catch clause: tells the handler of the exception at hand.
void reportContainedException(std::string_view where) noexcept;

// Calls the function and contains what it throws. False if it threw.
template <class F> bool containingExceptions(std::string_view where, F&& function) noexcept {
    try {
        function();
        return true;
    } catch (...) {
        reportContainedException(where);
        return false;
    }
}

} // namespace zelto
