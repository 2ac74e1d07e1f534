#include <ZeltoSandbox/HTTP/SandboxRequest.h>

#include <Platform/ASCII.h>
#include <Platform/UTF8.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

constexpr std::size_t windowSize = std::size_t{1} << 20;
constexpr std::size_t maximumPartHeader = std::size_t{16} << 10;
constexpr std::size_t maximumPartCount = 1000;
constexpr std::size_t maximumBoundary = 70;

// Finds texts in a body that does not fit into memory.
class Search {
  public:
    explicit Search(const SpoolRange& body) : body_(body), window_(windowSize, '\0') {}

    // The offset of the text at or after the position; nullopt if there is none.
    std::optional<std::uint64_t> find(std::string_view text, std::uint64_t position) {
        while (position + text.size() <= body_.size) {
            load(position);
            const auto found = std::string_view(window_.data(), count_).find(text, position - start_);
            if (found != std::string_view::npos) {
                return start_ + found;
            }
            if (start_ + count_ >= body_.size || count_ < text.size()) {
                return std::nullopt;
            }
            position = start_ + count_ - text.size() + 1;
        }
        return std::nullopt;
    }

    std::string text(std::uint64_t from, std::uint64_t to) const {
        return SpoolRange{body_.bytes, body_.offset + from, to - from}.text(
            static_cast<std::size_t>(to - from));
    }

  private:
    // A window with the position and, unless the body ends, at least half of its size after it.
    void load(std::uint64_t position) {
        if (count_ > 0 && position >= start_ && position + windowSize / 2 <= start_ + count_) {
            return;
        }
        if (count_ > 0 && position >= start_ && start_ + count_ == body_.size) {
            return;
        }
        start_ = position;
        count_ = body_.read(position, window_);
    }

    const SpoolRange& body_;
    std::string window_;
    std::uint64_t start_ = 0;
    std::size_t count_ = 0;
};

// "Name: value" lines, each ended by CRLF.
Result<std::vector<HTTPHeaderField>, std::string> fieldsOf(std::string_view header) {
    std::vector<HTTPHeaderField> fields;
    while (!header.empty()) {
        const auto end = header.find("\r\n");
        const auto line = header.substr(0, end);
        header.remove_prefix(
            std::min(end == std::string_view::npos ? header.size() : end + 2, header.size()));
        const auto colon = line.find(':');
        if (colon == std::string_view::npos || !isValidHeaderName(line.substr(0, colon)) ||
            !isValidHeaderValue(line.substr(colon + 1)) || !isValidUTF8(line)) {
            return failure(std::string("a part has a header line that is none"));
        }
        fields.push_back(
            {std::string(line.substr(0, colon)), std::string(trimmedBlanks(line.substr(colon + 1)))});
    }
    return fields;
}

Result<FormPart, std::string> formPartOf(const BodyPart& whole) {
    FormPart part{.name = {}, .fileName = {}, .contentType = "text/plain", .content = whole.content};
    bool named = false;
    for (const auto& [name, value] : whole.fields) {
        if (equalIgnoringASCIICase(name, "Content-Type")) {
            part.contentType = mediaTypeOf(value);
        } else if (equalIgnoringASCIICase(name, "Content-Disposition")) {
            const auto field = headerParameter(value, "name");
            if (mediaTypeOf(value) != "form-data" || !field || named) {
                return failure(
                    std::string("a part has no single Content-Disposition: form-data with a name"));
            }
            named = true;
            part.name = *field;
            part.fileName = headerParameter(value, "filename");
        }
    }
    if (!named) {
        return failure(std::string("a part has no Content-Disposition"));
    }
    return part;
}

Result<std::vector<BodyPart>, std::string> partsOf(const SpoolRange& body, std::string_view boundary,
                                                   bool mayBeginWithLineEnd) {
    if (boundary.empty() || boundary.size() > maximumBoundary) {
        return failure(std::string("the boundary has not 1 to 70 characters"));
    }
    const auto delimiter = "\r\n--" + std::string(boundary);
    Search search(body);
    const auto start = search.text(0, std::min<std::uint64_t>(body.size, delimiter.size()));
    const std::uint64_t lineEnd = mayBeginWithLineEnd && start == delimiter ? 2 : 0;
    if (lineEnd == 0 && !start.starts_with(std::string_view(delimiter).substr(2))) {
        return failure(std::string("the body does not begin with the boundary"));
    }
    std::vector<BodyPart> parts;
    auto position = delimiter.size() - 2 + lineEnd;
    for (;;) {
        const auto mark = search.text(position, std::min(body.size, position + 2));
        if (mark == "--") {
            const auto rest = search.text(position + 2, std::min(body.size, position + 5));
            return rest.empty() || rest == "\r\n"
                       ? Result<std::vector<BodyPart>, std::string>(std::move(parts))
                       : failure(std::string("something stands behind the last boundary"));
        }
        if (mark != "\r\n") {
            return failure(std::string("a boundary is not followed by a line end"));
        }
        if (parts.size() >= maximumPartCount) {
            return failure(std::string("there are more than 1000 parts"));
        }
        const auto headerEnd = search.find("\r\n\r\n", position);
        if (!headerEnd || *headerEnd - position > maximumPartHeader) {
            return failure(std::string("a part's header does not end"));
        }
        const auto header = *headerEnd == position ? std::string() : search.text(position + 2, *headerEnd);
        auto fields = fieldsOf(header);
        if (!fields) {
            return failure(fields.error());
        }
        const auto contentStart = *headerEnd + 4;
        const auto contentEnd = search.find(delimiter, contentStart);
        if (!contentEnd) {
            return failure(std::string("the last boundary is missing"));
        }
        parts.push_back(
            {*std::move(fields), {body.bytes, body.offset + contentStart, *contentEnd - contentStart}});
        position = *contentEnd + delimiter.size();
    }
}

} // namespace

const std::string* BodyPart::field(std::string_view name) const {
    const auto found = std::ranges::find_if(
        fields, [&](const HTTPHeaderField& each) { return equalIgnoringASCIICase(each.name, name); });
    return found == fields.end() ? nullptr : &found->value;
}

Result<std::vector<BodyPart>, std::string> parseRelated(const SpoolRange& body, std::string_view boundary) {
    return partsOf(body, boundary, true);
}

Result<std::vector<FormPart>, std::string> parseMultipart(const SpoolRange& body, std::string_view boundary) {
    const auto parts = partsOf(body, boundary, false);
    if (!parts) {
        return failure(parts.error());
    }
    std::vector<FormPart> form;
    for (const auto& part : *parts) {
        auto ofForm = formPartOf(part);
        if (!ofForm) {
            return failure(ofForm.error());
        }
        form.push_back(*std::move(ofForm));
    }
    return form;
}

} // namespace zelto::sandbox
