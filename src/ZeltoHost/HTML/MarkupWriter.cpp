#include <ZeltoHost/HTML/MarkupWriterInternal.h>

#include <Platform/ASCII.h>

#include <ZeltoHost/HTML/CSSCleaner.h>
#include <ZeltoHost/HTML/HTMLSpace.h>
#include <ZeltoHost/HTML/HTMLTagKindsInternal.h>
#include <ZeltoHost/HTML/InlineStyle.h>
#include <ZeltoHost/HTML/MarkupEscape.h>
#include <ZeltoHost/HTML/SafeLink.h>

#include <algorithm>
#include <charconv>

namespace zelto {

namespace {

// A table of two thousand million columns hangs any layout engine; some need half a minute for a thousand.
constexpr int spanLimit = 100;

std::optional<std::string> cleanedSpan(std::string_view value) {
    value = trimmedHTMLSpace(value);
    long span = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), span);
    if (error == std::errc::result_out_of_range) {
        return std::to_string(spanLimit);
    }
    if (error != std::errc() || span < 1) {
        return std::nullopt;
    }
    return std::to_string(std::min<long>(span, spanLimit));
}

std::optional<std::string> cleanedHref(std::string_view value, bool withFragments) {
    value = trimmedHTMLSpace(value);
    if (value.starts_with('#')) {
        return withFragments ? std::optional(std::string(value)) : std::nullopt;
    }
    const auto url = safeLink(value);
    return url ? std::optional(url->absoluteString()) : std::nullopt;
}

bool beginsWithLineEnd(const GumboElement& element) {
    if (element.children.length == 0) {
        return false;
    }
    const auto& first = *static_cast<const GumboNode*>(element.children.data[0]);
    return isTextNode(first) && textOf(first).starts_with('\n');
}

} // namespace

std::string attributeName(const GumboAttribute& attribute) {
    return toASCIILower(attribute.name);
}

void MarkupWriter::write(std::string html, ContentNotes* notes) {
    markup_.reserve(markup_.size() + html.size());
    const HTMLTree tree(std::move(html), notes);
    walk(tree.root(), *this);
}

bool MarkupWriter::enter(const GumboNode& node) {
    if (isTextNode(node)) {
        appendEscaped(markup_, textOf(node), Quotes::keep);
        return false;
    }
    return isElementNode(node) && enterElement(node);
}

bool MarkupWriter::enterElement(const GumboNode& node) {
    const auto& element = node.v.element;
    if (!isHTMLElement(node)) {
        if (element.tag == GUMBO_TAG_SVG) {
            return false;
        }
        open_.emplace_back();
        return true;
    }
    sawElement(element);
    const char* style = attributeOf(element, "style");
    const bool hidden = style != nullptr && inlineStyle(style).hidden;
    if ((hidden && !keepsHidden()) || attributeOf(element, "hidden") != nullptr) {
        return false;
    }
    if (element.tag == GUMBO_TAG_IMG) {
        const char* alternative = attributeOf(element, "alt");
        if (!writeImage(element) && alternative != nullptr) {
            appendEscaped(markup_, alternative, Quotes::keep);
        }
        return false;
    }
    const auto plan = planFor(element.tag);
    if (plan.kind == ElementPlan::Kind::drop) {
        return false;
    }
    const bool isVoid = voidTags.contains(element.tag);
    if (plan.kind == ElementPlan::Kind::write) {
        writeOpeningTag(element, plan.name, isVoid);
    }
    if (isVoid) {
        return false;
    }
    open_.push_back(plan.kind == ElementPlan::Kind::write ? plan.name : std::string_view());
    return true;
}

void MarkupWriter::leave(const GumboNode&) {
    if (!open_.back().empty()) {
        markup_ += "</";
        markup_ += open_.back();
        markup_ += '>';
    }
    open_.pop_back();
}

void MarkupWriter::writeOpeningTag(const GumboElement& element, std::string_view name, bool isVoid) {
    markup_ += '<';
    markup_ += name;
    writeAttributes(element);
    markup_ += isVoid ? "/>" : ">";
    if (!isXML() && name == "pre" && beginsWithLineEnd(element)) {
        markup_ += '\n'; // a first one is not part of the text
    }
}

void MarkupWriter::writeAttributes(const GumboElement& element) {
    for (unsigned index = 0; index < element.attributes.length; ++index) {
        const auto& attribute = *static_cast<const GumboAttribute*>(element.attributes.data[index]);
        const auto name = attributeName(attribute);
        if (attribute.attr_namespace == GUMBO_ATTR_NAMESPACE_NONE && allowsAttribute(element.tag, name)) {
            writeCleanedAttribute(name, attribute.value);
        }
    }
}

void MarkupWriter::writeCleanedAttribute(std::string_view name, std::string_view value) {
    if (name == "style") {
        if (const auto style = cleanedDeclarations(value); !style.empty()) {
            writeAttribute(name, style);
        }
    } else if (name == "href") {
        if (const auto href = keepsLinks() ? cleanedHref(value, !isXML()) : std::nullopt) {
            writeAttribute(name, *href);
        }
    } else if (name == "colspan" || name == "rowspan" || name == "span") {
        if (const auto span = cleanedSpan(value)) {
            writeAttribute(name, *span);
        }
    } else {
        writeAttribute(name, value);
    }
}

void MarkupWriter::writeAttribute(std::string_view name, std::string_view value) {
    markup_ += ' ';
    markup_ += name;
    markup_ += "=\"";
    appendEscaped(markup_, value, Quotes::escape);
    markup_ += '"';
}

} // namespace zelto
