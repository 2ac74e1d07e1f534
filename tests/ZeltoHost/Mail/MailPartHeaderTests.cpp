#include <ZeltoHost/Mail/MailPartHeader.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

MailPart partWith(std::vector<MailField> fields) {
    return readPartHeader(fields, false).part;
}

MailPart partOfType(std::string type) {
    return partWith({{"Content-Type", std::move(type)}});
}

TEST(MailPartHeader, ATypeIsTextWhereItIsBlankOrFromBeforeMIME) {
    for (const std::string type : {" ", "", " text", "TEXT ; charset=utf-8", " (a remark)"}) {
        EXPECT_EQ(partOfType(type).mediaType, "text/plain") << type;
    }
    EXPECT_EQ(partOfType(" Text/HTML; charset=UTF-8").mediaType, "text/html");
    EXPECT_EQ(partOfType("multipart/mixed").mediaType, "text/plain") << "without a boundary";
}

TEST(MailPartHeader, EachEncodingIsRead) {
    const std::pair<std::string, MailEncoding> rows[] = {
        {"base64", MailEncoding::base64},
        {" Quoted-Printable ", MailEncoding::quotedPrintable},
        {"x-uuencode", MailEncoding::uuencode},
        {"7bit", MailEncoding::identity},
        {"8bit", MailEncoding::identity},
        {"binary", MailEncoding::identity},
        {"x-foreign", MailEncoding::identity},
        {" \t", MailEncoding::identity},
        {"base64 (a remark)", MailEncoding::base64},
    };
    for (const auto& [value, encoding] : rows) {
        EXPECT_EQ(partWith({{"Content-Transfer-Encoding", value}}).encoding, encoding) << value;
    }
    EXPECT_EQ(partWith({}).encoding, MailEncoding::identity);
}

TEST(MailPartHeader, AMessageIsOneThatIsNotEncoded) {
    for (const std::string type : {"message/rfc822", "message/global", "message/news", "Message/RFC822"}) {
        EXPECT_TRUE(isMessage(partOfType(type))) << type;
        EXPECT_FALSE(isMessage(partWith({{"Content-Type", type}, {"Content-Transfer-Encoding", "base64"}})))
            << type;
    }
    EXPECT_FALSE(isMessage(partOfType("message/partial")));
}

TEST(MailPartHeader, APartOfADigestIsAMessageUnlessItSaysOtherwise) {
    EXPECT_TRUE(isMessage(readPartHeader({}, true).part));
    EXPECT_EQ(readPartHeader({{"Content-Type", "text/html"}}, true).part.mediaType, "text/html");
}

} // namespace
} // namespace zelto
