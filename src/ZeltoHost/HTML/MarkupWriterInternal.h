// For sources only: brings in gumbo.
#pragma once

#include <ZeltoHost/HTML/HTMLTreeInternal.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// What becomes of an element: it is written under a name, left out with its content staying, or left out
// whole.
struct ElementPlan {
    enum class Kind { write, unwrap, drop };

    Kind kind = Kind::unwrap;
    std::string_view name;
};

// Writes the body of a document again with what is allowed of it. Every tag that it opens it closes, and
// every text is escaped, so what comes out is well-formed and holds nothing that the plans do not name.
class MarkupWriter {
  public:
    virtual ~MarkupWriter() = default;

    // Adds the content of the body.
    void write(std::string_view html);

    std::string takeMarkup() { return std::move(markup_); }

    bool enter(const GumboNode& node);
    void leave(const GumboNode& node);

  protected:
    virtual ElementPlan planFor(GumboTag tag) const = 0;
    virtual bool allowsAttribute(GumboTag tag, std::string_view name) const = 0;
    virtual bool isXML() const = 0;
    virtual bool keepsHidden() const = 0;

    virtual bool keepsLinks() const { return true; }

    // Writes an image; false if its alternative text has to do.
    virtual bool writeImage(const GumboElement& image) = 0;

    // What else there is to see in the tree.
    virtual void sawElement(const GumboElement&) {}

    // Writes the attributes that are allowed, cleaned.
    void writeAttributes(const GumboElement& element);
    void writeAttribute(std::string_view name, std::string_view value);

    std::string markup_;

  private:
    bool enterElement(const GumboNode& node);
    void writeOpeningTag(const GumboElement& element, std::string_view name, bool isVoid);
    void writeCleanedAttribute(std::string_view name, std::string_view value);

    std::vector<std::string_view> open_; // empty for an element that is unwrapped
};

// In lower case and without a namespace's prefix.
std::string attributeName(const GumboAttribute& attribute);

} // namespace zelto
