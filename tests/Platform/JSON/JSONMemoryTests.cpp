#include <Platform/JSON/JSONValue.h>

#include <Support/FreshProcess.h>
#include <Support/Sanitizers.h>

#include <gtest/gtest.h>

#include <fstream>
#include <new>
#include <sys/resource.h>
#include <unistd.h>

// The sanitizers reserve more address space than a useful limit allows.
#if !defined(ZELTO_ADDRESS_SANITIZER) && !defined(ZELTO_THREAD_SANITIZER)

namespace zelto {
namespace {

// Leaves the process only 30 MB more address space.
bool limitAddressSpace() {
    constexpr rlim_t littleSpace = 30'000'000;
    std::ifstream statm("/proc/self/statm");
    rlim_t pages = 0;
    statm >> pages;
    rlimit limit{};
    if (pages == 0 || ::getrlimit(RLIMIT_AS, &limit) != 0) {
        return false;
    }
    limit.rlim_cur = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + littleSpace;
    return ::setrlimit(RLIMIT_AS, &limit) == 0;
}

template <class F> bool throwsBadAlloc(F&& function) {
    try {
        function();
        return false;
    } catch (const std::bad_alloc&) {
        return true;
    }
}

TEST(JSONMemory, ATextThatMemoryDoesNotHoldThrowsAndTheNextIsRead) {
    expectInFreshProcess([] {
        std::string zeros = "[0";
        for (int count = 0; count < 7'000'000; ++count) {
            zeros += ",0";
        }
        zeros += ']';
        return limitAddressSpace() && throwsBadAlloc([&] { static_cast<void>(JSONTape::parse(zeros)); }) &&
               JSONTape::parse("[0]");
    });
}

TEST(JSONMemory, AValueWhoseTapeMemoryDoesNotHoldThrowsAndTheNextIsDecoded) {
    expectInFreshProcess([] {
        const JSONValue zeros = JSONValue::Array(2'500'000, 0);
        return limitAddressSpace() && throwsBadAlloc([&] { static_cast<void>(zeros.as<JSONValue>()); }) &&
               JSONValue(7).as<int>() == 7;
    });
}

} // namespace
} // namespace zelto

#endif
