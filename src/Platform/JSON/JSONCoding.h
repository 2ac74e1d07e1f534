#pragma once

#include <Platform/JSON/JSONDecoder.h>
#include <Platform/JSON/JSONEncoder.h>

#include <type_traits>

// The types that have JSON: bool, the integers, double, std::string, Date, JSONValue, enumerations with
// ZELTO_ENUM (as their numbers), and std::optional, std::vector and maps from std::string of these and of
// types with ZELTO_JSON_CODED.
//
// ZELTO_JSON_CODED(T); after a type in its header gives it JSON. Its source defines the coding: usually by
// ZELTO_JSON_RECORD of <Platform/JSON/JSONRecordDescription.h>, else by functions of its own. encodeJSON
// writes one value; decodeJSON fills a fresh T{}; a type that cannot be made without arguments has
// makeFromJSON in place of decodeJSON. Only functions that are used need a definition.
#define ZELTO_JSON_CODED(T)                                                                                  \
    void encodeJSON(::zelto::JSONWriter& writer, const T& value);                                            \
    void decodeJSON(const ::zelto::JSONReader& reader, T& value);                                            \
    T makeFromJSON(const ::zelto::JSONReader& reader, std::type_identity<T>)
