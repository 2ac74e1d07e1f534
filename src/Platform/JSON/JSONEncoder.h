#pragma once

#include <Platform/JSON/JSONWriter.h>
#include <Platform/Result.h>

#include <string>

namespace zelto {

// Encodes values to JSON. Keys are in declared order; absent optionals are left out (an absent one at the top
// level is null); "/" and characters outside ASCII are not escaped. Invalid UTF-8, a number that is not
// finite, and nesting deeper than 512 are errors. Any thread.
struct JSONEncoder {
    DateStrategy dateStrategy = DateStrategy::default_;
    int indent = 0; // blanks per level, for people; 0 writes one line without blanks

    template <class T> Result<std::string, EncodingError> encode(const T& value) const {
        JSONWriter writer(dateStrategy);
        try {
            writer.write(value);
        } catch (EncodingError& error) {
            return failure(std::move(error));
        }
        return indent > 0 ? indented(writer.take(), indent) : writer.take();
    }

  private:
    static std::string indented(std::string_view json, int width);
};

} // namespace zelto
