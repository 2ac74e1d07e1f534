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

// The header fields of a message. Names are found without regard to case, and kept with the spelling and in
// the order of setting. Anything can be set: the transport refuses a message with a field that is not valid.
class HTTPHeaders {
  public:
    // Replaces the value of a field in its place, with the new spelling of its name, or adds the field at the
    // end.
    void set(std::string name, std::string value);

    // The same, but the value goes behind that of a field that is there already.
    void append(std::string name, std::string value, std::string_view separator);

    void remove(std::string_view name);

    std::optional<std::string> value(std::string_view name) const;

    bool contains(std::string_view name) const;

    const std::vector<HTTPHeaderField>& fields() const { return fields_; }

    // Nothing when every field may be sent, else the first that may not.
    const HTTPHeaderField* firstInvalid() const;

    // Compares spelling and order too.
    bool operator==(const HTTPHeaders&) const = default;

  private:
    void add(std::string name, std::string value);

    std::vector<HTTPHeaderField> fields_;
};

// False for a value with CR, LF or NUL, which would end the field and begin another, and for a name that is
// no token of RFC 9110. Whoever writes a message to the wire asks these before the first byte goes out.
bool isValidHeaderValue(std::string_view value);
bool isValidHeaderName(std::string_view name);

// Of a field that frames a message or names its receiver, which is the transport's to say: a request that
// sets one is refused.
bool isTransportHeader(std::string_view name);

} // namespace zelto
