// HTML from a mail: whatever the bytes, every reader ends, its result is UTF-8, links are links, and cleaned
// HTML is well-formed and contains nothing that loads.

#include "Require.h"

#include <ZeltoHost/HTML/CleanedHTML.h>
#include <ZeltoHost/HTML/ENML.h>
#include <ZeltoHost/HTML/FormattedComponents.h>
#include <ZeltoHost/HTML/HTMLGuard.h>
#include <ZeltoHost/HTML/HTMLSpace.h>
#include <ZeltoHost/HTML/PlainText.h>
#include <ZeltoSandbox/OneNote/OneNoteHTML.h>
#include <ZeltoSandbox/ShownMail.h>

#include <Platform/UTF8.h>

#include "../tests/ZeltoHost/HTML/LoadingMarkup.h"

#include <cstdint>

using namespace zelto;

namespace {

void checkCleaned(const std::string& html) {
    const auto cleaned = cleanedHTML(html, {.header = html.substr(0, 16), .title = html});
    require(isValidUTF8(cleaned), "cleaned HTML is not UTF-8", cleaned);
    require(loadingMarkup(cleaned).empty(), "cleaned HTML loads", cleaned);
    const auto page = sandbox::readOneNoteHTML(cleaned);
    require(page.has_value(), "cleaned HTML is not well-formed", cleaned);
    require(loadingMarkup(page->shown).empty(), "a page is shown that loads", page->shown);
    require(cleaned.find("</body>") == cleaned.rfind("</body>"), "cleaned HTML has two bodies", cleaned);
    const auto again = cleanedHTML(cleaned);
    require(loadingMarkup(again).empty(), "HTML cleaned twice loads", again);
}

// HTML that a client of the sandbox sends, well-formed or not.
void checkShown(const std::string& html) {
    const auto shown = sandbox::shownOneNoteHTML(html);
    require(isValidUTF8(shown), "a page that is shown is not UTF-8", shown);
    if (sandbox::readOneNoteHTML(html)) {
        require(loadingMarkup(shown).empty(), "a page is shown that loads", shown);
    }
    const auto mail = sandbox::shownMailHTML(repairedUTF8(html));
    require(isValidUTF8(mail), "a mail that is shown is not UTF-8", mail);
    require(loadingMarkup(mail).empty(), "a mail is shown that loads", mail);
}

void checkComponents(const std::string& html) {
    for (const auto& component : formattedComponentsFromHTML(html)) {
        const auto& parts = std::visit(
            [](const auto& value) -> const auto& { return value.parts; }, component.value);
        require(!parts.empty(), "a component has no parts", std::string(html));
        for (const auto& part : parts) {
            require(!part.value.empty() && isValidUTF8(part.value), "a part is not text", part.value);
            require(!part.link || URL::parse(part.link->absoluteString()), "a link is no URL", part.value);
        }
    }
}

void checkENML(const std::string& html) {
    const auto enml =
        enmlFromHTML(html, {.mediaForImage = [](std::string_view source) {
                         return source.empty() ? std::nullopt : std::optional(EnmlMedia{"0", "image/png"});
                     }});
    require(isValidUTF8(enml), "ENML is not UTF-8", enml);
    for (const char c : enml) {
        const auto byte = static_cast<unsigned char>(c);
        require(byte >= 0x20 || isHTMLSpace(c), "ENML holds a control character", enml);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string html(reinterpret_cast<const char*>(data), size);
    const auto text = plainTextFromHTML(html);
    require(isValidUTF8(text), "plain text is not UTF-8", text);
    const auto guarded = guardedHTML(html);
    require(!guarded || guarded->size() <= html.size() + 2 * size, "the guard adds", std::string(html));
    checkComponents(html);
    checkCleaned(html);
    checkShown(html);
    checkENML(html);
    return 0;
}
