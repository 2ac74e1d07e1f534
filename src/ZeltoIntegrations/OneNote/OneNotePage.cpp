#include <ZeltoIntegrations/OneNote/OneNotePage.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>
#include <ZeltoIntegrations/Helpers/HTMLText.h>

#include <utility>

namespace zelto {

namespace {

constexpr std::string_view bodyEnd = "</body>";

// Behind the opening tag of the body; `npos` for HTML without one. In what the host writes, no attribute has
// a ">".
std::size_t bodyBegin(std::string_view html) {
    const auto tag = html.find("<body");
    const auto end = html.find('>', tag);
    return tag == std::string_view::npos || end == std::string_view::npos ? std::string_view::npos : end + 1;
}

} // namespace

void OneNotePage::attach(ExporterHelperMultipartData part) {
    // The last one, should the host have left one in the text.
    const auto end = html.rfind(bodyEnd);
    html.insert(end == std::string::npos ? html.size() : end, createHtmlObject(part));
    parts.push_back(std::move(part));
}

std::vector<ExporterHelperMultipartData> OneNotePage::form() && {
    std::vector<ExporterHelperMultipartData> form;
    form.reserve(parts.size() + 1);
    form.push_back({.name = "Presentation", .contentType = "text/html", .data = HTTPBody(std::move(html))});
    for (auto& part : parts) {
        form.push_back(std::move(part));
    }
    return form;
}

std::optional<ExporterHelperMultipartData> oneNotePart(const std::filesystem::path& file) {
    HTTPBody content;
    // A page may have more files than a process may have open.
    if (!content.appendFileToReopen(file)) {
        return std::nullopt;
    }
    // Two files may have one name.
    return ExporterHelperMultipartData{.name = uuid(),
                                       .dataId = file.filename().native(),
                                       .contentType = ExportServiceHelper::mimeType(file),
                                       .data = std::move(content)};
}

std::string createHtmlObject(const ExporterHelperMultipartData& fromData) {
    return "<object data-attachment=\"" + htmlText(fromData.dataId) +
           "\" data=\"name:" + htmlText(fromData.name) + "\" type=\"" + htmlText(fromData.contentType) +
           "\" />";
}

std::string oneNoteHeader(std::string_view link, std::string_view note,
                          const std::optional<std::string>& headerBlock) {
    std::string header;
    if (!note.empty()) {
        header = "<p>" + htmlText(note) + "<br>______________________________</p>";
    }
    header.append("<p style=\"color:#3e81de; font-size:32px;\">").append(link).append("<br></p>");
    if (headerBlock) {
        header.append("\n").append(*headerBlock);
    }
    return header;
}

std::string oneNoteDocument(std::string_view title, std::string_view content) {
    return "<html><head><title>" + htmlText(title) + "</title></head><body>" + std::string(content) +
           "</body></html>";
}

std::string oneNoteLinkDocument(std::string_view title, std::string_view externalLink) {
    return oneNoteDocument(title, "<p>" + htmlLink(externalLink) + "</p>");
}

std::string withOneNoteHeader(std::string html, const std::string& header, std::string_view title) {
    const auto begin = bodyBegin(html);
    if (begin == std::string::npos) {
        return oneNoteDocument(title, header + html);
    }
    return html.insert(begin, header);
}

} // namespace zelto
