#include <ZeltoHost/HTML/CleanedHTML.h>

#include <ZeltoHost/HTML/CSSCleaner.h>
#include <ZeltoHost/HTML/DataImage.h>
#include <ZeltoHost/HTML/HTMLSpace.h>
#include <ZeltoHost/HTML/HTMLTagKindsInternal.h>
#include <ZeltoHost/HTML/MarkupEscape.h>
#include <ZeltoHost/HTML/MarkupWriterInternal.h>

#include <Platform/UTF8.h>

#include <algorithm>
#include <array>
#include <utility>

#define T(NAME) GUMBO_TAG_##NAME // NOLINT(cppcoreguidelines-macro-usage)

namespace zelto {

namespace {

constexpr HTMLTagSet written{
    T(A),      T(ABBR),     T(ACRONYM),    T(ADDRESS),  T(ARTICLE),    T(ASIDE),  T(B),      T(BDI),
    T(BDO),    T(BIG),      T(BLOCKQUOTE), T(BR),       T(CAPTION),    T(CENTER), T(CITE),   T(CODE),
    T(COL),    T(COLGROUP), T(DD),         T(DEL),      T(DETAILS),    T(DFN),    T(DIR),    T(DIV),
    T(DL),     T(DT),       T(EM),         T(FIELDSET), T(FIGCAPTION), T(FIGURE), T(FONT),   T(FOOTER),
    T(H1),     T(H2),       T(H3),         T(H4),       T(H5),         T(H6),     T(HEADER), T(HGROUP),
    T(HR),     T(I),        T(INS),        T(KBD),      T(LEGEND),     T(LI),     T(MAIN),   T(MARK),
    T(MENU),   T(NAV),      T(NOBR),       T(OL),       T(P),          T(PRE),    T(Q),      T(RP),
    T(RT),     T(RUBY),     T(S),          T(SAMP),     T(SECTION),    T(SMALL),  T(SPAN),   T(STRIKE),
    T(STRONG), T(SUB),      T(SUMMARY),    T(SUP),      T(TABLE),      T(TBODY),  T(TD),     T(TFOOT),
    T(TH),     T(THEAD),    T(TIME),       T(TR),       T(TT),         T(U),      T(UL),     T(VAR),
    T(WBR)};

constexpr HTMLTagSet preformatted{T(LISTING), T(XMP), T(PLAINTEXT)};

constexpr HTMLTagSet dropped{T(HEAD),    T(SCRIPT), T(STYLE),    T(TEMPLATE), T(TITLE),    T(IFRAME),
                             T(NOEMBED), T(SELECT), T(TEXTAREA), T(DATALIST), T(AUDIO),    T(VIDEO),
                             T(CANVAS),  T(EMBED),  T(MAP),      T(METER),    T(PROGRESS), T(FRAMESET)};

constexpr std::array<std::string_view, 40> attributes{
    "align",   "alt",    "bgcolor", "border",  "cellpadding", "cellspacing", "char",   "charoff",
    "class",   "clear",  "color",   "colspan", "compact",     "datetime",    "dir",    "face",
    "headers", "height", "hspace",  "id",      "lang",        "noshade",     "nowrap", "open",
    "rowspan", "rules",  "frame",   "scope",   "size",        "span",        "start",  "style",
    "summary", "title",  "type",    "valign",  "value",       "vspace",      "width",  "abbr"};

bool isHarmlessAttribute(std::string_view name) {
    return std::ranges::find(attributes, name) != attributes.end();
}

// The body of a document that has a header or a footer.
constexpr std::string_view bodyClass = "zelto-body";

// Text does not touch the edges of a coloured area, unless the body's own rules have it so.
constexpr std::string_view colouredBodyRule = ".zelto-body{padding:8px}\n";

// Comments are not written otherwise, and no text, attribute or rule has a "<". The header is above the body
// in layers too, so that what flows over the body's edge is behind it.
constexpr std::string_view headerBegin =
    "<div style=\"position:relative;z-index:1;background-color:#fff;color:#000;"
    "border-bottom:1px solid #bbb;padding-bottom:8px;margin-bottom:16px\"><!--header-->";
constexpr std::string_view headerEnd = "<!--/header--></div>\n";

class CleanedHTMLWriter final : public MarkupWriter {
  public:
    explicit CleanedHTMLWriter(const CleanedHTMLOptions& options) : options_(options) {}

    void writeBody(std::string body) {
        readsStyles_ = true;
        write(std::move(body), options_.notes);
        readsStyles_ = false;
    }

    std::string finish() {
        auto body = takeMarkup();
        std::string html = "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\"/>\n<title>";
        appendEscaped(html, options_.title.empty() ? title_ : repairedUTF8(options_.title), Quotes::keep);
        html += "</title>\n";
        // HTML that is cleaned again, below a header again, has the rule already.
        if (isScoped() && hasBackground() && styles_.find(colouredBodyRule) == std::string::npos) {
            styles_.insert(0, colouredBodyRule);
        }
        if (!styles_.empty()) {
            html += "<style>\n" + styles_ + "</style>\n";
        }
        html += "</head>\n";
        html += isScoped() ? "<body>\n" : "<body" + bodyAttributes_ + ">\n";
        const auto header = cleanedPart(options_.header);
        const auto footer = cleanedPart(options_.footer);
        html.reserve(html.size() + header.size() + body.size() + footer.size() + 1024); // a body may be large
        if (!header.empty()) {
            html.append(headerBegin).append(header).append(headerEnd);
        }
        html.append(isScoped() ? "<div" + bodyAttributes_ + ">\n" : "").append(body);
        html.append(isScoped() ? "\n</div>\n" : "\n").append(footer);
        return html.append("</body>\n</html>\n");
    }

