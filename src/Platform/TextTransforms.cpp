#include <Platform/Text.h>

#include <Platform/ASCII.h>
#include <Platform/UTF8.h>

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/stringoptions.h>
#include <unicode/translit.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>

namespace zelto {

namespace {

// ICU counts in 32 bits, and a transform may make the text longer.
constexpr std::size_t maximumTextLength = std::numeric_limits<std::int32_t>::max() / 8;

bool isAllASCII(std::string_view text) {
    return std::ranges::all_of(text, isASCII);
}

std::optional<icu::UnicodeString> unitsOf(std::string_view text) {
    if (text.size() > maximumTextLength || !isValidUTF8(text)) {
        return std::nullopt;
    }
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::optional<std::string> textOf(const icu::UnicodeString& units) {
    if (units.isBogus()) {
        return std::nullopt;
    }
    std::string text;
    units.toUTF8String(text);
    return text;
}

// Created when first needed: loading the rules takes some milliseconds. ICU does not promise that one object
// can be used by several threads, hence the lock.
class LatinTransform {
  public:
    LatinTransform() {
        UErrorCode status = U_ZERO_ERROR;
        transliterator_.reset(icu::Transliterator::createInstance("Any-Latin", UTRANS_FORWARD, status));
        if (U_FAILURE(status)) {
            transliterator_.reset();
        }
    }

    bool apply(icu::UnicodeString& units) {
        if (!transliterator_) {
            return false;
        }
        const std::lock_guard lock(mutex_);
        transliterator_->transliterate(units);
        return true;
    }

  private:
    std::mutex mutex_;
    std::unique_ptr<icu::Transliterator> transliterator_;
};

icu::UnicodeString withoutNonspacingMarks(const icu::UnicodeString& units) {
    icu::UnicodeString kept;
    for (std::int32_t index = 0; index < units.length(); index = units.moveIndex32(index, 1)) {
        const auto codePoint = units.char32At(index);
        if (u_charType(codePoint) != U_NON_SPACING_MARK) {
            kept.append(codePoint);
        }
    }
    return kept;
}

} // namespace

std::optional<std::string> toLatin(std::string_view text) {
    if (isAllASCII(text)) {
        return std::string(text);
    }
    static auto& transform = *new LatinTransform;
    auto units = unitsOf(text);
    return units && transform.apply(*units) ? textOf(*units) : std::nullopt;
}

std::optional<std::string> strippingDiacritics(std::string_view text) {
    if (isAllASCII(text)) {
        return std::string(text);
    }
    const auto units = unitsOf(text);
    UErrorCode status = U_ZERO_ERROR;
    const auto* decomposer = icu::Normalizer2::getNFDInstance(status);
    const auto* composer = icu::Normalizer2::getNFCInstance(status);
    if (!units || U_FAILURE(status)) {
        return std::nullopt;
    }
    const auto bare =
        composer->normalize(withoutNonspacingMarks(decomposer->normalize(*units, status)), status);
    return U_SUCCESS(status) ? textOf(bare) : std::nullopt;
}

std::string foldedCase(std::string_view text) {
    const auto repaired = repairedUTF8(text);
    std::string_view remaining = repaired;
    std::string folded;
    folded.reserve(remaining.size());
    while (!remaining.empty()) {
        const auto piece = remaining.substr(0, validUTF8Length(remaining.substr(0, maximumTextLength)));
        UErrorCode status = U_ZERO_ERROR;
        icu::StringByteSink<std::string> sink(&folded);
        icu::CaseMap::utf8Fold(U_FOLD_CASE_DEFAULT,
                               icu::StringPiece(piece.data(), static_cast<std::int32_t>(piece.size())), sink,
                               nullptr, status);
        remaining.remove_prefix(piece.size());
    }
    return folded;
}

} // namespace zelto
