#include <Support/OneNoteExport.h>
#include <Support/Sanitizers.h>
#include <Support/ServiceRoute.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace zelto {

namespace {

constexpr std::int64_t mebibyte = 1 << 20;

// Resets the kernel's maximum of resident memory to the current size.
void resetPeakMemory() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

std::int64_t peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            std::int64_t kibibytes = 0;
            status >> kibibytes;
            return kibibytes * 1024;
        }
    }
    return 0;
}

} // namespace

TEST(OneNoteUpload, OfThreeFilesOfOneByteLessThanTheLimitIsNeverInMemory) {
    OneNoteExport one;
    constexpr auto size = 100 * mebibyte - 1;
    for (const auto* name : {"a.bin", "b.bin", "c.bin"}) {
        const auto file = one.folder.write(name, "");
        std::filesystem::resize_file(file, size); // sparse
        one.attachFile(file);
    }
    TestHTTPServer server([](const auto&) { return PlayedResponse::json("{}", 201); }, 0);
    const ServiceRoute route(server);
    resetPeakMemory();
    const auto before = peakMemory();
    ASSERT_GT(before, 0);
    ASSERT_TRUE(one.run());
    EXPECT_LT(peakMemory() - before, 16 * mebibyte);
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 1U);
    const auto length = std::stoll(requests.front().headers.value("Content-Length").value());
    EXPECT_GT(length, 3 * size);
    EXPECT_LT(length, 3 * size + 4096);
}

} // namespace zelto
