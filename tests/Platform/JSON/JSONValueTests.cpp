#include <Platform/JSON/JSONValue.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <string>

namespace zelto {
namespace {

JSONValue parsed(std::string_view text) {
    return JSONValue::parse(text).value();
}

std::string again(std::string_view text) {
    return parsed(text).text().value();
}

TEST(JSONValue, KeepsTheOrderOfKeys) {
    EXPECT_EQ(again(R"({"z":1,"a":{"y":[],"b":null},"m":"t"})"), R"({"z":1,"a":{"y":[],"b":null},"m":"t"})");
}

TEST(JSONValue, KeepsSixtyFourBitIntegers) {
    EXPECT_EQ(again("[9223372036854775807,-9223372036854775808,18446744073709551615,9007199254740993]"),
              "[9223372036854775807,-9223372036854775808,18446744073709551615,9007199254740993]");
    EXPECT_EQ(parsed("18446744073709551615").kind(), JSONKind::uint64);
    EXPECT_EQ(parsed("9223372036854775807").kind(), JSONKind::int64);
    EXPECT_EQ(parsed("1.0").kind(), JSONKind::real);
}

TEST(JSONValue, WhatWasReadIsJSONWhenWrittenAgain) {
    for (const auto* text : {"-0", "-0.0", "1e23", "5e-324", "1.7976931348623157e308", "18446744073709551616",
                             "-9223372036854775809", "0.1", "1E+2", "\"\\u0000\\ud83d\\ude00\\u2028\"",
                             "[[],{}]", "{\"\":\"\"}", "{\"\\\"\":1}"}) {
        const auto written = again(text);
        EXPECT_EQ(parsed(written), parsed(text)) << text << " became " << written;
        EXPECT_EQ(again(written), written);
    }
    EXPECT_TRUE(std::signbit(*parsed(again("-0")).asDouble()));
}

TEST(JSONValue, WritesNumbersAsItReadThem) {
    for (const auto* text :
         {"1e400", "-1e-400", "123456789012345678901234567890", "1.0", "1", "1e3", "1E+2", "-0", "-0.0",
          "3.14159265358979323846264338327950288", "0.1000", "18446744073709551616", "[1.50,{\"a\":2e0}]"}) {
        EXPECT_EQ(again(text), text);
        EXPECT_EQ(JSONValue::of(parsed(text))->text(), text);
        EXPECT_EQ(parsed(text).as<JSONValue>()->text(), text);
    }
}

TEST(JSONValue, NumbersOfAnyFormAreEqualByValue) {
    EXPECT_EQ(parsed("1.0"), JSONValue(1));
    EXPECT_EQ(JSONValue(1000), parsed("1e3"));
    EXPECT_EQ(parsed("0.1"), JSONValue(0.1));
    EXPECT_EQ(parsed("0.10"), parsed("1e-1"));
    EXPECT_EQ(parsed("1e400"), parsed("1e400"));
    EXPECT_NE(parsed("1e400"), parsed("2e400"));
    EXPECT_NE(parsed("1e400"), JSONValue(1));
    EXPECT_EQ(parsed("1e400").asDouble(), std::nullopt);
    EXPECT_EQ(parsed("1e400").asInt64(), std::nullopt);
    EXPECT_EQ(parsed("1e3").asInt64(), 1000);
    EXPECT_EQ(parsed("1e3").asUInt64(), 1000u);
    EXPECT_EQ(parsed("123456789012345678901234567890").asDouble(), 1.2345678901234568e29);
}

TEST(JSONValue, OfADuplicateKeyTheLastValueCountsInTheFirstsPlace) {
    EXPECT_EQ(again(R"({"a":1,"b":2,"a":[3]})"), R"({"a":[3],"b":2})");
    std::string many = "{";
    for (int index = 0; index < 50; ++index) {
        many += "\"k" + std::to_string(index % 25) + "\":" + std::to_string(index) + ",";
    }
    many.back() = '}';
    const auto value = parsed(many);
    EXPECT_EQ(value.asObject()->size(), 25u);
    EXPECT_EQ(value.asObject()->begin()->first, "k0");
    EXPECT_EQ(*value.find("k0"), 25);
    EXPECT_EQ(*value.find("k24"), 49);
}

TEST(JSONValue, AnObjectOfVeryManyKeysIsReadSoon) {
    std::string text = "{";
    for (int index = 0; index < 200'000; ++index) {
        text += "\"k" + std::to_string(index) + "\":0,";
    }
    text.back() = '}';
    EXPECT_EQ(parsed(text).asObject()->size(), 200'000u);
}

TEST(JSONValue, AccessorsGiveNulloptForAnotherKind) {
    const JSONValue text = "x";
    EXPECT_EQ(*text.asString(), "x");
    EXPECT_EQ(text.asBool(), std::nullopt);
    EXPECT_EQ(text.asInt64(), std::nullopt);
    EXPECT_EQ(text.asUInt64(), std::nullopt);
    EXPECT_EQ(text.asDouble(), std::nullopt);
    EXPECT_EQ(text.asArray(), nullptr);
    EXPECT_EQ(text.asObject(), nullptr);
    EXPECT_EQ(text.find("x"), nullptr);
    EXPECT_EQ(JSONValue(true).asBool(), true);
    EXPECT_EQ(JSONValue(true).asInt64(), std::nullopt);
    EXPECT_EQ(JSONValue(1).asBool(), std::nullopt);
    EXPECT_EQ(JSONValue(1).asString(), nullptr);
    EXPECT_TRUE(JSONValue().isNull());
    EXPECT_EQ(JSONValue(JSONValue::Array{1, 2}).asArray()->size(), 2u);
}

TEST(JSONValue, NumbersConvertWhereTheValueStaysTheSame) {
    EXPECT_EQ(JSONValue(3.0).asInt64(), 3);
    EXPECT_EQ(JSONValue(3.5).asInt64(), std::nullopt);
    EXPECT_EQ(JSONValue(-1).asUInt64(), std::nullopt);
    EXPECT_EQ(JSONValue(-1.5).asUInt64(), std::nullopt);
    EXPECT_EQ(JSONValue(1.5).asUInt64(), std::nullopt);
    EXPECT_EQ(JSONValue(std::numeric_limits<std::uint64_t>::max()).asInt64(), std::nullopt);
    EXPECT_EQ(JSONValue(std::numeric_limits<std::uint64_t>::max()).asUInt64(),
              std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(JSONValue(9223372036854775808.0).asInt64(), std::nullopt);
    EXPECT_EQ(JSONValue(9223372036854775808.0).asUInt64(), 9223372036854775808u);
    EXPECT_EQ(JSONValue(18446744073709551616.0).asUInt64(), std::nullopt);
    EXPECT_EQ(JSONValue(std::nan("")).asInt64(), std::nullopt);
    EXPECT_EQ(JSONValue(7).asDouble(), 7.0);
    EXPECT_EQ(JSONValue(std::numeric_limits<std::uint64_t>::max()).asDouble(), 18446744073709551616.0);
}

TEST(JSONValue, NumbersAreEqualByValue) {
    EXPECT_EQ(parsed("1.0"), parsed("1"));
    EXPECT_EQ(JSONValue(std::uint64_t{5}), JSONValue(5));
    EXPECT_EQ(parsed("-0"), parsed("0"));
    EXPECT_EQ(JSONValue(9223372036854775808.0), JSONValue(std::uint64_t{9223372036854775808u}));
    EXPECT_NE(JSONValue(9007199254740992.0), JSONValue(std::int64_t{9007199254740993}));
    EXPECT_NE(JSONValue(9223372036854775808.0), JSONValue(std::numeric_limits<std::int64_t>::max()));
    EXPECT_NE(JSONValue(18446744073709551616.0), JSONValue(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_NE(JSONValue(1), JSONValue(true));
    EXPECT_NE(JSONValue(1), JSONValue("1"));
    EXPECT_NE(JSONValue(1.5), JSONValue("1"));
    EXPECT_NE(JSONValue(1.5), JSONValue(1));
    EXPECT_NE(JSONValue(std::numeric_limits<std::uint64_t>::max()), JSONValue(1.5));
    EXPECT_NE(JSONValue(), JSONValue(0));
}

TEST(JSONValue, ObjectsAreEqualInWhateverOrder) {
    EXPECT_EQ(parsed(R"({"a":1,"b":[{"x":1,"y":2}]})"), parsed(R"({"b":[{"y":2,"x":1}],"a":1})"));
    EXPECT_NE(parsed(R"({"a":1,"b":2})"), parsed(R"({"b":1,"a":2})"));
    EXPECT_NE(parsed(R"({"a":1})"), parsed(R"({"a":1,"b":2})"));
    EXPECT_NE(parsed(R"({"a":1,"c":2})"), parsed(R"({"a":1,"b":2})"));
    EXPECT_NE(parsed("[1,2]"), parsed("[2,1]"));
}

TEST(JSONValue, IsBuiltAndChangedInPlace) {
    JSONValue value;
    value.set("a", 1);
    value.set("list", JSONValue::Array{true, nullptr, 2.5});
    value.set("a", "again");
    value.set("b", JSONObject{{"k", 1}, {"k", 2}});
    value.find("list")->isNull();
    value.asObject()->find("list")->asArray()->push_back("end");
    EXPECT_EQ(value.text(), R"({"a":"again","list":[true,null,2.5,"end"],"b":{"k":2}})");
    EXPECT_TRUE(value.asObject()->erase("a"));
    EXPECT_FALSE(value.asObject()->erase("a"));
    EXPECT_EQ(value.asObject()->size(), 2u);
    EXPECT_FALSE(value.asObject()->empty());
}

TEST(JSONValue, ALargeUnsignedNumberThatFitsIsAnInt64) {
    EXPECT_EQ(JSONValue(std::uint64_t{7}).kind(), JSONKind::int64);
    EXPECT_EQ(JSONValue(std::numeric_limits<std::uint64_t>::max()).kind(), JSONKind::uint64);
}

TEST(JSONValue, OneThatWasNotReadFromATextDecodesAsWell) {
    const JSONValue value = JSONValue::Array{2.5, 3.0, std::numeric_limits<std::uint64_t>::max(), -1, true};
    EXPECT_EQ(value.as<JSONValue>(), value);
    EXPECT_EQ(JSONValue(2.5).as<double>(), 2.5);
    EXPECT_EQ(JSONValue(3.0).as<int>(), 3);
    EXPECT_EQ(JSONValue(2.5).as<int>().error().message(), "expected a whole number, found a number");
    EXPECT_EQ(JSONValue(std::numeric_limits<std::uint64_t>::max()).as<std::uint64_t>(),
              std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ((JSONValue(JSONObject{{"a", 1.5}}).as<std::map<std::string, double>>()),
              (std::map<std::string, double>{{"a", 1.5}}));
}

TEST(JSONValue, OneWithoutJSONDecodesAsTheErrorOfItsText) {
    struct {
        JSONValue value;
        std::string_view message;
    } const rows[] = {
        {std::nan(""), "the number is not finite, which JSON cannot hold"},
        {"\xff", "the text is not valid UTF-8"},
        {JSONValue::Array{1, "\xff"}, "[1]: the text is not valid UTF-8"},
        {JSONObject{{"a", JSONValue::Array{0, std::nan("")}}},
         "a[1]: the number is not finite, which JSON cannot hold"},
        {JSONObject{{"a", 1}, {"\xff", 2}}, "the text is not valid UTF-8"},
    };

    for (const auto& [value, message] : rows) {
        const auto decoded = value.as<JSONValue>();
        ASSERT_FALSE(decoded) << message;
        EXPECT_EQ(decoded.error().message(), message);
    }
}

TEST(JSONValue, DecodesToTheDepthLimitAndNoDeeper) {
    const JSONValue array = JSONValue::Array{};
    const JSONValue object = JSONObject{};
    for (const JSONValue& innermost : {array, object}) {
        auto value = innermost;
        for (int level = 1; level < jsonDepthLimit; ++level) {
            value = level % 2 ? JSONValue(JSONValue::Array{value}) : JSONValue(JSONObject{{"a", value}});
        }
        EXPECT_EQ(value.as<JSONValue>(), value);
        for (int level = 0; level < 2; ++level) {
            value = JSONValue::Array{value};
            const auto decoded = value.as<JSONValue>();
            ASSERT_FALSE(decoded);
            EXPECT_TRUE(decoded.error().message().ends_with("nested deeper than 512 levels"));
        }
    }
}

TEST(JSONValue, AnyCodedValueBecomesOneAndBack) {
    const std::vector<std::optional<std::string>> list{"a", std::nullopt};
    const auto value = JSONValue::of(list);
    EXPECT_EQ(value, (JSONValue::Array{"a", nullptr}));
    EXPECT_EQ(value->as<std::vector<std::optional<std::string>>>(), list);
    EXPECT_EQ(value->as<int>().error().message(), "expected a whole number, found an array");
    EXPECT_EQ(JSONValue::of(std::nan("")).error().reason, EncodingError::Reason::nonFiniteNumber);
    EXPECT_EQ(JSONValue("2001-01-01T00:00:01Z").as<Date>(DateStrategy::iso8601),
              Date::fromReferenceSeconds(1));
    EXPECT_EQ(JSONValue::of(Date::fromReferenceSeconds(1), DateStrategy::iso8601),
              JSONValue("2001-01-01T00:00:01Z"));
}

} // namespace
} // namespace zelto
