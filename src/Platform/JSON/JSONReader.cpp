#include <Platform/JSON/JSONReader.h>

#include <Platform/ISO8601.h>

#include <algorithm>
#include <cmath>

namespace zelto {

namespace {

// Larger doubles may have been rounded from another whole number.
constexpr double maximumExact = 9007199254740992.0;

std::string rangeText(const std::string& lowest, const std::string& highest) {
    return "expected a whole number from " + lowest + " to " + highest + ", found a number out of range";
}

} // namespace

// `nullopt` for a number beyond the range of double.
std::optional<double> JSONReader::real() const {
    return node_->size > 0 ? nearestDouble(node_->text()) : std::optional(node_->real);
}

// The value of a number that fits in an int64; `nullopt` if it is smaller or larger.
std::optional<std::int64_t> JSONReader::wholeNumber() const {
    switch (kind()) {
    case JSONKind::int64:
        return node_->int64;
    case JSONKind::uint64:
        return std::nullopt;
    case JSONKind::real: {
        const auto value = real();
        if (!value || std::abs(*value) > maximumExact) {
            return std::nullopt;
        }
        if (std::trunc(*value) == *value) {
            return static_cast<std::int64_t>(*value);
        }
        break;
    }
    case JSONKind::null:
    case JSONKind::boolean:
    case JSONKind::string:
    case JSONKind::array:
    case JSONKind::object:
        break;
    }
    failMismatch("a whole number");
}

std::int64_t JSONReader::signedInteger(std::int64_t lowest, std::int64_t highest) const {
    const auto value = wholeNumber();
    if (!value || *value < lowest || *value > highest) [[unlikely]] {
        fail(rangeText(std::to_string(lowest), std::to_string(highest)));
    }
    return *value;
}

std::uint64_t JSONReader::unsignedInteger(std::uint64_t highest) const {
    if (kind() == JSONKind::uint64 && node_->uint64 <= highest) {
        return node_->uint64;
    }
    const auto value = wholeNumber();
    if (!value || *value < 0 || static_cast<std::uint64_t>(*value) > highest) [[unlikely]] {
        fail(rangeText("0", std::to_string(highest)));
    }
    return static_cast<std::uint64_t>(*value);
}

double JSONReader::number() const {
    switch (kind()) {
    case JSONKind::int64:
        return static_cast<double>(node_->int64);
    case JSONKind::uint64:
        return static_cast<double>(node_->uint64);
    case JSONKind::real: {
        const auto value = real();
        if (!value) {
            fail("the number is too large");
        }
        return *value;
    }
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
    // Keys mostly come in described order, so the search continues after the one found last.
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
