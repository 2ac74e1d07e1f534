#include <Platform/HTTP/ResponseHeadInternal.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

using Progress = ResponseHead::Progress;

ResponseHead headOf(std::initializer_list<std::string_view> lines) {
    ResponseHead head;
    for (const auto line : lines) {
        EXPECT_EQ(head.take(line), Progress::going) << line;
    }
    EXPECT_EQ(head.take("\r\n"), Progress::complete);
    return head;
}

TEST(ResponseHead, IsCompleteOnceAndIgnoresTrailers) {
    auto head = headOf({"HTTP/1.1 200 OK\r\n", "A: b\r\n"});
    EXPECT_EQ(head.take("Trailer: t\r\n"), Progress::going);
    EXPECT_EQ(head.take("\r\n"), Progress::going);
    EXPECT_EQ(head.status(), 200);
    EXPECT_EQ(head.headers().fields(), (std::vector<HTTPHeaderField>{{"A", "b"}}));
}

TEST(ResponseHead, AnInformationalOneIsFollowedByAnother) {
    const auto head =
        headOf({"HTTP/1.1 103 Early Hints\r\n", "Link: </a>\r\n", "\r\n", "HTTP/1.1 204 No Content\r\n"});
    EXPECT_EQ(head.status(), 204);
    EXPECT_EQ(head.headers().fields(), std::vector<HTTPHeaderField>());
}

TEST(ResponseHead, AStatusLineWithoutAStatusBeginsNone) {
    ResponseHead head;
    EXPECT_EQ(head.take("HTTP/1.1\r\n"), Progress::going);
    EXPECT_EQ(head.status(), 0);
    EXPECT_EQ(head.take("\r\n"), Progress::going);
    EXPECT_FALSE(head.isComplete());
}

TEST(ResponseHead, AFoldedLineContinuesTheFieldBeforeIt) {
    const auto head = headOf(
        {"HTTP/1.1 200 OK\r\n", "\t: of no field\r\n", "A: one\r\n", " two:\r\n", "\tthree\r\n", "B: c\r\n"});
    EXPECT_EQ(head.headers().fields(), (std::vector<HTTPHeaderField>{{"A", "one two: three"}, {"B", "c"}}));
}

TEST(ResponseHead, ALineWithoutAColonIsLeftOut) {
    const auto head = headOf({"HTTP/1.1 200 OK\r\n", "A: b\r\n", "no field\r\n", "C: d\r\n"});
    EXPECT_EQ(head.headers().fields(), (std::vector<HTTPHeaderField>{{"A", "b"}, {"C", "d"}}));
}

TEST(ResponseHead, TakesTwoThousandFieldsAndNoMore) {
    ResponseHead head;
    EXPECT_EQ(head.take("HTTP/1.1 200 OK\r\n"), Progress::going);
    for (int count = 0; count < 2000; ++count) {
        ASSERT_EQ(head.take("A: b\r\n"), Progress::going);
    }
    EXPECT_EQ(head.take("A: b\r\n"), Progress::tooManyFields);
}

TEST(ResponseHead, ALengthCountsOnlyWhereNoTransferEncodingReplacesIt) {
    EXPECT_EQ(headOf({"HTTP/1.1 200 OK\r\n", "content-length: 5\r\n"}).contentLength(), 5u);
    EXPECT_EQ(headOf({"HTTP/1.1 200 OK\r\n", "Content-Length: 5\r\n", "Transfer-Encoding: chunked\r\n"})
                  .contentLength(),
              std::nullopt);
    EXPECT_EQ(headOf({"HTTP/1.1 200 OK\r\n", "Content-Length: five\r\n"}).contentLength(), std::nullopt);
    EXPECT_EQ(headOf({"HTTP/1.1 200 OK\r\n"}).contentLength(), std::nullopt);
}

} // namespace
} // namespace zelto
