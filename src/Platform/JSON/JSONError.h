#pragma once

#include <cstddef>
#include <string>

namespace zelto {

// Nesting of arrays and objects that is read and written; deeper is an error.
inline constexpr int jsonDepthLimit = 512;

// Why a value has no JSON. The path leads to it from the top ("boards[3].name"; empty for the top itself).
struct EncodingError {
    enum class Reason { invalidUTF8, nonFiniteNumber, tooDeep, dateOutOfRange };

    Reason reason{};
    std::string path;

    // A sentence for people and logs.
    std::string message() const;

    bool operator==(const EncodingError&) const = default;
};

// Why a text is no JSON, or not the JSON of the type that was asked for. Neither the path nor the text holds
// the value of a field, which may be a secret.
struct DecodingError {
    // A custom one is raised by a type's own coding for a rule of its own.
    enum class Reason { syntax, missingKey, mismatch, custom };

    Reason reason{};
    std::string path;       // "boards[3].name"; empty for the top, and for syntax
    std::string text;       // "expected a string, found a number"
    std::size_t offset = 0; // of syntax: the bytes before the fault

    // A sentence for people and logs.
    std::string message() const;

    bool operator==(const DecodingError&) const = default;
};

} // namespace zelto
