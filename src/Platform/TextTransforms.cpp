#include <Platform/Text.h>

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/stringoptions.h>
#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>

namespace zelto {

namespace {

// ICU counts in 32 bits, and a transform may make the text longer.
constexpr std::size_t longestText = std::numeric_limits<std::int32_t>::max() / 8;

// Made when first needed: loading the rules takes some milliseconds. ICU does not promise that one object may
// work on several threads, hence the lock.
class Transform {
  public:
    explicit Transform(const char* rules) {
        UErrorCode status = U_ZERO_ERROR;
        transliterator_.reset(icu::Transliterator::createInstance(rules, UTRANS_FORWARD, status));
        if (U_FAILURE(status)) {
            transliterator_.reset();
        }
    }

    std::optional<std::string> operator()(std::string_view text) {
        if (!transliterator_ || text.size() > longestText || !isValidUTF8(text)) {
            return std::nullopt;
        }
        auto units = icu::UnicodeString::fromUTF8(
            icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
        {
            const std::lock_guard lock(mutex_);
            transliterator_->transliterate(units);
        }
        if (units.isBogus()) {
            return std::nullopt;
        }
        std::string result;
        units.toUTF8String(result);
        return result;
    }

  private:
    std::mutex mutex_;
    std::unique_ptr<icu::Transliterator> transliterator_;
};

} // namespace

std::optional<std::string> toLatin(std::string_view text) {
    static Transform transform("Any-Latin");
    return transform(text);
}

std::optional<std::string> strippingDiacritics(std::string_view text) {
    static Transform transform("NFD; [:Nonspacing Mark:] Remove; NFC");
    return transform(text);
}

std::string foldedCase(std::string_view text) {
    const auto repaired = repairedUTF8(text);
    std::string_view rest = repaired;
    std::string folded;
    folded.reserve(rest.size());
    while (!rest.empty()) {
        const auto piece = rest.substr(0, validUTF8Length(rest.substr(0, longestText)));
        UErrorCode status = U_ZERO_ERROR;
        icu::StringByteSink<std::string> sink(&folded);
        icu::CaseMap::utf8Fold(U_FOLD_CASE_DEFAULT,
                               icu::StringPiece(piece.data(), static_cast<std::int32_t>(piece.size())), sink,
                               nullptr, status);
        rest.remove_prefix(piece.size());
    }
    return folded;
}

} // namespace zelto
