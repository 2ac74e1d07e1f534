#include <ZeltoHost/Mail/MailBody.h>
#include <ZeltoHost/Mail/MailPartHeader.h>

#include <algorithm>
#include <array>

namespace zelto {

namespace {

using Sections = std::vector<MailBodySection>;

bool isHTMLLike(const MailPart& part) {
    static constexpr std::array<std::string_view, 3> types{"text/html", "text/enriched", "text/richtext"};
    return std::ranges::find(types, part.mediaType) != types.end();
}

bool isBodyText(const MailPart& part) {
    return part.disposition != "attachment" &&
           (isHTMLLike(part) || part.mediaType == "text/plain" || part.mediaType == "text/markdown");
}

bool isSignature(const MailPart& part) {
    static constexpr std::array<std::string_view, 3> types{
        "application/pgp-signature", "application/pkcs7-signature", "application/x-pkcs7-signature"};
    return std::ranges::find(types, part.mediaType) != types.end();
}

bool hasHTML(const Sections& sections) {
    return std::ranges::any_of(sections, [](const auto& each) { return !each.html.empty(); });
}

class RoleFinder {
  public:
    explicit RoleFinder(const std::vector<MailPart>& parts) : parts_(parts), settled_(parts.size()) {}

    MailRoles find() {
        MailRoles roles;
        roles.body = choose(0);
        collectOthers(0, roles.others);
        return roles;
    }

  private:
    Sections choose(std::size_t index) {
        const auto& part = parts_[index];
        if (isMessage(part)) {
            return {};
        }
        if (!isMultipart(part)) {
            return chooseLeaf(index);
        }
        if (part.mediaType == "multipart/alternative") {
            return chooseAlternative(part);
        }
        if (part.mediaType == "multipart/related") {
            return chooseRelated(part);
        }
        if (part.mediaType == "multipart/encrypted") {
            settle(part, [](const MailPart& each) { return each.mediaType == "application/pgp-encrypted"; });
            return {};
        }
        if (part.mediaType == "multipart/signed") {
            settle(part, isSignature);
        }
        return chooseAll(part.children);
    }

    Sections chooseLeaf(std::size_t index) {
        const auto& part = parts_[index];
        if (!isBodyText(part) || settled_[index] || (foundText_ && !part.name.empty())) {
            return {};
        }
        settled_[index] = true;
        foundText_ = true;
        MailBodySection section;
        (isHTMLLike(part) ? section.html : section.plain).push_back(index);
        return {std::move(section)};
    }

    Sections chooseAll(const std::vector<std::size_t>& children) {
        Sections all;
        for (const auto child : children) {
            std::ranges::move(choose(child), std::back_inserter(all));
        }
        return all;
    }

    Sections chooseAlternative(const MailPart& part) {
        MailBodySection chosen;
        const bool foundBefore = foundText_;
        bool found = false;
        for (const auto child : part.children) {
            foundText_ = foundBefore;
            const auto sections = choose(child);
            if (sections.empty()) {
                continue;
            }
            found = true;
            auto& kind = hasHTML(sections) ? chosen.html : chosen.plain;
            kind.clear();
            for (const auto& each : sections) {
                const auto& parts = each.html.empty() ? each.plain : each.html;
                kind.insert(kind.end(), parts.begin(), parts.end());
            }
        }
        foundText_ = foundBefore || found;
        settle(part, [](const MailPart& each) {
            return each.mediaType.starts_with("text/") && each.mediaType != "text/calendar" &&
                   each.disposition != "attachment";
        });
        return found ? Sections{std::move(chosen)} : Sections{};
    }

    Sections chooseRelated(const MailPart& part) {
        auto root = std::ranges::find_if(part.children, [&](std::size_t child) {
            return !part.root.empty() && parts_[child].contentID == part.root;
        });
        root = root == part.children.end() ? part.children.begin() : root;
        return root == part.children.end() ? Sections{} : choose(*root);
    }

    // Marks the children that are not shown to the reader.
    template <class Predicate> void settle(const MailPart& part, Predicate predicate) {
        for (const auto child : part.children) {
            if (predicate(parts_[child])) {
                settled_[child] = true;
            }
        }
    }

    void collectOthers(std::size_t index, std::vector<std::size_t>& others) const {
        const auto& part = parts_[index];
        if (!isMultipart(part)) {
            if (!settled_[index]) {
                others.push_back(index);
            }
            return;
        }
        for (const auto child : part.children) {
            collectOthers(child, others);
        }
    }

    const std::vector<MailPart>& parts_;
    std::vector<bool> settled_; // part of the body, or not shown
    bool foundText_ = false;
};

} // namespace

MailRoles rolesOf(const std::vector<MailPart>& parts) {
    return RoleFinder(parts).find();
}

} // namespace zelto
