#include <ZeltoHost/Mail/MailBodyText.h>
#include <ZeltoHost/Mail/MailCharset.h>
#include <ZeltoHost/Mail/MailContent.h>
#include <ZeltoHost/Mail/MailFlowedText.h>
#include <ZeltoHost/Mail/MailSamples.h>

#include <Platform/FileManager.h>
#include <Platform/UTF8.h>

#include <fstream>

namespace zelto {
namespace {

using testing::fileWith;
using testing::readMail;

std::string bodyOf(const std::string& header, const std::string& content) {
    return plainBodyOf(*readMail("From: a@b.example\n" + header + "\n\n" + content)).value();
}

std::shared_ptr<const MailMessage> encodedMail(const std::string& encoding, const std::string& content) {
    return readMail("From: a@b.example\nContent-Type: application/octet-stream; name=a.bin\n"
                    "Content-Transfer-Encoding: " +
                    encoding + "\n\n" + content);
}

TEST(MailContent, DecodesTransferEncodings) {
    EXPECT_EQ(bodyOf("Content-Transfer-Encoding: base64", "aGVs\nbG8=\n"), "hello");
    EXPECT_EQ(bodyOf("Content-Transfer-Encoding: BASE64 (really)", "aGVsbG8"), "hello");
    EXPECT_EQ(bodyOf("Content-Transfer-Encoding: quoted-printable", "h=C3=A9llo =\nyou=3D\n"), "héllo you=");
    EXPECT_EQ(bodyOf("Content-Transfer-Encoding: 8bit", "h\xC3\xA9llo\r\nyou\rthere\r\n"),
              "héllo\nyou\nthere");
    EXPECT_EQ(bodyOf("Content-Transfer-Encoding: x-uuencode", "begin 644 a.txt\n%:&5L;&\\`\n`\nend\n"),
              "hello");
    EXPECT_EQ(bodyOf("Content-Transfer-Encoding: x-unknown", "as it is"), "as it is");
}

TEST(MailContent, WrongBase64GivesWhatCanBeRead) {
    EXPECT_EQ(bodyOf("Content-Transfer-Encoding: base64", "aG!!Vs\n@@bG8=\n"), "hello");
    EXPECT_EQ(bodyOf("Content-Transfer-Encoding: base64", "aGVsbG8gd29ybA"), "hello worl");
}

TEST(MailContent, DecodesCharsets) {
    EXPECT_EQ(toUTF8("\xF0\xD2\xC9\xD7\xC5\xD4", "koi8-r", false), "Привет");
    EXPECT_EQ(toUTF8("\xCF\xF0\xE8", "Windows-1251", false), "При");
    EXPECT_EQ(toUTF8("\x1B$B%F%9%H\x1B(B", "iso-2022-jp", false), "テスト");
    EXPECT_EQ(toUTF8("\x82\xA0", "Shift_JIS", false), "あ");
    EXPECT_EQ(toUTF8("\xC4\xE3", "gb2312", false), "你");
    EXPECT_EQ(toUTF8("\xB0\xA1", "ks_c_5601-1987", false), "가");
    EXPECT_EQ(toUTF8("Hi +AMQ-", "utf-7", false), "Hi Ä");
    EXPECT_EQ(toUTF8(std::string_view("\xFF\xFE"
                                      "A\0\xE4\0",
                                      6),
                     "utf-16", false),
              "Aä");
    EXPECT_EQ(toUTF8("\x93quoted\x94 \x80", "iso-8859-1", false), "“quoted” €");
}

TEST(MailContent, GuessesTheCharsetThatIsAbsentWrongOrUnknown) {
    for (const std::string_view charset : {"", "us-ascii", "x-unknown", "../../etc", "utf-8//TRANSLIT\n"}) {
        EXPECT_EQ(toUTF8("J\xC3\xBCrgen", charset, false), "Jürgen") << charset;
    }
    EXPECT_EQ(toUTF8("J\xFCrgen", "", false), "Jürgen");
    EXPECT_EQ(toUTF8("J\xFCrgen", "no-such-charset", false), "Jürgen");
    EXPECT_EQ(toUTF8("<meta charset=koi8-r>\xF0", "", true), "<meta charset=koi8-r>П");
    EXPECT_EQ(toUTF8("<meta http-equiv=x content=\"text/html; charset=windows-1251\">\xCF", "", true),
              "<meta http-equiv=x content=\"text/html; charset=windows-1251\">П");
}

TEST(MailContent, BytesThatACharsetDoesNotHaveBecomeReplacementCharacters) {
    EXPECT_EQ(toUTF8("a\xFF"
                     "b",
                     "utf-8", false),
              "a\uFFFDb");
    EXPECT_EQ(toUTF8("a\x82", "shift_jis", false), "a\uFFFD");
    for (const std::string_view charset :
         {"utf-16", "utf-32", "iso-2022-kr", "hz", "utf-7", "big5", "euc-jp"}) {
        std::string bytes;
        for (int value = 0; value < 256; ++value) {
            bytes += static_cast<char>(value);
        }
        EXPECT_TRUE(isValidUTF8(toUTF8(bytes, charset, false))) << charset;
    }
}

TEST(MailContent, JoinsFlowedLines) {
    EXPECT_EQ(unfoldedFlowedText("one \ntwo\nthree\n", false), "one two\nthree\n");
    EXPECT_EQ(unfoldedFlowedText("one \ntwo\n", true), "onetwo\n");
    EXPECT_EQ(unfoldedFlowedText(" From here\n", false), "From here\n");
    EXPECT_EQ(unfoldedFlowedText("> quoted \n> more\n>> deeper \nreply\n", false),
              "> quoted more\n>> deeper \nreply\n");
    EXPECT_EQ(unfoldedFlowedText("bye\n-- \nMira\n", false), "bye\n-- \nMira\n");
    EXPECT_EQ(unfoldedFlowedText("one \ntwo", false), "one two") << "without a last line end";
    EXPECT_EQ(unfoldedFlowedText("one \ntwo ", true), "onetwo ") << "a blank that nothing follows stays";
    EXPECT_EQ(unfoldedFlowedText(">\n> one\n>>\n", false), ">\n> one\n>>\n") << "empty quoted lines";
    EXPECT_EQ(bodyOf("Content-Type: text/plain; format=flowed; delsp=yes", "sun \nny\n"), "sunny");
}

TEST(MailContent, AnEmptyPlainTextBesideHTMLDoesNotCount) {
    EXPECT_EQ(bodyOf("Content-Type: multipart/alternative; boundary=b",
                     "--b\n\n \n\n--b\nContent-Type: text/html\n\n<p>hello</p>\n--b--\n"),
              "hello");
}

TEST(MailContent, EnrichedTextIsReadAsHTML) {
    const auto body = bodyOf("Content-Type: text/enriched", "<bold>hello</bold> you");
    EXPECT_EQ(body, "hello you");
}

TEST(MailContent, TheSizeIsThatOfTheDecodedContent) {
    const auto sizeOf = [](const MailMessage& message) {
        return decodedSize(*message.file, message.parts[0]);
    };
    EXPECT_EQ(sizeOf(*encodedMail("base64", "aGVsbG8=\n")), 5U);
    EXPECT_EQ(sizeOf(*encodedMail("base64", "")), 0U);
    EXPECT_EQ(sizeOf(*encodedMail("quoted-printable", "=41=\n=42")), 2U);
    EXPECT_EQ(sizeOf(*encodedMail("binary", "12345\n")), 6U);
}

TEST(MailContent, WritesBytesAsTheyWere) {
    std::string bytes;
    for (int index = 0; index < 300'000; ++index) {
        bytes += static_cast<char>(index * 7);
    }
    std::string encoded;
    static constexpr std::string_view digits = "0123456789ABCDEF";
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        const auto value = static_cast<unsigned char>(bytes[index]);
        encoded += {'=', digits[value >> 4U], digits[value & 15U]};
        encoded += index % 20 == 19 ? "=\n" : "";
    }
    const auto message = encodedMail("quoted-printable", encoded);
    const auto path = fileWith("").parent_path() / "out";
    ASSERT_TRUE(writeContent(*message->file, message->parts[0], path).has_value());
    EXPECT_EQ(testing::contentOf(path), bytes);
}

TEST(MailContent, AnExistingFileIsNotWrittenOver) {
    const auto message = encodedMail("base64", "aGVsbG8=");
    const auto path = fileWith("mine");
    EXPECT_EQ(writeContent(*message->file, message->parts[0], path), failure(MailError::cannotWrite));
    EXPECT_EQ(testing::contentOf(path), "mine");
}

TEST(MailContent, AChangedFileIsNoticedAndADeletedOneIsReadOn) {
    const std::string mail =
        "From: a@b.example\nContent-Type: application/octet-stream\n\n" + std::string(100'000, 'x');
    const auto path = fileWith(mail);
    const auto message = MailReader::open(path).value();
    std::filesystem::remove(path);
    EXPECT_EQ(readContent(*message->file, message->parts[0], 200'000)->size(), 100'000U);

    for (const std::size_t length : {std::size_t(0), mail.size() / 2, mail.size() + 1}) {
        const auto other = fileWith(mail);
        const auto opened = MailReader::open(other).value();
        std::filesystem::resize_file(other, length);
        EXPECT_EQ(readContent(*opened->file, opened->parts[0], 200'000), failure(MailError::changed));
        const auto out = other.parent_path() / "out";
        EXPECT_EQ(writeContent(*opened->file, opened->parts[0], out), failure(MailError::changed));
        EXPECT_FALSE(std::filesystem::exists(out));
    }
}

} // namespace
} // namespace zelto
