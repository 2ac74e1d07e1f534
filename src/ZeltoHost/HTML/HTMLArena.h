#pragma once

#include <csetjmp>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

namespace zelto {

// The memory of one parsed document. It is freed as a whole, which is faster than freeing a million nodes one
// by one; only large blocks are freed when the parser has done with them, as those are what a text that grows
// leaves behind. A parser in C cannot be stopped from outside, so an arena that reaches a limit jumps to
// `escape`; only frames of C may lie between the two.
class HTMLArena {
  public:
    // The limits: bytes that are allocated at once, and CPU time of the thread.
    HTMLArena(std::size_t byteLimit, double cpuSeconds);

    void* allocate(std::size_t size);
    void deallocate(void* block);

    std::jmp_buf escape;

  private:
    static constexpr std::size_t chunkSize = std::size_t{1} << 20;

    struct LargeBlock {
        std::unique_ptr<std::byte[]> bytes;
        std::size_t size = 0;
    };

    void* allocateChunk(std::size_t size);
    [[noreturn]] void stop();

    std::vector<std::unique_ptr<std::byte[]>> chunks_;
    std::unordered_map<void*, LargeBlock> largeBlocks_;
    std::byte* next_ = nullptr;
    std::size_t left_ = 0;
    std::size_t given_ = 0;
    std::size_t byteLimit_;
    double cpuDeadline_;
    unsigned untilClock_ = 0;
};

} // namespace zelto
