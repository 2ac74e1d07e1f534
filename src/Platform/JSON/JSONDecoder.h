#pragma once

#include <Platform/JSON/JSONReader.h>
#include <Platform/Result.h>

#include <span>
#include <string_view>

namespace zelto {

// Decodes JSON to values. Unknown keys are ignored, a null reads as absent for an optional, a missing
// required key is an error; of a repeated key the last value counts. A number that is not whole, or out of
// range, does not decode as an integer (1.0 and 1e3 do, up to 2^53); a number beyond the range of double does
// not decode as a double. Nesting deeper than 512, invalid UTF-8 or surrogates, a byte order mark, and text
// after the value are errors. Any thread.
struct JSONDecoder {
    DateStrategy dateStrategy = DateStrategy::default_;

    template <class T> Result<T, DecodingError> decode(std::string_view text) const {
        return readParsed<T>(JSONTape::parse(text));
    }

    // Needs less memory where strings have escapes; the text is overwritten.
    template <class T> Result<T, DecodingError> decodeInPlace(std::span<char> text) const {
        return readParsed<T>(JSONTape::parseInPlace(text));
    }

    // Reads a text that is parsed already; it can be read as several types.
    template <class T> Result<T, DecodingError> read(const JSONTape& tape) const {
        try {
            return JSONReader(tape, dateStrategy).as<T>();
        } catch (DecodingError& error) {
            return failure(std::move(error));
        }
    }

  private:
    template <class T> Result<T, DecodingError> readParsed(Result<JSONTape, DecodingError> tape) const {
        return tape ? read<T>(*tape) : failure(std::move(tape.error()));
    }
};

} // namespace zelto
