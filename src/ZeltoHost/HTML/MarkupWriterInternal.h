// For sources only: brings in gumbo.
#pragma once

#include <ZeltoHost/HTML/HTMLTreeInternal.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// How an element is written: under a name, without its tags but with its content, or not at all.
struct ElementPlan {
    enum class Kind { write, unwrap, drop };

    Kind kind = Kind::unwrap;
    std::string_view name;
};

// Writes the allowed content of a document's body. It closes every tag that it opens and escapes every text,
// so the result is well-formed and contains only what the plans allow.
class MarkupWriter {
  public:
    virtual ~MarkupWriter() = default;

    // Adds the content of the body.
    void write(std::string html, ContentNotes* notes);

    std::string takeMarkup() { return std::move(markup_); }

    bool enter(const GumboNode& node);
    void leave(const GumboNode& node);

  protected:
    virtual ElementPlan planFor(GumboTag tag) const = 0;
    virtual bool allowsAttribute(GumboTag tag, std::string_view name) const = 0;
    virtual bool isXML() const = 0;
    virtual bool keepsHidden() const = 0;

    virtual bool keepsLinks() const { return true; }

    // Writes an image; false if its alternative text is to be written instead.
    virtual bool writeImage(const GumboElement& image) = 0;

    // Called for other elements of the tree.
    virtual void sawElement(const GumboElement&) {}

    // Writes the allowed attributes, cleaned.
    void writeAttributes(const GumboElement& element);
    void writeAttribute(std::string_view name, std::string_view value);

    std::string markup_;

  private:
    bool enterElement(const GumboNode& node);
    void writeOpeningTag(const GumboElement& element, std::string_view name, bool isVoid);
    void writeCleanedAttribute(std::string_view name, std::string_view value);

    std::vector<std::string_view> open_; // empty for an element that is written without its tags
};

// In lower case and without a namespace prefix.
std::string attributeName(const GumboAttribute& attribute);

} // namespace zelto
