#include <ZeltoHost/HTML/ENML.h>

#include <ZeltoHost/HTML/HTMLTagKindsInternal.h>
#include <ZeltoHost/HTML/MarkupWriterInternal.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <array>

#define T(NAME) GUMBO_TAG_##NAME // NOLINT(cppcoreguidelines-macro-usage)

namespace zelto {

namespace {

constexpr HTMLTagSet written{T(A),      T(ABBR),    T(ACRONYM), T(ADDRESS), T(B),     T(BIG),  T(BLOCKQUOTE),
                             T(BR),     T(CAPTION), T(CENTER),  T(CITE),    T(CODE),  T(COL),  T(COLGROUP),
                             T(DD),     T(DEL),     T(DFN),     T(DIV),     T(DL),    T(DT),   T(EM),
                             T(FONT),   T(H1),      T(H2),      T(H3),      T(H4),    T(H5),   T(H6),
                             T(HR),     T(I),       T(INS),     T(KBD),     T(LI),    T(OL),   T(P),
                             T(PRE),    T(Q),       T(S),       T(SAMP),    T(SMALL), T(SPAN), T(STRIKE),
                             T(STRONG), T(SUB),     T(SUP),     T(TABLE),   T(TBODY), T(TD),   T(TFOOT),
                             T(TH),     T(THEAD),   T(TR),      T(TT),      T(U),     T(UL),   T(VAR)};

// Elements that ENML does not have, and the nearest that it has.
constexpr HTMLTagSet asBlock{T(ARTICLE), T(ASIDE),  T(DETAILS), T(FIELDSET), T(FIGCAPTION),
                             T(FIGURE),  T(FOOTER), T(FORM),    T(HEADER),   T(HGROUP),
                             T(LEGEND),  T(MAIN),   T(NAV),     T(SECTION),  T(SUMMARY)};
constexpr HTMLTagSet asPreformatted{T(LISTING), T(XMP), T(PLAINTEXT)};
constexpr HTMLTagSet asList{T(DIR), T(MENU)};
constexpr HTMLTagSet asSpan{T(BDO), T(BDI), T(MARK), T(TIME), T(NOBR)};

constexpr HTMLTagSet dropped{T(HEAD),    T(SCRIPT), T(STYLE),    T(TEMPLATE), T(TITLE),    T(IFRAME),
                             T(NOEMBED), T(SELECT), T(TEXTAREA), T(DATALIST), T(AUDIO),    T(VIDEO),
                             T(CANVAS),  T(EMBED),  T(MAP),      T(METER),    T(PROGRESS), T(FRAMESET)};

constexpr HTMLTagSet aligned{T(P),     T(DIV),   T(H1),      T(H2),  T(H3),      T(H4),    T(H5),
                             T(H6),    T(HR),    T(TD),      T(TH),  T(TR),      T(TABLE), T(TBODY),
                             T(THEAD), T(TFOOT), T(CAPTION), T(COL), T(COLGROUP)};
constexpr HTMLTagSet rowParts{T(TD), T(TH), T(TR), T(TBODY), T(THEAD), T(TFOOT), T(COL), T(COLGROUP)};
constexpr HTMLTagSet cells{T(TD), T(TH)};
constexpr HTMLTagSet columns{T(COL), T(COLGROUP)};

template <std::size_t N> bool isOneOf(std::string_view name, const std::array<std::string_view, N>& names) {
    return std::ranges::find(names, name) != names.end();
}

bool allowsTableAttribute(GumboTag tag, std::string_view name) {
    static constexpr std::array<std::string_view, 6> ofTables{"width",       "border",  "cellspacing",
                                                              "cellpadding", "bgcolor", "summary"};
    static constexpr std::array<std::string_view, 7> ofCells{"colspan", "rowspan", "width", "height",
                                                             "bgcolor", "nowrap",  "abbr"};
    if (tag == T(TABLE)) {
        return isOneOf(name, ofTables);
    }
    return (rowParts.contains(tag) && name == "valign") || (tag == T(TR) && name == "bgcolor") ||
           (cells.contains(tag) && isOneOf(name, ofCells)) ||
           (columns.contains(tag) && (name == "span" || name == "width"));
}

bool allowsOwnAttribute(GumboTag tag, std::string_view name) {
    switch (tag) {
    case T(A):
        return name == "href";
    case T(FONT):
        return name == "color" || name == "face" || name == "size";
    case T(HR):
        return name == "size" || name == "width" || name == "noshade";
    case T(BR):
        return name == "clear";
    case T(OL):
        return name == "start" || name == "type";
    case T(UL):
        return name == "type";
    case T(LI):
        return name == "type" || name == "value";
    case T(INS):
    case T(DEL):
        return name == "datetime";
    default:
        return allowsTableAttribute(tag, name);
    }
}

class EnmlWriter final : public MarkupWriter {
  public:
    explicit EnmlWriter(const EnmlOptions& options) : options_(options) {}

