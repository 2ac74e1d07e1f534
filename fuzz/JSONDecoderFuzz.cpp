// Bytes are decoded as a JSONValue and as a record; what decodes must encode, and decode again to the same
// value.

#include "Require.h"

#include <Platform/JSON/JSONCases.h>
#include <Platform/JSON/JSONRecordDescription.h>
#include <Platform/JSON/JSONValue.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace zelto {

struct FuzzLeft {
    std::uint8_t small = 0;

    bool operator==(const FuzzLeft&) const = default;
};

struct FuzzNothing {
    bool operator==(const FuzzNothing&) const = default;
};

struct FuzzChoice {
    std::variant<FuzzNothing, FuzzLeft> value;

    bool operator==(const FuzzChoice&) const = default;
};

struct FuzzRecord {
    std::optional<std::string> text;
    std::optional<std::int64_t> number;
    std::uint64_t count = 0;
    double real = 0;
    bool flag = false;
    Date date;
    std::vector<FuzzRecord> children;
    std::map<std::string, std::optional<int>> map;
    std::optional<JSONValue> any;
    std::optional<FuzzChoice> choice;

    bool operator==(const FuzzRecord&) const = default;
};

ZELTO_JSON_CODED(FuzzLeft);
ZELTO_JSON_CODED(FuzzChoice);
ZELTO_JSON_CODED(FuzzRecord);
ZELTO_JSON_RECORD(FuzzLeft, small);
ZELTO_JSON_CASES(FuzzChoice, value, "nothing", "left");
ZELTO_JSON_RECORD(FuzzRecord, text, number, (count, defaulted), (real, "r", defaulted), (flag, defaulted),
                  (date, defaulted), (children, defaulted), (map, defaulted), any, choice);

namespace {

template <class T> void checkRoundTrip(std::string_view text, DateStrategy dates) {
    const auto value = JSONDecoder{dates}.decode<T>(text);
    if (!value) {
        require(!value.error().message().empty() && value.error().offset <= text.size());
        return;
    }
    for (const int indent : {0, 2}) {
        const JSONEncoder encoder{.dateStrategy = dates, .indent = indent};
        const auto encoded = encoder.encode(*value);
        require(encoded.has_value());
        const auto again = JSONDecoder{dates}.decode<T>(*encoded);
        require(again.has_value());
        require(encoder.encode(*again) == encoded);
        // The ISO 8601 form has whole seconds only.
        require(dates == DateStrategy::iso8601 || *again == *value);
    }
}

} // namespace
} // namespace zelto

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    zelto::checkRoundTrip<zelto::JSONValue>(text, zelto::DateStrategy::default_);
    zelto::checkRoundTrip<zelto::FuzzRecord>(text, zelto::DateStrategy::default_);
    zelto::checkRoundTrip<zelto::FuzzRecord>(text, zelto::DateStrategy::iso8601);
    return 0;
}
