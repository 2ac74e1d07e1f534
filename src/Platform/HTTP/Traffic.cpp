#include <Platform/HTTP/Traffic.h>

#include <Platform/HTTP/TrafficInternal.h>

#include <atomic>

namespace zelto {

namespace {

std::atomic<std::uint64_t> moved = 0;
std::atomic<std::uint64_t> routed = 0;

} // namespace

std::uint64_t movedByteCount() {
    return moved.load(std::memory_order_relaxed);
}

void countMovedBytes(std::size_t count) {
    moved.fetch_add(count, std::memory_order_relaxed);
}

std::uint64_t routedRequestCount() {
    return routed.load(std::memory_order_relaxed);
}

void countRoutedRequest() {
    routed.fetch_add(1, std::memory_order_relaxed);
}

} // namespace zelto
