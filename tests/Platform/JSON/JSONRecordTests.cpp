#include <Platform/EnumDescription.h>
#include <Platform/JSON/JSONRecordDescription.h>
#include <Platform/JSON/JSONValue.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

enum class Colour { red = 3, darkBlue = 7 };
ZELTO_ENUM(Colour);
ZELTO_DESCRIBE_ENUM(Colour, red, darkBlue);

enum class Direction { incoming, outgoing };
ZELTO_JSON_CODED(Direction);

void encodeJSON(JSONWriter& writer, const Direction& value) {
    writer.string(value == Direction::incoming ? "INCOMING" : "OUTGOING");
}

void decodeJSON(const JSONReader& reader, Direction& value) {
    const auto text = reader.string();
    if (text != "INCOMING" && text != "OUTGOING") {
        reader.failValue("a direction");
    }
    value = text == "INCOMING" ? Direction::incoming : Direction::outgoing;
}

struct Card {
    std::string name;
    std::optional<std::int64_t> position;

    bool operator==(const Card&) const = default;
};

ZELTO_JSON_CODED(Card);
ZELTO_JSON_RECORD(Card, name, position);

struct Board {
    std::string id;
    std::optional<std::string> name;
    bool public_ = false;
    double weight = 0;
    Colour colour = Colour::red;
    std::vector<Card> cards;
    std::map<std::string, int> counts;

    bool operator==(const Board&) const = default;
};

ZELTO_JSON_CODED(Board);
ZELTO_JSON_RECORD(Board, id, name, public_, weight, colour, cards, counts);

struct Token {
    std::string accessToken;
    std::optional<std::string> refreshToken;
    double expiresIn = 0;
    std::vector<int> scopes = {1};
    std::string secret;

    bool operator==(const Token&) const = default;
};

ZELTO_JSON_CODED(Token);
ZELTO_JSON_RECORD(Token, (accessToken, "access_token"), (refreshToken, "refresh_token"),
                  (expiresIn, "expires_in", defaulted), (scopes, defaulted));

struct Empty {
    bool operator==(const Empty&) const = default;
};

ZELTO_JSON_CODED(Empty);
ZELTO_JSON_RECORD(Empty);

struct Tree {
    std::vector<Tree> children;
};

ZELTO_JSON_CODED(Tree);
ZELTO_JSON_RECORD(Tree, children);

class Ticket {
  public:
    explicit Ticket(int number) : number_(number) {}

    int number() const { return number_; }

    bool operator==(const Ticket&) const = default;

  private:
    int number_;
};

ZELTO_JSON_CODED(Ticket);

void encodeJSON(JSONWriter& writer, const Ticket& value) {
    writer.integer(value.number());
}

Ticket makeFromJSON(const JSONReader& reader, std::type_identity<Ticket>) {
    return Ticket(reader.as<int>());
}

struct RefusedNumber {
    int number;
};

struct Picky {
    int number = 0;
};

ZELTO_JSON_CODED(Picky);

void decodeJSON(const JSONReader& reader, Picky& value) {
    value.number = reader.required<int>("number");
    if (value.number < 0) {
        throw RefusedNumber{value.number};
    }
}

} // namespace zelto

namespace outer {

struct Wrapped {
    struct Inner {
        int value = 0;

        bool operator==(const Inner&) const = default;
    };

    Inner inner;
    std::optional<zelto::JSONValue> data;

    bool operator==(const Wrapped&) const = default;
};

ZELTO_JSON_CODED(Wrapped::Inner);
ZELTO_JSON_CODED(Wrapped);
ZELTO_JSON_RECORD(Wrapped::Inner, value);
ZELTO_JSON_RECORD(Wrapped, inner, data);

} // namespace outer

