#include <ZeltoHost/PDF/PDFConverter.h>

#include <Platform/FileManager.h>

#include "Output.h"
#include <Support/Completed.h>
#include <Support/Event.h>
#include <Support/LoopbackServer.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

using namespace std::chrono_literals;

void hangUp(const LoopbackSocket&, int) {}

class PDFConverterTest : public testing::Test {
  protected:
    Result<void, PDFError> convert(const std::string& html, PDFConverterOptions options = {}) {
        PDFConverter converter(std::move(options));
        return convert(converter, html);
    }

    Result<void, PDFError> convert(PDFConverter& converter, const std::string& html) {
        return convert(converter, html, target());
    }

    static Result<void, PDFError> convert(PDFConverter& converter, const std::string& html,
                                          const std::filesystem::path& target) {
        Completed<Result<void, PDFError>> converted;
        converter.convert(html, target, converted.callback<Completion<void, PDFError>>());
        return converted.value();
    }

    // Uses a shell script that gets the input and the output as its arguments.
    PDFConverterOptions script(const std::string& body) {
        const auto path = folder_.write("converter.sh", "#!/bin/sh\n" + body + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return {.command = {path.string()}};
    }

    std::filesystem::path target() const { return folder_ / "out.pdf"; }

    static std::ptrdiff_t filesIn(const std::filesystem::path& folder) {
        return std::distance(std::filesystem::directory_iterator(folder), {});
    }

    TemporaryFolder folder_;
};

// Cells whose words may break anywhere are measured letter by letter.
TEST_F(PDFConverterTest, TextInTablesWithinTablesIsLaidOutWithinTheLimits) {
    std::string paragraphs;
    while (paragraphs.size() < 25'000) {
        paragraphs += "<p>The quick brown fox jumps over the lazy dog, and then goes home to its den.</p>";
    }
    EXPECT_TRUE(convert("<table width=600><tr><td><table><tr><td>" + paragraphs + "</table></table>"));
}

TEST_F(PDFConverterTest, ManyLongAddressesInTablesAreLaidOutWithinTheLimits) {
    std::string paragraphs;
    for (int index = 0; index < 500; ++index) {
        paragraphs += "<p>see https://track.example/" + std::string(400, 'x') + " now</p>";
    }
    EXPECT_TRUE(convert("<table width=600><tr><td><table><tr><td>" + paragraphs + "</table></table>"));
}

TEST_F(PDFConverterTest, TextOfAllScriptsComesOut) {
    ASSERT_TRUE(convert("<p>Grüße, Привет мир</p><p>会議のお知らせ</p><p>สวัสดี</p><p>회의</p>"
                        "<table bgcolor=red><tr><td>cell</table>"));
    EXPECT_TRUE(TemporaryFolder::read(target()).starts_with("%PDF-"));
    const auto text = outputOf("pdftotext '" + target().string() + "' -");
    for (const auto* each : {"Grüße, Привет мир", "会議のお知らせ", "สวัสดี", "회의"}) {
        EXPECT_NE(text.find(each), std::string::npos) << text;
    }
    EXPECT_NE(text.find("cell"), std::string::npos) << text;
}

TEST_F(PDFConverterTest, ALineOfEightyCharactersIsNotBroken) {
    const std::string line = std::string(38, 'x') + " and " + std::string(37, 'y');
    ASSERT_TRUE(convert("<pre>" + line + "</pre>"));
    EXPECT_NE(outputOf("pdftotext '" + target().string() + "' -").find(line), std::string::npos);
}

TEST_F(PDFConverterTest, AnImageThatIsNarrowedToThePageKeepsItsProportions) {
    const std::string pixel =
        "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVQI12NoAAAAggCB3UNq9AAAAABJRU5ErkJggg==";
    ASSERT_TRUE(convert("<img width=3200 height=3200 src='data:image/png;base64," + pixel + "'><p>below"));
    EXPECT_NE(outputOf("pdfinfo '" + target().string() + "'").find("Pages:           1\n"),
              std::string::npos);
}

TEST_F(PDFConverterTest, AnImageOfAWidthOfTenThousandDigitsIsConverted) {
    EXPECT_TRUE(convert("<img width=" + std::string(10'000, '9') + "><p>text"));
}

TEST_F(PDFConverterTest, ATableInACellThatIsCentredStandsInItsMiddle) {
    ASSERT_TRUE(
        convert("<table width=100%><tr><td align=center><table width=100><tr><td>word</table></table>"));
    const auto boxes = outputOf("pdftotext -bbox '" + target().string() + "' -");
    const auto word = boxes.find("<word xMin=\"");
    ASSERT_NE(word, std::string::npos) << boxes;
    EXPECT_NEAR(std::stod(boxes.substr(word + 12)), 285, 15) << boxes; // of 595 points
}

TEST_F(PDFConverterTest, AMailNeitherCallsHomeNorPullsInLocalFiles) {
    const LoopbackServer listener(hangUp);
    const auto web = "http://127.0.0.1:" + std::to_string(listener.port()) + "/";
    const auto canary = folder_.write("canary.txt", "CANARY-5d1f");
    const auto local = "file://" + canary.string();
    std::string html = "<html><head><base href='" + web + "'>";
    html += "<style>p{color:red} body{}</style>";
    for (const auto& address : {web + "x", local}) {
        html += "<link rel=stylesheet href='" + address + "'><link rel=attachment href='" + address +
                "'><style>@import '" + address + "';@font-face{font-family:f;src:url(" + address +
                ")}p{font-family:f;background:url(" + address + ")}</style><img src='" + address +
                "'><img srcset='" + address + " 1x'><object data='" + address + "'></object><embed src='" +
                address + "'><iframe src='" + address + "'></iframe><a rel=attachment href='" + address +
                "'>attached</a><body background='" + address + "'><div style=\"background:\\75rl('" +
                address + "')\">x</div><svg><image href='" + address + "'/><use href='" + address +
                "#a'/></svg><input type=image src='" + address + "'><video poster='" + address +
                "'></video><img src='data:image/svg+xml,<svg xmlns=\"http://www.w3.org/2000/svg\"><image "
                "href=\"" +
                address + "\"/></svg>'><p>shown</p>";
    }
    ASSERT_TRUE(convert(html));
    EXPECT_EQ(listener.connectionCount(), 0);
    EXPECT_EQ(outputOf("pdfdetach -list '" + target().string() + "'"), "0 embedded files\n");
    EXPECT_EQ(outputOf("pdftotext '" + target().string() + "' -").find("CANARY"), std::string::npos);
    EXPECT_EQ(TemporaryFolder::read(target()).find("CANARY"), std::string::npos);
    EXPECT_NE(outputOf("pdftotext '" + target().string() + "' -").find("shown"), std::string::npos);
}

TEST_F(PDFConverterTest, TheScriptItselfLoadsDataAddressesAlone) {
    const LoopbackServer listener(hangUp);
    const auto web = "http://127.0.0.1:" + std::to_string(listener.port()) + "/";
    const auto canary = folder_.write("canary.txt", "CANARY-5d1f");
    std::string html;
    for (const auto& address : {web, "file://" + canary.string(), canary.string()}) {
        html += "<link rel=stylesheet href='" + address + "'><link rel=attachment href='" + address +
                "'><style>@import '" + address + "';@font-face{font-family:f;src:url(" + address +
                ")}p{font-family:f;background:url(" + address + ")}</style><img src='" + address +
                "'><object data='" + address + "'></object><embed src='" + address +
                "'><a rel=attachment href='" + address +
                "'>a</a><img src=\"data:image/svg+xml,<svg xmlns='http://www.w3.org/2000/svg'"
                " width='9' height='9'><image href='" +
                address + "' width='9' height='9'/></svg>\"><p>shown</p>";
    }
    const auto input = folder_.write("raw.html", html);
    runScriptUncleaned(input, target());
    ASSERT_TRUE(TemporaryFolder::read(target()).starts_with("%PDF-"));
    EXPECT_EQ(listener.connectionCount(), 0);
    EXPECT_EQ(outputOf("pdfdetach -list '" + target().string() + "'"), "0 embedded files\n");
    EXPECT_EQ(outputOf("pdftotext '" + target().string() + "' -").find("CANARY"), std::string::npos);
}

TEST_F(PDFConverterTest, APageOfOnePixelAndAHugeColumnSpanAreCleanedAway) {
    EXPECT_TRUE(
        convert("<style>@page{size:1px}</style><table><tr><td colspan=2147483647>x</table><p>text</p>"));
}

TEST_F(PDFConverterTest, ALayoutWithoutEndIsStoppedByItsCPUTime) {
    std::string html;
    for (int depth = 0; depth < 40; ++depth) {
        html += "<div style='display:flex'><div>";
    }
    const auto result = convert(html + "x", {.cpuSeconds = 3});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, PDFErrorCode::timedOut) << result.error().detail;
    EXPECT_FALSE(std::filesystem::exists(target()));
}

TEST_F(PDFConverterTest, ALongChainOfRepliesIsNoTrouble) {
    std::string html;
    for (int depth = 0; depth < 200; ++depth) {
        html += "<blockquote style='margin:0'>";
    }
    const auto result = convert(html + "innermost");
    ASSERT_TRUE(result) << result.error().detail;
    EXPECT_NE(outputOf("pdftotext '" + target().string() + "' -").find("innermost"), std::string::npos);
}

TEST_F(PDFConverterTest, TooLittleMemoryIsReportedAsTooLarge) {
    // Its layout takes more than 500 MiB. Of a text of ten times as many elements the text alone would be
    // laid out.
    std::string html = "<p>";
    for (int i = 0; i < 5000; ++i) {
        html += "<b>word</b> ";
    }
    const auto result = convert(html, {.addressSpace = std::uint64_t{450} << 20});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, PDFErrorCode::tooLarge) << result.error().status << result.error().detail;
}

TEST_F(PDFConverterTest, AFileThatGrowsTooLargeIsReportedAsSuch) {
    const auto result = convert("<p>text</p>", {.fileSize = 1000});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, PDFErrorCode::tooLarge) << result.error().status << result.error().detail;
}

TEST_F(PDFConverterTest, AUsersConverterGetsCleanedHTMLByArgumentsThatNoShellSees) {
    auto options = script("printf '%%PDF-1.7 %s ' \"$1\" > \"$3\"; cat \"$2\" >> \"$3\"");
    options.command.push_back("a $(touch x) 'b;");
    ASSERT_TRUE(convert("<script>evil()</script><img src=http://a.example/><p>text</p>", options));
    const auto made = TemporaryFolder::read(target());
    EXPECT_TRUE(made.starts_with("%PDF-1.7 a $(touch x) 'b; <!DOCTYPE html>")) << made;
    EXPECT_NE(made.find("<p>text</p>"), std::string::npos);
    EXPECT_EQ(made.find("evil"), std::string::npos);
    EXPECT_EQ(made.find("a.example"), std::string::npos);
}

TEST_F(PDFConverterTest, AConverterThatHangsIsStopped) {
    auto options = script("exec sleep 1000");
    options.wallTime = 300ms;
    EXPECT_EQ(convert("x", options).error().code, PDFErrorCode::timedOut);
}

TEST_F(PDFConverterTest, AConverterThatFailsIsReportedWithItsStatusAndWords) {
    const auto error = convert("x", script("echo no ink >&2; exit 3")).error();
    EXPECT_EQ(error.code, PDFErrorCode::failed);
    EXPECT_EQ(error.status, 3);
    EXPECT_EQ(error.detail, "no ink\n");
}

TEST_F(PDFConverterTest, AConverterThatDiesBySignalIsReported) {
    const auto error = convert("x", script("kill -KILL $$")).error();
    EXPECT_EQ(error.code, PDFErrorCode::failed);
    EXPECT_EQ(error.status, 128 + 9);
}

TEST_F(PDFConverterTest, AConverterThatLeavesNothingIsReported) {
    EXPECT_EQ(convert("x", script("exit 0")).error().code, PDFErrorCode::notAPDF);
}

TEST_F(PDFConverterTest, APipeOrALinkInPlaceOfThePDFIsReported) {
    EXPECT_EQ(convert("x", script("mkfifo \"$2\"")).error().code, PDFErrorCode::notAPDF);
    const auto pdf = folder_.write("other.pdf", "%PDF-1.4");
    EXPECT_EQ(convert("x", script("ln -s '" + pdf.string() + "' \"$2\"")).error().code,
              PDFErrorCode::notAPDF);
    EXPECT_EQ(convert("x", script("mkdir \"$2\"")).error().code, PDFErrorCode::notAPDF);
}

TEST_F(PDFConverterTest, TemporaryFilesOfAConverterGoWithIt) {
    const auto note = folder_ / "place";
    auto options = script("mktemp -d > '" + note.string() + "'; exec sleep 1000");
    options.wallTime = 3s;
    EXPECT_EQ(convert("x", options).error().code, PDFErrorCode::timedOut);
    auto place = TemporaryFolder::read(note);
    place.pop_back();
    EXPECT_TRUE(place.starts_with('/'));
    EXPECT_FALSE(std::filesystem::exists(place)) << place;
}

TEST_F(PDFConverterTest, WeasyPrintLeavesNoFolderWhenItEndsOrIsStopped) {
    const TemporaryFolder place;
    const auto ours = FileManager::temporaryDirectory().value();
    const auto oursBefore = filesIn(ours);
    const std::string before = std::getenv("TMPDIR") == nullptr ? "" : std::getenv("TMPDIR");
    ::setenv("TMPDIR", place.path().c_str(), 1);
    std::string html;
    for (int depth = 0; depth < 40; ++depth) {
        html += "<div style='display:flex'><div>";
    }
    EXPECT_EQ(convert(html + "x", {.cpuSeconds = 3}).error().code, PDFErrorCode::timedOut);
    EXPECT_TRUE(convert("<p>text</p>"));
    before.empty() ? ::unsetenv("TMPDIR") : ::setenv("TMPDIR", before.c_str(), 1);
    EXPECT_TRUE(std::filesystem::is_empty(place.path()));
    EXPECT_EQ(filesIn(ours), oursBefore);
}

TEST_F(PDFConverterTest, WhatIsNoPDFIsRefusedAndTheOldFileStays) {
    folder_.write("out.pdf", "old");
    EXPECT_EQ(convert("x", script("echo '<html>' > \"$2\"")).error().code, PDFErrorCode::notAPDF);
    EXPECT_EQ(TemporaryFolder::read(target()), "old");
}

TEST_F(PDFConverterTest, NothingButTheTargetIsLeftBehind) {
    const auto options = script("printf '%%PDF-1.4' > \"$2\"; echo x > \"$2.log\"");
    const auto before = filesIn(folder_.path());
    ASSERT_TRUE(convert("x", options));
    EXPECT_EQ(filesIn(folder_.path()), before + 1);
}

TEST_F(PDFConverterTest, AMissingConverterIsReported) {
    const auto error = convert("x", {.command = {"no-such-converter-anywhere"}}).error();
    EXPECT_EQ(error.code, PDFErrorCode::converterMissing);
    EXPECT_NE(error.message().find("no-such-converter-anywhere"), std::string::npos);
}

TEST_F(PDFConverterTest, ATargetThatCannotBeWrittenIsReported) {
    PDFConverter converter(script("printf '%%PDF-1.4' > \"$2\""));
    EXPECT_EQ(convert(converter, "x", folder_ / "absent" / "out.pdf").error().code,
              PDFErrorCode::cannotWrite);
}

TEST_F(PDFConverterTest, ConversionsThatRunOrWaitAreCanceledWhenTheConverterGoes) {
    std::vector<PDFErrorCode> codes;
    std::mutex mutex;
    {
        PDFConverter converter(script("exec sleep 1000"));
        for (int i = 0; i < 5; ++i) {
            converter.convert("x", target(), [&](const Result<void, PDFError>& result) {
                const std::lock_guard lock(mutex);
                codes.push_back(result.error().code);
            });
        }
    }
    EXPECT_EQ(codes, std::vector<PDFErrorCode>(5, PDFErrorCode::canceled));
}

TEST_F(PDFConverterTest, TheConverterMayEndInItsOwnCompletion) {
    auto converter = std::make_unique<PDFConverter>(script("printf '%%PDF-1.4' > \"$2\""));
    Event done;
    auto& released = *converter;
    released.convert("x", target(),
                     [owner = std::move(converter), &done](const Result<void, PDFError>& result) mutable {
                         EXPECT_TRUE(result);
                         owner.reset();
                         done.set();
                     });
    done.wait();
}

TEST_F(PDFConverterTest, EveryErrorHasASentence) {
    for (const auto& each : casesOf<PDFErrorCode>()) {
        EXPECT_FALSE(PDFError{.code = each.value}.message().empty()) << each.name;
    }
}

} // namespace
} // namespace zelto
