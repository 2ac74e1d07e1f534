#include <Platform/JSON/JSONValue.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

using namespace std::string_view_literals;

namespace zelto {
namespace {

template <class T> std::string encoded(const T& value) {
    return JSONEncoder().encode(value).value();
}

template <class T> EncodingError errorOf(const T& value) {
    const auto text = JSONEncoder().encode(value);
    return text ? EncodingError{} : text.error();
}

struct Chain {
    std::vector<Chain> next;
};

void encodeJSON(JSONWriter& writer, const Chain& value) {
    writer.write(value.next);
}

TEST(JSONEncoder, WritesTheTypesItKnows) {
    EXPECT_EQ(encoded(true), "true");
    EXPECT_EQ(encoded(std::string("text")), "\"text\"");
    EXPECT_EQ(encoded(std::vector<bool>{true, false}), "[true,false]");
    EXPECT_EQ(encoded(std::vector<std::optional<int>>{1, std::nullopt}), "[1,null]");
    EXPECT_EQ(encoded(std::map<std::string, std::vector<std::string>>{{"a", {}}, {"b", {"x", ""}}}),
              R"({"a":[],"b":["x",""]})");
    EXPECT_EQ(encoded(std::vector<std::vector<int>>{{}, {1}, {}}), "[[],[1],[]]");
}

TEST(JSONEncoder, AnAbsentOptionalAtTheTopIsNull) {
    EXPECT_EQ(encoded(std::optional<std::string>()), "null");
    EXPECT_EQ(encoded(std::optional<std::string>("x")), "\"x\"");
}

TEST(JSONEncoder, IntegersAreExact) {
    EXPECT_EQ(encoded(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(encoded(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(encoded(std::int8_t{-5}), "-5");
    EXPECT_EQ(encoded(std::uint8_t{65}), "65");
}

TEST(JSONEncoder, DoublesAreShortAndReadBackAsTheSame) {
    EXPECT_EQ(encoded(3600.0), "3600");
    EXPECT_EQ(encoded(100000.0), "100000");
    EXPECT_EQ(encoded(725846400.0), "725846400");
    EXPECT_EQ(encoded(-1.5), "-1.5");
    EXPECT_EQ(encoded(0.1), "0.1");
    EXPECT_EQ(encoded(-0.0), "-0");
    for (const double value : {1e21, 1e-7, 5e-324, 1.7976931348623157e308, 9007199254740993.0, 1.0 / 3, 1e23,
                               123456.789, 18446744073709551616.0, -2.2250738585072014e-308}) {
        EXPECT_EQ(JSONDecoder().decode<double>(encoded(value)), value) << encoded(value);
    }
}

TEST(JSONEncoder, ANumberThatIsNotFiniteIsAnErrorWithItsPath) {
    EXPECT_EQ(errorOf(std::numeric_limits<double>::infinity()).message(),
              "the number is not finite, which JSON cannot hold");
    const std::map<std::string, std::vector<double>> map{{"a", {}}, {"b", {1, std::nan("")}}};
    EXPECT_EQ(errorOf(map), (EncodingError{EncodingError::Reason::nonFiniteNumber, "b[1]"}));
    EXPECT_EQ(errorOf(JSONValue(-std::numeric_limits<double>::infinity())).reason,
              EncodingError::Reason::nonFiniteNumber);
}

TEST(JSONEncoder, OnlyWhatJSONNeedsIsEscaped) {
    EXPECT_EQ(encoded(std::string("\"\\/\b\f\n\r\t\x01\x1f\x7f")), R"("\"\\/\b\f\n\r\t\u0001\u001f)"
                                                                   "\x7f\"");
    EXPECT_EQ(encoded(std::string("a\0b"sv)), R"("a\u0000b")");
    EXPECT_EQ(encoded(std::string("é€\xF0\x9F\x98\x80\xE2\x80\xA8\xE2\x80\xA9<>&'")),
              "\"é€\xF0\x9F\x98\x80\xE2\x80\xA8\xE2\x80\xA9<>&'\"");
    EXPECT_EQ(encoded(std::map<std::string, int>{{"a\"\n", 1}}), R"({"a\"\n":1})");
}

TEST(JSONEncoder, EveryByteIsTreatedTheSameAtEveryPlaceOfAText) {
    for (std::size_t length = 0; length < 20; ++length) {
        for (std::size_t place = 0; place <= length; ++place) {
            for (const auto piece : {"\""sv, "\\"sv, "\n"sv, "\0"sv, "\x1f"sv, "\x20"sv, "\x7f"sv, "!"sv,
                                     "#"sv, "é"sv, "€"sv, "\xF0\x9F\x98\x80"sv, "\"\\\n\0é"sv}) {
                auto text = std::string(length, 'x');
                text.insert(place, piece);
                const auto json = encoded(text);
                EXPECT_EQ(JSONDecoder().decode<std::string>(json), text) << json;
            }
        }
    }
}

TEST(JSONEncoder, ATextOfControlCharactersAloneIsWritten) {
    const std::string text(10'000, '\x01');
    const auto json = encoded(std::vector{text, text});
    EXPECT_EQ(json.size(), 2 * (6 * text.size() + 2) + 3);
    EXPECT_EQ(JSONDecoder().decode<std::vector<std::string>>(json), (std::vector{text, text}));
}

TEST(JSONEncoder, TextThatIsNotUTF8IsAnErrorWithItsPath) {
    for (const auto bytes : {"\x80"sv, "\xBF"sv, "\xC0\x80"sv, "\xC1\xBF"sv, "\xC3"sv, "\xC3("sv,
                             "\xE0\x80\x80"sv, "\xE0\x9F\xBF"sv, "\xED\xA0\x80"sv, "\xED\xBF\xBF"sv,
                             "\xE2\x82"sv, "\xE2(\xA1"sv, "\xF0\x8F\xBF\xBF"sv, "\xF4\x90\x80\x80"sv,
                             "\xF5\x80\x80\x80"sv, "\xF0\x9F\x98"sv, "\xF0\x9F(\x80"sv, "\xFE"sv, "\xFF"sv}) {
        EXPECT_EQ(errorOf(std::string(bytes)), (EncodingError{EncodingError::Reason::invalidUTF8, ""}));
        EXPECT_EQ(errorOf(std::map<std::string, int>{{std::string(bytes), 1}}).reason,
                  EncodingError::Reason::invalidUTF8);
        const std::map<std::string, std::vector<std::string>> map{
            {"k,{[", {"a]", "b\\\""}}, {"l", {"a", "text before it " + std::string(bytes)}}};
        EXPECT_EQ(errorOf(map).message(), "l[1]: the text is not valid UTF-8");
    }
    EXPECT_EQ(errorOf(std::vector<std::string>{"a", "escaped \",[{\n before it \xff"}).message(),
              "[1]: the text is not valid UTF-8");
}

TEST(JSONEncoder, AKeyThatIsNotUTF8IsAnErrorOfItsObject) {
    using Map = std::map<std::string, int>;
    EXPECT_EQ(errorOf(Map{{"\xff", 1}}), (EncodingError{EncodingError::Reason::invalidUTF8, ""}));
    EXPECT_EQ(errorOf(std::vector<Map>{{}, {{"a", 1}, {"b", 2}, {"c\n\xff", 3}}}),
              (EncodingError{EncodingError::Reason::invalidUTF8, "[1]"}));
    EXPECT_EQ(errorOf(std::map<std::string, Map>{{"outer", {{"a", 1}, {"\xff", 2}}}}),
              (EncodingError{EncodingError::Reason::invalidUTF8, "outer"}));
}

TEST(JSONEncoder, NestingIsWrittenToItsLimitAndNoDeeper) {
    const auto chain = [](int levels) {
        Chain all;
        for (int level = 1; level < levels; ++level) {
            Chain outer;
            outer.next.push_back(std::move(all));
            all = std::move(outer);
        }
        return all;
    };
    const auto deepest = JSONEncoder().encode(chain(jsonDepthLimit));
    ASSERT_TRUE(deepest);
    EXPECT_TRUE(JSONValue::parse(*deepest));
    EXPECT_EQ(errorOf(chain(jsonDepthLimit + 1)).reason, EncodingError::Reason::tooDeep);
    JSONValue tooDeep = JSONValue::Array{"text", JSONValue::Array{}};
    for (int level = 1; level < jsonDepthLimit; ++level) {
        tooDeep = JSONObject{{"a", std::move(tooDeep)}};
    }
    const auto message = errorOf(tooDeep).message();
    EXPECT_TRUE(message.ends_with(".a.a[1]: nested deeper than 512 levels")) << message;
}

TEST(JSONEncoder, DatesAreSecondsOrISO8601) {
    EXPECT_EQ(encoded(Date::fromReferenceSeconds(725846400)), "725846400");
    EXPECT_EQ(encoded(Date::fromReferenceSeconds(0.25)), "0.25");
    EXPECT_EQ(encoded(Date::distantFuture()), "63113904000");
    const JSONEncoder encoder{.dateStrategy = DateStrategy::iso8601};
    EXPECT_EQ(encoder.encode(std::vector{Date::fromReferenceSeconds(86400.75)}),
              R"(["2001-01-02T00:00:00Z"])");
    EXPECT_EQ(encoder.encode(std::vector{Date::fromReferenceSeconds(1e300)}).error(),
              (EncodingError{EncodingError::Reason::dateOutOfRange, "[0]"}));
    EXPECT_EQ(encoder.encode(Date::fromReferenceSeconds(1e300)).error().message(),
              "the date has no ISO 8601 form");
    EXPECT_EQ(JSONEncoder().encode(Date::fromReferenceSeconds(std::nan(""))).error().reason,
              EncodingError::Reason::nonFiniteNumber);
}

TEST(JSONEncoder, IndentationIsForPeopleAndReadsBackAsTheSame) {
    const JSONValue value = JSONObject{{"a", JSONValue::Array{1, "x:{[,\\\"", JSONValue::Array{}}},
                                       {"b", JSONObject{}},
                                       {"c", JSONObject{{"d", nullptr}}}};
    const auto text = value.text(2).value();
    EXPECT_EQ(text, "{\n"
                    "  \"a\": [\n"
                    "    1,\n"
                    "    \"x:{[,\\\\\\\"\",\n"
                    "    []\n"
                    "  ],\n"
                    "  \"b\": {},\n"
                    "  \"c\": {\n"
                    "    \"d\": null\n"
                    "  }\n"
                    "}");
    EXPECT_EQ(JSONValue::parse(text), value);
    EXPECT_EQ(JSONEncoder{.indent = 4}.encode(1), "1");
}

} // namespace
} // namespace zelto
