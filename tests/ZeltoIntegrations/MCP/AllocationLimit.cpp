#include "AllocationLimit.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr auto unlimited = std::numeric_limits<std::size_t>::max();
thread_local std::size_t largestAllocation = unlimited;

} // namespace

// The array and nothrow forms call this one too.
void* operator new(std::size_t size) {
    void* memory = size > largestAllocation ? nullptr : std::malloc(size);
    if (!memory) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace zelto {

AllocationLimit::AllocationLimit(std::size_t largest) {
    largestAllocation = largest;
}

AllocationLimit::~AllocationLimit() {
    largestAllocation = unlimited;
}

} // namespace zelto
