#include <ZeltoHost/HTML/HTMLTagKindsInternal.h>

#define T(NAME) GUMBO_TAG_##NAME // NOLINT(cppcoreguidelines-macro-usage)

namespace zelto {

constinit const HTMLTagSet voidTags{T(AREA),   T(BASE),   T(BASEFONT), T(BGSOUND), T(BR),     T(COL),
                                    T(EMBED),  T(FRAME),  T(HR),       T(IMAGE),   T(IMG),    T(INPUT),
                                    T(KEYGEN), T(LINK),   T(META),     T(PARAM),   T(SOURCE), T(TRACK),
                                    T(WBR),    T(SPACER), T(ISINDEX)};

constinit const HTMLTagSet formattingTags{T(A),    T(B), T(BIG),   T(CODE),   T(EM),     T(FONT), T(I),
                                          T(NOBR), T(S), T(SMALL), T(STRIKE), T(STRONG), T(TT),   T(U)};

constinit const HTMLTagSet specialTags{
    T(ADDRESS),    T(APPLET),  T(AREA),   T(ARTICLE),   T(ASIDE),   T(BASE),     T(BASEFONT), T(BGSOUND),
    T(BLOCKQUOTE), T(BODY),    T(BR),     T(BUTTON),    T(CAPTION), T(CENTER),   T(COL),      T(COLGROUP),
    T(DD),         T(DETAILS), T(DIR),    T(DIV),       T(DL),      T(DT),       T(EMBED),    T(FIELDSET),
    T(FIGCAPTION), T(FIGURE),  T(FOOTER), T(FORM),      T(FRAME),   T(FRAMESET), T(H1),       T(H2),
    T(H3),         T(H4),      T(H5),     T(H6),        T(HEAD),    T(HEADER),   T(HGROUP),   T(HR),
    T(HTML),       T(IFRAME),  T(IMG),    T(INPUT),     T(ISINDEX), T(LI),       T(LINK),     T(LISTING),
    T(MARQUEE),    T(MENU),    T(META),   T(NAV),       T(NOEMBED), T(NOFRAMES), T(NOSCRIPT), T(OBJECT),
    T(OL),         T(P),       T(PARAM),  T(PLAINTEXT), T(PRE),     T(SCRIPT),   T(SECTION),  T(SELECT),
    T(STYLE),      T(SUMMARY), T(TABLE),  T(TBODY),     T(TD),      T(TEMPLATE), T(TEXTAREA), T(TFOOT),
    T(TH),         T(THEAD),   T(TITLE),  T(TR),        T(UL),      T(WBR),      T(XMP),      T(MAIN)};

constinit const HTMLTagSet scopeTags{T(APPLET),   T(CAPTION), T(HTML),    T(TABLE),
                                     T(TD),       T(TH),      T(MARQUEE), T(OBJECT),
                                     T(TEMPLATE), T(SVG),     T(MATH),    T(FOREIGNOBJECT)};

constinit const HTMLTagSet markerTags{T(APPLET),  T(CAPTION), T(TD),      T(TH),
                                      T(MARQUEE), T(OBJECT),  T(TEMPLATE)};

constinit const HTMLTagSet paragraphEnders{
    T(ADDRESS),   T(ARTICLE), T(ASIDE),   T(BLOCKQUOTE), T(CENTER),     T(DD),     T(DETAILS), T(DIR),
    T(DIV),       T(DL),      T(DT),      T(FIELDSET),   T(FIGCAPTION), T(FIGURE), T(FOOTER),  T(FORM),
    T(H1),        T(H2),      T(H3),      T(H4),         T(H5),         T(H6),     T(HEADER),  T(HGROUP),
    T(HR),        T(LI),      T(LISTING), T(MAIN),       T(MENU),       T(NAV),    T(OL),      T(P),
    T(PLAINTEXT), T(PRE),     T(SECTION), T(SUMMARY),    T(TABLE),      T(UL),     T(XMP)};

constinit const HTMLTagSet rawTextTags{T(SCRIPT), T(STYLE),  T(TEXTAREA), T(TITLE),
                                       T(XMP),    T(IFRAME), T(NOEMBED),  T(NOFRAMES)};

constinit const HTMLTagSet foreignBreakouts{
    T(B),      T(BIG),  T(BLOCKQUOTE), T(BODY),  T(BR),   T(CENTER), T(CODE),    T(DD),   T(DIV),
    T(DL),     T(DT),   T(EM),         T(EMBED), T(H1),   T(H2),     T(H3),      T(H4),   T(H5),
    T(H6),     T(HEAD), T(HR),         T(I),     T(IMG),  T(LI),     T(LISTING), T(MENU), T(META),
    T(NOBR),   T(OL),   T(P),          T(PRE),   T(RUBY), T(S),      T(SMALL),   T(SPAN), T(STRONG),
    T(STRIKE), T(SUB),  T(SUP),        T(TABLE), T(TT),   T(U),      T(UL),      T(VAR)};

constinit const HTMLTagSet blockTags{
    T(ADDRESS), T(ARTICLE), T(ASIDE), T(BLOCKQUOTE), T(BODY),      T(CAPTION),  T(CENTER),     T(DD),
    T(DETAILS), T(DIR),     T(DIV),   T(DL),         T(DT),        T(FIELDSET), T(FIGCAPTION), T(FIGURE),
    T(FOOTER),  T(FORM),    T(H1),    T(H2),         T(H3),        T(H4),       T(H5),         T(H6),
    T(HEADER),  T(HGROUP),  T(HR),    T(HTML),       T(LEGEND),    T(LI),       T(LISTING),    T(MAIN),
    T(MENU),    T(NAV),     T(OL),    T(P),          T(PLAINTEXT), T(PRE),      T(SECTION),    T(SUMMARY),
    T(TABLE),   T(TBODY),   T(TFOOT), T(THEAD),      T(TR),        T(UL),       T(XMP)};

} // namespace zelto
