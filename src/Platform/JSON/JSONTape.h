#pragma once

#include <Platform/JSON/JSONError.h>
#include <Platform/Result.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zelto {

class JSONValue;

enum class JSONKind : std::uint8_t { null, boolean, int64, uint64, real, string, array, object };

// "an array", for error texts.
std::string_view nameOf(JSONKind kind);

// One value or key of a JSONTape.
struct JSONNode {
    union {
        bool boolean;
        std::int64_t int64;
        std::uint64_t uint64; // only above the range of int64
        double real;          // a real that was not read from a text
        const char* string;   // a string, or the text of a real
        std::uint64_t count;  // elements of an array, members of an object
    };

    std::uint32_t size; // bytes of a string or of a real's text; nodes of an array or object, itself included
    JSONKind kind;

    std::string_view text() const { return {string, size}; }

    bool isContainer() const { return kind == JSONKind::array || kind == JSONKind::object; }

    const JSONNode* next() const { return this + (isContainer() ? size : 1); }
};

// A parsed text as one flat sequence of nodes: a container is followed by its elements, and an object's
// members are a key and a value each. Strings without escapes are views of the source, which must outlive the
// tape.
class JSONTape {
  public:
    // Checks the whole text: syntax, UTF-8, escapes, depth, and that nothing follows the value. More than
    // eight million values are an error too, since they would take many times the memory of their text.
    static Result<JSONTape, DecodingError> parse(std::string_view source);

    // Decodes escapes within the source, which is overwritten, instead of in separate memory. The offset of
    // an error may be too large.
    static Result<JSONTape, DecodingError> parseInPlace(std::span<char> source);

    // The tape of an existing value, which must outlive it; `nullopt` if the value has no JSON.
    static std::optional<JSONTape> of(const JSONValue& value);

    const JSONNode* root() const { return nodes_.get(); }

    // The path of a value of this tape: "boards[3].name".
    std::string pathOf(const JSONNode* value) const;

  private:
    friend class JSONTapeBuilder;

    static Result<JSONTape, DecodingError> parse(std::string_view source, char* inPlace);

    struct Free {
        void operator()(JSONNode* nodes) const { std::free(nodes); }
    };

    std::unique_ptr<JSONNode, Free> nodes_;
    std::unique_ptr<char[]> unescaped_;
};

// The nearest double of a number in JSON's form; `nullopt` if it is beyond the range of double.
std::optional<double> nearestDouble(std::string_view text);

// Adds a member or an element to a path. A key that is not a plain word is shortened and escaped, since it
// may come from anywhere.
void appendKeyToPath(std::string& path, std::string_view key);
void appendIndexToPath(std::string& path, std::size_t index);

} // namespace zelto
