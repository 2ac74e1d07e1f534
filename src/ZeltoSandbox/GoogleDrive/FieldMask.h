#pragma once

#include <Platform/JSON/JSONValue.h>
#include <Platform/Result.h>

#include <map>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// Google's "fields" parameter: which members of a response come. "kind,files(id,name)", "user/displayName",
// "files/*".
class FieldMask {
  public:
    // `schema` has every member that can be named; a list has one element. The text of an error is Google's.
    static Result<FieldMask, std::string> parse(std::string_view text, const JSONValue& schema);

    // The named members that are there.
    JSONValue applied(const JSONValue& whole) const;

  private:
    class Parser;

    // What is wrong with the names; empty for good ones.
    std::string problem(const JSONValue& schema) const;

    std::map<std::string, FieldMask, std::less<>> members_; // none: all of them
};

} // namespace zelto::sandbox
