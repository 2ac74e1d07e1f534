#pragma once

#include <Platform/Result.h>
#include <ZeltoSandbox/Drives/Drive.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// The part of Drive's search language that the sandbox has: the terms mimeType, name and trashed with "=" and
// "!=", and "'id' in parents", joined by "and". A text stands in single quotes, with \' and \\ in it.
class GoogleDriveQuery {
  public:
    // The text of an error says where it is not understood.
    static Result<GoogleDriveQuery, std::string> parse(std::string_view text);

    // The identifiers of folders that it names.
    std::vector<std::string> parents() const;

    // An identifier of the root is its alias "root" too.
    bool matches(const DriveEntry& entry) const;

  private:
    enum class Field { mimeType, name, trashed, parents };

    struct Term {
        Field field;
        bool isNegated = false;
        std::string value; // "true" or "false" for `trashed`
    };

    class Parser;

    static bool holds(const Term& term, const DriveEntry& entry);

    std::vector<Term> terms_;
};

} // namespace zelto::sandbox
