#include <Platform/JSON/JSONValue.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>

namespace zelto {

namespace {

constexpr std::size_t fewMembers = 16;

template <class Number> bool equals(double real, Number integer) {
    // Every double that is rounded to a 64-bit integer is checked by converting back, where that is defined.
    constexpr double beyond = static_cast<double>(std::numeric_limits<Number>::max() / 2 + 1) * 2;
    const auto rounded = static_cast<double>(integer);
    return real == rounded && rounded < beyond && static_cast<Number>(rounded) == integer;
}

std::vector<const JSONObject::Member*> sorted(const JSONObject& object) {
    std::vector<const JSONObject::Member*> members;
    members.reserve(object.size());
    for (const auto& each : object) {
        members.push_back(&each);
    }
    std::ranges::sort(members, {},
                      [](const JSONObject::Member* each) -> const std::string& { return each->first; });
    return members;
}

using Members = std::vector<JSONObject::Member>;

// Small objects are searched for each key; large ones use an ordered index of their keys, since a hash could
// be attacked with colliding keys.
void readMembers(const JSONReader& reader, Members& members) {
    members.reserve(reader.count());
    std::map<std::string_view, std::size_t> places;
    const bool isLarge = reader.count() > fewMembers;
    for (const auto& [key, value] : reader.members()) {
        auto place = members.size();
        if (isLarge) {
            place = places.try_emplace(key, place).first->second;
        } else {
            place = static_cast<std::size_t>(std::ranges::find(members, key, &JSONObject::Member::first) -
                                             members.begin());
        }
        if (place == members.size()) {
            members.emplace_back(std::piecewise_construct, std::forward_as_tuple(key), std::tuple<>());
        }
        decodeJSON(value, members[place].second);
    }
}

} // namespace

JSONObject::JSONObject() = default;
JSONObject::JSONObject(const JSONObject& other) = default;
JSONObject::JSONObject(JSONObject&& other) noexcept = default;
JSONObject& JSONObject::operator=(const JSONObject& other) = default;
JSONObject& JSONObject::operator=(JSONObject&& other) noexcept = default;
JSONObject::~JSONObject() = default;

JSONObject::JSONObject(std::initializer_list<Member> members) {
    for (const auto& [key, value] : members) {
        set(key, value);
    }
}

std::size_t JSONObject::size() const {
    return members_.size();
}

bool JSONObject::empty() const {
    return members_.empty();
}

const JSONValue* JSONObject::find(std::string_view key) const {
    const auto found = std::ranges::find(members_, key, &Member::first);
    return found == members_.end() ? nullptr : &found->second;
}

JSONValue* JSONObject::find(std::string_view key) {
    return const_cast<JSONValue*>(std::as_const(*this).find(key));
}

JSONValue& JSONObject::set(std::string_view key, JSONValue value) {
    if (auto* found = find(key)) {
        return *found = std::move(value);
    }
    return members_.emplace_back(key, std::move(value)).second;
}

bool JSONObject::erase(std::string_view key) {
    return std::erase_if(members_, [&](const Member& each) { return each.first == key; }) > 0;
}

const JSONObject::Member* JSONObject::begin() const {
    return members_.data();
}

const JSONObject::Member* JSONObject::end() const {
    return members_.data() + members_.size();
}

bool JSONObject::operator==(const JSONObject& other) const {
    if (size() != other.size()) {
        return false;
    }
    const auto sameKey = [](const Member& one, const Member& two) { return one.first == two.first; };
    if (std::ranges::equal(members_, other.members_, sameKey)) {
        return members_ == other.members_;
    }
    return std::ranges::equal(sorted(*this), sorted(other),
                              [](const Member* one, const Member* two) { return *one == *two; });
}

Result<JSONValue, DecodingError> JSONValue::parse(std::string_view text) {
    return JSONDecoder().decode<JSONValue>(text);
}

Result<std::string, EncodingError> JSONValue::text(int indent) const {
    return JSONEncoder{.indent = indent}.encode(*this);
}

std::optional<bool> JSONValue::asBool() const {
    const auto* value = std::get_if<bool>(&value_);
    return value ? std::optional(*value) : std::nullopt;
}

std::optional<std::int64_t> JSONValue::asInt64() const {
    if (const auto* integer = std::get_if<std::int64_t>(&value_)) {
        return *integer;
    }
    const auto real = asReal();
    if (real && *real >= -9223372036854775808.0 && *real < 9223372036854775808.0 &&
        std::trunc(*real) == *real) {
        return static_cast<std::int64_t>(*real);
    }
    return std::nullopt;
}

std::optional<std::uint64_t> JSONValue::asUInt64() const {
    if (const auto* integer = std::get_if<std::uint64_t>(&value_)) {
        return *integer;
    }
    if (const auto real = asReal();
        real && *real >= 0 && *real < 18446744073709551616.0 && std::trunc(*real) == *real) {
        return static_cast<std::uint64_t>(*real);
    }
    const auto integer = asInt64();
    return integer && *integer >= 0 ? std::optional(static_cast<std::uint64_t>(*integer)) : std::nullopt;
}

// Only for the kind `real`.
std::optional<double> JSONValue::asReal() const {
    if (const auto* written = writtenNumber()) {
        return nearestDouble(*written);
    }
    const auto* real = std::get_if<double>(&value_);
    return real ? std::optional(*real) : std::nullopt;
}

std::optional<double> JSONValue::asDouble() const {
    if (kind() == JSONKind::real) {
        return asReal();
    }
    if (const auto* integer = std::get_if<std::int64_t>(&value_)) {
        return static_cast<double>(*integer);
    }
    if (const auto* integer = std::get_if<std::uint64_t>(&value_)) {
        return static_cast<double>(*integer);
    }
    return std::nullopt;
}

const JSONValue* JSONValue::find(std::string_view key) const {
    const auto* object = asObject();
    return object ? object->find(key) : nullptr;
}

JSONValue& JSONValue::set(std::string_view key, JSONValue value) {
    if (!asObject()) {
        value_ = JSONObject();
    }
    return asObject()->set(key, std::move(value));
}

bool JSONValue::operator==(const JSONValue& other) const {
    if (value_.index() == other.value_.index() && (!isWritten() || value_ == other.value_)) {
        return value_ == other.value_;
    }
    if (other.kind() == JSONKind::real && kind() != JSONKind::real) {
        return other == *this;
    }
    if (const auto real = asReal()) {
        if (other.kind() == JSONKind::real) {
            return real == other.asReal();
        }
        if (const auto* integer = std::get_if<std::int64_t>(&other.value_)) {
            return equals(*real, *integer);
        }
        if (const auto* integer = std::get_if<std::uint64_t>(&other.value_)) {
            return equals(*real, *integer);
        }
    }
    return false;
}

void encodeJSON(JSONWriter& writer, const JSONValue& value) {
    switch (value.kind()) {
    case JSONKind::null:
        return writer.null();
    case JSONKind::boolean:
        return writer.boolean(*value.asBool());
    case JSONKind::int64:
        return writer.integer(*value.asInt64());
    case JSONKind::uint64:
        return writer.integer(*value.asUInt64());
    case JSONKind::real:
        if (const auto* written = value.writtenNumber()) {
            return writer.number(std::string_view(*written));
        }
        return writer.number(*value.asDouble());
    case JSONKind::string:
        return writer.string(*value.asString());
    case JSONKind::array:
        return writer.write(*value.asArray());
    case JSONKind::object:
        writer.beginObject();
        for (const auto& [key, each] : *value.asObject()) {
            writer.key(key);
            encodeJSON(writer, each);
        }
        return writer.endObject();
    }
}

void decodeJSON(const JSONReader& reader, JSONValue& value) {
    switch (reader.kind()) {
    case JSONKind::null:
        value = nullptr;
        return;
    case JSONKind::boolean:
        value = reader.boolean();
        return;
    case JSONKind::int64:
        value = reader.as<std::int64_t>();
        return;
    case JSONKind::uint64:
        value = reader.as<std::uint64_t>();
        return;
    case JSONKind::real:
        if (const auto written = reader.numberText(); !written.empty()) {
            value.value_.emplace<JSONValue::WrittenNumber>(std::string(written));
        } else {
            value = reader.number();
        }
        return;
    case JSONKind::string:
        value.value_.emplace<std::string>(reader.string());
        return;
    case JSONKind::array:
        reader.read(value.value_.emplace<JSONValue::Array>());
        return;
    case JSONKind::object:
        readMembers(reader, value.value_.emplace<JSONObject>().members_);
        return;
    }
}

} // namespace zelto
