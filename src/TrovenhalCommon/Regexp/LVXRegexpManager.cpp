#include <TrovenhalCommon/Regexp/LVXRegexpManager.h>

#include <TrovenhalCommon/Regexp/TextScannersInternal.h>

#include <Platform/Text.h>

namespace zelto {

namespace {

std::optional<FoundText> find(LVXRegexpPatterns pattern, std::string_view text, std::size_t from) {
    switch (pattern) {
    case LVXRegexpPatterns::email:
        return findEmail(text, from);
    case LVXRegexpPatterns::phoneNumber:
        return findPhoneNumber(text, from);
    }
    return std::nullopt;
}

// Steps from match to match.
class Matcher {
  public:
    Matcher(LVXRegexpPatterns pattern, std::string_view text) : pattern_(pattern), text_(text) {}

    std::optional<LVXTextMatch> next() {
        const auto found = find(pattern_, text_, searched_);
        if (!found) {
            return std::nullopt;
        }
        const auto match = text_.substr(found->begin, found->end - found->begin);
        utf16Searched_ += utf16Length(text_.substr(searched_, found->begin - searched_));
        const LVXTextMatch result{match, utf16Searched_, utf16Length(match)};
        utf16Searched_ += result.utf16Length;
        searched_ = found->end;
        return result;
    }

  private:
    LVXRegexpPatterns pattern_;
    std::string_view text_;
    std::size_t searched_ = 0;
    std::size_t utf16Searched_ = 0;
};

} // namespace

std::optional<LVXTextMatch> LVXRegexpManager::firstMatch(LVXRegexpPatterns pattern, std::string_view text) {
    return Matcher(pattern, text).next();
}

std::vector<LVXTextMatch> LVXRegexpManager::matches(LVXRegexpPatterns pattern, std::string_view text) {
    std::vector<LVXTextMatch> all;
    Matcher matcher(pattern, text);
    while (const auto match = matcher.next()) {
        all.push_back(*match);
    }
    return all;
}

} // namespace zelto
