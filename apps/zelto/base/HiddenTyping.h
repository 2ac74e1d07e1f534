#pragma once

#include <memory>

struct termios;

namespace zelto::cli {

// What a program in the background does, to which nothing can be typed.
enum class InBackground {
    stops, // until a shell brings it to the foreground, as for any reading
    goesOn // and leaves the terminal as it is
};

// While an object exists, what is typed at the terminal of standard input is not shown and comes at once, in
// lines of any length and without the terminal's editing; Ctrl-C and Ctrl-Z are what they always are. Does
// nothing where standard input is no terminal. One object at a time.
class HiddenTyping {
  public:
    explicit HiddenTyping(InBackground inBackground);
    ~HiddenTyping();
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;

    bool isOn() const { return before_ != nullptr; }

  private:
    std::unique_ptr<termios> before_; // the terminal's settings; null if they were left
};

} // namespace zelto::cli
