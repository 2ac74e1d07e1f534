#include <Support/OneNoteExport.h>
#include <Support/ProcessMemory.h>
#include <Support/ServiceRoute.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <sys/resource.h>

namespace zelto {

namespace {

constexpr std::int64_t mebibyte = 1 << 20;

// While it lives, the process may open this many files beside those that are open.
class OpenFileLimit {
  public:
    explicit OpenFileLimit(rlim_t more) {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        auto limit = before_;
        limit.rlim_cur = std::min(highestDescriptor() + 1 + more, before_.rlim_cur);
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }

    ~OpenFileLimit() { ::setrlimit(RLIMIT_NOFILE, &before_); }

    OpenFileLimit(const OpenFileLimit&) = delete;
    OpenFileLimit& operator=(const OpenFileLimit&) = delete;

  private:
    static rlim_t highestDescriptor() {
        rlim_t highest = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            highest = std::max<rlim_t>(highest, std::stoull(entry.path().filename()));
        }
        return highest;
    }

    rlimit before_ = {};
};

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
    EXPECT_LT(growthDuring([&] { EXPECT_TRUE(one.run()); }), 16 * mebibyte + memoryOverhead);
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 1U);
    const auto length = std::stoll(requests.front().headers.value("Content-Length").value());
    EXPECT_GT(length, 3 * size);
    EXPECT_LT(length, 3 * size + 4096);
}

TEST(OneNoteUpload, TakesMoreFilesThanAProcessMayHaveOpen) {
    constexpr int count = 300;
    OneNoteExport one;
    for (int number = 0; number < count; ++number) {
        one.attach(std::to_string(number) + ".txt", "content " + std::to_string(number));
    }
    TestHTTPServer server([](const auto&) { return PlayedResponse::json("{}", 201); });
    const ServiceRoute route(server);
    const OpenFileLimit limit(50);
    ASSERT_TRUE(one.run());
    ASSERT_EQ(server.requests().size(), 1U);
    const auto form = server.requests().front().body;
    for (int number = 0; number < count; ++number) {
        const auto text = std::to_string(number);
        EXPECT_NE(form.find("<object data-attachment=\"" + text + ".txt\""), std::string::npos) << number;
        EXPECT_NE(form.find("\r\n\r\ncontent " + text + "\r\n"), std::string::npos) << number;
    }
}

TEST(OneNoteUpload, OfAFileThatIsReplacedBeforeItIsSentMakesNoPage) {
    OneNoteExport one;
    one.attach("a.txt", "first");
    one.attach("b.txt", "second");
    one.data->fileOf = [&](std::int64_t id) {
        if (id == 1) {
            std::filesystem::rename(one.folder.write("other", "other"), one.files.front());
        }
        return std::optional(URL::file(one.files.at(static_cast<std::size_t>(id))));
    };
    const OneNoteServer service;
    EXPECT_EQ(one.run().error(), IntegrationExportError::connectionError);
}

} // namespace zelto
