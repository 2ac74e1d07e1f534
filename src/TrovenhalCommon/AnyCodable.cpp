#include <TrovenhalCommon/AnyCodable.h>

#include <TrovenhalCommon/SkippableAssert.h>

#include <map>
#include <mutex>

namespace zelto {

namespace {

constexpr std::string_view typeKey = "$type";
constexpr std::string_view valueKey = "$value";

struct RegisteredType {
    std::type_index type;
    void (*check)(const JSONReader& reader);
};

struct Registry {
    std::mutex lock;
    std::map<std::string, RegisteredType, std::less<>> byName;
    std::map<std::type_index, std::string> nameByType;
};

Registry& registry() {
    static auto& types = *new Registry;
    return types;
}

// The name of a wrapped value; empty for a wrapped plain value.
std::optional<std::string> wrappedName(const JSONReader& reader) {
    if (reader.kind() != JSONKind::object || reader.count() != 2 || !reader.find(valueKey)) {
        return std::nullopt;
    }
    const auto type = reader.find(typeKey);
    return type && type->kind() == JSONKind::string ? std::optional<std::string>(type->string())
                                                    : std::nullopt;
}

void write(JSONWriter& writer, std::string_view name, const JSONValue& value) {
    writer.beginObject();
    writer.field(typeKey, std::string(name));
    writer.field(valueKey, value);
    writer.endObject();
}

} // namespace

Result<JSONValue, EncodingError> AnyCodable::json(DateStrategy strategy) const {
    return json_ ? json_(strategy) : JSONValue();
}

void AnyCodable::registerType(std::string name, std::type_index type, Check check) {
    auto& types = registry();
    const std::lock_guard guard(types.lock);
    const auto added = types.byName.try_emplace(name, RegisteredType{type, check});
    const bool isFree = added.second || added.first->second.type == type;
    if (skippableAssert(isFree && !name.empty(), "AnyCodable: the name '" + name + "' is taken")) {
        types.nameByType.insert_or_assign(type, std::move(name));
    }
}

std::optional<std::string> AnyCodable::registeredName(std::type_index type) {
    auto& types = registry();
    const std::lock_guard guard(types.lock);
    const auto found = types.nameByType.find(type);
    return found == types.nameByType.end() ? std::nullopt : std::optional<std::string>(found->second);
}

void encodeJSON(JSONWriter& writer, const AnyCodable& value) {
    const auto json = value.json(writer.dateStrategy());
    if (!json) {
        throw json.error();
    }
    if (value.typeName_) {
        write(writer, *value.typeName_, *json);
    } else if (json->find(typeKey)) {
        write(writer, "", *json);
    } else {
        writer.write(*json);
    }
}

void decodeJSON(const JSONReader& reader, AnyCodable& value) {
    value = AnyCodable();
    auto content = reader;
    if (auto name = wrappedName(reader)) {
        content = *reader.find(valueKey);
        if (!name->empty()) {
            auto& types = registry();
            std::unique_lock guard(types.lock);
            const auto known = types.byName.find(*name);
            const auto check = known == types.byName.end() ? nullptr : known->second.check;
            guard.unlock();
            if (check) {
                check(content);
            }
            value.typeName_ = std::move(*name);
        }
    }
    value.strategy_ = reader.dateStrategy();
    value.json_ = [json = content.as<JSONValue>()](DateStrategy) { return json; };
}

} // namespace zelto
