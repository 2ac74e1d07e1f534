#pragma once

#include <cstddef>
#include <string_view>

namespace zelto {

// A piece of HTML source, recognised by the rules of HTML's tokenizer, as far as that is possible without a
// tree.
struct HTMLToken {
    enum class Kind { text, startTag, endTag, comment };

    Kind kind = Kind::text;
    std::string_view source; // all of it, from "<" to ">"
    std::string_view name;   // of a tag, as written
    bool selfClosing = false;

    // Where the attributes after the first `attributeLimit` ones begin in the source; 0 if there are fewer.
    std::size_t excessAttributes = 0;
};

// Splits HTML into tokens whose sources, joined, are the input again. One pass, no allocation. What follows a
// start tag of an element that contains only text (script, style, title ...) depends on the tree: a caller
// that keeps track of it calls readRawText.
class HTMLTokenizer {
  public:
    // More than any ordinary tag has; the parser's time for a tag grows with the square of their number.
    static constexpr std::size_t attributeLimit = 64;

    explicit HTMLTokenizer(std::string_view html) : html_(html) {}

    // False at the end.
    bool next(HTMLToken& token);

    // Makes everything up to the end tag of that name, or to the end of the input, the next token, as text.
    void readRawText(std::string_view name) { rawTextName_ = name; }

    // Whether "<![CDATA[" begins text, as within svg and math, or a comment.
    void setForeign(bool foreign) { foreign_ = foreign; }

  private:
    std::size_t rawTextEnd() const;
    std::size_t commentEnd() const;
    void readMarkup(HTMLToken& token);
    void readTag(HTMLToken& token, std::size_t nameStart);
    std::size_t afterAttribute(std::size_t at) const;

    std::string_view html_;
    std::size_t position_ = 0;
    std::string_view rawTextName_;
    bool foreign_ = false;
};

} // namespace zelto
