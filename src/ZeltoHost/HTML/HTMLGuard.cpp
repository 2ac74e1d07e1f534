#include <ZeltoHost/HTML/HTMLGuard.h>

#include <ZeltoHost/HTML/HTMLSpace.h>
#include <ZeltoHost/HTML/HTMLTokenizer.h>
#include <ZeltoHost/HTML/OpenElementsInternal.h>

namespace zelto {

namespace {

// A step takes about a nanosecond.
constexpr std::uint64_t workLimit = 300'000'000;

GumboTag tagOf(std::string_view name) {
    return gumbo_tagn_enum(name.data(), static_cast<unsigned>(name.size()));
}

// Copies what is kept, in as few pieces as possible.
class KeptSource {
  public:
    explicit KeptSource(std::string& html) : html_(html) {}

    void drop(std::string_view piece) {
        const auto begin = static_cast<std::size_t>(piece.data() - html_.data());
        kept_.append(html_, copied_, begin - copied_);
        copied_ = begin + piece.size();
    }

    void add(std::string_view piece) { kept_ += piece; }

    // Most documents are kept as they are, without a second copy.
    std::string finish() {
        if (copied_ == 0) {
            return std::move(html_);
        }
        kept_.append(html_, copied_);
        return std::move(kept_);
    }

  private:
    std::string& html_;
    std::string kept_;
    std::size_t copied_ = 0;
};

// Text whose white space is collapsed as in a browser.
class FlatText {
  public:
    void add(std::string_view text) {
        for (const char c : text) {
            if (!isHTMLSpace(c)) {
                html_ += c;
            } else if (html_.back() != '\n' && html_.back() != ' ') {
                html_ += ' ';
            }
        }
    }

    void breakLine() { html_ += '\n'; }

    void endBlock() {
        if (html_.back() != '\n') {
            breakLine();
        }
    }

    std::string finish() {
        html_ += "</pre>";
        return std::move(html_);
    }

  private:
    // The first line end of a pre element does not count.
    std::string html_ = "<pre style=\"white-space:pre-wrap\">\n";
};

} // namespace

std::optional<std::string> guardedHTML(std::string html) {
    KeptSource kept(html);
    OpenElements open;
    HTMLTokenizer tokenizer(html);
    HTMLToken token;
    while (tokenizer.next(token)) {
        if (token.kind == HTMLToken::Kind::text) {
            open.text(token.source.size());
        } else if (token.kind == HTMLToken::Kind::startTag) {
            const auto tag = tagOf(token.name);
            const auto verdict = open.start(tag, token.selfClosing);
            if (verdict == OpenElements::Verdict::drop) {
                kept.drop(token.source);
            } else if (token.excessAttributes > 0) {
                kept.drop(token.source.substr(token.excessAttributes));
                kept.add(token.selfClosing ? "/>" : ">");
            }
            if (open.beginsRawText(tag)) {
                tokenizer.readRawText(token.name);
            }
        } else if (token.kind == HTMLToken::Kind::endTag) {
            if (open.end(tagOf(token.name)) == OpenElements::Verdict::drop) {
                kept.drop(token.source);
            }
        }
        tokenizer.setForeign(open.inForeignContent());
        if (open.work() > workLimit) {
            return std::nullopt;
        }
    }
    return kept.finish();
}

std::string flattenedHTML(std::string_view html) {
    FlatText flat;
    HTMLTokenizer tokenizer(html);
    HTMLToken token;
    GumboTag rawText = GUMBO_TAG_LAST;
    while (tokenizer.next(token)) {
        const auto tag = token.name.empty() ? GUMBO_TAG_LAST : tagOf(token.name);
        if (token.kind == HTMLToken::Kind::text && rawText == GUMBO_TAG_LAST) {
            flat.add(token.source);
        }
        if (token.kind == HTMLToken::Kind::startTag && rawTextTags.contains(tag)) {
            tokenizer.readRawText(token.name);
            rawText = tag;
            continue;
        }
        rawText = GUMBO_TAG_LAST;
        if (tag == GUMBO_TAG_BR) {
            flat.breakLine();
        } else if (tag != GUMBO_TAG_LAST && blockTags.contains(tag)) {
            flat.endBlock();
        }
    }
    return flat.finish();
}

} // namespace zelto
