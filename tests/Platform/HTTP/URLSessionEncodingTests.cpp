#include <Platform/HTTP/URLSession.h>

#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

// Compressed responses, and the size that is limited.

namespace zelto {
namespace {

std::uint32_t checksum(std::string_view text) {
    std::uint32_t sum = ~0U;
    for (const unsigned char each : text) {
        sum ^= each;
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1) ^ (sum & 1 ? 0xEDB88320U : 0);
        }
    }
    return ~sum;
}

std::string littleEndian(std::uint32_t number, int bytes) {
    std::string text;
    for (int index = 0; index < bytes; ++index) {
        text += static_cast<char>(number >> (8 * index));
    }
    return text;
}

const std::string gzipHead("\x1f\x8b\x08\0\0\0\0\0\0\3", 10);

// RFC 1952 with stored blocks, which need no compressor.
std::string gzip(std::string_view text) {
    std::string packed = gzipHead;
    for (std::size_t start = 0; start == 0 || start < text.size(); start += 65535) {
        const auto piece = text.substr(start, 65535);
        const auto length = static_cast<std::uint32_t>(piece.size());
        packed += start + 65535 < text.size() ? '\0' : '\1';
        packed += littleEndian(length, 2) + littleEndian(~length, 2);
        packed += piece;
    }
    return packed + littleEndian(checksum(text), 4) +
           littleEndian(static_cast<std::uint32_t>(text.size()), 4);
}

// RFC 1951: one "x", then repeatedly the previous 258 bytes, 13 bits each. Never ends.
std::string bomb(std::size_t size) {
    std::string packed = gzipHead;
    std::uint32_t bits = 0;
    int count = 0;
    const auto add = [&](std::uint32_t code, int length) {
        bits |= code << count;
        for (count += length; count >= 8; count -= 8, bits >>= 8) {
            packed += static_cast<char>(bits);
        }
    };
    add(0b011, 3);      // the last block, with the fixed codes
    add(0b00010101, 8); // "x", which is 10101000 from the left
    while (packed.size() < size) {
        add(0b10100011, 8); // 285, a length of 258
        add(0, 5);          // a distance of 1
    }
    return packed;
}

PlayedResponse encoded(std::string body, const std::string& encodings) {
    return {.body = std::move(body), .fields = {{"Content-Encoding", encodings}}};
}

TEST(URLSessionEncoding, CompressedResponsesComeUnpacked) {
    const std::string text = "some text that is packed " + std::string(100'000, 'y');
    TestHTTPServer server({encoded(gzip(text), "gzip"), encoded(gzip(gzip(text)), "gzip, gzip"),
                           encoded(gzip(""), "gzip"), encoded(text, "identity")});
    URLSession session(URLSessionConfiguration::ephemeral());
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text(), text);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text(), text);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text(), "");
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text(), text);
}

TEST(URLSessionEncoding, AResponseThatUnpacksWithoutEndIsCutAtTheLimit) {
    const auto packed = bomb(1'000'000); // 158 MB
    TestHTTPServer server({encoded(packed, "gzip"), encoded(gzip(packed), "gzip, gzip")});
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.maximumResponseSize = 50'000'000;
    URLSession session(configuration);
    for (int round = 0; round < 2; ++round) {
        const auto end = TaskEnd::of(session, URLRequest(server.url()));
        EXPECT_EQ(end.code(), URLErrorCode::responseTooLarge);
        EXPECT_EQ(end.status(), 200);
        EXPECT_EQ(end.data, std::nullopt);
    }
}

TEST(URLSessionEncoding, TheBodyOfAnErrorEndsAfterAMebibyte) {
    constexpr std::size_t mebibyte = 1 << 20;
    const std::string text(3 * mebibyte, 'y');
    auto unending = encoded(bomb(1'000'000), "gzip");
    unending.status = 503;
    TestHTTPServer server({unending, PlayedResponse{.status = 400, .body = text},
                           PlayedResponse{.status = 404, .body = text.substr(0, mebibyte)}});
    URLSession session(URLSessionConfiguration::ephemeral());
    for (const int status : {503, 400, 404}) {
        const auto end = TaskEnd::of(session, URLRequest(server.url()));
        EXPECT_EQ(end.code(), std::nullopt) << status;
        EXPECT_EQ(end.status(), status);
        EXPECT_EQ(end.text().size(), mebibyte) << status;
    }
}

TEST(URLSessionEncoding, AResponseOfTooManyLayersIsBroken) {
    std::string body = "text";
    std::string names;
    for (int layer = 0; layer < 20; ++layer) {
        body = gzip(body);
        names += layer == 0 ? "gzip" : ", gzip";
    }
    TestHTTPServer server({encoded(body, names)});
    URLSession session(URLSessionConfiguration::ephemeral());
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).code(), URLErrorCode::badResponse);
}

TEST(URLSessionEncoding, ADamagedResponseIsBroken) {
    auto damaged = gzip("some text");
    damaged[damaged.size() - 6] ^= 1; // in the checksum
    TestHTTPServer server({encoded(damaged, "gzip"), encoded("some text", "gzip")});
    URLSession session(URLSessionConfiguration::ephemeral());
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).code(), URLErrorCode::badResponse);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).code(), URLErrorCode::badResponse);
}

} // namespace
} // namespace zelto
