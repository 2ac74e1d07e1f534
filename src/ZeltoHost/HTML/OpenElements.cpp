#include <ZeltoHost/HTML/OpenElementsInternal.h>

#include <ZeltoHost/HTML/HTMLGuard.h>

#include <algorithm>

#define T(NAME) GUMBO_TAG_##NAME // NOLINT(cppcoreguidelines-macro-usage)

namespace zelto {

namespace {

// A parser reopens all of them in each following block, so even a dozen left open by mistake is expensive.
constexpr int formattingLimit = 24;
constexpr int rootTagLimit = 8; // each is compared with all attributes of the previous ones

constexpr GumboTag marker = GUMBO_TAG_LAST;
constexpr GumboTag removed = GUMBO_TAG_LAST;

constexpr HTMLTagSet headings{T(H1), T(H2), T(H3), T(H4), T(H5), T(H6)};
constexpr HTMLTagSet rowGroups{T(TBODY), T(THEAD), T(TFOOT)};
constexpr HTMLTagSet tableParts{T(CAPTION), T(COLGROUP), T(COL), T(TBODY), T(THEAD),
                                T(TFOOT),   T(TR),       T(TD),  T(TH)};
constexpr HTMLTagSet integrationPoints{T(FOREIGNOBJECT), T(DESC), T(TITLE), T(MI), T(MO), T(MN), T(MS),
                                       T(MTEXT)};
constexpr HTMLTagSet ordinarySpecial{T(ADDRESS), T(DIV), T(P)}; // an li does not end at these

} // namespace

bool OpenElements::inForeignContent() const {
    return !elements_.empty() && elements_.back().foreign && !elements_.back().holdsHTML;
}

bool OpenElements::beginsRawText(GumboTag tag) const {
    return rawTextTags.contains(tag) && !inForeignContent() && (open_[T(SELECT)] == 0 || tag == T(SCRIPT));
}

void OpenElements::text(std::size_t length) {
    if (!formatting_.empty()) {
        work_ += length * static_cast<std::size_t>(depth());
    }
}

template <class Wanted, class Bound> std::size_t OpenElements::find(Wanted&& wanted, Bound&& bound) {
    for (auto index = elements_.size(); index-- > 0;) {
        ++work_;
        const auto tag = elements_[index].tag;
        if (tag != removed && wanted(tag)) {
            return index;
        }
        if (tag != removed && bound(tag)) {
            return none;
        }
    }
    return none;
}

std::size_t OpenElements::findInScope(const HTMLTagSet& wanted, const HTMLTagSet& moreBounds) {
    return find([&](GumboTag tag) { return wanted.contains(tag); },
                [&](GumboTag tag) { return scopeTags.contains(tag) || moreBounds.contains(tag); });
}

void OpenElements::pop() {
    const auto element = elements_.back();
    elements_.pop_back();
    if (element.tag == removed) {
        return;
    }
    --open_[element.tag];
    keptElements_ -= element.kept ? 1 : 0;
    if (!element.foreign && markerTags.contains(element.tag)) {
        while (!formatting_.empty()) {
            const auto last = formatting_.back();
            formatting_.pop_back();
            if (last.tag == marker) {
                break;
            }
            --openFormatting_[last.tag];
            keptFormatting_ -= last.kept ? 1 : 0;
        }
        keptSinceMarker_.pop_back();
    }
}

OpenElements::Verdict OpenElements::popThrough(std::size_t index) {
    const bool kept = elements_[index].kept;
    while (elements_.size() > index) {
        pop();
    }
    return kept ? Verdict::keep : Verdict::drop;
}

void OpenElements::popThroughIfFound(std::size_t index) {
    if (index != none) {
        popThrough(index);
    }
}

OpenElements::Verdict OpenElements::push(GumboTag tag, bool foreign) {
    const bool kept = depth() < htmlDepthLimit || (!foreign && rawTextTags.contains(tag));
    elements_.push_back({tag, kept, foreign, foreign && integrationPoints.contains(tag)});
    ++open_[tag];
    keptElements_ += kept ? 1 : 0;
    if (!foreign && markerTags.contains(tag)) {
        formatting_.push_back({marker, false});
        keptSinceMarker_.push_back(0);
    }
    return kept ? Verdict::keep : Verdict::drop;
}

OpenElements::Verdict OpenElements::start(GumboTag tag, bool selfClosing) {
    if (inForeignContent()) {
        if (!foreignBreakouts.contains(tag)) {
            return startForeign(tag, selfClosing);
        }
        while (inForeignContent()) {
            pop();
        }
    }
    return startHTML(tag, selfClosing);
}

OpenElements::Verdict OpenElements::startForeign(GumboTag tag, bool selfClosing) {
    if (selfClosing) {
        return Verdict::keep;
    }
    return push(tag, true);
}

OpenElements::Verdict OpenElements::startHTML(GumboTag tag, bool selfClosing) {
    if (tag == T(HTML) || tag == T(BODY)) {
        return ++rootTags_ <= rootTagLimit ? Verdict::keep : Verdict::drop;
    }
    if (tag == T(ISINDEX)) {
        return Verdict::drop; // obsolete in HTML, and parsers turn it into a whole form
    }
    if (tag == T(HEAD) || isIgnoredInSelect(tag) || isStrayTablePart(tag) ||
        (tag == T(FORM) && open_[T(FORM)] > 0)) {
        return Verdict::keep;
    }
    closeImplied(tag);
    if (voidTags.contains(tag)) {
        return Verdict::keep;
    }
    if (tag == T(SVG) || tag == T(MATH)) {
        return startForeign(tag, selfClosing);
    }
    return formattingTags.contains(tag) ? startFormatting(tag) : push(tag);
}

bool OpenElements::isIgnoredInSelect(GumboTag tag) {
    if (open_[T(SELECT)] == 0) {
        return false;
    }
    const bool closes = tag == T(SELECT) || tag == T(INPUT) || tag == T(KEYGEN) || tag == T(TEXTAREA) ||
                        (open_[T(TABLE)] > 0 && (tableParts.contains(tag) || tag == T(TABLE)));
    if (closes) {
        popThroughIfFound(
            find([](GumboTag open) { return open == T(SELECT); }, [](GumboTag) { return false; }));
        return tag == T(SELECT);
    }
    return tag != T(OPTION) && tag != T(OPTGROUP) && tag != T(SCRIPT) && tag != T(TEMPLATE);
}

bool OpenElements::isStrayTablePart(GumboTag tag) {
    return tableParts.contains(tag) && open_[T(TABLE)] == 0 && open_[T(TEMPLATE)] == 0;
}

void OpenElements::closeImplied(GumboTag tag) {
    static constexpr HTMLTagSet noTags{};
    static constexpr HTMLTagSet button{T(BUTTON)};
    if (open_[T(P)] > 0 && paragraphEnders.contains(tag)) {
        popThroughIfFound(findInScope(HTMLTagSet{T(P)}, button));
    }
    if (tag == T(LI) || tag == T(DD) || tag == T(DT)) {
        popThroughIfFound(find(
            [&](GumboTag open) { return open == tag || (tag != T(LI) && (open == T(DD) || open == T(DT))); },
            [](GumboTag open) { return specialTags.contains(open) && !ordinarySpecial.contains(open); }));
    } else if (headings.contains(tag) && !elements_.empty() && headings.contains(elements_.back().tag)) {
        pop();
    } else if (tag == T(BUTTON) && open_[T(BUTTON)] > 0) {
        popThroughIfFound(findInScope(button, noTags));
    } else if (tag == T(OPTION) || tag == T(OPTGROUP) || tag == T(RT) || tag == T(RP)) {
        while (!elements_.empty() &&
               (elements_.back().tag == tag || (tag == T(OPTGROUP) && elements_.back().tag == T(OPTION)) ||
                ((tag == T(RT) || tag == T(RP)) &&
                 (elements_.back().tag == T(RT) || elements_.back().tag == T(RP))))) {
            pop();
        }
    } else if (tableParts.contains(tag) || tag == T(TABLE)) {
        closeTableParts(tag);
    }
}

void OpenElements::closeTableParts(GumboTag tag) {
    const auto isTableContext = [&](GumboTag open) {
        if (open == T(TABLE) || open == T(TEMPLATE)) {
            return true;
        }
        const bool inRowGroup = tag == T(TR) || tag == T(TD) || tag == T(TH);
        return (inRowGroup && rowGroups.contains(open)) || (tag != T(TR) && inRowGroup && open == T(TR)) ||
               (tag == T(COL) && open == T(COLGROUP));
    };
    if (tag == T(TABLE)) {
        static constexpr HTMLTagSet cells{T(TD),     T(TH),      T(CAPTION), T(TEMPLATE),
                                          T(OBJECT), T(MARQUEE), T(APPLET)};
        popThroughIfFound(find([](GumboTag open) { return open == T(TABLE); },
                               [](GumboTag open) { return cells.contains(open); }));
        return;
    }
    const auto context = find(isTableContext, [](GumboTag) { return false; });
    if (context != none && context + 1 < elements_.size()) {
        popThrough(context + 1);
    }
}

OpenElements::Verdict OpenElements::startFormatting(GumboTag tag) {
    if ((tag == T(A) || tag == T(NOBR)) && openFormatting_[tag] > 0) {
        const auto open =
            std::ranges::find_if(formatting_.rbegin(), formatting_.rend(), [&](const Element& element) {
                return element.tag == tag || element.tag == marker;
            });
        if (open != formatting_.rend() && open->tag == tag) {
            removeFormatting(std::next(open).base());
        }
    }
    work_ += static_cast<std::size_t>(depth());
    const bool kept = depth() < htmlDepthLimit && keptSinceMarker_.back() < formattingLimit;
    formatting_.push_back({tag, kept});
    ++openFormatting_[tag];
    keptFormatting_ += kept ? 1 : 0;
    keptSinceMarker_.back() += kept ? 1 : 0;
    return kept ? Verdict::keep : Verdict::drop;
}

OpenElements::Verdict OpenElements::endFormatting(GumboTag tag) {
    work_ += static_cast<std::size_t>(depth());
    if (openFormatting_[tag] == 0) {
        return Verdict::keep;
    }
    for (auto element = formatting_.rbegin(); element != formatting_.rend() && element->tag != marker;
         ++element) {
        ++work_;
        if (element->tag == tag) {
            return removeFormatting(std::next(element).base());
        }
    }
    return Verdict::keep;
}

OpenElements::Verdict OpenElements::removeFormatting(std::vector<Element>::iterator element) {
    const bool kept = element->kept;
    work_ += static_cast<std::size_t>(formatting_.end() - element);
    --openFormatting_[element->tag];
    keptFormatting_ -= kept ? 1 : 0;
    keptSinceMarker_.back() -= kept ? 1 : 0;
    formatting_.erase(element);
    return kept ? Verdict::keep : Verdict::drop;
}

OpenElements::Verdict OpenElements::end(GumboTag tag) {
    if (tag == T(BODY) || tag == T(HTML)) {
        return Verdict::drop; // what follows belongs to the body anyway
    }
    if (inForeignContent()) {
        return endForeign(tag);
    }
    if (formattingTags.contains(tag)) {
        return endFormatting(tag);
    }
    if (open_[tag] == 0 && !headings.contains(tag)) {
        work_ += static_cast<std::size_t>(depth());
        return Verdict::keep;
    }
    if (tag == T(FORM)) {
        return removeForm();
    }
    const auto index = findForEndTag(tag);
    return index == none ? Verdict::keep : popThrough(index);
}

std::size_t OpenElements::findForEndTag(GumboTag tag) {
    static constexpr HTMLTagSet noTags{};
    static constexpr HTMLTagSet button{T(BUTTON)};
    static constexpr HTMLTagSet lists{T(OL), T(UL)};
    if (tag == T(P)) {
        return findInScope(HTMLTagSet{T(P)}, button);
    }
    if (tag == T(LI)) {
        return findInScope(HTMLTagSet{T(LI)}, lists);
    }
    if (headings.contains(tag)) {
        return findInScope(headings, noTags);
    }
    if (tableParts.contains(tag) || tag == T(TABLE)) {
        return find([&](GumboTag open) { return open == tag; },
                    [](GumboTag open) { return open == T(TABLE) || open == T(TEMPLATE); });
    }
    if (tag == T(SELECT) || tag == T(TEMPLATE)) {
        return find([&](GumboTag open) { return open == tag; }, [](GumboTag) { return false; });
    }
    if (specialTags.contains(tag)) {
        return find([&](GumboTag open) { return open == tag; },
                    [](GumboTag open) { return scopeTags.contains(open); });
    }
    return find([&](GumboTag open) { return open == tag; },
                [](GumboTag open) { return specialTags.contains(open); });
}

OpenElements::Verdict OpenElements::endForeign(GumboTag tag) {
    for (auto index = elements_.size(); index-- > 0 && elements_[index].foreign;) {
        ++work_;
        if (elements_[index].tag == tag) {
            return popThrough(index);
        }
    }
    return Verdict::keep;
}

OpenElements::Verdict OpenElements::removeForm() {
    // A parser removes it from among the others, which stay open, and walks them repeatedly for that.
    work_ += 8 * static_cast<std::size_t>(depth());
    const auto index = find([](GumboTag open) { return open == T(FORM); }, [](GumboTag) { return false; });
    auto& form = elements_[index];
    const bool kept = form.kept;
    --open_[T(FORM)];
    keptElements_ -= kept ? 1 : 0;
    form.tag = removed;
    return kept ? Verdict::keep : Verdict::drop;
}

} // namespace zelto
