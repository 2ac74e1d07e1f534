#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// Reads Base64 piece by piece, strictly: line breaks alone may stand between its characters, which are a
// multiple of four with their padding. A gigabyte may come, so it reads whole groups where it can.
class Base64Decoder {
  public:
    // Appends to `bytes` what the text stands for; false if it is no Base64.
    bool put(std::string_view text, std::string& bytes);

    bool isWhole() const { return count_ == 0; }

  private:
    // Some groups of four at the front that are numbers alone; returns how many characters these are.
    std::size_t putGroups(std::string_view text, std::string& bytes) const;
    bool putOne(char c, std::string& bytes);

    std::uint32_t bits_ = 0;
    std::size_t count_ = 0; // characters of the present group of four
    std::size_t padding_ = 0;
};

} // namespace zelto::sandbox
