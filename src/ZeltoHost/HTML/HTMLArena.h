#pragma once

#include <csetjmp>
#include <cstddef>
#include <memory>
#include <vector>

namespace zelto {

// The memory of one parsed document. It is freed as a whole, which is faster than freeing a million nodes and
// needs no walk. A parser in C cannot be told to stop, so an arena that has given all it may give jumps to
// `escape`; between the two there must be nothing but frames of C.
class HTMLArena {
  public:
    // Stops past so many bytes, or when the thread has used so much CPU time.
    HTMLArena(std::size_t byteLimit, double cpuSeconds);

    void* allocate(std::size_t size);

    std::jmp_buf escape;

  private:
    static constexpr std::size_t chunkSize = std::size_t{1} << 20;

    void* allocateChunk(std::size_t size);
    [[noreturn]] void stop();

    std::vector<std::unique_ptr<std::byte[]>> chunks_;
    std::byte* next_ = nullptr;
    std::size_t left_ = 0;
    std::size_t given_ = 0;
    std::size_t byteLimit_;
    double cpuDeadline_;
    unsigned untilClock_ = 0;
};

} // namespace zelto
