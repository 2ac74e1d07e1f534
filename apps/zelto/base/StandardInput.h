#pragma once

#include "base/HiddenTyping.h"

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <cstddef>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>

namespace zelto::cli {

// Why standard input gives no text.
enum class InputEnd {
    ended,   // there is no more, or it cannot be read
    tooLong, // beyond the limit; the text up to there is dropped
    stopped, // a stop was asked for
};

// Standard input, given up at once when a stop is asked for. At a terminal, what is typed is hidden while an
// object exists, and ends with Enter or Ctrl-D. One object at a time.
class StandardInput {
  public:
    explicit StandardInput(const std::stop_token& stop, InBackground inBackground = InBackground::stops);

    bool isTyped() const { return hiding_.isOn(); }

    // The next line without its end.
    Result<std::string, InputEnd> line(std::size_t limit);

    // All that is left.
    Result<std::string, InputEnd> all(std::size_t limit);

  private:
    // False at a stop.
    bool waitForInput() const;
    // False at the end of the input, and at a stop (then isStopped_ is set).
    bool read();
    void take(std::string_view bytes);
    void type(char c);
    void eraseCharacter();
    std::string_view typedLine() const;

    HiddenTyping hiding_;
    FileDescriptor event_; // of the stop
    std::string text_;     // read, and not taken
    bool hasEnded_ = false;
    bool isStopped_ = false;
    std::stop_callback<std::function<void()>> callback_;
};

} // namespace zelto::cli
