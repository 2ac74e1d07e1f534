#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <string>

namespace notion {

// The service's identifier of an object; one of a page cannot be taken for one of a database. A text in JSON.
template <class Entity> struct EntityIdentifier {
    std::string rawValue;

    bool operator==(const EntityIdentifier&) const = default;
};

template <class Entity> void encodeJSON(zelto::JSONWriter& writer, const EntityIdentifier<Entity>& value) {
    writer.string(value.rawValue);
}

template <class Entity> void decodeJSON(const zelto::JSONReader& reader, EntityIdentifier<Entity>& value) {
    value.rawValue = reader.string();
}

} // namespace notion
