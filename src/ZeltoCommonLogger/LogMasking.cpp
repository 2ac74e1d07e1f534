#include <ZeltoCommonLogger/LogMasking.h>

#include <ZeltoCommonLogger/DecodedTextInternal.h>
#include <ZeltoCommonLogger/SecretIndexInternal.h>
#include <ZeltoCommonLogger/SecretKeysInternal.h>

#include <algorithm>

namespace zelto {

namespace {

constexpr std::string_view mask = "***";

// Levels of nested escapes, as for a URL in the query of another, or JSON in a JSON string.
constexpr int maximumDecodingDepth = 2;

void findSecrets(std::string_view text, const SecretIndex& index, std::vector<TextRange>& ranges) {
    if (!index.empty()) {
        index.find(text, ranges);
    }
    findValuesOfSecretKeys(text, ranges);
}

void findSecretsBehindEscapes(const DecodedText& source, const SecretIndex& index, int depth,
                              std::vector<TextRange>& ranges) {
    for (const auto decode : {percentDecoded, jsonUnescaped}) {
        const auto decoded = decode(source);
        if (!decoded) {
            continue;
        }
        std::vector<TextRange> found;
        findSecrets(decoded->text, index, found);
        for (const auto& range : found) {
            ranges.push_back({decoded->positions[range.begin], decoded->positions[range.end]});
        }
        if (depth < maximumDecodingDepth) {
            findSecretsBehindEscapes(*decoded, index, depth + 1, ranges);
        }
    }
}

std::string masked(std::string_view text, std::vector<TextRange> ranges) {
    std::ranges::sort(ranges, {}, &TextRange::begin);
    std::string result;
    std::size_t copied = 0;
    for (std::size_t index = 0; index < ranges.size();) {
        TextRange whole = ranges[index];
        while (++index < ranges.size() && ranges[index].begin <= whole.end) {
            whole.end = std::max(whole.end, ranges[index].end);
        }
        result.append(text.substr(copied, whole.begin - copied)).append(mask);
        copied = whole.end;
    }
    return result.append(text.substr(copied));
}

} // namespace

std::string maskSecrets(std::string_view text) {
    const auto index = currentSecretIndex();
    std::vector<TextRange> ranges;
    findSecrets(text, *index, ranges);
    if (text.find_first_of("%\\") != std::string_view::npos) {
        findSecretsBehindEscapes(DecodedText::plain(text), *index, 1, ranges);
    }
    return masked(text, std::move(ranges));
}

} // namespace zelto
