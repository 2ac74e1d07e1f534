#include <Platform/JSON/JSONTape.h>
#include <Platform/JSON/JSONValue.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

using namespace std::string_view_literals;

namespace zelto {
namespace {

template <class T> T decoded(std::string_view text) {
    return JSONDecoder().decode<T>(text).value();
}

template <class T> std::string faultOf(std::string_view text) {
    const auto value = JSONDecoder().decode<T>(text);
    return value ? "decodes" : value.error().message();
}

DecodingError syntaxErrorOf(std::string_view text) {
    const auto value = JSONValue::parse(text);
    EXPECT_FALSE(value) << text.substr(0, 40);
    const auto error = value ? DecodingError{} : value.error();
    EXPECT_EQ(error.reason, DecodingError::Reason::syntax) << error.message();
    return error;
}

std::string repeated(std::string_view piece, int count) {
    std::string all;
    for (int index = 0; index < count; ++index) {
        all += piece;
    }
    return all;
}

std::string nested(int levels) {
    return repeated("[", levels) + repeated("]", levels);
}

TEST(JSONDecoder, ReadsTheTypesItKnows) {
    EXPECT_EQ(decoded<bool>("true"), true);
    EXPECT_EQ(decoded<std::string>(R"("text")"), "text");
    EXPECT_EQ(decoded<double>("-2.5e-3"), -0.0025);
    EXPECT_EQ(decoded<std::vector<bool>>("[true,false]"), (std::vector{true, false}));
    EXPECT_EQ((decoded<std::map<std::string, int>>(R"({"b":1,"a":2})")),
              (std::map<std::string, int>{{"a", 2}, {"b", 1}}));
    EXPECT_EQ((decoded<std::unordered_map<std::string, std::vector<int>>>(R"({"b":[1]})")),
              (std::unordered_map<std::string, std::vector<int>>{{"b", {1}}}));
    EXPECT_EQ(decoded<std::vector<std::optional<int>>>("[1,null]"), (std::vector<std::optional<int>>{1, {}}));
}

TEST(JSONDecoder, BlanksMayStandAroundEverything) {
    EXPECT_EQ((decoded<std::map<std::string, std::vector<int>>>(" \t\r\n{ \"a\" : [ 1 , 2 ] } \n")),
              (std::map<std::string, std::vector<int>>{{"a", {1, 2}}}));
}

TEST(JSONDecoder, NullAtTheTopReadsAsAnAbsentOptional) {
    EXPECT_EQ(decoded<std::optional<std::string>>("null"), std::nullopt);
    EXPECT_EQ(decoded<std::optional<std::string>>("\"x\""), "x");
}

TEST(JSONDecoder, IntegersAreExactToTheEndsOfTheirRanges) {
    EXPECT_EQ(decoded<std::int64_t>("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(decoded<std::int64_t>("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(decoded<std::uint64_t>("18446744073709551615"), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(decoded<std::uint64_t>("9007199254740993"), 9007199254740993u);
    EXPECT_EQ(decoded<std::int8_t>("-128"), -128);
    EXPECT_EQ(decoded<std::uint16_t>("65535"), 65535);
    EXPECT_EQ(decoded<int>("-0"), 0);
    EXPECT_EQ(decoded<unsigned>("-0"), 0u);
}

TEST(JSONDecoder, AnIntegerOutOfRangeIsAnError) {
    EXPECT_EQ(faultOf<std::int8_t>("128"),
              "expected a whole number from -128 to 127, found a number out of range");
    EXPECT_NE(faultOf<std::int8_t>("-129"), "decodes");
    EXPECT_EQ(faultOf<std::uint32_t>("18446744073709551615"),
              "expected a whole number from 0 to 4294967295, found a number out of range");
    EXPECT_EQ(faultOf<std::uint8_t>("-1"),
              "expected a whole number from 0 to 255, found a number out of range");
    EXPECT_NE(faultOf<std::uint8_t>("256"), "decodes");
    EXPECT_NE(faultOf<std::int64_t>("9223372036854775808"), "decodes");
    EXPECT_NE(faultOf<std::int64_t>("-9223372036854775809"), "decodes");
    EXPECT_NE(faultOf<std::int64_t>("9223372036854775808.0"), "decodes");
    EXPECT_NE(faultOf<std::uint64_t>("18446744073709551616"), "decodes");
    EXPECT_NE(faultOf<std::uint64_t>("1e300"), "decodes");
    EXPECT_NE(faultOf<int>("1e10"), "decodes");
}

TEST(JSONDecoder, ANumberThatIsNoIntegerDoesNotDecodeAsOne) {
    EXPECT_EQ(faultOf<int>("1.5"), "expected a whole number, found a number");
    EXPECT_NE(faultOf<std::uint64_t>("0.1"), "decodes");
    EXPECT_NE(faultOf<int>("1e-1"), "decodes");
    EXPECT_EQ(faultOf<int>("true"), "expected a whole number, found a boolean");
    EXPECT_EQ(faultOf<int>("\"1\""), "expected a whole number, found a string");
}

TEST(JSONDecoder, AWholeNumberWrittenAsADoubleDecodesAsAnInteger) {
    EXPECT_EQ(decoded<int>("1.0"), 1);
    EXPECT_EQ(decoded<int>("1e3"), 1000);
    EXPECT_EQ(decoded<std::uint64_t>("-0.0"), 0u);
    EXPECT_EQ(decoded<std::int64_t>("-9007199254740992.0"), -9007199254740992);
    EXPECT_NE(faultOf<std::int64_t>("9007199254740993.5"), "decodes");
    EXPECT_NE(faultOf<std::int64_t>("-9223372036854775808.0"), "decodes");
}

TEST(JSONDecoder, DoublesAreTheNearestOnes) {
    for (const auto text :
         {"0.1"sv, "1e23"sv, "9007199254740993.0"sv, "2.2250738585072011e-308"sv, "5e-324"sv,
          "1.7976931348623157e308"sv, "0.500000000000000166533453693773481063544750213623046875"sv,
          "3.518437208883201171875e13"sv, "100000000000000016777215"sv, "7.2057594037927933e16"sv}) {
        EXPECT_EQ(decoded<double>(text), std::strtod(std::string(text).c_str(), nullptr)) << text;
    }
    EXPECT_TRUE(std::signbit(decoded<double>("-0")));
    EXPECT_TRUE(std::signbit(decoded<double>("-0.0")));
    EXPECT_EQ(decoded<double>("1e-400"), 0);
    EXPECT_EQ(decoded<double>("[18446744073709551616]"sv.substr(1, 20)), 18446744073709551616.0);
    EXPECT_EQ(decoded<double>("18446744073709551615"), 18446744073709551616.0);
}

TEST(JSONDecoder, ANumberBeyondADoubleIsAnError) {
    for (const auto text : {"1e400"sv, "-1e400"sv, "1e309"sv, "123456789e301"sv, "1E+99999"sv,
                            "0.000001e315"sv, "1000000000000.5e297"sv}) {
        EXPECT_EQ(faultOf<double>(text), "the number is too large") << text;
        EXPECT_NE(faultOf<int>(text), "decodes");
    }
    EXPECT_EQ(faultOf<double>(repeated("9", 400)), "the number is too large");
    EXPECT_EQ(faultOf<std::vector<double>>("[1, 1e400, 2]"), "[1]: the number is too large");
    EXPECT_EQ(syntaxErrorOf("1e2147483648").text, "the number is too large");
}

TEST(JSONDecoder, ANumberBelowAllDoublesIsZero) {
    for (const auto text : {"1e-400"sv, "0.0000001e-320"sv, "1000000e-400"sv, "0e400"sv, "0.000E9999"sv}) {
        EXPECT_EQ(decoded<double>(text), 0) << text;
    }
    EXPECT_TRUE(std::signbit(decoded<double>("-1e-400")));
}

TEST(JSONDecoder, InPlaceReadsTheSame) {
    for (
        const auto text :
        {R"({"plain":"text","a\nb":"\u00e9\n\ud83d\ude00","":"\"","n":[1.5,-0,1e400,"\t","x"],"y":"a\\b"})"sv,
         R"(["\n","\n","a","\n\n\nb\n",{"k":"v"},"","\r"])"sv, R"("\n")"sv, R"("")"sv, "[1,2.5,3]"sv, "[1,"sv,
         "[\"\\n\",]"sv}) {
        std::string copy(text);
        const auto value = JSONDecoder().decodeInPlace<JSONValue>(copy);
        const auto expected = JSONValue::parse(text);
        ASSERT_EQ(value.has_value(), expected.has_value()) << text;
        if (value) {
            EXPECT_EQ(value->text(), expected->text());
        } else {
            EXPECT_EQ(value.error().text, expected.error().text);
        }
    }
    std::string longText =
        "[\"" + repeated("line of text\\n", 3000) + "\",\"" + repeated("\\t", 5000) + "\"]";
    const auto expected = decoded<std::vector<std::string>>(longText);
    EXPECT_EQ(JSONDecoder().decodeInPlace<std::vector<std::string>>(longText), expected);
}

TEST(JSONDecoder, NestingIsReadToItsLimitAndNoDeeper) {
    EXPECT_TRUE(JSONValue::parse(nested(jsonDepthLimit)));
    EXPECT_EQ(syntaxErrorOf(nested(jsonDepthLimit + 1)).message(),
              "not valid JSON at byte 512: nested deeper than 512 levels");
}

TEST(JSONDecoder, AMillionLevelsAreAnError) {
    EXPECT_EQ(syntaxErrorOf(repeated("[", 1'000'000)).text, "nested deeper than 512 levels");
    EXPECT_EQ(syntaxErrorOf(repeated("{\"a\":", 1'000'000)).text, "nested deeper than 512 levels");
    EXPECT_EQ(syntaxErrorOf(nested(1'000'000)).text, "nested deeper than 512 levels");
    EXPECT_NE(faultOf<int>(repeated("[", 1'000'000)), "decodes");
}

TEST(JSONDecoder, MoreThanEightMillionValuesAreAnError) {
    constexpr int maximum = 8 << 20;
    const auto zeros = [](int count) { return "[0" + repeated(",0", count - 1) + "]"; };
    EXPECT_TRUE(JSONTape::parse(zeros(maximum - 1)));
    EXPECT_EQ(syntaxErrorOf(zeros(maximum)).text, "more than 8388608 values and keys");
    EXPECT_EQ(syntaxErrorOf("{" + repeated("\"\":[],", maximum / 2) + "\"\":0}").text,
              "more than 8388608 values and keys");
}

TEST(JSONDecoder, WhatIsNotJSONIsAnErrorAtItsPlace) {
    struct {
        std::string_view text;
        std::size_t offset;
    } const rows[] = {
        {""sv, 0},         {"  "sv, 2},          {"nul"sv, 3},       {"nulL"sv, 3},
        {"[1,]"sv, 3},     {"[1"sv, 2},          {"[1 2]"sv, 3},     {"{\"a\"}"sv, 4},
        {"{\"a\":}"sv, 5}, {"{\"a\":1,}"sv, 7},  {"{a:1}"sv, 1},     {"{1:1}"sv, 1},
        {"'a'"sv, 0},      {"\"abc"sv, 4},       {"\"a\nb\""sv, 2},  {"\"a\0b\""sv, 2},
        {"\"\\x\""sv, 2},  {"\"\\u12g4\""sv, 5}, {"01"sv, 1},        {"-"sv, 1},
        {"1."sv, 2},       {".5"sv, 0},          {"1e"sv, 2},        {"+1"sv, 0},
        {"NaN"sv, 0},      {"Infinity"sv, 0},    {"-Infinity"sv, 1}, {"0x10"sv, 1},
        {"// c\n1"sv, 0},  {"[1,/**/2]"sv, 3},   {"]"sv, 0},         {"[}"sv, 1},
        {"\xA0 1"sv, 0},   {"True"sv, 0},        {"\"\t\""sv, 1},    {"[\"a\",\n\"b]"sv, 9},
    };

    for (const auto& [text, offset] : rows) {
        EXPECT_EQ(syntaxErrorOf(text).offset, offset) << text;
    }
}

TEST(JSONDecoder, TheOffsetOfAFaultFarBehindIsFound) {
    const auto text = "[" + repeated("\"some text\",", 20'000) + "x]";
    EXPECT_EQ(syntaxErrorOf(text).offset, text.size() - 2);
}

TEST(JSONDecoder, ATextThatEndsTooEarlySaysSo) {
    for (const auto text : {"[1"sv, "{\"a\":"sv, "\"abc"sv, ""sv, "tru"sv, "\"\\u12"sv, "\"\xE2\x82"sv}) {
        EXPECT_EQ(syntaxErrorOf(text).text, "the text ends too early") << text;
    }
}

TEST(JSONDecoder, TextBehindTheValueIsAnError) {
    for (const auto text : {"1 2"sv, "{}{}"sv, "null,"sv, "[] x"sv, "\"a\"\0"sv, "{}\n]"sv}) {
        EXPECT_EQ(syntaxErrorOf(text).text, "there is text behind the value") << text;
    }
    EXPECT_EQ(syntaxErrorOf("{} x").offset, 3u);
}

TEST(JSONDecoder, AByteOrderMarkIsAnError) {
    EXPECT_EQ(syntaxErrorOf("\xEF\xBB\xBF{}").message(),
              "not valid JSON at byte 0: a byte order mark stands before the value");
    EXPECT_EQ(syntaxErrorOf("\xFF\xFE{\0}\0"sv).offset, 0u);
}

TEST(JSONDecoder, BrokenUTF8IsAnErrorInValuesAndKeys) {
    for (const auto bytes : {"\x80"sv, "\xBF"sv, "\xC0\x80"sv, "\xC1\xBF"sv, "\xC3"sv, "\xC3("sv,
                             "\xE0\x80\x80"sv, "\xE0\x9F\xBF"sv, "\xED\xA0\x80"sv, "\xED\xBF\xBF"sv,
                             "\xE2\x82"sv, "\xE2(\xA1"sv, "\xF0\x8F\xBF\xBF"sv, "\xF4\x90\x80\x80"sv,
                             "\xF5\x80\x80\x80"sv, "\xF0\x9F\x98"sv, "\xF0\x9F(\x80"sv, "\xFE"sv, "\xFF"sv}) {
        syntaxErrorOf("\"" + std::string(bytes) + "\"");
        syntaxErrorOf("\"a long text before it, longer than a word\xC3\xA9 \\n" + std::string(bytes) + "\"");
        syntaxErrorOf("{\"" + std::string(bytes) + "\":1}");
    }
}

TEST(JSONDecoder, ALoneSurrogateIsAnError) {
    for (const auto text :
         {R"("\ud800")"sv, R"("\udc00")"sv, R"("\ud83d")"sv, R"("\ud83dx")"sv, R"("\ud83d\n")"sv,
          R"("\ud83d\ud83d")"sv, R"("\ude00\ud83d")"sv, R"({"\udfff":1})"sv, R"("\ud83dA")"sv}) {
        EXPECT_EQ(syntaxErrorOf(text).text, "a surrogate stands alone in an escape") << text;
    }
}

TEST(JSONDecoder, AnEscapeThatIsNoLoneSurrogateIsNotTakenForOne) {
    for (const auto text : {"\"\\u0041\n\""sv, "\"\\ud7ff\n\""sv, "\"\\ud83d\\ude00\n\""sv, "\"\\ue000\n\""sv,
                            "\"\\n12345\n\""sv}) {
        EXPECT_EQ(syntaxErrorOf(text).text, "an unexpected byte, or text that is not UTF-8") << text;
    }
}

TEST(JSONDecoder, EscapesAreResolvedInValuesAndKeys) {
    EXPECT_EQ(decoded<std::string>(R"("\"\\\/\b\f\n\r\t\u0041\u00e9\u20AC\ud83d\ude00 end")"),
              "\"\\/\b\f\n\r\tA\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80 end");
    EXPECT_EQ(decoded<std::string>(R"("a\u0000b")"), "a\0b"sv);
    EXPECT_EQ((decoded<std::map<std::string, std::string>>(R"({"k\u0065y\n":"\u0076","b":"plain"})")),
              (std::map<std::string, std::string>{{"key\n", "v"}, {"b", "plain"}}));
    EXPECT_EQ(decoded<std::string>(R"("")"), "");
    EXPECT_EQ(decoded<std::vector<std::string>>(R"(["\n","\n"])"), (std::vector<std::string>{"\n", "\n"}));
}

TEST(JSONDecoder, AnErrorGivesThePathThroughObjectsAndArrays) {
    using Maps = std::map<std::string, std::vector<std::map<std::string, int>>>;
    EXPECT_EQ(faultOf<Maps>(R"({"x":[],"boards":[{"a":1},{"a":1,"name":"secret"}]})"),
              "boards[1].name: expected a whole number, found a string");
    EXPECT_EQ(faultOf<Maps>(R"({"boards":[{},{},[]]})"), "boards[2]: expected an object, found an array");
    EXPECT_EQ(faultOf<Maps>(R"({"a b\u001b\"":{}})"), R"(["a b??"]: expected an array, found an object)");
    EXPECT_EQ(faultOf<Maps>(R"({"a_1-b.c@d$":{}})"), "a_1-b.c@d$: expected an array, found an object");
    EXPECT_EQ(faultOf<Maps>("{\"a\\\\b\x7f\":{}}"), R"(["a?b?"]: expected an array, found an object)");
    EXPECT_EQ(faultOf<Maps>(R"({"":{}})"), R"([""]: expected an array, found an object)");
    EXPECT_EQ(faultOf<std::vector<std::vector<int>>>("[[1],[2,[]]]"),
              "[1][1]: expected a whole number, found an array");
    EXPECT_EQ(faultOf<Maps>("{\"" + repeated("k", 100) + "\":1}"),
              repeated("k", 64) + "...: expected an array, found a number");
}

TEST(JSONDecoder, AWrongKindIsAnError) {
    EXPECT_EQ(faultOf<bool>("1"), "expected a boolean, found a number");
    EXPECT_EQ(faultOf<std::string>("1"), "expected a string, found a number");
    EXPECT_EQ(faultOf<std::string>("18446744073709551615"), "expected a string, found a number");
    EXPECT_EQ(faultOf<double>("\"1\""), "expected a number, found a string");
    EXPECT_EQ(faultOf<double>("null"), "expected a number, found null");
    EXPECT_EQ(faultOf<double>("true"), "expected a number, found a boolean");
    EXPECT_EQ(faultOf<double>("[1]"), "expected a number, found an array");
    EXPECT_EQ(faultOf<double>("{}"), "expected a number, found an object");
    EXPECT_EQ(faultOf<std::vector<int>>("{}"), "expected an array, found an object");
    EXPECT_EQ((faultOf<std::map<std::string, int>>("[]")), "expected an object, found an array");
}

TEST(JSONDecoder, DatesAreSecondsOrISO8601) {
    EXPECT_EQ(decoded<Date>("86400.5"), Date::fromReferenceSeconds(86400.5));
    EXPECT_EQ(decoded<Date>("-1"), Date::fromReferenceSeconds(-1));
    EXPECT_EQ(faultOf<Date>("\"2001-01-02T00:00:00Z\""), "expected a number, found a string");
    const JSONDecoder decoder{DateStrategy::iso8601};
    EXPECT_EQ(decoder.decode<Date>("\"2001-01-02T00:00:00Z\""), Date::fromReferenceSeconds(86400));
    EXPECT_EQ(decoder.decode<Date>("\"2001-01-02T00:00:00.500Z\""), Date::fromReferenceSeconds(86400.5));
    EXPECT_EQ(decoder.decode<Date>("\"2001-01-02T02:00:00+02:00\""), Date::fromReferenceSeconds(86400));
    EXPECT_EQ(decoder.decode<std::vector<Date>>("[\"today\"]").error().message(),
              "[0]: expected an ISO 8601 date, found another value");
    EXPECT_EQ(decoder.decode<Date>("1").error().message(), "expected a string, found a number");
}

TEST(JSONDecoder, OfADuplicateKeyInAMapTheLastCounts) {
    EXPECT_EQ((decoded<std::map<std::string, int>>(R"({"a":1,"b":2,"a":3})")),
              (std::map<std::string, int>{{"a", 3}, {"b", 2}}));
}

} // namespace
} // namespace zelto