namespace zelto {
namespace {

template <class T> std::string encoded(const T& value) {
    return JSONEncoder().encode(value).value();
}

template <class T> T decoded(std::string_view text) {
    return JSONDecoder().decode<T>(text).value();
}

template <class T> std::string faultOf(std::string_view text) {
    const auto value = JSONDecoder().decode<T>(text);
    return value ? "decodes" : value.error().message();
}

Board sampleBoard() {
    return {.id = "b1",
            .name = "Plan",
            .public_ = true,
            .weight = 2.5,
            .colour = Colour::darkBlue,
            .cards = {{"one", 1}, {"two", std::nullopt}},
            .counts = {{"a", 1}, {"b", -2}}};
}

TEST(JSONRecord, KeysAreWrittenInTheOrderOfTheDescription) {
    EXPECT_EQ(encoded(sampleBoard()),
              R"({"id":"b1","name":"Plan","public":true,"weight":2.5,"colour":7,)"
              R"("cards":[{"name":"one","position":1},{"name":"two"}],"counts":{"a":1,"b":-2}})");
}

TEST(JSONRecord, WhatIsWrittenReadsBackAsTheSame) {
    EXPECT_EQ(decoded<Board>(encoded(sampleBoard())), sampleBoard());
}

TEST(JSONRecord, AbsentOptionalsAreLeftOutAlsoAtTheBeginning) {
    EXPECT_EQ(encoded(Card{.name = "x"}), R"({"name":"x"})");
    EXPECT_EQ(encoded(outer::Wrapped{}), R"({"inner":{"value":0}})");
}

TEST(JSONRecord, UnknownKeysAreIgnored) {
    EXPECT_EQ(decoded<Card>(R"({"x":[{"name":1}],"name":"n","y":{"position":"z"},"position":4,"":null})"),
              (Card{"n", 4}));
}

TEST(JSONRecord, KeysMayComeInAnyOrder) {
    EXPECT_EQ(decoded<Board>(R"({"counts":{},"cards":[],"colour":3,"weight":1,"public":false,"id":"i"})"),
              (Board{.id = "i", .weight = 1}));
}

TEST(JSONRecord, ANullReadsAsAbsentForAnOptional) {
    EXPECT_EQ(decoded<Card>(R"({"name":"n","position":null})"), (Card{"n", std::nullopt}));
}

TEST(JSONRecord, ANullForARequiredFieldIsAnError) {
    EXPECT_EQ(faultOf<Card>(R"({"name":null})"), "name: expected a string, found null");
}

TEST(JSONRecord, AMissingRequiredFieldIsNamedWithItsPath) {
    EXPECT_EQ(
        faultOf<std::vector<Board>>(
            R"([{"id":"1","public":true,"weight":1,"colour":3,"counts":{},"cards":[{"name":"a"},{}]}])"),
        "[0].cards[1].name: the required key is missing");
    EXPECT_EQ(faultOf<Card>("{}"), "name: the required key is missing");
}

TEST(JSONRecord, AFieldWithADefaultIsStillRequired) {
    EXPECT_EQ(faultOf<Board>(R"({"id":"1","weight":1,"colour":3,"counts":{},"cards":[]})"),
              "public: the required key is missing");
}

TEST(JSONRecord, AFieldDescribedAsDefaultedMayBeMissingOrNull) {
    EXPECT_EQ(decoded<Token>(R"({"access_token":"t"})"), (Token{.accessToken = "t"}));
    EXPECT_EQ(decoded<Token>(R"({"access_token":"t","expires_in":null,"scopes":null})"),
              (Token{.accessToken = "t"}));
    EXPECT_EQ(decoded<Token>(R"({"access_token":"t","expires_in":3600,"scopes":[]})"),
              (Token{.accessToken = "t", .expiresIn = 3600, .scopes = {}}));
    EXPECT_EQ(faultOf<Token>(R"({"access_token":"t","expires_in":"soon"})"),
              "expires_in: expected a number, found a string");
}

TEST(JSONRecord, AKeyOfItsOwnAndAFieldThatIsNotNamed) {
    const Token token{.accessToken = "a", .refreshToken = "r", .expiresIn = 3600, .secret = "s"};
    EXPECT_EQ(encoded(token), R"({"access_token":"a","refresh_token":"r","expires_in":3600,"scopes":[1]})");
    EXPECT_EQ(decoded<Token>(R"({"access_token":"a","accessToken":"b","secret":"s"})").secret, "");
}

TEST(JSONRecord, OfADuplicateKeyTheLastValueCountsWhole) {
    EXPECT_EQ(decoded<Card>(R"({"name":"a","position":1,"name":"b","position":null})"),
              (Card{"b", std::nullopt}));
    EXPECT_EQ(decoded<Card>(R"({"name":7,"name":"b"})"), (Card{"b", std::nullopt}));
}

TEST(JSONRecord, ARecordWithoutFieldsIsAnObject) {
    EXPECT_EQ(encoded(Empty{}), "{}");
    EXPECT_EQ(decoded<Empty>(R"({"any":1})"), Empty{});
    EXPECT_EQ(faultOf<Empty>("[]"), "expected an object, found an array");
}

TEST(JSONRecord, EnumerationsAreTheirNumbers) {
    EXPECT_EQ(encoded(Colour::darkBlue), "7");
    EXPECT_EQ(decoded<Colour>("7.0"), Colour::darkBlue);
    EXPECT_EQ(faultOf<std::vector<Colour>>("[3,4]"),
              "[1]: expected the number of a known case, found another value");
    EXPECT_EQ(faultOf<Colour>("\"red\""), "expected a whole number, found a string");
}

TEST(JSONRecord, AnEnumerationWithCodingOfItsOwnUsesIt) {
    EXPECT_EQ(encoded(std::vector{Direction::outgoing}), R"(["OUTGOING"])");
    EXPECT_EQ(decoded<Direction>(R"("INCOMING")"), Direction::incoming);
    EXPECT_EQ(faultOf<Direction>(R"("UP")"), "expected a direction, found another value");
}

TEST(JSONRecord, TypesOfOtherNamespacesAndNestedOnesAreCoded) {
    const outer::Wrapped wrapped{.inner = {5}, .data = JSONValue(JSONObject{{"k", 1}})};
    EXPECT_EQ(encoded(wrapped), R"({"inner":{"value":5},"data":{"k":1}})");
    EXPECT_EQ(decoded<outer::Wrapped>(encoded(wrapped)), wrapped);
}

TEST(JSONRecord, ATypeWithoutADefaultIsMadeFromJSON) {
    EXPECT_EQ(decoded<Ticket>("12").number(), 12);
    EXPECT_EQ(decoded<std::vector<Ticket>>("[1,2]"), (std::vector{Ticket(1), Ticket(2)}));
    EXPECT_EQ(decoded<std::optional<Ticket>>("null"), std::nullopt);
    EXPECT_EQ((decoded<std::map<std::string, Ticket>>(R"({"a":3})").at("a")), Ticket(3));
    EXPECT_EQ(encoded(std::vector{Ticket(1)}), "[1]");
}

TEST(JSONRecord, AnErrorOfATypesOwnPassesTheDecoder) {
    EXPECT_THROW(static_cast<void>(JSONDecoder().decode<Picky>(R"({"number":-1})")), RefusedNumber);
}

TEST(JSONRecord, ErrorsNeverShowAValue) {
    for (const auto* text :
         {R"({"access_token":["hunter2"]})", R"({"access_token":"a","expires_in":"hunter2"})",
          R"({"access_token":"a","scopes":["hunter2"]})", R"({"access_token":"hunter2)"}) {
        const auto fault = faultOf<Token>(text);
        EXPECT_NE(fault, "decodes");
        EXPECT_EQ(fault.find("hunter2"), std::string::npos) << fault;
    }
}

TEST(JSONRecord, ARecordThatHoldsItselfIsReadToTheDepthLimit) {
    std::string text;
    for (int level = 0; level < jsonDepthLimit / 2 - 1; ++level) {
        text += R"({"children":[)";
    }
    const auto closing = [&] {
        std::string all = R"({"children":[]})";
        for (int level = 0; level < jsonDepthLimit / 2 - 1; ++level) {
            all += "]}";
        }
        return all;
    }();
    EXPECT_EQ(encoded(decoded<Tree>(text + closing)), text + closing);
}

} // namespace
} // namespace zelto
