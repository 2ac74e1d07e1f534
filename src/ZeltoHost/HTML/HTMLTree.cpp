#include <ZeltoHost/HTML/HTMLTreeInternal.h>

#include <ZeltoHost/HTML/HTMLGuard.h>
#include <ZeltoHost/HTML/HTMLSpace.h>

#include <Platform/UTF8.h>

namespace zelto {

namespace {

// What is made of a tree takes up to twice the tree's memory: all of it stays below 64 MiB and ten times the
// length of the text.
constexpr std::size_t minimumBytes = std::size_t{24} << 20;
constexpr std::size_t bytesForAByte = 3;
constexpr double maximumCPUSeconds = 5;

// Six times MailLimits::textBytes: as much as a text grows when its characters are written as entities.
constexpr std::size_t sourceLimit = std::size_t{96} << 20;

std::size_t byteLimitFor(const std::string& source) {
    return minimumBytes + source.size() * bytesForAByte;
}

// Well-formed UTF-8 without the control characters that are meaningless in text.
std::string readable(std::string html) {
    if (!isValidUTF8(html)) {
        html = repairedUTF8(html);
    }
    std::erase_if(html, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 && !isHTMLSpace(c)) || byte == 0x7F;
    });
    return html;
}

void note(ContentNotes* notes, ContentNoteKind kind) {
    if (notes != nullptr) {
        notes->add(kind);
    }
}

} // namespace

HTMLTree::HTMLTree(std::string html, ContentNotes* notes) {
    if (html.size() > sourceLimit) {
        html.resize(sourceLimit);
        note(notes, ContentNoteKind::textCut);
    }
    source_ = readable(std::move(html));
    if (auto guarded = guardedHTML(source_)) {
        source_ = *std::move(guarded);
        if (parse(byteLimitFor(source_), maximumCPUSeconds)) {
            return;
        }
    }
    parseTextAlone(notes);
}

void HTMLTree::parseTextAlone(ContentNotes* notes) {
    note(notes, ContentNoteKind::formattingLeftOut);
    const auto byteLimit = byteLimitFor(source_);
    source_ = flattenedHTML(source_);
    while (!parse(byteLimit, 1e9)) {
        note(notes, ContentNoteKind::textCut);
        source_.resize(source_.size() / 2);
    }
}

bool HTMLTree::parse(std::size_t byteLimit, double cpuSeconds) {
    arena_ = std::make_unique<HTMLArena>(byteLimit, cpuSeconds);
    GumboOptions options = kGumboDefaultOptions;
    options.userdata = arena_.get();
    options.allocator = [](void* arena, std::size_t size) {
        return static_cast<HTMLArena*>(arena)->allocate(size);
    };
    options.deallocator = [](void* arena, void* block) { static_cast<HTMLArena*>(arena)->deallocate(block); };
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
