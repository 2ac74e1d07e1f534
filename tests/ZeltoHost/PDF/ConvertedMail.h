#pragma once

#include <ZeltoHost/HTML/CleanedHTML.h>
#include <ZeltoHost/Interactor/MessageHeader.h>
#include <ZeltoHost/PDF/PDFConverter.h>

#include "Output.h"
#include <Support/Completed.h>
#include <Support/Sanitizers.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <ranges>
#include <vector>

namespace zelto {

inline std::string headerOf(const std::vector<IntegrationsInteractorAddress>& recipients) {
    IntegrationHeaderComponents header;
    header.sendersInfo.push_back(headerLine("From:", {{"mira@harbour.example", "Mira Lindqvist"}}));
    header.sendersInfo.push_back(headerLine("To:", recipients));
    header.date = {"Date:", "17 October 2025, 09:12 UTC"};
    return headerHTML(header, "Subject:", "Lighthouse");
}

// All the cases; with a sanitizer a few of them, since it sees nothing of the program that converts.
template <class Cases> auto tried(const Cases& cases) {
#if defined(ZELTO_ADDRESS_SANITIZER) || defined(ZELTO_THREAD_SANITIZER)
    constexpr std::size_t step = 10;
#else
    constexpr std::size_t step = 1;
#endif
    std::vector<std::ranges::range_value_t<Cases>> chosen;
    for (std::size_t index = 0; index < std::size(cases); index += step) {
        chosen.push_back(cases[index]);
    }
    return chosen;
}

// A mail as an export makes a PDF of it.
class ConvertedMail : public testing::Test {
  protected:
    // The HTML that an export converts, of a mail with that body.
    static std::string message(const std::string& body) {
        return cleanedHTML(body, {.header = headerOf({{"robin@quay.example", "Robin"}})});
    }

    std::filesystem::path pdfOf(const std::string& html) {
        const auto pdf = folder_ / (std::to_string(++count_) + ".pdf");
        Completed<Result<void, PDFError>> converted;
        converter_.convert(html, pdf, converted.callback<Completion<void, PDFError>>());
        const auto result = converted.value();
        EXPECT_TRUE(result) << html << result.error().detail;
        return pdf;
    }

    // A part of a page in grey, 50 pixels an inch.
    static std::string picture(const std::filesystem::path& pdf, int top, int height, int page = 1) {
        const auto number = std::to_string(page);
        return outputOf("pdftoppm -r 50 -gray -f " + number + " -l " + number + " -x 0 -y " +
                        std::to_string(top) + " -W 413 -H " + std::to_string(height) + " '" + pdf.string() +
                        "'");
    }

    static std::string textOf(const std::filesystem::path& pdf) {
        return outputOf("pdftotext -layout '" + pdf.string() + "' -");
    }

    // A coordinate of a word's box on the page ("xMax"), in points; 0 if the word is not there.
    static double coordinateOf(const std::string& word, const std::string& name,
                               const std::filesystem::path& pdf) {
        const auto place = outputOf("pdftotext -bbox '" + pdf.string() + "' - | grep '>" + word + "<'");
        const auto at = place.find(name + "=\"");
        return at == std::string::npos ? 0 : std::stod(place.substr(at + name.size() + 2));
    }

    static double rightEdgeOf(const std::string& word, const std::filesystem::path& pdf) {
        return coordinateOf(word, "xMax", pdf);
    }

    static double heightOf(const std::string& word, const std::filesystem::path& pdf) {
        return coordinateOf(word, "yMax", pdf) - coordinateOf(word, "yMin", pdf);
    }

    TemporaryFolder folder_;
    std::shared_ptr<ContentNotes> notes_ = std::make_shared<ContentNotes>();
    PDFConverter converter_{PDFConverterOptions{.notes = notes_}};
    int count_ = 0;
};

} // namespace zelto
