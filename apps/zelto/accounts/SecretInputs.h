#pragma once

#include <optional>
#include <string>

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

// All of standard input, without line ends at its end. `nullopt` if there are more than 64 KiB.
std::optional<std::string> secretOfStandardInput();

} // namespace zelto::cli
