#pragma once

#include <ZeltoIntegrations/Helpers/ExporterHelperMultipartData.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// A page as it is sent: a whole HTML document, and the files to which it refers by the names of their parts.
// Any text that is called plain is written with its markup characters as entities.
struct OneNotePage {
    std::string html; // UTF-8
    std::vector<ExporterHelperMultipartData> parts;

    // Puts the file at the end of the body.
    void attach(ExporterHelperMultipartData part);

    // As the form has it: the part "Presentation" first, then the files.
    std::vector<ExporterHelperMultipartData> form() &&;
};

// A part of the file, which stays where it is until it was sent, and is read then. `nullopt` if it cannot be
// opened.
std::optional<ExporterHelperMultipartData> oneNotePart(const std::filesystem::path& file);

// The element that shows the part.
std::string createHtmlObject(const ExporterHelperMultipartData& fromData);

// What stands above the content: a plain note where there is one, the link to the message as HTML, and the
// header block of the message as HTML where it has one.
std::string oneNoteHeader(std::string_view link, std::string_view note,
                          const std::optional<std::string>& headerBlock);

// A document with a plain title, whose body is the HTML.
std::string oneNoteDocument(std::string_view title, std::string_view content);

// A document with a plain title that has the link alone. A "&" of the link stays as it is.
std::string oneNoteLinkDocument(std::string_view title, std::string_view externalLink);

// The document with the header at the front of its body; HTML that has no body becomes the content of a
// document with that plain title.
std::string withOneNoteHeader(std::string html, const std::string& header, std::string_view title);

} // namespace zelto
