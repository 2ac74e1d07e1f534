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
        std::uint64_t uint64; // above the range of int64 alone
        double real;          // where a real has no text
        const char* string;   // a string, or a real as the text writes it
        std::uint64_t count;  // elements of an array, members of an object
    };

    std::uint32_t size; // bytes of a string or of a real's text; nodes of an array or object with all in it
    JSONKind kind;

    std::string_view text() const { return {string, size}; }

    bool isContainer() const { return kind == JSONKind::array || kind == JSONKind::object; }

    const JSONNode* next() const { return this + (isContainer() ? size : 1); }
};

// A parsed text as one flat run of nodes: a container is followed by its elements, an object's members are a
// key and a value each. Strings without escapes are views of the source, which must outlive the tape.
class JSONTape {
  public:
    // Checks the whole text: syntax, UTF-8, escapes, depth, and nothing behind the value. More than eight
    // million values are an error too, since they would take many times the memory of their text.
    static Result<JSONTape, DecodingError> parse(std::string_view source);

    // Undoes escapes within the source, which is of no other use after that, instead of in memory of its own.
    // The offset of an error may lie behind the fault.
    static Result<JSONTape, DecodingError> parseInPlace(std::span<char> source);

    // A value that is there already; nothing where it has no JSON. It must outlive the tape.
    static std::optional<JSONTape> of(const JSONValue& value);

    const JSONNode* root() const { return nodes_.get(); }

    // Where a node of this tape lies: "boards[3].name".
    std::string pathOf(const JSONNode* node) const;

  private:
    friend class JSONTapeBuilder;

    static Result<JSONTape, DecodingError> parse(std::string_view source, char* inPlace);

    struct Free {
        void operator()(JSONNode* nodes) const { std::free(nodes); }
    };

    std::unique_ptr<JSONNode, Free> nodes_;
    std::unique_ptr<char[]> unescaped_;
};

// Of a number as JSON writes it; nothing if it is beyond all doubles.
std::optional<double> nearestDouble(std::string_view text);

// Adds a member's or an element's step to a path. A key that is no plain word is cut and escaped, since it
// may come from anywhere.
void appendKeyToPath(std::string& path, std::string_view key);
void appendIndexToPath(std::string& path, std::size_t index);

} // namespace zelto
