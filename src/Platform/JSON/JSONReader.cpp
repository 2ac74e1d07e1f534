#include <Platform/JSON/JSONReader.h>

#include <Platform/ISO8601.h>

#include <algorithm>
#include <cmath>

namespace zelto {

namespace {

constexpr double twoTo63 = 9223372036854775808.0;
constexpr double twoTo64 = 18446744073709551616.0;

bool isWhole(double value) {
    return std::trunc(value) == value;
}

std::string rangeText(const std::string& lowest, const std::string& highest) {
    return "expected a whole number from " + lowest + " to " + highest + ", found a number out of range";
}

} // namespace

std::int64_t JSONReader::signedInteger(std::int64_t lowest, std::int64_t highest) const {
    std::optional<std::int64_t> value;
    if (kind() == JSONKind::int64) [[likely]] {
        value = node_->int64;
    } else if (kind() == JSONKind::real && isWhole(node_->real)) {
        if (node_->real >= -twoTo63 && node_->real < twoTo63) {
            value = static_cast<std::int64_t>(node_->real);
        }
    } else if (kind() != JSONKind::uint64) {
        failMismatch("a whole number");
    }
    if (!value || *value < lowest || *value > highest) [[unlikely]] {
        fail(rangeText(std::to_string(lowest), std::to_string(highest)));
    }
    return *value;
}

std::uint64_t JSONReader::unsignedInteger(std::uint64_t highest) const {
    std::optional<std::uint64_t> value;
    if (kind() == JSONKind::int64) [[likely]] {
        if (node_->int64 >= 0) {
            value = static_cast<std::uint64_t>(node_->int64);
        }
    } else if (kind() == JSONKind::uint64) {
        value = node_->uint64;
    } else if (kind() == JSONKind::real && isWhole(node_->real)) {
        if (node_->real >= 0 && node_->real < twoTo64) {
            value = static_cast<std::uint64_t>(node_->real);
        }
    } else {
        failMismatch("a whole number");
    }
    if (!value || *value > highest) [[unlikely]] {
        fail(rangeText("0", std::to_string(highest)));
    }
    return *value;
}

double JSONReader::number() const {
    switch (kind()) {
    case JSONKind::int64:
        return static_cast<double>(node_->int64);
    case JSONKind::uint64:
        return static_cast<double>(node_->uint64);
    case JSONKind::real:
        return node_->real;
    case JSONKind::null:
    case JSONKind::boolean:
    case JSONKind::string:
    case JSONKind::array:
    case JSONKind::object:
        break;
    }
    failMismatch("a number");
}

Date JSONReader::date() const {
    switch (dateStrategy_) {
    case DateStrategy::default_:
        return Date::fromReferenceSeconds(number());
    case DateStrategy::iso8601:
        break;
    }
    const auto date = parseISO8601(string());
    if (!date) {
        failValue("an ISO 8601 date");
    }
    return *date;
}

std::optional<JSONReader> JSONReader::find(std::string_view key) const {
    std::optional<JSONReader> found;
    for (const auto& [name, value] : members()) {
        if (name == key) {
            found = value;
        }
    }
    return found;
}

void JSONReader::locate(std::span<const std::string_view> keys, const JSONNode** found) const {
    expect(JSONKind::object, "an object");
    std::fill_n(found, keys.size(), nullptr);
    const auto* end = node_->next();
    // Keys mostly come in described order, so the search goes on from the one found last.
    std::size_t expected = 0;
    for (const auto* key = node_ + 1; key != end; key = (key + 1)->next()) {
        const auto name = key->text();
        for (std::size_t tried = 0; tried < keys.size(); ++tried, ++expected) {
            if (expected >= keys.size()) {
                expected = 0;
            }
            if (keys[expected] == name) {
                found[expected++] = key + 1;
                break;
            }
        }
    }
}

void JSONReader::fail(std::string text) const {
    throw DecodingError{DecodingError::Reason::custom, tape_->pathOf(node_), std::move(text)};
}

void JSONReader::failMismatch(std::string_view expected) const {
    throw DecodingError{DecodingError::Reason::mismatch, tape_->pathOf(node_),
                        "expected " + std::string(expected) + ", found " + std::string(nameOf(kind()))};
}

void JSONReader::failValue(std::string_view expected) const {
    throw DecodingError{DecodingError::Reason::mismatch, tape_->pathOf(node_),
                        "expected " + std::string(expected) + ", found another value"};
}

void JSONReader::failMissing(std::string_view key) const {
    auto path = tape_->pathOf(node_);
    appendKeyToPath(path, key);
    throw DecodingError{DecodingError::Reason::missingKey, std::move(path), "the required key is missing"};
}

} // namespace zelto