  protected:
    ElementPlan planFor(GumboTag tag) const override {
        if (written.contains(tag)) {
            return {ElementPlan::Kind::write, gumbo_normalized_tagname(tag)};
        }
        if (asBlock.contains(tag)) {
            return {ElementPlan::Kind::write, "div"};
        }
        if (asPreformatted.contains(tag)) {
            return {ElementPlan::Kind::write, "pre"};
        }
        if (asList.contains(tag)) {
            return {ElementPlan::Kind::write, "ul"};
        }
        if (asSpan.contains(tag)) {
            return {ElementPlan::Kind::write, "span"};
        }
        return {dropped.contains(tag) ? ElementPlan::Kind::drop : ElementPlan::Kind::unwrap, {}};
    }

    bool allowsAttribute(GumboTag tag, std::string_view name) const override {
        if (name == "style" || name == "title") {
            return true;
        }
        if (name == "lang" || name == "dir") {
            return tag != T(BR) && tag != T(HR);
        }
        return (name == "align" && aligned.contains(tag)) || allowsOwnAttribute(tag, name);
    }

    bool isXML() const override { return true; }

    bool keepsHidden() const override { return false; }

    bool writeImage(const GumboElement& image) override {
        const char* source = attributeOf(image, "src");
        if (source == nullptr || !options_.mediaForImage) {
            return false;
        }
        const auto media = options_.mediaForImage(source);
        if (!media) {
            return false;
        }
        writeMedia(*media, image);
        return true;
    }

    // What an HTML parser takes for its content stands behind it.
    void sawElement(const GumboElement& element) override {
        const char* hash = isMedia(element) ? attributeOf(element, "hash") : nullptr;
        const auto media =
            hash != nullptr && options_.mediaForHash ? options_.mediaForHash(hash) : std::nullopt;
        if (media) {
            writeMedia(*media, element);
        }
    }

  private:
    // A tag that HTML does not know.
    static bool isMedia(const GumboElement& element) {
        if (element.tag != GUMBO_TAG_UNKNOWN) {
            return false;
        }
        GumboStringPiece name = element.original_tag;
        gumbo_tag_from_original_text(&name);
        return equalIgnoringASCIICase({name.data, name.length}, "en-media");
    }

    void writeMedia(const EnmlMedia& media, const GumboElement& element) {
        markup_ += "<en-media";
        writeAttribute("type", media.mimeType);
        writeAttribute("hash", media.hash);
        writeMediaAttributes(element);
        markup_ += "/>";
    }

    void writeMediaAttributes(const GumboElement& image) {
        static constexpr std::array<const char*, 7> names{"alt",    "width",  "height", "align",
                                                          "border", "hspace", "vspace"};
        for (const char* name : names) {
            if (const char* value = attributeOf(image, name)) {
                writeAttribute(name, value);
            }
        }
    }

    const EnmlOptions& options_;
};

} // namespace

std::string enmlFromHTML(std::string html, const EnmlOptions& options) {
    EnmlWriter writer(options);
    if (!options.header.empty()) {
        writer.write(options.header, options.notes);
    }
    writer.write(std::move(html), options.notes);
    if (!options.footer.empty()) {
        writer.write(options.footer, options.notes);
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE en-note SYSTEM \"http://xml.evernote.com/pub/enml2.dtd\">\n"
           "<en-note>" +
           writer.takeMarkup() + "</en-note>\n";
}

} // namespace zelto
