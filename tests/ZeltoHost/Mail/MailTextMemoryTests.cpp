#include <ZeltoHost/HTML/CleanedHTML.h>
#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailSamples.h>

#include <Support/FreshProcess.h>
#include <Support/Sanitizers.h>

#include <fstream>

#include <malloc.h>

namespace zelto {
namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;

// A line of /proc/self/status that ends in kB, in bytes.
std::size_t statusLine(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(name + ":")) {
            return std::stoul(line.substr(name.size() + 1)) << 10;
        }
    }
    return 0;
}

struct MailShape {
    std::string_view name;
    std::string_view type;
    std::string_view front;
    std::string_view piece;
};

constexpr MailShape ampersands{"ampersands", "text/html", "", "&"};

constexpr std::array shapes{
    MailShape{"paragraphs", "text/html", "", "<p>"},
    MailShape{"paragraphs with text", "text/html", "", "<p>x"},
    MailShape{"nesting", "text/html", "", "<div>"},
    MailShape{"formatting left open", "text/html", "", "<b><p>x"},
    MailShape{"attributes", "text/html", "", "<p a=1 b=2 c=3 d=4 e=5 f=6>"},
    MailShape{"attributes left open", "text/html", "", "<font color=red face=serif size=3><p>"},
    MailShape{"an attribute of quotation marks", "text/html", "<p title='", "\""},
    MailShape{"entities", "text/html", "", "&amp;"},
    ampersands,
    MailShape{"a table", "text/html", "<table>", "<tr><td>1</td><td>2</td></tr>"},
    MailShape{"comments", "text/html", "", "<!--x-->"},
    MailShape{"line breaks", "text/html", "", "<br>"},
    MailShape{"links", "text/html", "", "<a href=tel:1>x</a>"},
    MailShape{"list items", "text/html", "", "<li>x"},
    MailShape{"styles", "text/html", "", "<p style=color:red>x"},
    MailShape{"an image", "text/html", "<img src='data:image/png;base64,", "AAAA"},
    MailShape{"bytes of no character", "text/html; charset=utf-8", "", "\xFF"},
    MailShape{"plain lines", "text/plain", "",
              "sixty characters of plain text make up a line of this body.\n"},
    MailShape{"line ends", "text/plain", "", "\n"},
    MailShape{"tabs", "text/plain", "", "\t"},
    MailShape{"less-than signs", "text/plain", "", "<"},
    MailShape{"quoted lines", "text/plain; format=flowed", "", ">>>>>>>> \n"},
};

std::filesystem::path mailOf(const MailShape& shape, std::size_t bytes) {
    const auto path = testing::fileWith("", "big.eml");
    std::ofstream file(path, std::ios::binary);
    file << "From: a@b.example\nMIME-Version: 1.0\nContent-Type: " << shape.type << "\n\n" << shape.front;
    std::string block;
    while (block.size() < 64U << 10) {
        block += shape.piece;
    }
    for (std::size_t written = 0; written < bytes; written += block.size()) {
        file << block;
    }
    return path;
}

// Reads the mail's text in each form that an export has.
void readEverything(MailDataInteractor& interactor) {
    auto html = testing::resultOf<std::optional<std::string>>(
        [&](auto completion) { interactor.html({}, std::move(completion)); });
    (void)cleanedHTML(std::move(html).value_or("")); // as for a PDF
    (void)testing::resultOf<std::optional<std::string>>(
        [&](auto completion) { interactor.messagePlainText(std::nullopt, std::move(completion)); });
    (void)testing::resultOf<std::optional<IntegrationsInteractorEnml>>(
        [&](auto completion) { interactor.enml(IntegrationExportHtmlOptions(), std::move(completion)); });
    (void)testing::resultOf<std::vector<FormattedBodyComponent>>(
        [&](auto completion) { interactor.formattedBodyComponents(std::move(completion)); });
}

bool staysWithin(std::size_t allowed, const MailShape& shape, const std::filesystem::path& path) {
    ::malloc_trim(0);
    const auto before = statusLine("VmRSS");
    InteractorOptions options;
    options.notes = std::make_shared<ContentNotes>();
    MailDataInteractor interactor(MailReader::open(path).value(), options);
    readEverything(interactor);
    const auto grown = statusLine("VmHWM") - before;
    std::cerr << shape.name << ": " << std::filesystem::file_size(path) / mebibyte << " MiB took "
              << grown / mebibyte << " MiB of " << allowed / mebibyte << "\n";
    return grown <= allowed;
}

std::size_t allowedFor(std::size_t mailBytes) {
    return std::min(64 * mebibyte + 10 * mailBytes, 512 * mebibyte);
}

class MailTextMemory : public ::testing::TestWithParam<MailShape> {
  protected:
    void SetUp() override {
#if defined(ZELTO_ADDRESS_SANITIZER) || defined(ZELTO_THREAD_SANITIZER)
        GTEST_SKIP() << "The sanitizer's own memory would be measured.";
#endif
    }
};

TEST_P(MailTextMemory, StaysWithinTenTimesTheMailAnd64MiB) {
    const auto path = mailOf(GetParam(), 4 * mebibyte);
    expectInFreshProcess([&] { return staysWithin(allowedFor(4 * mebibyte), GetParam(), path); });
}

class LargeMailTextMemory : public MailTextMemory {};

TEST_P(LargeMailTextMemory, StaysWithin512MiBForAMailOf66MB) {
    const auto path = mailOf(GetParam(), 66'000'000);
    expectInFreshProcess([&] { return staysWithin(allowedFor(66'000'000), GetParam(), path); });
}

std::string nameOfShape(const ::testing::TestParamInfo<MailShape>& shape) {
    std::string name(shape.param.name);
    std::erase_if(name, [](char c) { return c == ' ' || c == '-'; });
    return name;
}

INSTANTIATE_TEST_SUITE_P(Shapes, MailTextMemory, ::testing::ValuesIn(shapes), nameOfShape);
INSTANTIATE_TEST_SUITE_P(Shapes, LargeMailTextMemory, ::testing::Values(shapes[1], ampersands), nameOfShape);

} // namespace
} // namespace zelto
