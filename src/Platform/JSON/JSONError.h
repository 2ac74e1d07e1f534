#pragma once

#include <cstddef>
#include <string>

namespace zelto {

// Maximum nesting of arrays and objects, for reading and writing; deeper is an error.
inline constexpr int jsonDepthLimit = 512;

// Why a value has no JSON. The path leads to it from the top level ("boards[3].name"; empty for the top level
// itself).
struct EncodingError {
    enum class Reason { invalidUTF8, nonFiniteNumber, tooDeep, dateOutOfRange };

    Reason reason{};
    std::string path;

    // A sentence for people and logs.
    std::string message() const;

    bool operator==(const EncodingError&) const = default;
};

// Why a text is not JSON, or not the JSON of the requested type. Neither the path nor the text contains a
// field's value, which may be a secret.
struct DecodingError {
    // A type's own coding raises `custom` for its own rules.
    enum class Reason { syntax, missingKey, mismatch, custom };

    Reason reason{};
    std::string path;       // "boards[3].name"; empty for the top level, and for syntax errors
    std::string text;       // "expected a string, found a number"
    std::size_t offset = 0; // of a syntax error: the number of bytes before it

    // A sentence for people and logs.
    std::string message() const;

    bool operator==(const DecodingError&) const = default;
};

} // namespace zelto
