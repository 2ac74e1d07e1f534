#pragma once

#include <ZeltoHost/Process/Process.h>

#include <Platform/JSON/JSONValue.h>

#include <Support/TemporaryFolder.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What one call of the program came to.
struct ProgramOutcome {
    int status = -1; // its exit status; -1 if it did not exit by itself
    std::string output;
    std::string errorOutput;

    // Standard output as the one JSON document that it must be. A test fails if it is not.
    JSONValue json() const;
    // The line of the command that a failure without --json suggests; "" if there is none.
    std::string suggestion() const;
    // "" if there is no such member or it is no text.
    std::string text(std::string_view key) const;
};

// The real program in a home of its own: no data, key chain or bus of the user is reached. Each call blocks.
class ZeltoProgram {
  public:
    ZeltoProgram();

    using Arguments = std::vector<std::string>;

    ProgramOutcome run(const Arguments& arguments, const std::string& input = {}) const;

    // With both outputs on a pseudo terminal; all that comes from it is in `output`, with "\r\n" line ends.
    // `typed` is there from the start, and shown as a terminal shows what is typed.
    ProgramOutcome runOnTerminal(const Arguments& arguments, const std::string& typed = {}) const;

    // A line of bash, with the program in PATH and the samples in the working directory.
    ProgramOutcome runShell(const std::string& line) const;

    // The words that bash makes of a line.
    std::vector<std::string> wordsOf(const std::string& line) const;

    // Exports with --opener - and gives the URL.
    std::string exportedURL(Arguments arguments) const;

    std::filesystem::path dataDirectory() const { return home / "data/zelto"; }

    // Each file below the folder with its content.
    static std::map<std::string, std::string> filesBelow(const std::filesystem::path& folder);

    static std::filesystem::path path();
    static std::string sample(std::string_view name); // of examples/mails

    TemporaryFolder home;
    std::map<std::string, std::string> variables; // of the environment

  private:
    std::vector<std::string> environment() const;
};

// A mail with a title and a text, as a file's content. The title stands as it is in the header.
std::string mailWith(std::string_view subject, std::string_view text);

} // namespace zelto
