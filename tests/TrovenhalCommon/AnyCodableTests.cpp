#include <Support/LogCapture.h>
#include <TrovenhalCommon/AnyCodable.h>

#include <gtest/gtest.h>

#include <limits>

namespace zelto {

// Not in the anonymous namespace, for argument-dependent look-up.
struct CachedProject {
    std::string name;
    Date changed;

    bool operator==(const CachedProject&) const = default;
};

void encodeJSON(JSONWriter& writer, const CachedProject& project) {
    writer.beginObject();
    writer.field("name", project.name);
    writer.field("changed", project.changed);
    writer.endObject();
}

void decodeJSON(const JSONReader& reader, CachedProject& project) {
    project = {reader.required<std::string>("name"), reader.required<Date>("changed")};
}

namespace {

using TextMap = std::map<std::string, std::string>;

std::string written(const AnyCodable& value) {
    return JSONEncoder().encode(value).value();
}

AnyCodable readBack(std::string_view json) {
    return JSONDecoder().decode<AnyCodable>(json).value();
}

struct Registered {
    Registered() { AnyCodable::RegisterType<CachedProject>("CachedProject"); }
};

TEST(AnyCodable, AMapOfTextsIsAPlainObjectAndReadsBackUnchanged) {
    const TextMap map = {{"cached_a", "{\"x\":[1,2]}"}, {"", ""}, {"ключ", "\"\\\n\u0001"}};
    const auto json = written(AnyCodable(map));
    EXPECT_EQ(json, JSONEncoder().encode(map).value());
    EXPECT_EQ(readBack(json).value<TextMap>(), map);
}

TEST(AnyCodable, AnEmptyMapReadsBackAsOne) {
    EXPECT_EQ(written(AnyCodable(TextMap())), "{}");
    EXPECT_EQ(readBack("{}").value<TextMap>(), TextMap());
}

TEST(AnyCodable, AMapThatLooksLikeAWrappedValueReadsBackUnchanged) {
    const Registered once;
    for (const TextMap& map : {TextMap{{"$type", "CachedProject"}, {"$value", "x"}},
                               TextMap{{"$type", ""}, {"$value", "y"}}, TextMap{{"$type", "z"}},
                               TextMap{{"$value", "only"}}, TextMap{{"$value", "one"}, {"other", "two"}}}) {
        EXPECT_EQ(readBack(written(AnyCodable(map))).value<TextMap>(), map);
    }
}

TEST(AnyCodable, AMapWithAValueThatIsNoTextConvertsToNullopt) {
    EXPECT_EQ(readBack(R"({"a":"b","c":1})").value<TextMap>(), std::nullopt);
    EXPECT_EQ(readBack("[]").value<TextMap>(), std::nullopt);
    EXPECT_EQ(readBack("null").value<TextMap>(), std::nullopt);
}

TEST(AnyCodable, HoldsAnyPlainJSON) {
    for (const std::string_view json : {"null", "true", "-5", "18446744073709551615", "1.5", "\"x\"",
                                        "[1,[2,{}]]", R"({"a":{"b":null}})"}) {
        EXPECT_EQ(written(readBack(json)), json);
    }
}

TEST(AnyCodable, WithoutAValueIsNull) {
    EXPECT_EQ(written(AnyCodable()), "null");
    EXPECT_TRUE(AnyCodable().json()->isNull());
}

TEST(AnyCodable, AValueOfARegisteredTypeNamesIt) {
    const Registered once;
    const CachedProject project{"Inbox", Date::fromReferenceSeconds(7)};
    const auto json = written(AnyCodable(project));
    EXPECT_EQ(json, R"({"$type":"CachedProject","$value":{"name":"Inbox","changed":7}})");
    const auto back = readBack(json);
    EXPECT_EQ(back.typeName(), "CachedProject");
    EXPECT_EQ(back.value<CachedProject>(), project);
    EXPECT_EQ(written(back), json);
}

TEST(AnyCodable, IsReadWithoutItsWrapping) {
    const Registered once;
    const auto back = readBack(R"({"$type":"CachedProject","$value":{"name":"Inbox","changed":7}})");
    EXPECT_EQ(back.json()->text(), R"({"name":"Inbox","changed":7})");
}

TEST(AnyCodable, APlainObjectThatFitsConvertsToARegisteredType) {
    const Registered once;
    EXPECT_EQ(readBack(R"({"name":"Inbox","changed":7})").value<CachedProject>(),
              (CachedProject{"Inbox", Date::fromReferenceSeconds(7)}));
}

TEST(AnyCodable, AWrappedValueThatIsNoneOfItsTypeDoesNotDecode) {
    const Registered once;
    const auto decoded =
        JSONDecoder().decode<AnyCodable>(R"({"$type":"CachedProject","$value":{"name":5,"changed":7}})");
    ASSERT_FALSE(decoded);
    EXPECT_NE(decoded.error().path.find("name"), std::string::npos);
}

TEST(AnyCodable, AnUnknownNameIsKeptAndWrittenAgain) {
    const std::string json = R"({"$type":"FromTheFuture","$value":{"x":1}})";
    const auto back = readBack(json);
    EXPECT_EQ(back.typeName(), "FromTheFuture");
    EXPECT_EQ(written(back), json);
}

TEST(AnyCodable, AValueOfAnotherRegisteredTypeConvertsToNullopt) {
    const Registered once;
    EXPECT_EQ(
        readBack(R"({"$type":"FromTheFuture","$value":{"name":"a","changed":1}})").value<CachedProject>(),
        std::nullopt);
}

TEST(AnyCodable, DatesFollowTheStrategyOfTheCoder) {
    const Registered once;
    const CachedProject project{"p", Date()};
    const auto json = JSONEncoder{DateStrategy::iso8601}.encode(AnyCodable(project)).value();
    EXPECT_NE(json.find("2001-01-01T00:00:00Z"), std::string::npos);
    const auto back = JSONDecoder{DateStrategy::iso8601}.decode<AnyCodable>(json).value();
    EXPECT_EQ(back.value<CachedProject>(), project);
}

TEST(AnyCodable, WhatHasNoJSONIsAnErrorOfTheEncoder) {
    const auto infinite = JSONEncoder().encode(AnyCodable(std::numeric_limits<double>::infinity()));
    ASSERT_FALSE(infinite);
    EXPECT_EQ(infinite.error().reason, EncodingError::Reason::nonFiniteNumber);
    EXPECT_FALSE(JSONEncoder().encode(AnyCodable(std::string("\xff"))));
}

TEST(AnyCodable, HostileTextsEndInAnErrorOrAValue) {
    for (const std::string& json :
         {std::string("{\"$type\":\"\""), std::string("{\"$type\":1,\"$value\":2}"),
          std::string(R"({"$type":"","$value":{"$type":"","$value":1}})"),
          std::string(R"({"$type":"a","$type":"b","$value":1})"), std::string(100'000, '['),
          std::string("{\"$value\":1,\"$type\":\"\xff\"}")}) {
        const auto decoded = JSONDecoder().decode<AnyCodable>(json);
        if (decoded) {
            EXPECT_TRUE(JSONEncoder().encode(*decoded).has_value()) << json;
        }
    }
}

TEST(AnyCodable, ANameThatIsTakenStaysWithTheFirstType) {
    const Registered once;
    const LogCapture log;
    AnyCodable::RegisterType<CachedProject>("CachedProject");
    EXPECT_TRUE(log.records().empty());
    AnyCodable::RegisterType<std::vector<int>>("CachedProject");
    EXPECT_TRUE(log.contains("'CachedProject' is taken"));
    AnyCodable::RegisterType<std::vector<int>>("");
    EXPECT_TRUE(log.contains("'' is taken")) << "which stands for no type at all";
    EXPECT_EQ(written(AnyCodable(std::vector<int>{1})), "[1]");
}

} // namespace
} // namespace zelto
