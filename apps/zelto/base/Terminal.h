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

    // Text that is not ours, as it is to be shown on standard output: on a terminal, control characters and
    // the like are written as escapes. `shownLines` leaves line ends and tabs alone.
    std::string shown(std::string_view text) const;
    std::string shownLines(std::string_view text) const;
};

// Text of several lines with control characters and the like as escapes, but for line ends and tabs.
std::string escapedLines(std::string_view text);

// JSON text in which, behind what JSON itself asks for, no character stands that a terminal obeys: DEL, C1
// and the marks that turn the direction of writing are escaped.
std::string terminalSafeJSON(std::string_view json);

// Keeps files that are opened later from becoming a standard output that was closed at the start.
void reserveStandardDescriptors();

// False if the output refused it (a full disk, a closed pipe).
bool writeOutput(std::string_view text);
void writeError(std::string_view text);

} // namespace zelto::cli
