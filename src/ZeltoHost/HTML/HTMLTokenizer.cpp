#include <ZeltoHost/HTML/HTMLTokenizer.h>

#include <Platform/ASCII.h>

#include <ZeltoHost/HTML/HTMLSpace.h>

#include <algorithm>

namespace zelto {

namespace {

constexpr auto npos = std::string_view::npos;

bool beginsMarkup(std::string_view html, std::size_t at) {
    if (at + 1 >= html.size()) {
        return false;
    }
    const char next = html[at + 1];
    return isASCIILetter(next) || next == '!' || next == '?' || (next == '/' && at + 2 < html.size());
}

std::size_t orEnd(std::size_t found, std::size_t behind, std::size_t size) {
    return found == npos ? size : found + behind;
}

} // namespace

bool HTMLTokenizer::next(HTMLToken& token) {
    token = {};
    const auto start = position_;
    if (!rawTextName_.empty()) {
        position_ = rawTextEnd();
        rawTextName_ = {};
        if (position_ > start) {
            token.source = html_.substr(start, position_ - start);
            return true;
        }
    }
    if (start >= html_.size()) {
        return false;
    }
    if (html_[start] == '<' && beginsMarkup(html_, start)) {
        readMarkup(token);
    } else {
        do {
            position_ = std::min(html_.find('<', position_ + 1), html_.size());
        } while (position_ < html_.size() && !beginsMarkup(html_, position_));
    }
    token.source = html_.substr(start, position_ - start);
    return true;
}

std::size_t HTMLTokenizer::rawTextEnd() const {
    for (auto at = html_.find("</", position_); at != npos; at = html_.find("</", at + 2)) {
        const auto behind = at + 2 + rawTextName_.size();
        if (equalIgnoringASCIICase(html_.substr(at + 2, rawTextName_.size()), rawTextName_) &&
            (behind >= html_.size() || isHTMLSpace(html_[behind]) || html_[behind] == '/' ||
             html_[behind] == '>')) {
            return at;
        }
    }
    return html_.size();
}

std::size_t HTMLTokenizer::commentEnd() const {
    const auto text = position_ + 4;
    const auto remaining = html_.substr(std::min(text, html_.size()));
    if (remaining.starts_with(">") || remaining.starts_with("->")) {
        return text + remaining.find('>') + 1;
    }
    for (auto at = html_.find("--", text); at != npos; at = html_.find("--", at + 1)) {
        const auto behind = html_.substr(at + 2, 2);
        if (behind.starts_with('>')) {
            return at + 3;
        }
        if (behind == "!>") {
            return at + 4;
        }
    }
    return html_.size();
}

void HTMLTokenizer::readMarkup(HTMLToken& token) {
    const auto remaining = html_.substr(position_);
    if (isASCIILetter(remaining[1])) {
        token.kind = HTMLToken::Kind::startTag;
        return readTag(token, position_ + 1);
    }
    if (remaining[1] == '/' && isASCIILetter(remaining[2])) {
        token.kind = HTMLToken::Kind::endTag;
        return readTag(token, position_ + 2);
    }
    if (foreign_ && remaining.starts_with("<![CDATA[")) {
        position_ = orEnd(html_.find("]]>", position_ + 9), 3, html_.size());
        return;
    }
    token.kind = HTMLToken::Kind::comment;
    position_ =
        remaining.starts_with("<!--") ? commentEnd() : orEnd(html_.find('>', position_), 1, html_.size());
}

void HTMLTokenizer::readTag(HTMLToken& token, std::size_t nameStart) {
    const auto start = position_;
    auto at = nameStart;
    while (at < html_.size() && !isHTMLSpace(html_[at]) && html_[at] != '/' && html_[at] != '>') {
        ++at;
    }
    token.name = html_.substr(nameStart, at - nameStart);
    std::size_t attributes = 0;
    while (at < html_.size() && html_[at] != '>') {
        if (isHTMLSpace(html_[at]) || html_[at] == '/') {
            token.selfClosing = html_[at] == '/';
            ++at;
            continue;
        }
        if (++attributes == attributeLimit + 1) {
            token.excessAttributes = at - start;
        }
        token.selfClosing = false;
        at = afterAttribute(at);
    }
    position_ = std::min(at + 1, html_.size());
}

std::size_t HTMLTokenizer::afterAttribute(std::size_t at) const {
    const auto skipSpace = [&] {
        while (at < html_.size() && isHTMLSpace(html_[at])) {
            ++at;
        }
    };
    ++at; // a name may begin with "="
    while (at < html_.size() && !isHTMLSpace(html_[at]) && html_[at] != '/' && html_[at] != '>' &&
           html_[at] != '=') {
        ++at;
    }
    skipSpace();
    if (at >= html_.size() || html_[at] != '=') {
        return at;
    }
    ++at;
    skipSpace();
    if (at < html_.size() && (html_[at] == '"' || html_[at] == '\'')) {
        return orEnd(html_.find(html_[at], at + 1), 1, html_.size());
    }
    while (at < html_.size() && !isHTMLSpace(html_[at]) && html_[at] != '>') {
        ++at;
    }
    return at;
}

} // namespace zelto
