#include <ZeltoSandbox/GoogleDrive/Base64Decoder.h>

#include <Platform/Base64.h>

#include <gtest/gtest.h>

namespace zelto {

using sandbox::Base64Decoder;

namespace {

// What a text stands for that comes in pieces of that length; "(none)" if it is no whole Base64.
std::string decoded(std::string_view text, std::size_t pieceLength) {
    Base64Decoder decoder;
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); i += pieceLength) {
        if (!decoder.put(text.substr(i, pieceLength), bytes)) {
            return "(none)";
        }
    }
    return decoder.isWhole() ? bytes : "(none)";
}

} // namespace

TEST(Base64DecoderTest, DecodesEveryLengthInPiecesOfEveryLength) {
    std::string bytes;
    for (int length = 0; length < 40; ++length) {
        for (std::size_t piece = 1; piece < 20; ++piece) {
            EXPECT_EQ(decoded(base64Encoded(bytes), piece), bytes) << length << " in pieces of " << piece;
        }
        bytes.push_back(static_cast<char>(length * 37 + 200));
    }
}

TEST(Base64DecoderTest, SkipsLineBreaksAlone) {
    for (std::size_t piece = 1; piece < 20; ++piece) {
        EXPECT_EQ(decoded("\r\nYW\r\nJjZA\n=\n=\r\n", piece), "abcd") << piece;
        for (const auto* wrong : {"YWJj ZA==", "YWJj\tZA==", "YWJjZA=", "YWJjZA", "YWJjZ",
                                  "YWJjZ===", "====", "YQ==YQ==", "YQ=A", "Y-_j", "YWJj\xC3\xA4", "YWJj!"}) {
            EXPECT_EQ(decoded(wrong, piece), "(none)") << wrong << " in pieces of " << piece;
        }
    }
}

} // namespace zelto
