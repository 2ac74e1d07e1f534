#pragma once

#include "base/Interruption.h"
#include "base/StandardInput.h"

#include <optional>
#include <string>
#include <string_view>

// What reaches the program in places that other programs can read, and how it is taken out of them.

namespace zelto::cli {

// Overwrites the values of options that hold secrets with "x", so that a list of processes does not show
// them. For the arguments that main was given, once they are copied.
void blankSecretArguments(int count, char** arguments);

// The value of a variable of the environment, which is overwritten there and removed: neither a list of
// processes nor a program that is started sees it.
std::optional<std::string> takeVariable(const char* name);

// Takes $ZELTO_TOKEN; for main, at once. tokenOfEnvironment() gives what it was.
void takeTokenOfEnvironment();
const std::optional<std::string>& tokenOfEnvironment();

// Secrets of standard input, one a line, of 64 KiB in all. A terminal asks for each, and does not show what
// is typed. Ctrl-C ends the reading as a stop. One object at a time, without another Interruption.
class SecretInput {
  public:
    // The next one; empty where there are no more. `what` is what a terminal asks for: "Access token".
    Result<std::string, InputEnd> next(std::string_view what);

    // Whether there is more than was taken, which a terminal does not know.
    bool hasMore() const { return !left_.value_or("").empty(); }

  private:
    struct Reading {
        Reading() : input(interruption.stop()) {}

        Interruption interruption;
        StandardInput input;
    };

    Result<std::string, InputEnd> nextTyped(std::string_view what);

    std::optional<Reading> reading_;
    std::optional<std::string> left_; // of an input that is no terminal
};

} // namespace zelto::cli
