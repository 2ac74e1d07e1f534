#include <TrovenhalCommon/TextChunks.h>

#include <Platform/Text.h>

#include <algorithm>

namespace zelto {

std::vector<std::string_view> chunk(std::string_view text, std::size_t utf16Limit) {
    std::vector<std::string_view> pieces;
    utf16Limit = std::max<std::size_t>(utf16Limit, 1);
    while (!text.empty()) {
        // A unit takes at most three bytes, so this covers the limit.
        const auto window = text.substr(0, std::min(text.size(), utf16Limit) * 3 + 4096);
        auto piece = prefixUTF16Units(window, utf16Limit);
        if (piece.empty()) {
            piece = prefixUTF16Units(window, 2);
        }
        pieces.push_back(text.substr(0, std::max<std::size_t>(piece.size(), 1)));
        text.remove_prefix(pieces.back().size());
    }
    return pieces;
}

} // namespace zelto
