// Loaded before a program's libraries, makes one of its allocations fail, or all from one on:
//
//    LD_PRELOAD=libFailingAllocation.so ZELTO_FAILING_ALLOCATION=1200   the 1,200th alone
//                                       ZELTO_FAILING_ALLOCATION=1200+  it and all later ones
//                                       ZELTO_ALLOCATION_COUNT=FILE     counts them; FILE has 8 bytes for the
//                                       number
//
// Programs that the program starts are left alone.

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

std::atomic<std::uint64_t> ownCount;
std::atomic<std::uint64_t>* count = &ownCount;
std::uint64_t failing = 0;
bool failsAfterwards = false;

bool fails() {
    const auto number = count->fetch_add(1, std::memory_order_relaxed) + 1;
    const bool isFailing = failing != 0 && (number == failing || (failsAfterwards && number > failing));
    if (isFailing) {
        errno = ENOMEM;
    }
    return isFailing;
}

void countInto(const char* path) {
    const int file = ::open(path, O_RDWR | O_CLOEXEC);
    void* shared =
        file < 0 ? MAP_FAILED : ::mmap(nullptr, sizeof ownCount, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (shared == MAP_FAILED) {
        std::_Exit(125);
    }
    count = static_cast<std::atomic<std::uint64_t>*>(shared);
}

__attribute__((constructor)) void begin() {
    if (const char* path = std::getenv("ZELTO_ALLOCATION_COUNT")) {
        countInto(path);
    }
    if (const char* number = std::getenv("ZELTO_FAILING_ALLOCATION")) {
        failsAfterwards = std::strchr(number, '+') != nullptr;
        failing = std::strtoull(number, nullptr, 10);
    }
    for (const char* name : {"LD_PRELOAD", "ZELTO_ALLOCATION_COUNT", "ZELTO_FAILING_ALLOCATION"}) {
        ::unsetenv(name);
    }
}

} // namespace

extern "C" {

void* malloc(std::size_t size) {
    return fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t number, std::size_t size) {
    return fails() ? nullptr : __libc_calloc(number, size);
}

void* realloc(void* block, std::size_t size) {
    return fails() ? nullptr : __libc_realloc(block, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
    return fails() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = memalign(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}
}
