#include <Platform/JSON/JSONError.h>

namespace zelto {

namespace {

std::string at(const std::string& path, std::string_view text) {
    return path.empty() ? std::string(text) : path + ": " + std::string(text);
}

} // namespace

std::string EncodingError::message() const {
    switch (reason) {
    case Reason::invalidUTF8:
        return at(path, "the text is not valid UTF-8");
    case Reason::nonFiniteNumber:
        return at(path, "the number is not finite, which JSON cannot hold");
    case Reason::tooDeep:
        return at(path, "nested deeper than " + std::to_string(jsonDepthLimit) + " levels");
    case Reason::dateOutOfRange:
        return at(path, "the date has no ISO 8601 form");
    }
    return {};
}

std::string DecodingError::message() const {
    switch (reason) {
    case Reason::syntax:
        return "not valid JSON at byte " + std::to_string(offset) + ": " + text;
    case Reason::missingKey:
    case Reason::mismatch:
    case Reason::custom:
        return at(path, text);
    }
    return {};
}

} // namespace zelto
