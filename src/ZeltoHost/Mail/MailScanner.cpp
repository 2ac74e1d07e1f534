#include <ZeltoHost/Mail/MailHeaderText.h>
#include <ZeltoHost/Mail/MailPartHeader.h>
#include <ZeltoHost/Mail/MailScanner.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace zelto {

namespace {

constexpr std::size_t noPart = static_cast<std::size_t>(-1);

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view withoutTrailingBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// The functions that decode the values take C strings.
std::string withoutNulls(std::string_view text) {
    std::string value(text);
    std::ranges::replace(value, '\0', ' ');
    return value;
}

// "Name: value", with blanks before the colon tolerated.
std::optional<MailField> fieldOf(std::string_view line) {
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const auto name = withoutTrailingBlanks(line.substr(0, colon));
    if (name.empty() || !std::ranges::all_of(name, [](unsigned char c) { return c > 32 && c < 127; })) {
        return std::nullopt;
    }
    return MailField{std::string(name), withoutNulls(line.substr(colon + 1))};
}

// The line before a message in a mailbox file. "From : a@b.example" is a field.
bool isEnvelopeLine(std::string_view line) {
    return (line.starts_with("From ") || line.starts_with(">From ")) && !fieldOf(line);
}

// A container whose parts are being read. After its end a multipart has no boundary.
struct Frame {
    std::size_t part;
    std::string boundary;
    bool digest;
};

class Scanner {
  public:
    Scanner(const MailFile& file, const MailLimits& limits)
        : limits_(limits), lines_(file, limits.headerBytes + 2), fileSize_(file.size()) {}

    Result<MailScan, MailError> scan() {
        while (true) {
            const auto terminatorBefore = line_.terminator;
            const auto more = lines_.next(line_);
            if (!more) {
                return failure(more.error());
            }
            if (!*more) {
                break;
            }
            contentEnd_ = line_.offset - terminatorBefore;
            if (auto read = readLine(); !read) {
                return failure(read.error());
            }
        }
        if (auto ended = endHeaders(fileSize_); !ended) {
            return failure(ended.error());
        }
        leave(0, fileSize_);
        return std::move(scan_);
    }

  private:
    using Step = Result<void, MailError>;

    Step readLine() {
        while (true) {
            if (const auto level = boundaryLevel()) {
                return cross(*level);
            }
            if (!inHeader_) {
                return {};
            }
            const auto consumed = readHeaderLine();
            if (!consumed || *consumed) {
                return consumed ? Step() : failure(consumed.error());
            }
        }
    }

    // The innermost open container that has this line as its boundary.
    std::optional<std::size_t> boundaryLevel() {
        if (!line_.text.starts_with("--")) {
            return std::nullopt;
        }
        const auto text = withoutTrailingBlanks(line_.text.substr(2));
        for (auto level = frames_.size(); level-- > 0;) {
            const auto& boundary = frames_[level].boundary;
            if (boundary.empty() || !text.starts_with(boundary)) {
                continue;
            }
            const auto remaining = text.substr(boundary.size());
            if (remaining.empty() || remaining == "--") {
                closing_ = !remaining.empty();
                return level;
            }
        }
        return std::nullopt;
    }

    Step cross(std::size_t level) {
        const bool closing = closing_;
        if (auto ended = endHeaders(line_.offset); !ended) {
            return ended;
        }
        leave(level + 1, contentEnd_);
        if (closing) {
            frames_.back().boundary.clear();
        } else {
            beginHeader();
        }
        return {};
    }

    // Ends the innermost containers, until that number of frames is left.
    void leave(std::size_t level, std::uint64_t offset) {
        const auto end = [&](std::size_t index) {
            auto& part = scan_.parts[index];
            part.end = std::max(part.begin, offset);
            if (isMultipart(part) && part.children.empty()) {
                part.mediaType = "text/plain"; // its boundary never occurred
            }
        };
        if (leaf_ != noPart) {
            end(leaf_);
            leaf_ = noPart;
        }
        while (frames_.size() > level) {
            end(frames_.back().part);
            frames_.pop_back();
        }
    }

    void beginHeader() {
        inHeader_ = true;
        fields_.clear();
        stray_.reset();
        firstHeaderLine_ = true;
    }

    // False if the header ended before this line.
    Result<bool, MailError> readHeaderLine() {
        if (scan_.parts.empty() && fields_.empty() && line_.length == 0) {
            leadingBlank_ = true;
            return true;
        }
        if (line_.length == 0) {
            return withValue(endHeader(stray_.value_or(line_.offset + line_.terminator)), true);
        }
        if (line_.text.starts_with("--")) {
            return withValue(endHeader(stray_.value_or(line_.offset)), false);
        }
        const bool first = std::exchange(firstHeaderLine_, false);
        if (first && isEnvelopeLine(line_.text)) {
            return true;
        }
        return readField(first && scan_.parts.empty());
    }

