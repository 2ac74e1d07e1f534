#include <ZeltoSandbox/Dropbox/DropboxSearch.h>

#include <ZeltoSandbox/Dropbox/DropboxPaths.h>

#include <Platform/ASCII.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::string_view separator = " OR ";
constexpr std::size_t searchedContent = std::size_t{256} << 10;

std::vector<std::string> wordsOf(std::string_view text) {
    const auto lower = dropboxLower(text);
    std::vector<std::string> words;
    std::string word;
    for (const char c : lower) {
        if (isASCIIAlphanumeric(c) || !isASCII(c)) {
            word.push_back(c);
        } else if (!word.empty()) {
            words.push_back(std::exchange(word, {}));
        }
    }
    if (!word.empty()) {
        words.push_back(std::move(word));
    }
    return words;
}

bool hasAll(const std::vector<std::string>& words, const std::vector<std::string>& wanted) {
    for (const auto& each : wanted) {
        const bool isLast = &each == &wanted.back();
        const auto fits = [&](const std::string& word) {
            return isLast ? word.starts_with(each) : word == each;
        };
        if (std::ranges::none_of(words, fits)) {
            return false;
        }
    }
    return true;
}

} // namespace

DropboxSearch::DropboxSearch(std::string_view query) {
    for (;;) {
        const auto end = query.find(separator);
        if (auto words = wordsOf(query.substr(0, end)); !words.empty()) {
            alternatives_.push_back(std::move(words));
        }
        if (end == std::string_view::npos) {
            return;
        }
        query.remove_prefix(end + separator.size());
    }
}

bool DropboxSearch::matches(std::string_view text) const {
    const auto words = wordsOf(text);
    return std::ranges::any_of(alternatives_, [&](const Words& wanted) { return hasAll(words, wanted); });
}

bool DropboxSearch::matchesName(const DriveEntry& entry) const {
    return matches(entry.name);
}

bool DropboxSearch::matchesContent(const DriveEntry& entry) const {
    return entry.mediaType == "text/plain" && !entry.revisions.empty() &&
           matches(repairedUTF8(entry.revisions.back().content.text(searchedContent)));
}

} // namespace zelto::sandbox
