#pragma once

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONValue.h>

#include <functional>
#include <optional>
#include <string>
#include <typeindex>
#include <utility>

namespace zelto {

// Any value that has JSON, under one type. A value type; registering is safe on any thread.
//
// In JSON a value of a registered type is {"$type":"<name>","$value":<its JSON>}; every other value is its
// own JSON, so that a map of strings is a plain object. The one plain value that could be mistaken, an object
// with a key "$type", is wrapped under the empty name. What is read back from either form is the value
// without the wrapping. An object of a registered type's name whose value is none of that type does not
// decode; one of a name that nobody registered is kept as it is and written so again.
class AnyCodable {
  public:
    // null
    AnyCodable() = default;

    template <class T>

    requires(!std::same_as<T, AnyCodable>) explicit AnyCodable(T value)
        : typeName_(registeredName(typeid(T))),
          json_([held = std::move(value)](DateStrategy strategy) { return JSONValue::of(held, strategy); }) {}

    // The JSON of T goes under `name` from now on. Once for each type; a name that another type has already
    // is a programming error: it is logged, and the first type keeps it.
    template <class T> static void RegisterType(std::string name) {
        registerType(std::move(name), typeid(T), [](const JSONReader& reader) { (void)reader.as<T>(); });
    }

    // The name of the value's type, where that is a registered one.
    const std::optional<std::string>& typeName() const { return typeName_; }

    // The value's JSON, unwrapped.
    Result<JSONValue, EncodingError> json(DateStrategy strategy = DateStrategy::default_) const;

    // The value as T; nothing if its JSON is none of a T, or belongs to another registered type.
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
    std::function<Result<JSONValue, EncodingError>(DateStrategy)> json_; // empty: null
    DateStrategy strategy_ = DateStrategy::default_;                     // of what was read
};

ZELTO_JSON_CODED(AnyCodable);

} // namespace zelto
