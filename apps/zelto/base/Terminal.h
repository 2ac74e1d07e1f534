#pragma once

#include <string>
#include <string_view>

namespace zelto::cli {

// What the two outputs of the process are connected to.
struct Terminal {
    bool outputIsTerminal = false;
    bool showsBar = false;   // on standard error: it can write over a line
    bool usesColour = false; // on standard error

    static Terminal ofThisProcess();

    // Text from a file or a service as it is printed on standard output: on a terminal, control characters
    // and the like are written as escapes. `shownLines` keeps line ends and tabs.
    std::string shown(std::string_view text) const;
    std::string shownLines(std::string_view text) const;
};

// Text of several lines with control characters and the like as escapes, but for line ends and tabs.
std::string escapedLines(std::string_view text);

// JSON text in which the characters that control a terminal and that JSON allows are escaped too: DEL, C1
// and the marks that change the direction of writing.
std::string terminalSafeJSON(std::string_view json);

// Keeps files that are opened later from becoming a standard output that was closed at the start.
void reserveStandardDescriptors();

// False if the output refused it (a full disk, a closed pipe).
bool writeOutput(std::string_view text);
void writeError(std::string_view text);

} // namespace zelto::cli
