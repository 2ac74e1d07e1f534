#include <ZeltoHost/HTML/PlainText.h>

#include <ZeltoHost/HTML/MarkupEscape.h>
#include <ZeltoHost/HTML/TextFlow.h>

#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>

namespace zelto {

namespace {

void endLine(std::string& text) {
    text.resize(text.find_last_not_of(" \t") + 1);
}

// Writes lines with the quotation mark in front of each.
class LineWriter {
  public:
    void begin(int quoteDepth) {
        prefix_.clear();
        for (int level = 0; level < std::min(quoteDepth, quoteLimit); ++level) {
            prefix_ += "> ";
        }
        text_ += prefix_;
    }

    void write(std::string_view text) {
        while (true) {
            const auto end = text.find('\n');
            text_ += text.substr(0, end);
            if (end == std::string_view::npos) {
                return;
            }
            newLine();
            text_ += prefix_;
            text.remove_prefix(end + 1);
        }
    }

    void newLine() {
        endLine(text_);
        text_ += '\n';
    }

    std::string finish() {
        endLine(text_);
        return std::move(text_);
    }

  private:
    static constexpr int quoteLimit = 32;

    std::string text_;
    std::string prefix_;
};

bool showsAddress(std::string_view text, std::string_view address) {
    text = trimmed(text);
    for (const std::string_view scheme : {"", "mailto:", "tel:", "http://", "https://"}) {
        if (address.starts_with(scheme)) {
            const auto remaining = address.substr(scheme.size());
            if (text == remaining ||
                (remaining.ends_with('/') && text == remaining.substr(0, remaining.size() - 1))) {
                return true;
            }
        }
    }
    return false;
}

void writeRuns(LineWriter& writer, const TextFlow& flow, const TextFlow::Block& block,
               const PlainTextOptions& options) {
    std::string linkText;
    for (std::size_t index = 0; index < block.runs.size(); ++index) {
        const auto& run = block.runs[index];
        writer.write(run.text);
        if (!run.link || !options.linkTargets) {
            continue;
        }
        linkText += run.text;
        const bool last = index + 1 == block.runs.size() || block.runs[index + 1].link != run.link;
        const auto& address = flow.links[*run.link].absoluteString();
        if (last && !isBlank(linkText) && !showsAddress(linkText, address)) {
            writer.write(" <" + address + ">");
        }
        if (last) {
            linkText.clear();
        }
    }
}

} // namespace

std::string plainTextFromHTML(std::string html, const PlainTextOptions& options) {
    const auto flow = textFlowOf(std::move(html), options.notes);
    LineWriter writer;
    const TextFlow::Block* before = nullptr;
    for (const auto& block : flow.blocks) {
        if (before != nullptr) {
            writer.newLine();
        }
        if (before != nullptr && block.gapBefore) {
            writer.begin(std::min(before->quoteDepth, block.quoteDepth));
            writer.newLine();
        }
        writer.begin(block.quoteDepth);
        writeRuns(writer, flow, block, options);
        before = &block;
    }
    return writer.finish();
}

namespace {

constexpr std::string_view noBreakSpace = "\u00A0";

} // namespace

std::string htmlEscaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    appendEscaped(escaped, repairedUTF8(text), Quotes::escape);
    return escaped;
}

std::string htmlFromPlainText(std::string_view plainText) {
    const auto text = htmlEscaped(plainText);
    std::string html;
    html.reserve(text.size() + text.size() / 8);
    bool blankBefore = true;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '\n' || c == '\r') {
            html += "<br>\n";
            at += c == '\r' && text.compare(at + 1, 1, "\n") == 0 ? 1 : 0;
            blankBefore = true;
        } else if (c == '\t') {
            for (int i = 0; i < 4; ++i) {
                html += noBreakSpace;
            }
            blankBefore = false;
        } else if (c == ' ') {
            html += blankBefore ? noBreakSpace : std::string_view(" ");
            blankBefore = !blankBefore;
        } else {
            html += c;
            blankBefore = false;
        }
    }
    return html;
}

} // namespace zelto
