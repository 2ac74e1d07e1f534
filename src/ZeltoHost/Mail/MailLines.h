#pragma once

#include <ZeltoHost/Mail/MailFile.h>

#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Reads a file line by line in bounded memory: of a line longer than `maxLength` only the beginning is kept.
class MailLines {
  public:
    struct Line {
        std::uint64_t offset = 0;
        std::string_view text;      // without its terminator; valid until the next line is read
        std::size_t terminator = 0; // 0 (end of the file), 1 or 2 bytes
        std::uint64_t length = 0;   // of the whole line, without its terminator
    };

    MailLines(const MailFile& file, std::size_t maxLength);

    // False at the end of the file.
    Result<bool, MailError> next(Line& line);

  private:
    Result<bool, MailError> fill();
    void keep(std::string_view piece);

    const MailFile& file_;
    std::size_t maxLength_;
    std::vector<char> buffer_;
    std::size_t position_ = 0;
    std::size_t filled_ = 0;
    std::uint64_t bufferOffset_ = 0;
    std::string pending_;
};

} // namespace zelto
