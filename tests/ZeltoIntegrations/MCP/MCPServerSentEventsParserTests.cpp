#include <ZeltoIntegrations/MCP/MCPServerSentEventsParser.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

using namespace std::string_literals;
using namespace std::string_view_literals;

namespace zelto {
namespace {

using Events = std::vector<MCPServerSentEvent>;

MCPServerSentEvent event(std::string data) {
    return {{}, std::move(data), {}, {}};
}

std::shared_ptr<const std::string> id(std::string text) {
    return std::make_shared<const std::string>(std::move(text));
}

// The events of a stream that comes in pieces of that many bytes, finish() included.
Events eventsIn(std::string_view stream, std::size_t piece) {
    MCPServerSentEventsParser parser;
    Events all;
    const auto add = [&](MCPServerSentEventsParser::Events events) {
        ASSERT_TRUE(events);
        std::ranges::move(*events, std::back_inserter(all));
    };
    for (std::size_t at = 0; at < stream.size(); at += piece) {
        add(parser.append(stream.substr(at, piece)));
    }
    add(parser.finish());
    return all;
}

// The same for every division into equal pieces.
Events eventsIn(std::string_view stream) {
    auto whole = eventsIn(stream, stream.size() + 1);
    for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
        EXPECT_EQ(eventsIn(stream, piece), whole) << piece;
    }
    return whole;
}

TEST(MCPServerSentEvent, IsTheSameAsOneThatSaysTheSame) {
    const MCPServerSentEvent whole{"message", "text", id("7"), 100};
    EXPECT_EQ(whole, (MCPServerSentEvent{"message", "text", id("7"), 100}));
    EXPECT_NE(whole, (MCPServerSentEvent{std::nullopt, "text", id("7"), 100}));
    EXPECT_NE(whole, (MCPServerSentEvent{"message", "texts", id("7"), 100}));
    EXPECT_NE(whole, (MCPServerSentEvent{"message", "text", id("8"), 100}));
    EXPECT_NE(whole, (MCPServerSentEvent{"message", "text", nullptr, 100}));
    EXPECT_NE(whole, (MCPServerSentEvent{"message", "text", id("7"), std::nullopt}));
    EXPECT_EQ(event("text"), event("text"));
}

TEST(MCPServerSentEventsParser, GivesAnEventWithTheLastLineFeed) {
    EXPECT_EQ(eventsIn("data: a\n\n"), Events{event("a")});
    for (const std::size_t cut : {1u, 5u, 6u, 7u, 8u}) {
        MCPServerSentEventsParser parser;
        constexpr auto stream = "data: a\n\n"sv;
        EXPECT_EQ(parser.append(stream.substr(0, cut)), Events{});
        EXPECT_EQ(parser.append(stream.substr(cut)), Events{event("a")});
    }
}

TEST(MCPServerSentEventsParser, DropsOneCarriageReturnBeforeALineFeed) {
    EXPECT_EQ(eventsIn("data: a\r\n\r\n"), Events{event("a")});
    EXPECT_EQ(eventsIn("data: a\r\r\n\r\n"), Events{event("a\r")});
    EXPECT_EQ(eventsIn("data: a\rdata: b\n\n"), Events{event("a\rdata: b")});
    EXPECT_EQ(eventsIn("data: a\n\r\r\ndata: b\n\n"), Events{event("a\nb")});
}

TEST(MCPServerSentEventsParser, DropsOneBlankBeforeAValue) {
    EXPECT_EQ(eventsIn("data:a\n\n"), Events{event("a")});
    EXPECT_EQ(eventsIn("data: a\n\n"), Events{event("a")});
    EXPECT_EQ(eventsIn("data:  a\n\n"), Events{event(" a")});
    EXPECT_EQ(eventsIn("data:\ta\n\n"), Events{event("\ta")});
    EXPECT_EQ(eventsIn("data: :a: b\n\n"), Events{event(":a: b")});
}

TEST(MCPServerSentEventsParser, AFieldWithoutAColonHasAnEmptyValue) {
    EXPECT_EQ(eventsIn("data\ndata\n\n"), Events{event("\n")});
    EXPECT_EQ(eventsIn("data\n\n"), Events{});
    EXPECT_EQ(eventsIn("data:\n\n"), Events{});
    EXPECT_EQ(eventsIn("data: a\ndata\ndata: b\n\n"), Events{event("a\n\nb")});
}

TEST(MCPServerSentEventsParser, PassesOverCommentsAndOtherFields) {
    EXPECT_EQ(eventsIn(": ping\n\n"), Events{});
    EXPECT_EQ(eventsIn("data: a\n: x\n:\nDATA: b\n data: c\ndata : d\nfoo\n\n"), Events{event("a")});
}

TEST(MCPServerSentEventsParser, AnEventWithoutDataLosesItsName) {
    EXPECT_EQ(eventsIn("event: x\n\ndata: a\n\n"), Events{event("a")});
    EXPECT_EQ(eventsIn("event: x\ndata\n\ndata: a\n\n"), Events{event("a")});
    EXPECT_EQ(eventsIn("event: x\nevent: y\ndata: a\n\ndata: b\n\n"),
              (Events{{"y", "a", {}, {}}, event("b")}));
    EXPECT_EQ(eventsIn("event: x\nevent\ndata: a\n\n"), (Events{{"", "a", {}, {}}}));
}

TEST(MCPServerSentEventsParser, RepeatsTheLastIDOnEveryEvent) {
    EXPECT_EQ(eventsIn("id: 1\ndata: a\n\ndata: b\n\n"),
              (Events{{{}, "a", id("1"), {}}, {{}, "b", id("1"), {}}}));
    EXPECT_EQ(eventsIn("id: 1\n\nid\ndata: b\n\n"), (Events{{{}, "b", id(""), {}}}));
    EXPECT_EQ(eventsIn("id: x\0y\ndata: b\n\n"sv), (Events{{{}, "b", id("x\0y"s), {}}}));
    EXPECT_NE(eventsIn("id: 1\ndata: a\n\n"), (Events{{{}, "a", id("2"), {}}}));
    EXPECT_NE(eventsIn("id: 1\ndata: a\n\n"), Events{event("a")});
}

TEST(MCPServerSentEventsParser, ALongIDIsThereOnceHoweverManyEventsHaveIt) {
    std::string stream = "id: " + std::string(1 << 20, 'x') + "\n";
    for (int index = 0; index < 30'000; ++index) {
        stream += "data:{}\n\n";
    }
    MCPServerSentEventsParser parser;
    const auto events = parser.append(stream);
    ASSERT_TRUE(events);
    ASSERT_EQ(events->size(), 30'000u);
    EXPECT_EQ(events->front().id->size(), std::size_t{1} << 20);
    EXPECT_EQ(events->front().id.get(), events->back().id.get());
}

TEST(MCPServerSentEventsParser, RetryIsAWholeNumberOrNone) {
    const auto retryOf = [](std::string_view value) {
        return eventsIn("retry: 5\nretry: " + std::string(value) + "\ndata: a\n\n").at(0).retry;
    };
    EXPECT_EQ(retryOf("7"), 7);
    EXPECT_EQ(retryOf("+7"), 7);
    EXPECT_EQ(retryOf("-7"), -7);
    EXPECT_EQ(retryOf("007"), 7);
    EXPECT_EQ(retryOf("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(retryOf("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    for (const auto value : {"abc", "", "+", "-", "+-7", "-+7", "7.0", "7 ", " 7", "0x7",
                             "9223372036854775808", "99999999999999999999"}) {
        EXPECT_EQ(retryOf(value), std::nullopt) << value;
    }
    EXPECT_EQ(eventsIn("retry: 5\ndata: a\n\ndata: b\n\n"), (Events{{{}, "a", {}, 5}, {{}, "b", {}, 5}}));
}

TEST(MCPServerSentEventsParser, AtTheEndOnlyAnEmptyLineClosesAnEvent) {
    EXPECT_EQ(eventsIn("data: a"), Events{});
    EXPECT_EQ(eventsIn("data: a\n"), Events{});
    EXPECT_EQ(eventsIn("data: a\n\r"), Events{event("a")});
    EXPECT_EQ(eventsIn("data: a\r\n\r"), Events{event("a")});
    EXPECT_EQ(eventsIn(""), Events{});
    EXPECT_EQ(eventsIn("data: a\n\ndata: b"), Events{event("a")});
}

TEST(MCPServerSentEventsParser, AByteOrderMarkIsPartOfTheName) {
    EXPECT_EQ(eventsIn("\xEF\xBB\xBF"
                       "data: a\n\ndata: b\n\n"),
              Events{event("b")});
}

TEST(MCPServerSentEventsParser, AColonWithACombiningMarkDividesNothing) {
    EXPECT_EQ(eventsIn("data:\xCC\x81 a\n\n"), Events{});
    EXPECT_EQ(eventsIn("data:\xCC\x81:a\n\n"), Events{});
    EXPECT_EQ(eventsIn("data: :\xCC\x81\n\n"), Events{event(":\xCC\x81")});
    EXPECT_EQ(eventsIn("data: \xCC\x81x\n\n"), Events{event(" \xCC\x81x")});
    EXPECT_EQ(eventsIn("data:\xE6\xBC\xA2\n\n"), Events{event("漢")});
    EXPECT_EQ(eventsIn("data: \xF0\x9F\x98\x80\n\n"), Events{event("😀")});
}

TEST(MCPServerSentEventsParser, ALineThatIsNotUTF8IsAnError) {
    for (const auto line : {"\xFF\xFE\n"sv, "data: \xC3\n"sv, ": \xED\xA0\x80\n"sv, "data: \xC0\x80\n"sv}) {
        MCPServerSentEventsParser parser;
        EXPECT_EQ(parser.append(line), failure(MCPClientError::invalidServerSentEventsUTF8()));
    }
    MCPServerSentEventsParser parser;
    EXPECT_EQ(parser.append("data: \xFF"), Events{});
    EXPECT_EQ(parser.finish(), failure(MCPClientError::invalidServerSentEventsUTF8()));
    EXPECT_EQ(parser.finish(), Events{});
}

TEST(MCPServerSentEventsParser, TextInManyLettersIsCutLikeAnyOther) {
    EXPECT_EQ(eventsIn("data: é\n\ndata: 漢\nevent: ü\n\n: ß\n\ndata: 😀\n\n"),
              (Events{event("é"), {"ü", "漢", {}, {}}, event("😀")}));
    MCPServerSentEventsParser parser;
    EXPECT_EQ(parser.append("data: é\n\ndata: \xC3"), Events{event("é")});
    EXPECT_EQ(parser.append("\xA9\n\n"), Events{event("é")});
}

TEST(MCPServerSentEventsParser, WhatFollowsALineThatFailedIsKept) {
    MCPServerSentEventsParser parser;
    EXPECT_EQ(parser.append("data: lost\n\ndata: a\n\xFF\n\ndata: b\n\ndata"),
              failure(MCPClientError::invalidServerSentEventsUTF8()));
    EXPECT_EQ(parser.append(": c\n\n"), (Events{event("a"), event("b"), event("c")}));
    EXPECT_FALSE(parser.append("\xFF\n\xFF\ndata: d\n\r"));
    EXPECT_FALSE(parser.finish());
    EXPECT_EQ(parser.finish(), Events{event("d")});
}

TEST(MCPServerSentEventsParser, ALongLineThatHasNotEndedFollowsTheSameRules) {
    const std::string longText(9000, 'x');
    for (const auto& text : {longText, longText + "\xF0\x9F\x98\x80", "é" + longText, " " + longText,
                             "\xCC\x81" + longText, longText + ":\xCC\x81"}) {
        const auto stream = "data: first\nevent: e\ndata:" + text + "\r\ndata: " + text +
                            "\r\r\ndata\n\n: " + text + "\nDATA: " + text + "\ndata: next\n\n";
        const auto whole = eventsIn(stream, stream.size());
        for (const std::size_t piece : {1u, 3u, 7u, 1000u, 4096u, 5000u}) {
            EXPECT_TRUE(eventsIn(stream, piece) == whole) << piece;
        }
    }
    const auto events = eventsIn("data: a\ndata: " + longText + "\r\r\n\n", 100);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_TRUE(events[0].data == "a\n" + longText + "\r");
}

TEST(MCPServerSentEventsParser, ALongLineThatIsNotUTF8LeavesTheEventAsItWas) {
    const std::string longText(9000, 'x');
    for (const std::string broken : {"\xFF", "\xC3", "\xE6\xBC"}) {
        for (const auto& line : {longText + broken, longText + broken + longText, longText + broken + "\r"}) {
            MCPServerSentEventsParser parser;
            ASSERT_TRUE(parser.append("data: a\ndata: " + longText.substr(0, 5000)));
            ASSERT_TRUE(parser.append(line));
            EXPECT_EQ(parser.append("\ndata: b\n\n"), failure(MCPClientError::invalidServerSentEventsUTF8()));
            EXPECT_EQ(parser.append(""), Events{event("a\nb")});
        }
        MCPServerSentEventsParser parser;
        ASSERT_TRUE(parser.append("data: " + longText + broken));
        EXPECT_FALSE(parser.finish());
    }
    MCPServerSentEventsParser parser;
    ASSERT_TRUE(parser.append("data: " + longText));
    EXPECT_EQ(parser.finish(), Events{});
    EXPECT_EQ(parser.append("\n"), (Events{event(longText)}));
}

TEST(MCPServerSentEventsParser, LongLinesComeWholeInSmallPieces) {
    const std::string longText(3 << 20, 'x');
    const auto stream = "data: " + longText + "\ndata: " + longText + "\n\nid: 7\ndata: " + longText + "\n\n";
    for (const std::size_t piece : {1000u, 65536u, 10'000'000u}) {
        const auto events = eventsIn(stream, piece);
        ASSERT_EQ(events.size(), 2u);
        EXPECT_TRUE(events[0].data == longText + "\n" + longText);
        EXPECT_TRUE(events[1].data == longText);
        EXPECT_EQ(*events[1].id, "7");
    }
}

} // namespace
} // namespace zelto
