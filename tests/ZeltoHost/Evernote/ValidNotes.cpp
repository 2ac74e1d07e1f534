#include <ZeltoHost/Evernote/ValidNotes.h>

#include <ZeltoHost/Process/Process.h>

#include <Support/Folders.h>

#include <vector>

namespace zelto::testing {

namespace {

// What a run of xmllint prints; the output of one that fails is not empty.
std::string outputOf(std::vector<std::string> arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), {"/usr/bin/xmllint", "--nonet", "--huge"});
    const auto result =
        runProcess({.arguments = std::move(arguments), .input = input, .keptOutput = std::size_t{64} << 20});
    return result.succeeded() ? result.output : "xmllint " + describe(result.end) + ": " + result.errorOutput;
}

std::string schema(const std::string& name) {
    return (sourceFolder() / "tests" / "ZeltoHost" / "Evernote" / name).native();
}

} // namespace

std::string selected(const std::filesystem::path& file, const std::string& xpath) {
    auto text = outputOf({"--xpath", "string(" + xpath + ")", file.native()});
    if (text.ends_with('\n')) {
        text.pop_back(); // of the program
    }
    return text;
}

std::string errorsOfNoteContent(const std::string& enml) {
    return outputOf({"--noout", "--dtdvalid", schema("NoteContent.dtd"), "-"}, enml);
}

std::string errorsOfImportFile(const std::filesystem::path& file) {
    const auto errors = outputOf({"--noout", "--dtdvalid", schema("ImportFile.dtd"), file.native()});
    return errors + errorsOfNoteContent(selected(file, "/en-export/note/content"));
}

} // namespace zelto::testing
