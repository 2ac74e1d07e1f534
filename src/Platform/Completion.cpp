#include <Platform/Completion.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace zelto {

namespace {

void reportDropped() {
    std::fputs("zelto: a completion was dropped without being called\n", stderr);
}

std::atomic<CallbackGuard::DroppedHandler> droppedHandler = reportDropped;

thread_local int abandonments = 0;

} // namespace

CallbackGuard::DroppedHandler CallbackGuard::setDroppedHandler(DroppedHandler handler) noexcept {
    return droppedHandler.exchange(handler);
}

CallbackGuard::Abandonment::Abandonment() noexcept {
    ++abandonments;
}

CallbackGuard::Abandonment::~Abandonment() {
    --abandonments;
}

bool CallbackGuard::dropped() noexcept {
    if (abandonments > 0) {
        return false;
    }
    droppedHandler.load()();
    return true;
}

void CallbackGuard::calledTwice() noexcept {
    std::fputs("zelto: a completion was called twice\n", stderr);
    std::abort();
}

} // namespace zelto