  protected:
    ElementPlan planFor(GumboTag tag) const override {
        if (written.contains(tag)) {
            return {ElementPlan::Kind::write, gumbo_normalized_tagname(tag)};
        }
        if (preformatted.contains(tag)) {
            return {ElementPlan::Kind::write, "pre"};
        }
        return {dropped.contains(tag) ? ElementPlan::Kind::drop : ElementPlan::Kind::unwrap, {}};
    }

    bool allowsAttribute(GumboTag tag, std::string_view name) const override {
        return isHarmlessAttribute(name) || (tag == T(A) && (name == "href" || name == "name"));
    }

    bool isXML() const override { return false; }

    bool keepsHidden() const override { return true; }

    bool keepsLinks() const override { return options_.links; }

    bool writeImage(const GumboElement& image) override {
        const char* source = attributeOf(image, "src");
        if (source == nullptr || !options_.images) {
            return false;
        }
        const auto given = options_.imageSource ? options_.imageSource(source) : std::nullopt;
        const auto address = rasterDataURL(given ? std::string_view(*given) : source);
        if (!address) {
            return false;
        }
        markup_ += "<img";
        writeAttribute("src", *address);
        writeAttributes(image);
        markup_ += "/>";
        return true;
    }

    void sawElement(const GumboElement& element) override {
        if (!readsStyles_) {
            return;
        }
        if (element.tag == T(STYLE)) {
            addStyle(element);
        } else if (element.tag == T(TITLE) && title_.empty()) {
            title_ = contentOf(element);
        } else if (element.tag == T(BODY) && bodyAttributes_.empty()) {
            addBodyAttributes(element);
        } else if (element.tag == T(HEAD)) {
            sawHead(element);
        }
    }

  private:
    // The head is not written, and is therefore not visited by the walk.
    void sawHead(const GumboElement& head) {
        for (unsigned index = 0; index < head.children.length; ++index) {
            const auto& child = *static_cast<const GumboNode*>(head.children.data[index]);
            if (isHTMLElement(child) && child.v.element.tag != T(HEAD)) {
                sawElement(child.v.element);
            }
        }
    }

    static std::string contentOf(const GumboElement& element) {
        std::string content;
        for (unsigned index = 0; index < element.children.length; ++index) {
            const auto& child = *static_cast<const GumboNode*>(element.children.data[index]);
            if (isTextNode(child)) {
                content += textOf(child);
            }
        }
        return std::string(trimmedHTMLSpace(content));
    }

    void addStyle(const GumboElement& element) {
        const char* media = attributeOf(element, "media");
        const auto sheet = withoutUnwritable(contentOf(element));
        styles_ += cleanedStyleSheet(
            media == nullptr || *media == '\0' ? sheet : "@media " + std::string(media) + "{" + sheet + "}",
            isScoped() ? "." + std::string(bodyClass) : std::string());
    }

    // Of the body itself.
    bool hasBackground() const {
        constexpr std::string_view rule = ".zelto-body{";
        bool found = bodyAttributes_.find("background") != std::string::npos;
        for (auto at = styles_.find(rule); !found && at != std::string::npos;
             at = styles_.find(rule, at + 1)) {
            found = std::string_view(styles_).substr(at, styles_.find('}', at) - at).find("background") !=
                    std::string_view::npos;
        }
        return found;
    }

    bool isScoped() const { return !options_.header.empty() || !options_.footer.empty(); }

    std::string cleanedPart(const std::string& html) {
        write(html, options_.notes);
        return takeMarkup();
    }

    void addBodyAttributes(const GumboElement& body) {
        auto content = std::exchange(markup_, {});
        if (isScoped()) {
            writeScopeAttributes(body);
        } else {
            writeAttributes(body);
        }
        bodyAttributes_ = std::exchange(markup_, std::move(content));
    }

    // Of the element that stands for the body.
    void writeScopeAttributes(const GumboElement& body) {
        const auto valueOf = [&](const char* name) {
            const char* value = attributeOf(body, name);
            return std::string(value == nullptr ? "" : value);
        };
        writeAttribute("class",
                       std::string(bodyClass) + (valueOf("class").empty() ? "" : " ") + valueOf("class"));
        const auto colour = valueOf("bgcolor");
        const auto style = cleanedDeclarations((colour.empty() ? "" : "background-color:" + colour + ";") +
                                               valueOf("style"));
        for (const auto& [name, value] :
             {std::pair("style", style), std::pair("id", valueOf("id")), std::pair("dir", valueOf("dir")),
              std::pair("lang", valueOf("lang"))}) {
            if (!value.empty()) {
                writeAttribute(name, value);
            }
        }
    }

    const CleanedHTMLOptions& options_;
    std::string styles_;
    std::string title_;
    std::string bodyAttributes_;
    bool readsStyles_ = false;
};

} // namespace

std::string cleanedHTML(std::string html, const CleanedHTMLOptions& options) {
    CleanedHTMLWriter writer(options);
    writer.writeBody(std::move(html));
    return writer.finish();
}

SplitHTML splitCleanedHTML(std::string html) {
    const auto begin = html.find(headerBegin);
    const auto end = html.find(headerEnd, begin);
    if (begin == std::string::npos || end == std::string::npos) {
        return {{}, std::move(html)};
    }
    const auto headerStart = begin + headerBegin.size();
    auto header = html.substr(headerStart, end - headerStart);
    html.erase(begin, end + headerEnd.size() - begin);
    return {std::move(header), std::move(html)};
}

} // namespace zelto
