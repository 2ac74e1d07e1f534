#pragma once

#include <Support/Sanitizers.h>

#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>

#if defined(ZELTO_ADDRESS_SANITIZER) || defined(ZELTO_THREAD_SANITIZER)
#define ZELTO_MEMORY_IS_SHADOWED
#endif

namespace zelto {

// What a sanitizer adds: it keeps freed memory, and needs shadow memory.
#ifdef ZELTO_MEMORY_IS_SHADOWED
inline constexpr std::size_t memoryOverhead = std::size_t{600} << 20;
#else
inline constexpr std::size_t memoryOverhead = 0;
#endif

// A field of this process's status, as "VmRSS:", in bytes.
inline std::size_t memoryOf(std::string_view field) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == field) {
            std::size_t kibibytes = 0;
            status >> kibibytes;
            return kibibytes << 10;
        }
    }
    return 0;
}

// The growth of this process's memory above its current size while the function runs; 0 where others freed
// more meanwhile.
template <class F> std::size_t growthDuring(F&& function) {
    std::ofstream("/proc/self/clear_refs") << "5";
    const auto before = memoryOf("VmRSS:");
    function();
    const auto peak = memoryOf("VmHWM:");
    return peak > before ? peak - before : 0;
}

} // namespace zelto
