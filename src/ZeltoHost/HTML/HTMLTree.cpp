#include <ZeltoHost/HTML/HTMLTreeInternal.h>

#include <ZeltoHost/HTML/HTMLGuard.h>
#include <ZeltoHost/HTML/HTMLSpace.h>

#include <Platform/UTF8.h>

namespace zelto {

namespace {

// The worst case of a parse is 100 bytes of memory per byte of input, unless elements multiply.
constexpr std::size_t bytesForAByte = 128;
constexpr std::size_t minimumBytes = std::size_t{64} << 20;
constexpr double maximumCPUSeconds = 5;

// Well-formed UTF-8 without the control characters that are meaningless in text.
std::string readable(std::string_view html) {
    auto text = isValidUTF8(html) ? std::string(html) : repairedUTF8(html);
    std::erase_if(text, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 && !isHTMLSpace(c)) || byte == 0x7F;
    });
    return text;
}

} // namespace

HTMLTree::HTMLTree(std::string_view html) {
    auto text = readable(html);
    if (auto guarded = guardedHTML(text)) {
        source_ = std::move(*guarded);
        if (parse(minimumBytes + source_.size() * bytesForAByte, maximumCPUSeconds)) {
            return;
        }
    }
    source_ = flattenedHTML(text);
    while (!parse(static_cast<std::size_t>(-1) / 2, 1e9)) {
        source_.resize(source_.size() / 2); // out of memory
    }
}

bool HTMLTree::parse(std::size_t byteLimit, double cpuSeconds) {
    arena_ = std::make_unique<HTMLArena>(byteLimit, cpuSeconds);
    GumboOptions options = kGumboDefaultOptions;
    options.userdata = arena_.get();
    options.allocator = [](void* arena, std::size_t size) {
        return static_cast<HTMLArena*>(arena)->allocate(size);
    };
    options.deallocator = [](void*, void*) {};
    options.max_errors = 0;
    root_ = nullptr;
    if (setjmp(arena_->escape) != 0) {
        return false;
    }
    root_ = gumbo_parse_with_options(&options, source_.data(), source_.size())->root;
    return true;
}

bool isTextNode(const GumboNode& node) {
    return node.type == GUMBO_NODE_TEXT || node.type == GUMBO_NODE_WHITESPACE ||
           node.type == GUMBO_NODE_CDATA;
}

bool isElementNode(const GumboNode& node) {
    return node.type == GUMBO_NODE_ELEMENT;
}

bool isHTMLElement(const GumboNode& node) {
    return isElementNode(node) && node.v.element.tag_namespace == GUMBO_NAMESPACE_HTML;
}

std::string_view textOf(const GumboNode& node) {
    return node.v.text.text;
}

const char* attributeOf(const GumboElement& element, const char* name) {
    const auto* attribute = gumbo_get_attribute(&element.attributes, name);
    return attribute == nullptr ? nullptr : attribute->value;
}

} // namespace zelto
