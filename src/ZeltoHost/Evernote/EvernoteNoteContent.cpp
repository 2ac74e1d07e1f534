#include <ZeltoHost/Evernote/EvernoteNoteContent.h>

#include <ZeltoHost/HTML/ENML.h>
#include <ZeltoHost/HTML/MarkupEscape.h>
#include <ZeltoHost/Interactor/EnmlContent.h>

#include <Platform/Text.h>

#include <map>
#include <optional>
#include <set>
#include <string_view>

namespace zelto {

namespace {

constexpr std::string_view mediaStart = "<en-media";
constexpr std::string_view noteEnd = "</en-note>";
constexpr std::string_view unknownType = "application/octet-stream";

// Behind the ">" of the tag that begins there. In XML, a quoted value may hold a ">".
std::size_t tagEnd(std::string_view markup, std::size_t at) {
    char quote = '\0';
    for (; at < markup.size(); ++at) {
        const char c = markup[at];
        if (quote != '\0') {
            quote = c == quote ? '\0' : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            return at + 1;
        }
    }
    return at;
}

// An HTML parser knows no empty tag of that name: what follows one would be its content, and many of them
// would nest.
std::string withClosedMedia(std::string_view content) {
    std::string closed;
    closed.reserve(content.size());
    for (;;) {
        const auto start = content.find(mediaStart);
        const auto end = start == std::string_view::npos ? content.size() : tagEnd(content, start);
        const auto piece = content.substr(0, end);
        closed += piece;
        if (start != std::string_view::npos && piece.ends_with("/>")) {
            closed += "</en-media>";
        }
        if (end == content.size()) {
            return closed;
        }
        content.remove_prefix(end);
    }
}

// The files of a note by the hashes that its text refers to them by.
class NoteFiles {
  public:
    explicit NoteFiles(const std::vector<EvernoteAttachment>& attachments) {
        for (const auto& each : attachments) {
            const auto type = each.mimeType.empty() ? std::string(unknownType) : each.mimeType;
            const auto& [known, isNew] = types_.emplace(enmlHash(each.data), type);
            if (isNew) {
                order_.push_back(known->first);
            }
        }
    }

    std::optional<EnmlMedia> referTo(std::string_view hash) {
        const auto file = types_.find(std::string(hash));
        if (file == types_.end()) {
            return std::nullopt;
        }
        referredTo_.insert(file->first);
        return EnmlMedia{file->first, file->second};
    }

    // Elements for the files that nothing refers to.
    std::string others() const {
        std::string markup;
        for (const auto& hash : order_) {
            if (!referredTo_.contains(hash)) {
                markup += "<div><en-media type=\"";
                appendEscaped(markup, types_.at(hash), Quotes::escape);
                markup += "\" hash=\"" + hash + "\"/></div>";
            }
        }
        return markup;
    }

  private:
    std::map<std::string, std::string> types_; // by hash
    std::vector<std::string> order_;           // hashes
    std::set<std::string> referredTo_;
};

} // namespace

std::string evernoteNoteContent(std::string content, const std::vector<EvernoteAttachment>& attachments) {
    NoteFiles files(attachments);
    EnmlOptions options;
    options.mediaForHash = [&files](std::string_view hash) { return files.referTo(hash); };
    auto enml = enmlFromHTML(withClosedMedia(trimmed(content)), options);
    enml.insert(enml.rfind(noteEnd), files.others());
    return enml;
}

} // namespace zelto
