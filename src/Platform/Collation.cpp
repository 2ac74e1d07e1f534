#include <Platform/Collation.h>

#include <unicode/coll.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace zelto {

namespace {

// The order of "en_US_POSIX" is that of the bytes, with all capital letters first.
icu::Locale languageOf(const std::optional<std::string>& name) {
    auto locale = name ? icu::Locale::createFromName(name->c_str()) : icu::Locale::getDefault();
    return std::string_view(locale.getVariant()) == "POSIX" ? icu::Locale::getRoot() : locale;
}

} // namespace

class Collation::Collator {
  public:
    explicit Collator(const icu::Locale& locale) {
        UErrorCode status = U_ZERO_ERROR;
        collator_.reset(icu::Collator::createInstance(locale, status));
        if (U_FAILURE(status)) {
            std::fputs("zelto: ICU has no collation\n", stderr);
            std::abort();
        }
        collator_->setStrength(icu::Collator::SECONDARY);
    }

    std::string key(std::string_view name) const {
        const auto units = icu::UnicodeString::fromUTF8(
            icu::StringPiece(name.data(), static_cast<std::int32_t>(name.size())));
        std::string key(static_cast<std::size_t>(collator_->getSortKey(units, nullptr, 0)), '\0');
        collator_->getSortKey(units, reinterpret_cast<std::uint8_t*>(key.data()),
                              static_cast<std::int32_t>(key.size()));
        return key;
    }

  private:
    std::unique_ptr<icu::Collator> collator_;
};

Collation::Collation(std::optional<std::string> locale)
    : collator_(std::make_shared<const Collator>(languageOf(locale))) {}

std::string Collation::key(std::string_view name) const {
    return collator_->key(name);
}

} // namespace zelto
