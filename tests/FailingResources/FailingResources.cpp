// Loaded before a program's libraries, makes one of its allocations or threads fail, or all from one on:
//
//    LD_PRELOAD=libFailingResources.so ZELTO_FAILING_ALLOCATION=1200   the 1,200th alone
//                                      ZELTO_FAILING_ALLOCATION=1200+  it and all later ones
//                                      ZELTO_ALLOCATION_COUNT=FILE     counts them; FILE has 8 bytes for the
//                                                                      number
//                                      ZELTO_FAILING_THREAD, ZELTO_THREAD_COUNT: the same for threads
//
// Programs that the program starts are left alone.

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

// What is counted, and may fail.
class Resource {
  public:
    bool fails() {
        const auto number = count_->fetch_add(1, std::memory_order_relaxed) + 1;
        return failing_ != 0 && (number == failing_ || (failsAfterwards_ && number > failing_));
    }

    void countInto(const char* path) {
        const int file = ::open(path, O_RDWR | O_CLOEXEC);
        void* shared = file < 0
                           ? MAP_FAILED
                           : ::mmap(nullptr, sizeof ownCount_, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (shared == MAP_FAILED) {
            std::_Exit(125);
        }
        count_ = static_cast<std::atomic<std::uint64_t>*>(shared);
    }

    void failAt(const char* number) {
        failsAfterwards_ = std::strchr(number, '+') != nullptr;
        failing_ = std::strtoull(number, nullptr, 10);
    }

    // By the variables of the environment.
    void begin(const char* countVariable, const char* failingVariable) {
        if (const char* path = std::getenv(countVariable)) {
            countInto(path);
        }
        if (const char* number = std::getenv(failingVariable)) {
            failAt(number);
        }
        ::unsetenv(countVariable);
        ::unsetenv(failingVariable);
    }

  private:
    std::atomic<std::uint64_t> ownCount_ = 0;
    std::atomic<std::uint64_t>* count_ = &ownCount_;
    std::uint64_t failing_ = 0;
    bool failsAfterwards_ = false;
};

constinit Resource allocations;
constinit Resource threads;

bool allocationFails() {
    const bool fails = allocations.fails();
    if (fails) {
        errno = ENOMEM;
    }
    return fails;
}

__attribute__((constructor)) void begin() {
    allocations.begin("ZELTO_ALLOCATION_COUNT", "ZELTO_FAILING_ALLOCATION");
    threads.begin("ZELTO_THREAD_COUNT", "ZELTO_FAILING_THREAD");
    ::unsetenv("LD_PRELOAD");
}

} // namespace

extern "C" {

void* malloc(std::size_t size) {
    return allocationFails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t number, std::size_t size) {
    return allocationFails() ? nullptr : __libc_calloc(number, size);
}

void* realloc(void* block, std::size_t size) {
    return allocationFails() ? nullptr : __libc_realloc(block, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
    return allocationFails() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = memalign(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) {
    static const auto create =
        reinterpret_cast<decltype(&pthread_create)>(::dlsym(RTLD_NEXT, "pthread_create"));
    return threads.fails() ? EAGAIN : create(thread, attributes, run, argument);
}
}
