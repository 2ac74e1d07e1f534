#pragma once

#include <ZeltoSandbox/Drives/Drive.h>

#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// A query of a search: alternatives, separated by " OR ", each of words that all have to be words of a name
// (or of a text, where that is searched too), in any case and order; the last one may be the beginning of
// one.
class DropboxSearch {
  public:
    explicit DropboxSearch(std::string_view query);

    bool matchesName(const DriveEntry& entry) const;
    // Of the newest revision of a file of plain text, in its first 256 KiB.
    bool matchesContent(const DriveEntry& entry) const;

  private:
    using Words = std::vector<std::string>;

    bool matches(std::string_view text) const;

    std::vector<Words> alternatives_;
};

} // namespace zelto::sandbox
