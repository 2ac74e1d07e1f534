#pragma once

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONValue.h>

#include <functional>
#include <optional>
#include <string>
#include <typeindex>
#include <utility>

namespace zelto {

// Holds any value that has JSON, under one type. A value type; registering is safe on any thread.
//
// In JSON, a value of a registered type is {"$type":"<name>","$value":<its JSON>}; every other value is its
// own JSON, so a map of strings is a plain object. The only plain value that is ambiguous, an object with a
// key "$type", is wrapped under the empty name. Reading either form gives the value without the wrapping. An
// object with a registered type's name whose value does not fit that type fails to decode; one with an
// unregistered name is kept and written back unchanged.
class AnyCodable {
  public:
    // null
    AnyCodable() = default;

    template <class T>

    requires(!std::same_as<T, AnyCodable>) explicit AnyCodable(T value)
        : typeName_(registeredName(typeid(T))),
          json_([held = std::move(value)](DateStrategy strategy) { return JSONValue::of(held, strategy); }) {}

    // From now on, T's JSON is wrapped under `name`. To be called once for each type; using a name that
    // another type has already is a programming error: it is logged, and the first type keeps the name.
    template <class T> static void RegisterType(std::string name) {
        registerType(std::move(name), typeid(T), [](const JSONReader& reader) { (void)reader.as<T>(); });
    }

    // The name of the value's type, if it is registered.
    const std::optional<std::string>& typeName() const { return typeName_; }

    // The value's JSON, unwrapped.
    Result<JSONValue, EncodingError> json(DateStrategy strategy = DateStrategy::default_) const;

    // The value as T; `nullopt` if its JSON does not fit T, or it is of another registered type.
    template <class T> std::optional<T> value() const {
        const auto name = registeredName(typeid(T));
        if (typeName_ && name && *name != *typeName_) {
            return std::nullopt;
        }
        const auto unwrapped = json(strategy_);
        if (!unwrapped) {
            return std::nullopt;
        }
        auto decoded = unwrapped->template as<T>(strategy_);
        return decoded ? std::optional<T>(std::move(*decoded)) : std::nullopt;
    }

  private:
    friend void encodeJSON(JSONWriter& writer, const AnyCodable& value);
    friend void decodeJSON(const JSONReader& reader, AnyCodable& value);

    using Check = void (*)(const JSONReader& reader);

    static void registerType(std::string name, std::type_index type, Check check);
    static std::optional<std::string> registeredName(std::type_index type);

    std::optional<std::string> typeName_;
    std::function<Result<JSONValue, EncodingError>(DateStrategy)> json_; // empty for null
    DateStrategy strategy_ = DateStrategy::default_;                     // of the JSON that was read
};

ZELTO_JSON_CODED(AnyCodable);

} // namespace zelto
