#include <Platform/JSON/JSONValue.h>

#include "Support/Sanitizers.h"

#include <gtest/gtest.h>

#include <fstream>
#include <malloc.h>
#include <new>
#include <sys/resource.h>
#include <unistd.h>

// The sanitizers reserve more address space than a useful limit allows.
#if !defined(ZELTO_ADDRESS_SANITIZER) && !defined(ZELTO_THREAD_SANITIZER)

namespace zelto {
namespace {

// Leaves the process only that much more address space, as long as it lives.
class AddressSpaceLeft {
  public:
    explicit AddressSpaceLeft(rlim_t bytes) {
        // What earlier tests have freed could be used again within the limit.
        ::malloc_trim(0);
        EXPECT_EQ(::getrlimit(RLIMIT_AS, &before_), 0);
        std::ifstream statm("/proc/self/statm");
        rlim_t pages = 0;
        statm >> pages;
        const rlimit limit{pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + bytes, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_AS, &limit), 0);
    }

    ~AddressSpaceLeft() { ::setrlimit(RLIMIT_AS, &before_); }

    AddressSpaceLeft(const AddressSpaceLeft&) = delete;
    AddressSpaceLeft& operator=(const AddressSpaceLeft&) = delete;

  private:
    rlimit before_{};
};

constexpr rlim_t littleSpace = 30'000'000;

TEST(JSONMemory, ATextThatMemoryDoesNotHoldThrowsAndTheNextIsRead) {
    std::string zeros = "[0";
    for (int count = 0; count < 7'000'000; ++count) {
        zeros += ",0";
    }
    zeros += ']';
    const AddressSpaceLeft limit(littleSpace);
    EXPECT_THROW(static_cast<void>(JSONTape::parse(zeros)), std::bad_alloc);
    EXPECT_TRUE(JSONTape::parse("[0]"));
}

TEST(JSONMemory, AValueWhoseTapeMemoryDoesNotHoldThrowsAndTheNextIsDecoded) {
    const JSONValue zeros = JSONValue::Array(2'500'000, 0);
    const AddressSpaceLeft limit(littleSpace);
    EXPECT_THROW(static_cast<void>(zeros.as<JSONValue>()), std::bad_alloc);
    EXPECT_EQ(JSONValue(7).as<int>(), 7);
}

} // namespace
} // namespace zelto

#endif
