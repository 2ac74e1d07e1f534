#include <Platform/HTTP/HTTPBody.h>

#include <Platform/Base64.h>
#include <Support/ProcessMemory.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace zelto {

namespace {

std::string sample(std::size_t size) {
    std::string text(size, '\0');
    std::uint32_t state = 12345;
    for (auto& each : text) {
        state = state * 1664525 + 1013904223;
        each = static_cast<char>(state >> 24);
    }
    return text;
}

// `nullopt` after an error.
std::optional<std::string> readWhole(HTTPBody::Reader& reader, std::size_t bufferSize) {
    std::string whole;
    Data buffer(bufferSize);
    for (;;) {
        const auto count = reader.read(buffer);
        if (!count) {
            return std::nullopt;
        }
        if (*count == 0) {
            return whole;
        }
        whole.append(viewOf(buffer).substr(0, *count));
    }
}

std::string textOf(const HTTPBody& body) {
    const auto bytes = body.bytes();
    return bytes ? std::string(viewOf(*bytes)) : "(error)";
}

// How much a reader gives of the body, up to that length.
std::uint64_t lengthReadOf(const HTTPBody& body, std::uint64_t maximum) {
    HTTPBody::Reader reader(body);
    Data buffer(65'536);
    std::uint64_t total = 0;
    while (total < maximum) {
        const auto count = reader.read(buffer).value_or(0);
        if (count == 0) {
            break;
        }
        total += count;
    }
    return total;
}

std::size_t openDescriptors() {
    const auto entries = std::filesystem::directory_iterator("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace

TEST(HTTPBody, ANewBodyIsEmpty) {
    const HTTPBody body;
    EXPECT_EQ(body.size(), 0u);
    EXPECT_TRUE(body.empty());
    EXPECT_EQ(textOf(body), "");
    HTTPBody::Reader reader(body);
    EXPECT_EQ(readWhole(reader, 16), "");
}

TEST(HTTPBody, TextsAndFilesFollowEachOtherInTheOrderOfAppending) {
    const TemporaryFolder folder;
    HTTPBody body("one,");
    ASSERT_TRUE(body.appendFile(folder.write("a", std::string("two\0,", 5))));
    body.append("");
    ASSERT_TRUE(body.appendFileAsBase64(folder.write("b", "three")));
    body.append(",four");
    const std::string expected("one,two\0,dGhyZWU=,four", 22);
    EXPECT_EQ(body.size(), expected.size());
    EXPECT_EQ(textOf(body), expected);
}

TEST(HTTPBody, ABodyIsMadeOfBytesToo) {
    EXPECT_EQ(textOf(HTTPBody(Data{0, 255, 10})), std::string("\0\xFF\n", 3));
}

TEST(HTTPBody, ABodyCanBeAppendedToAnotherAndToItself) {
    const TemporaryFolder folder;
    HTTPBody part;
    ASSERT_TRUE(part.appendFile(folder.write("a", "file")));
    HTTPBody body("[");
    body.append(part);
    body.append("]");
    body.append(body);
    EXPECT_EQ(body.size(), 12u);
    EXPECT_EQ(textOf(body), "[file][file]");
    EXPECT_EQ(textOf(part), "file");
}

TEST(HTTPBody, ACopyIsNotChangedByWhatIsAppendedToTheOriginal) {
    HTTPBody body("a");
    const HTTPBody copy = body;
    body.append("b");
    EXPECT_EQ(textOf(copy), "a");
    EXPECT_EQ(textOf(body), "ab");
}

TEST(HTTPBody, AnEmptyFileAddsNothing) {
    const TemporaryFolder folder;
    HTTPBody body;
    EXPECT_TRUE(body.appendFile(folder.write("empty", "")));
    EXPECT_TRUE(body.appendFileToReopen(folder / "empty"));
    EXPECT_TRUE(body.appendFileAsBase64(folder / "empty"));
    EXPECT_EQ(body.size(), 0u);
}

TEST(HTTPBody, WhatIsNoReadableRegularFileIsRefusedAndChangesNothing) {
    const TemporaryFolder folder;
    folder.write("file", "content");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const auto before = openDescriptors();
    HTTPBody body("text");
    for (const auto& path :
         {folder / "absent", folder.path(), folder / "pipe", std::filesystem::path("/dev/zero"),
          std::filesystem::path(), folder / std::string_view("file\0x", 6)}) {
        EXPECT_FALSE(body.appendFile(path)) << path;
        EXPECT_FALSE(body.appendFileToReopen(path)) << path;
        EXPECT_FALSE(body.appendFileAsBase64(path)) << path;
    }
    EXPECT_EQ(textOf(body), "text");
    EXPECT_EQ(openDescriptors(), before);
}

TEST(HTTPBody, TheFileIsOpenedOnceAndClosedWithTheLastCopy) {
    const TemporaryFolder folder;
    const auto before = openDescriptors();
    {
        HTTPBody body;
        ASSERT_TRUE(body.appendFile(folder.write("a", "content")));
        EXPECT_EQ(openDescriptors(), before + 1);
        auto copy = std::make_unique<HTTPBody>(body);
        body = HTTPBody();
        EXPECT_EQ(openDescriptors(), before + 1);
        const HTTPBody::Reader reader(*copy);
        copy.reset();
        EXPECT_EQ(openDescriptors(), before + 1);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(HTTPBody, AFileToReopenIsOpenOnlyWhileItIsRead) {
    const TemporaryFolder folder;
    const auto content = sample(300'000);
    const auto before = openDescriptors();
    HTTPBody body("[");
    const auto path = folder.write("a", content);
    for (int count = 0; count < 50; ++count) {
        ASSERT_TRUE(body.appendFileToReopen(path));
    }
    EXPECT_EQ(body.size(), 50 * content.size() + 1);
    EXPECT_EQ(openDescriptors(), before);
    HTTPBody::Reader reader(body);
    Data buffer(65'536);
    ASSERT_TRUE(reader.read(buffer));
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(textOf(body).substr(0, content.size() + 1), "[" + content);
    reader.rewind();
    EXPECT_EQ(readWhole(reader, 100'000), textOf(body));
}

TEST(HTTPBody, AFileToReopenThatIsGoneOrAnotherIsAnError) {
    const TemporaryFolder folder;
    const auto path = folder.write("a", "content");
    HTTPBody body;
    ASSERT_TRUE(body.appendFileToReopen(path));
    EXPECT_EQ(textOf(body), "content");
    std::filesystem::rename(folder.write("b", "others!"), path);
    EXPECT_EQ(body.bytes().error(), HTTPBodyError::fileChanged);
    std::filesystem::remove(path);
    EXPECT_EQ(body.bytes().error(), HTTPBodyError::fileUnreadable);
}

TEST(HTTPBody, AFileToReopenThatWasWrittenToIsAnError) {
    const TemporaryFolder folder;
    const auto path = folder.write("a", "content");
    HTTPBody body;
    ASSERT_TRUE(body.appendFileToReopen(path));
    folder.write("a", "changed");
    const auto time = std::filesystem::last_write_time(path);
    std::filesystem::last_write_time(path, time + std::chrono::seconds(1)); // however coarse the clock is
    EXPECT_EQ(body.bytes().error(), HTTPBodyError::fileChanged);
}

TEST(HTTPBody, AnOpenFileIsNotInheritedByChildProcesses) {
    const TemporaryFolder folder;
    const auto path = folder.write("a", "content");
    HTTPBody body;
    ASSERT_TRUE(body.appendFile(path));
    bool found = false;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        if (std::filesystem::read_symlink(entry.path(), ignored) == std::filesystem::canonical(path)) {
            const int descriptor = std::stoi(entry.path().filename());
            EXPECT_TRUE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC);
            found = true;
        }
    }
    EXPECT_TRUE(found);
}

TEST(HTTPBody, RemovingOrReplacingTheFileChangesNothing) {
    const TemporaryFolder folder;
    HTTPBody body;
    ASSERT_TRUE(body.appendFile(folder.write("a", "content")));
    std::filesystem::rename(folder.write("b", "other"), folder / "a");
    EXPECT_EQ(textOf(body), "content");
    std::filesystem::remove(folder / "a");
    EXPECT_EQ(textOf(body), "content");
}

TEST(HTTPBody, AFileThatGrewGivesThePromisedLength) {
    const TemporaryFolder folder;
    const auto path = folder.write("a", "abcd");
    HTTPBody body;
    ASSERT_TRUE(body.appendFile(path));
    ASSERT_TRUE(body.appendFileAsBase64(path));
    folder.write("a", "abcdefgh");
    EXPECT_EQ(body.size(), 12u);
    EXPECT_EQ(textOf(body), "abcdYWJjZA==");
    HTTPBody::Reader reader(body);
    EXPECT_EQ(readWhole(reader, 5), "abcdYWJjZA==");
}

TEST(HTTPBody, AFileThatShrankIsAnErrorAndNeverAShortBody) {
    const TemporaryFolder folder;
    const auto path = folder.write("a", sample(10000));
    HTTPBody plain;
    HTTPBody encoded;
    ASSERT_TRUE(plain.appendFile(path));
    ASSERT_TRUE(encoded.appendFileAsBase64(path));
    std::filesystem::resize_file(path, 9999);
    for (const auto& body : {plain, encoded}) {
        EXPECT_EQ(body.bytes().error(), HTTPBodyError::fileTooShort);
        HTTPBody::Reader reader(body);
        EXPECT_EQ(readWhole(reader, 64), std::nullopt);
        Data buffer(64);
        EXPECT_EQ(reader.read(buffer).error(), HTTPBodyError::fileTooShort);
    }
}

TEST(HTTPBody, AFileThatIsCutWhileItIsReadIsAnError) {
    const TemporaryFolder folder;
    const auto path = folder.write("a", sample(10000));
    HTTPBody body;
    ASSERT_TRUE(body.appendFile(path));
    HTTPBody::Reader reader(body);
    Data buffer(4000);
    EXPECT_EQ(reader.read(buffer), 4000u);
    std::filesystem::resize_file(path, 4000);
    EXPECT_EQ(reader.read(buffer).error(), HTTPBodyError::fileTooShort);
}

TEST(HTTPBodyReader, AnyBufferSizeGivesTheSameBytes) {
    const TemporaryFolder folder;
    const auto path = folder.write("a", sample(1000));
    HTTPBody body("head");
    ASSERT_TRUE(body.appendFile(path));
    body.append("-");
    ASSERT_TRUE(body.appendFileAsBase64(path));
    body.append("tail");
    const auto expected = "head" + sample(1000) + "-" + base64Encoded(sample(1000)) + "tail";
    ASSERT_EQ(textOf(body), expected);
    for (const std::size_t bufferSize : {1, 2, 3, 4, 5, 7, 64, 1000, 100000}) {
        HTTPBody::Reader reader(body);
        EXPECT_EQ(readWhole(reader, bufferSize), expected) << bufferSize;
    }
}

TEST(HTTPBodyReader, Base64IsRightAtAllAlignmentsAcrossBufferBoundaries) {
    const TemporaryFolder folder;
    // Around the size of a piece that is encoded at once, with each remainder of 3.
    for (const std::size_t size : {1, 2, 3, 4, 5, 12287, 12288, 12289, 12290, 40000}) {
        HTTPBody body;
        ASSERT_TRUE(body.appendFileAsBase64(folder.write("a", sample(size))));
        const auto expected = base64Encoded(sample(size));
        EXPECT_EQ(body.size(), expected.size());
        EXPECT_EQ(textOf(body), expected) << size;
        for (const std::size_t bufferSize : {1, 2, 3, 4, 5, 6, 16383, 16384, 16385}) {
            HTTPBody::Reader reader(body);
            EXPECT_EQ(readWhole(reader, bufferSize), expected) << size << " by " << bufferSize;
        }
    }
}

TEST(HTTPBodyReader, ABufferIsFilledAcrossSegmentsAndTheEndIsZero) {
    HTTPBody body("ab");
    body.append("cd");
    body.append("e");
    HTTPBody::Reader reader(body);
    Data buffer(4);
    EXPECT_EQ(reader.read(buffer), 4u);
    EXPECT_EQ(viewOf(buffer), "abcd");
    EXPECT_EQ(reader.read(buffer), 1u);
    EXPECT_EQ(reader.read(buffer), 0u);
    EXPECT_EQ(reader.read(buffer), 0u);
}

TEST(HTTPBodyReader, ARewoundReaderGivesTheWholeAgain) {
    const TemporaryFolder folder;
    HTTPBody body("head");
    ASSERT_TRUE(body.appendFileAsBase64(folder.write("a", "content")));
    HTTPBody::Reader reader(body);
    Data buffer(7);
    ASSERT_EQ(reader.read(buffer), 7u);
    reader.rewind();
    EXPECT_EQ(readWhole(reader, 7), "headY29udGVudA==");
    reader.rewind();
    EXPECT_EQ(readWhole(reader, 7), "headY29udGVudA==");
}

TEST(HTTPBodyReader, SeveralReadersShareOneFileOnSeveralThreads) {
    const TemporaryFolder folder;
    HTTPBody body;
    ASSERT_TRUE(body.appendFile(folder.write("a", sample(200000))));
    ASSERT_TRUE(body.appendFileAsBase64(folder / "a"));
    const auto expected = sample(200000) + base64Encoded(sample(200000));
    std::vector<std::optional<std::string>> read(4);
    {
        std::vector<std::jthread> threads;
        for (std::size_t index = 0; index < read.size(); ++index) {
            threads.emplace_back([&, index] {
                HTTPBody::Reader reader(body);
                read[index] = readWhole(reader, 1000 + index);
            });
        }
    }
    for (const auto& each : read) {
        EXPECT_EQ(each, expected);
    }
}

TEST(HTTPBodyReader, AFileOfOneGibibyteIsNeverInMemory) {
    const TemporaryFolder folder;
    const auto path = folder.write("big", "begin");
    constexpr std::uint64_t gibibyte = std::uint64_t{1} << 30;
    std::filesystem::resize_file(path, gibibyte);
    HTTPBody plain("--head\r\n");
    ASSERT_TRUE(plain.appendFile(path));
    ASSERT_EQ(plain.size(), 8 + gibibyte);
    HTTPBody reopened;
    ASSERT_TRUE(reopened.appendFileToReopen(path));
    HTTPBody encoded;
    ASSERT_TRUE(encoded.appendFileAsBase64(path));
    ASSERT_EQ(encoded.size(), base64Length(gibibyte));
    const auto growth = growthDuring([&] {
        EXPECT_EQ(lengthReadOf(plain, gibibyte + 8), gibibyte + 8);
        EXPECT_EQ(lengthReadOf(reopened, gibibyte / 16), gibibyte / 16);
        EXPECT_EQ(lengthReadOf(encoded, gibibyte / 16), gibibyte / 16);
    });
    EXPECT_LT(growth, (std::size_t{8} << 20) + memoryOverhead);
}

} // namespace zelto
