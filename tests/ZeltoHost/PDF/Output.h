#pragma once

#include <ZeltoHost/PDF/WeasyPrintScript.h>
#include <ZeltoHost/Process/Process.h>

#include <Support/TemporaryFolder.h>

#include <string>

namespace zelto {

// The standard output of a shell command.
inline std::string outputOf(const std::string& command) {
    return runProcess({.arguments = {"/bin/sh", "-c", command}, .keptOutput = 1 << 20}).output;
}

// Runs the script on HTML that was not cleaned. Its temporary files are made beside the PDF, since some stay.
inline void runScriptUncleaned(const std::filesystem::path& html, const std::filesystem::path& pdf) {
    runProcess({.arguments = {"/usr/bin/env", "TMPDIR=" + pdf.parent_path().string(), "/usr/bin/python3",
                              "-I", "-c", std::string(weasyPrintScript), pdf.string()},
                .input = std::string(1, '\0') + TemporaryFolder::read(html)});
}

} // namespace zelto