    static Result<bool, MailError> withValue(Step step, bool value) {
        return step ? Result<bool, MailError>(value) : failure(step.error());
    }

    Result<bool, MailError> readField(bool firstOfMail) {
        const bool continues = isBlank(line_.text.front()) && !fields_.empty();
        auto text = line_.text;
        if (firstOfMail && text.starts_with(byteOrderMark)) {
            text.remove_prefix(byteOrderMark.size());
        }
        auto field = isBlank(line_.text.front()) ? std::nullopt : fieldOf(text);
        if (!continues && !field) {
            // A single line between fields that is not a field is ignored; two of them begin the text.
            if (stray_ || fields_.empty()) {
                return withValue(endHeader(stray_.value_or(line_.offset)), false);
            }
            stray_ = line_.offset;
            return true;
        }
        headerBytes_ += line_.length + line_.terminator;
        if (headerBytes_ > limits_.headerBytes) {
            return failure(MailError::headersTooLarge);
        }
        if (continues) {
            fields_.back().value += withoutNulls(line_.text);
            return true;
        }
        stray_.reset();
        if (++headers_ > limits_.headers) {
            return failure(MailError::tooManyHeaders);
        }
        fields_.push_back(std::move(*field));
        return true;
    }

    // Ends the open header, and empty headers that begin within it.
    Step endHeaders(std::uint64_t contentBegin) {
        while (inHeader_) {
            if (auto ended = endHeader(stray_.value_or(contentBegin)); !ended) {
                return ended;
            }
        }
        return {};
    }

    Step endHeader(std::uint64_t contentBegin) {
        inHeader_ = false;
        const auto index = scan_.parts.size();
        if (index > limits_.parts) {
            return failure(MailError::tooManyParts);
        }
        const bool mayLackHeader = leadingBlank_ && contentBegin < fileSize_;
        if (index == 0 && !mayLackHeader && !isMailHeader(fields_)) {
            return failure(MailError::notAMail);
        }
        auto header = readPartHeader(fields_, !frames_.empty() && frames_.back().digest);
        header.part.begin = header.part.end = contentBegin;
        scan_.parts.push_back(std::move(header.part));
        if (!frames_.empty()) {
            auto& parent = scan_.parts[frames_.back().part];
            parent.children.push_back(index);
            nameMessage(parent, fields_);
        }
        if (index == 0) {
            scan_.header = std::move(fields_);
        }
        return enter(index, std::move(header.boundary));
    }

    Step enter(std::size_t index, std::string boundary) {
        const auto& part = scan_.parts[index];
        if (!isMessage(part) && boundary.empty()) {
            leaf_ = index;
            return {};
        }
        if (frames_.size() == limits_.depth) {
            return failure(MailError::nestedTooDeep);
        }
        frames_.push_back({index, std::move(boundary), part.mediaType == "multipart/digest"});
        if (isMessage(part)) {
            beginHeader();
        }
        return {};
    }

    // An attached message without a name is named after its subject.
    static void nameMessage(MailPart& parent, const std::vector<MailField>& fields) {
        const auto* subject = findField(fields, "Subject");
        if (isMessage(parent) && parent.name.empty() && subject != nullptr) {
            parent.name = decodedText(subject->value);
        }
    }

    static bool isMailHeader(const std::vector<MailField>& fields) {
        static constexpr std::string_view known[] = {
            "From",         "To",           "Cc",          "Bcc",        "Subject",     "Date",
            "Message-ID",   "Received",     "Return-Path", "Sender",     "Reply-To",    "MIME-Version",
            "Content-Type", "Delivered-To", "X-Mailer",    "References", "In-Reply-To", "Resent-From"};
        return std::ranges::any_of(known, [&](auto name) { return findField(fields, name) != nullptr; });
    }

    static constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

    MailLimits limits_;
    MailLines lines_;
    std::uint64_t fileSize_;
    MailLines::Line line_;
    std::uint64_t contentEnd_ = 0; // before the current line and the line break in front of it
    std::vector<Frame> frames_;
    std::size_t leaf_ = noPart;
    bool closing_ = false;
    // Whether a header is being read.
    bool inHeader_ = true;
    bool firstHeaderLine_ = true;
    bool leadingBlank_ = false;
    std::vector<MailField> fields_;
    std::optional<std::uint64_t> stray_; // start of the last line, if it was not a field
    std::size_t headers_ = 0;
    std::uint64_t headerBytes_ = 0;
    MailScan scan_;
};

} // namespace

bool isField(const MailField& field, std::string_view name) {
    return equalIgnoringASCIICase(field.name, name);
}

const MailField* findField(const std::vector<MailField>& fields, std::string_view name) {
    const auto found = std::ranges::find_if(fields, [&](const auto& each) { return isField(each, name); });
    return found == fields.end() ? nullptr : &*found;
}

Result<MailScan, MailError> scanMail(const MailFile& file, const MailLimits& limits) {
    return Scanner(file, limits).scan();
}

} // namespace zelto
