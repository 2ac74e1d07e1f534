#include <ZeltoCommonLogger/SecretIndexInternal.h>

#include <ZeltoCommonLogger/SecretRegistry.h>

#include <algorithm>
#include <cstring>

namespace zelto {

namespace {

constexpr std::string_view standardAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

void wipe(std::string& text) {
    explicit_bzero(text.data(), text.size());
}

// The characters that the secret alone determines in the Base64 text of bytes that contain it, `shift` bytes
// after a group of three.
std::string base64Core(std::string_view secret, std::size_t shift) {
    const auto bitAt = [&](std::size_t bit) {
        const auto byte = static_cast<unsigned char>(secret[bit / 8]);
        return (byte >> (7 - bit % 8)) & 1;
    };
    std::string core;
    core.reserve(secret.size() * 4 / 3 + 1);
    const std::size_t firstBit = (6 - shift * 8 % 6) % 6;
    for (std::size_t bit = firstBit; bit + 6 <= secret.size() * 8; bit += 6) {
        unsigned value = 0;
        for (std::size_t each = 0; each < 6; ++each) {
            value = value << 1 | static_cast<unsigned>(bitAt(bit + each));
        }
        core.push_back(standardAlphabet[value]);
    }
    return core;
}

std::string replacing(std::string text, char from, char to) {
    std::replace(text.begin(), text.end(), from, to);
    return text;
}

std::uint64_t prefixOf(const char* text) {
    std::uint64_t prefix = 0;
    std::memcpy(&prefix, text, 6);
    return prefix;
}

std::size_t slotOf(std::uint64_t prefix) {
    return static_cast<std::size_t>((prefix * 0x9E3779B97F4A7C15ULL) >> 48);
}

bool isBase64Character(char c) {
    return standardAlphabet.find(c) != std::string_view::npos || c == '-' || c == '_' || c == '=';
}

// The range extended by the characters that contain bits of both the secret and its neighbours, and by the
// padding.
TextRange withNeighbours(std::string_view text, TextRange range) {
    if (range.begin > 0 && isBase64Character(text[range.begin - 1])) {
        --range.begin;
    }
    for (int each = 0; each < 3 && range.end < text.size() && isBase64Character(text[range.end]); ++each) {
        ++range.end;
    }
    return range;
}

} // namespace

SecretForms::SecretForms(std::string_view secret) {
    add(std::string(secret), false);
    add(replacing(std::string(secret), ' ', '+'), false);
    for (std::size_t shift = 0; shift < 3; ++shift) {
        const auto core = base64Core(secret, shift);
        add(core, true);
        add(replacing(replacing(core, '+', '-'), '/', '_'), true);
    }
}

SecretForms::~SecretForms() {
    for (auto& form : forms_) {
        wipe(form.text);
    }
}

void SecretForms::add(std::string text, bool base64) {
    const bool known = std::ranges::any_of(forms_, [&](const auto& form) { return form.text == text; });
    if (!known) {
        // Reserved for all of them: growing would leave copies of the secret in memory.
        forms_.reserve(8);
        forms_.push_back({std::move(text), base64});
    }
}

SecretIndex::SecretIndex(Secrets secrets) : secrets_(std::move(secrets)) {
    for (const auto& secret : secrets_) {
        for (const auto& form : secret->forms()) {
            const auto prefix = prefixOf(form.text.data());
            filter_.set(slotOf(prefix));
            byPrefix_[prefix].push_back(&form);
        }
    }
}

std::size_t SecretIndex::matchedLength(std::string_view remaining, const SecretForms::Form& form) const {
    const std::string_view wanted = form.text;
    const auto compared = std::min(wanted.size(), comparedLength);
    if (!remaining.starts_with(wanted.substr(0, compared))) {
        return 0;
    }
    const auto length = std::min(remaining.size(), wanted.size());
    const auto end = std::mismatch(wanted.begin(), wanted.begin() + static_cast<std::ptrdiff_t>(length),
                                   remaining.begin());
    return static_cast<std::size_t>(end.first - wanted.begin());
}

void SecretIndex::find(std::string_view text, std::vector<TextRange>& ranges) const {
    for (std::size_t at = 0; at + prefixLength <= text.size();) {
        const auto prefix = prefixOf(text.data() + at);
        at += filter_.test(slotOf(prefix)) ? findAt(text, at, prefix, ranges) : 1;
    }
}

std::size_t SecretIndex::findAt(std::string_view text, std::size_t at, std::uint64_t prefix,
                                std::vector<TextRange>& ranges) const {
    std::size_t step = 1;
    const auto found = byPrefix_.find(prefix);
    if (found == byPrefix_.end()) {
        return step;
    }
    for (const auto* form : found->second) {
        const auto length = matchedLength(text.substr(at), *form);
        if (length > 0) {
            const TextRange range{at, at + length};
            ranges.push_back(form->base64 ? withNeighbours(text, range) : range);
            step = std::max(step, length < comparedLength ? 1 : length - comparedLength + 1);
        }
    }
    return step;
}

} // namespace zelto
