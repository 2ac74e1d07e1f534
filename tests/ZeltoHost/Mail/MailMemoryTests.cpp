#include <ZeltoHost/Mail/MailContent.h>
#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailSamples.h>

#include <Platform/FileManager.h>

#include <fstream>
#include <sys/resource.h>

namespace zelto {
namespace {

std::size_t peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) << 10U;
}

// A mail with that many bytes in an attachment, in a preamble or in an endless line.
std::filesystem::path bigMail(std::string_view head, std::string_view line, std::size_t bytes,
                              std::string_view tail) {
    const auto path = testing::fileWith("", "big.eml");
    std::ofstream file(path, std::ios::binary);
    file << head;
    std::string block;
    while (block.size() < (1U << 20)) {
        block += line;
    }
    for (std::size_t written = 0; written < bytes; written += block.size()) {
        file << block;
    }
    file << tail;
    return path;
}

constexpr std::size_t mailBytes = 64U << 20;
constexpr std::size_t allowedGrowth = 12U << 20;

TEST(MailMemory, ABigMailIsReadAndItsAttachmentDecodedInLittleMemory) {
    const std::string line(76, 'A');
    const auto path =
        bigMail("From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nhello\n"
                "--b\nContent-Type: application/zip; name=a.zip\nContent-Transfer-Encoding: base64\n\n",
                line + "\n", mailBytes, "--b--\n");
    const auto before = peakMemory();
    const auto message = MailReader::open(path).value();
    MailDataInteractor interactor(message);
    const auto attachments = testing::resultOf<IntegrationAttachments>(
        [&](auto completion) { interactor.availableAttachments(std::move(completion)); });
    ASSERT_EQ(attachments.list.size(), 1U);
    EXPECT_GT(attachments.list[0].size, static_cast<std::int64_t>(mailBytes / 4 * 3 - (2U << 20)));
    const auto out = path.parent_path() / "out";
    ASSERT_TRUE(writeContent(*message->file, message->parts[2], out).has_value());
    EXPECT_EQ(std::filesystem::file_size(out), static_cast<std::uintmax_t>(attachments.list[0].size));
    EXPECT_LT(peakMemory() - before, allowedGrowth);
}

TEST(MailMemory, ABigPreambleABigEpilogueAndALineWithoutEndTakeLittleMemory) {
    const std::string head = "From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n";
    const auto before = peakMemory();
    for (const auto& path : {bigMail(head, "preamble line\n", mailBytes, "--b\n\nx\n--b--\n"),
                             bigMail(head + "--b\n\nx\n--b--\n", "--epilogue\n", mailBytes, ""),
                             bigMail(head + "--b\nContent-Type: image/png\n\n", "--b", mailBytes, "")}) {
        EXPECT_TRUE(MailReader::open(path).has_value());
        std::filesystem::remove(path);
    }
    EXPECT_LT(peakMemory() - before, allowedGrowth);
}

} // namespace
} // namespace zelto
