#include <ZeltoHost/HTML/HTMLArena.h>

#include <ctime>
#include <new>
#include <utility>

namespace zelto {

namespace {

double threadCPUSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

constexpr unsigned allocationsBetweenClocks = 1024;

} // namespace

HTMLArena::HTMLArena(std::size_t byteLimit, double cpuSeconds)
    : byteLimit_(byteLimit), cpuDeadline_(threadCPUSeconds() + cpuSeconds) {}

void* HTMLArena::allocate(std::size_t size) {
    constexpr auto alignment = alignof(std::max_align_t);
    size = (size + alignment - 1) / alignment * alignment;
    if (++untilClock_ == allocationsBetweenClocks) {
        untilClock_ = 0;
        if (threadCPUSeconds() > cpuDeadline_) {
            stop();
        }
    }
    if (size <= left_) {
        left_ -= size;
        return std::exchange(next_, next_ + size);
    }
    return allocateChunk(size);
}

void* HTMLArena::allocateChunk(std::size_t size) {
    const bool isLarge = size > chunkSize / 4;
    const auto wanted = isLarge ? size : chunkSize;
    std::byte* chunk = given_ + wanted > byteLimit_ ? nullptr : new (std::nothrow) std::byte[wanted];
    if (chunk == nullptr) {
        stop();
    }
    given_ += wanted;
    if (isLarge) {
        largeBlocks_[chunk] = {std::unique_ptr<std::byte[]>(chunk), size};
        return chunk;
    }
    chunks_.emplace_back(chunk);
    next_ = chunk + size;
    left_ = wanted - size;
    return chunk;
}

void HTMLArena::deallocate(void* block) {
    if (const auto large = largeBlocks_.find(block); large != largeBlocks_.end()) {
        given_ -= large->second.size;
        largeBlocks_.erase(large);
    }
}

void HTMLArena::stop() {
    std::longjmp(escape, 1);
}

} // namespace zelto
