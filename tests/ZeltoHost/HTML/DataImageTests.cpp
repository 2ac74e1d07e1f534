#include <ZeltoHost/HTML/DataImage.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

std::string urlOf(std::string_view address) {
    return rasterDataURL(address).value_or("none");
}

TEST(DataImage, OfARasterFormatIsKeptWithoutWhiteSpace) {
    EXPECT_EQ(urlOf("data:image/png;base64,AbC+/9=="), "data:image/png;base64,AbC+/9==");
    EXPECT_EQ(urlOf("\n DATA: Image/JPEG ;base64,Ab\r\n\tC=\f "), "data:image/jpeg;base64,AbC=");
    EXPECT_EQ(urlOf("data:image/gif,GIF89a%01~!*$&?@_-.:"), "data:image/gif,GIF89a%01~!*$&?@_-.:");
}

TEST(DataImage, AnyOtherAddressIsNone) {
    for (const std::string_view address :
         {"", "data:", "data:image/png", "data:image/png;base64", "data:image/png;base64;x", "data:,x",
          "data:text/html,x", "data:image/svg+xml;base64,AAAA", "data:image/svg+xml,<svg/>",
          "image/png;base64,AAAA", "http://a.example/b.png", "http://a.example/data:image/png;base64,AAAA"}) {
        EXPECT_EQ(urlOf(address), "none") << address;
    }
}

TEST(DataImage, WithACharacterThatCouldEndItIsNone) {
    for (const char c : std::string_view("\"'()<>\\`{}|^[]\0\x7f\xe9", 17)) {
        EXPECT_EQ(urlOf(std::string("data:image/png;base64,AA") + c + "AA"), "none") << c;
    }
}

} // namespace
} // namespace zelto
