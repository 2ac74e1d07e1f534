#include <Platform/EnumDescription.h>
#include <Platform/JSON/JSONCases.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zelto {

struct Target {
    struct Channel {
        std::string channelId;
        std::optional<std::string> topic;

        bool operator==(const Channel&) const = default;
    };

    struct User {
        std::string userId;

        bool operator==(const User&) const = default;
    };

    struct Nobody {
        bool operator==(const Nobody&) const = default;
    };

    std::variant<Channel, User, Nobody> value;

    bool operator==(const Target&) const = default;
};

ZELTO_JSON_CODED(Target::Channel);
ZELTO_JSON_CODED(Target::User);
ZELTO_JSON_CODED(Target);
ZELTO_JSON_RECORD(Target::Channel, channelId, topic);
ZELTO_JSON_RECORD(Target::User, userId);
ZELTO_JSON_CASES(Target, value, "channel", "user", "nobody");

enum class Recipients { senderOnly, everyone };
ZELTO_ENUM(Recipients);
ZELTO_DESCRIBE_ENUM(Recipients, senderOnly, everyone);
ZELTO_JSON_CODED(Recipients);
ZELTO_JSON_ENUM_CASES(Recipients);

enum class Status { new_, inProgress };
ZELTO_JSON_CODED(Status);
ZELTO_JSON_ENUM_TEXTS(Status, {Status::new_, "NEW"}, {Status::inProgress, "IN_PROGRESS"});

namespace {

std::string faultOf(std::string_view text) {
    const auto value = JSONDecoder().decode<Target>(text);
    return value ? "decodes" : value.error().message();
}

TEST(JSONCases, ACaseIsAnObjectWithItsNameAsTheOneKey) {
    EXPECT_EQ(JSONEncoder().encode(Target{Target::Channel{"c", std::nullopt}}),
              R"({"channel":{"channelId":"c"}})");
    EXPECT_EQ(JSONEncoder().encode(Target{Target::User{"u"}}), R"({"user":{"userId":"u"}})");
}

TEST(JSONCases, ACaseWithoutPayloadHasAnEmptyObject) {
    EXPECT_EQ(JSONEncoder().encode(Target{Target::Nobody{}}), R"({"nobody":{}})");
    EXPECT_EQ(JSONDecoder().decode<Target>(R"({"nobody":{}})"), Target{Target::Nobody{}});
    EXPECT_EQ(JSONDecoder().decode<Target>(R"({"nobody":null})"), Target{Target::Nobody{}});
    EXPECT_EQ(faultOf(R"({"nobody":1})"), "nobody: expected an object, found a number");
}

TEST(JSONCases, ReadsWhatItWrote) {
    EXPECT_EQ(JSONDecoder().decode<Target>(R"({"channel":{"channelId":"c","topic":"t"}})"),
              (Target{Target::Channel{"c", "t"}}));
    EXPECT_EQ(JSONDecoder().decode<Target>(R"({"user":{"userId":"u"}})"), Target{Target::User{"u"}});
}

TEST(JSONCases, AnotherNumberOfKeysIsAnError) {
    EXPECT_EQ(faultOf("{}"), "Invalid number of keys found, expected one.");
    EXPECT_EQ(faultOf(R"({"channel":{"channelId":"c"},"user":{"userId":"u"}})"),
              "Invalid number of keys found, expected one.");
    EXPECT_EQ(faultOf(R"({"user":{"userId":"u"},"other":1})"), "Invalid number of keys found, expected one.");
    EXPECT_EQ(JSONDecoder().decode<std::vector<Target>>("[{}]").error().text,
              "Invalid number of keys found, expected one.");
}

TEST(JSONCases, AnUnknownCaseIsAnErrorThatNamesTheKnownOnes) {
    EXPECT_EQ(faultOf(R"({"group":{}})"),
              R"(expected one of the keys "channel", "user", "nobody", found another)");
    EXPECT_EQ(faultOf("[]"), "expected an object, found an array");
    EXPECT_EQ(faultOf(R"({"user":{}})"), "user.userId: the required key is missing");
}

TEST(JSONCases, AnEnumerationWithoutPayloadsHasTheSameForm) {
    EXPECT_EQ(JSONEncoder().encode(std::vector{Recipients::everyone}), R"([{"everyone":{}}])");
    EXPECT_EQ(JSONDecoder().decode<Recipients>(R"({"senderOnly":{}})"), Recipients::senderOnly);
    EXPECT_EQ(JSONDecoder().decode<Recipients>(R"({"nobody":{}})").error().message(),
              R"(expected one of the keys "senderOnly", "everyone", found another)");
    EXPECT_EQ(JSONDecoder().decode<Recipients>(R"({"everyone":{},"senderOnly":{}})").error().message(),
              "Invalid number of keys found, expected one.");
}

TEST(JSONCases, AnEnumerationOfTextsIsWrittenAndReadAsText) {
    EXPECT_EQ(JSONEncoder().encode(std::vector{Status::new_, Status::inProgress}),
              R"(["NEW","IN_PROGRESS"])");
    EXPECT_EQ(JSONDecoder().decode<Status>(R"("IN_PROGRESS")"), Status::inProgress);
    EXPECT_EQ(JSONDecoder().decode<Status>(R"("new")").error().message(),
              "expected the text of a known case, found another value");
    EXPECT_EQ(JSONDecoder().decode<Status>("0").error().message(), "expected a string, found a number");
}

} // namespace
} // namespace zelto
