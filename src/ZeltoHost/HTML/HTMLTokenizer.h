#pragma once

#include <cstddef>
#include <string_view>

namespace zelto {

// A piece of HTML source, told apart by the rules of HTML's tokenizer as far as tags can be told without a
// tree.
struct HTMLToken {
    enum class Kind { text, startTag, endTag, comment };

    Kind kind = Kind::text;
    std::string_view source; // all of it, from "<" to ">"
    std::string_view name;   // of a tag, as it was written
    bool selfClosing = false;

    // Where in the source the attributes behind the first `attributeLimit` ones begin; 0 if there are not so
    // many.
    std::size_t excessAttributes = 0;
};

// Cuts HTML into tokens whose sources, joined, are the input again. One pass, no allocation. What follows a
// start tag of an element that holds text alone (script, style, title ...) depends on the tree, so whoever
// keeps track of that says so by readRawText.
class HTMLTokenizer {
  public:
    // More than any honest tag has; the parser's time for one tag grows with their square.
    static constexpr std::size_t attributeLimit = 64;

    explicit HTMLTokenizer(std::string_view html) : html_(html) {}

    // False at the end.
    bool next(HTMLToken& token);

    // Gives all up to the end tag of that name, or to the end of the input, as the next token, a text.
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
