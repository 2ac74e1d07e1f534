#pragma once

#include <filesystem>
#include <string>

namespace zelto::testing {

// What libxml2 finds wrong with an import file or with the content of its note, by the schemas beside this
// header; empty if nothing is.
std::string errorsOfImportFile(const std::filesystem::path& file);

// The same for the content of a note.
std::string errorsOfNoteContent(const std::string& enml);

// The text of what an XPath expression selects in the file.
std::string selected(const std::filesystem::path& file, const std::string& xpath);

} // namespace zelto::testing
