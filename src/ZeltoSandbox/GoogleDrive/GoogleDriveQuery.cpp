#include <ZeltoSandbox/GoogleDrive/GoogleDriveQuery.h>

#include <Platform/ASCII.h>

#include <algorithm>

namespace zelto::sandbox {

class GoogleDriveQuery::Parser {
  public:
    explicit Parser(std::string_view text) : text_(text), rest_(text) {}

    Result<GoogleDriveQuery, std::string> whole() {
        GoogleDriveQuery query;
        do {
            auto parsed = term();
            if (!parsed) {
                return failure("q is not understood from character " +
                               std::to_string(text_.size() - rest_.size() + 1) + " on");
            }
            query.terms_.push_back(*std::move(parsed));
            skipBlanks();
        } while (!rest_.empty() && skipWord("and"));
        if (!rest_.empty()) {
            return failure("q has no \"and\" at character " +
                           std::to_string(text_.size() - rest_.size() + 1));
        }
        return query;
    }

  private:
    std::optional<Term> term() {
        skipBlanks();
        if (rest_.starts_with('\'')) {
            auto parent = quoted();
            return parent && skipWord("in") && skipWord("parents")
                       ? std::optional(Term{Field::parents, false, *std::move(parent)})
                       : std::nullopt;
        }
        if (skipWord("trashed")) {
            return flag();
        }
        const auto field = skipWord("mimeType") ? std::optional(Field::mimeType)
                           : skipWord("name")   ? std::optional(Field::name)
                                                : std::nullopt;
        const auto isNegated = field ? comparison() : std::nullopt;
        auto value = isNegated ? quoted() : std::nullopt;
        return value ? std::optional(Term{*field, *isNegated, *std::move(value)}) : std::nullopt;
    }

    std::optional<Term> flag() {
        const auto isNegated = comparison();
        if (!isNegated) {
            return std::nullopt;
        }
        for (const auto* value : {"true", "false"}) {
            if (skipWord(value)) {
                return Term{Field::trashed, *isNegated, value};
            }
        }
        return std::nullopt;
    }

    // Whether it is "!="; nullopt if it is neither that nor "=".
    std::optional<bool> comparison() {
        skipBlanks();
        const bool isNegated = rest_.starts_with('!');
        const auto length = isNegated ? std::size_t{2} : std::size_t{1};
        if (rest_.substr(0, length) != (isNegated ? "!=" : "=")) {
            return std::nullopt;
        }
        rest_.remove_prefix(length);
        return isNegated;
    }

    std::optional<std::string> quoted() {
        skipBlanks();
        if (!rest_.starts_with('\'')) {
            return std::nullopt;
        }
        std::string value;
        for (std::size_t i = 1; i < rest_.size(); ++i) {
            if (rest_[i] == '\'') {
                rest_.remove_prefix(i + 1);
                return value;
            }
            if (rest_[i] == '\\') {
                ++i;
                if (i == rest_.size() || (rest_[i] != '\'' && rest_[i] != '\\')) {
                    return std::nullopt;
                }
            }
            value.push_back(rest_[i]);
        }
        return std::nullopt;
    }

    void skipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size())); }

    bool skipWord(std::string_view word) {
        skipBlanks();
        const bool ends = rest_.size() <= word.size() || !isASCIIAlphanumeric(rest_[word.size()]);
        if (!rest_.starts_with(word) || !ends) {
            return false;
        }
        rest_.remove_prefix(word.size());
        return true;
    }

    std::string_view text_;
    std::string_view rest_;
};

Result<GoogleDriveQuery, std::string> GoogleDriveQuery::parse(std::string_view text) {
    return Parser(text).whole();
}

std::vector<std::string> GoogleDriveQuery::parents() const {
    std::vector<std::string> ids;
    for (const auto& term : terms_) {
        if (term.field == Field::parents) {
            ids.push_back(term.value);
        }
    }
    return ids;
}

bool GoogleDriveQuery::matches(const DriveEntry& entry) const {
    return std::ranges::all_of(terms_, [&](const Term& term) { return holds(term, entry); });
}

bool GoogleDriveQuery::holds(const Term& term, const DriveEntry& entry) {
    switch (term.field) {
    case Field::mimeType:
        return (entry.mediaType == term.value) != term.isNegated;
    case Field::name:
        return (entry.name == term.value) != term.isNegated;
    case Field::trashed:
        return (entry.isInTrash() == (term.value == "true")) != term.isNegated;
    case Field::parents:
        break;
    }
    return entry.parent->id == term.value || (!entry.parent->parent && term.value == "root");
}

} // namespace zelto::sandbox
