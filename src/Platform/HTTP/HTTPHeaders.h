#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

struct HTTPHeaderField {
    std::string name;
    std::string value;

    bool operator==(const HTTPHeaderField&) const = default;
};

// The header fields of a message. Names are found without regard to case, and keep the spelling and the order
// in which they were set. Anything can be set: the transport refuses a message with an invalid field.
class HTTPHeaders {
  public:
    // Replaces the value of an existing field, in its place and with the new spelling of its name, or appends
    // the field.
    void set(std::string name, std::string value);

    // Like set, but appends the value to that of an existing field.
    void append(std::string name, std::string value, std::string_view separator);

    void remove(std::string_view name);

    std::optional<std::string> value(std::string_view name) const;

    bool contains(std::string_view name) const;

    const std::vector<HTTPHeaderField>& fields() const { return fields_; }

    // Null if every field may be sent, else the first that may not.
    const HTTPHeaderField* firstInvalid() const;

    // Compares spelling and order too.
    bool operator==(const HTTPHeaders&) const = default;

  private:
    void add(std::string name, std::string value);

    std::vector<HTTPHeaderField> fields_;
};

// False for a value with CR, LF or NUL, which would end the field and begin another, and for a name that is
// not a token of RFC 9110. To be checked before the first byte of a message is written.
bool isValidHeaderValue(std::string_view value);
bool isValidHeaderName(std::string_view name);

// Whether a field frames the message or names its receiver. Only the transport may set these: a request with
// one is refused.
bool isTransportHeader(std::string_view name);

} // namespace zelto
