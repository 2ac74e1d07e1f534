#pragma once

#include <ZeltoHost/Platform/OpenError.h>
#include <ZeltoHost/Process/ProcessRunner.h>

#include <Platform/Completion.h>
#include <Platform/URL.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace zelto {

// Opens URLs on the user's system by running a program, without a shell, with the URL as its last argument.
// The program's exit status 0 means opened. It has 30 seconds, /dev/null for input and output, and the
// process's environment. An application that it starts is left alone, and the program itself continues if the
// process ends without destroying this. Any thread; the completion is called once, on any thread, at the
// latest during the destruction.
class URLOpener {
  public:
    static constexpr std::chrono::seconds maximumWait{30};

    // Uses xdg-open, or a command: the program's name or path, and arguments before the URL.
    URLOpener() : URLOpener(std::vector<std::string>{"xdg-open"}) {}

    explicit URLOpener(std::vector<std::string> command, std::chrono::milliseconds limit = maximumWait);

    // The applications' schemes, https, and http to this machine.
    static bool isAllowed(const URL& url);

    // The maximum length, in bytes, of a URL that a program of this system can be given.
    static std::size_t maximumURLSize();

    void open(const URL& url, Completion<void, OpenError> completion);

  private:
    std::vector<std::string> command_;
    std::chrono::milliseconds limit_;
    ProcessRunner runner_;
};

} // namespace zelto
