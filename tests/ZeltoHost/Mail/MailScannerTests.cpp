#include <ZeltoHost/Mail/MailFile.h>
#include <ZeltoHost/Mail/MailSamples.h>
#include <ZeltoHost/Mail/MailScanner.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace zelto {
namespace {

using testing::fileWith;

Result<MailScan, MailError> scanned(std::string_view mail, const MailLimits& limits = {}) {
    const auto file = MailFile::open(fileWith(mail));
    return file ? scanMail(**file, limits) : failure(file.error());
}

// Names and values of the mail's own header, one to a line.
std::string headerOf(std::string_view mail) {
    const auto scan = scanned(mail);
    EXPECT_TRUE(scan) << mail;
    std::string lines;
    for (const auto& field : scan.value().header) {
        lines += field.name + ":" + field.value + "\n";
    }
    return lines;
}

// The content of each part, as it lies in the mail.
std::vector<std::string> contentsOf(std::string_view mail) {
    const auto scan = scanned(mail);
    EXPECT_TRUE(scan) << mail;
    std::vector<std::string> contents;
    for (const auto& part : scan.value().parts) {
        contents.emplace_back(mail.substr(part.begin, part.end - part.begin));
    }
    return contents;
}

const std::string multipart = "From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n";

TEST(MailScanner, ALineThatIsNoFieldIsLeftOutOfTheHeaderAndTwoBeginTheText) {
    for (const std::string line : {": no name", "Two words: no field", "Ümlaut: none", "no colon"}) {
        EXPECT_EQ(headerOf("From: a@b.example\n" + line + "\nTo: c@d.example\n\ntext\n"),
                  "From: a@b.example\nTo: c@d.example\n")
            << line;
        EXPECT_EQ(contentsOf("From: a@b.example\n" + line + "\n" + line + "\ntext\n").front(),
                  line + "\n" + line + "\ntext\n");
    }
    EXPECT_EQ(headerOf("From : a@b.example\n\n"), "From: a@b.example\n") << "a blank before the colon";
}

TEST(MailScanner, TheEnvelopeLineOfAMailboxIsNoField) {
    for (const std::string line : {"From me Mon Jan  1", ">From me Mon Jan  1"}) {
        EXPECT_EQ(headerOf(line + "\nSubject: x\n\ntext\n"), "Subject: x\n") << line;
    }
}

TEST(MailScanner, DashesThatAreNoBoundaryEndAHeader) {
    EXPECT_EQ(contentsOf("From: a@b.example\n--x\ntext\n").front(), "--x\ntext\n");
    EXPECT_EQ(contentsOf(multipart + "--b\nContent-Type: text/html\n--x\ntext\n--b--\n").back(), "--x\ntext");
}

TEST(MailScanner, OnlyADeclaredBoundarySeparatesParts) {
    EXPECT_EQ(contentsOf(multipart + "--b\n\n--other\n--bc\n--b x\none\n--b\n\ntwo\n--b--\n--b\nend\n"),
              (std::vector<std::string>{"--b\n\n--other\n--bc\n--b x\none\n--b\n\ntwo\n--b--\n--b\nend\n",
                                        "--other\n--bc\n--b x\none", "two"}));
}

TEST(MailScanner, AContinuationWithoutAFieldBeginsTheText) {
    EXPECT_EQ(contentsOf(multipart + "--b\n folded: text\nmore\n--b--\n").back(), " folded: text\nmore");
}

TEST(MailScanner, AnAttachedMessageIsNamedAfterItsSubjectUnlessItHasAName) {
    const auto nameWith = [](const std::string& type) {
        return scanned(multipart + "--b\nContent-Type: message/rfc822" + type +
                       "\n\nSubject: inner\nFrom: c@d.example\n\ntext\n--b--\n")
            .value()
            .parts.at(1)
            .name;
    };
    EXPECT_EQ(nameWith(""), "inner");
    EXPECT_EQ(nameWith("; name=own.eml"), "own.eml");
}

TEST(MailScanner, TooManyEmptyPartsAreRefusedAtTheirBoundary) {
    EXPECT_EQ(scanned(multipart + "--b\n--b\n--b\n--b\n--b--\n", {.parts = 2}).error(),
              MailError::tooManyParts);
    EXPECT_TRUE(scanned(multipart + "--b\n--b\n--b--\n", {.parts = 2}));
}

TEST(MailScanner, AFileThatIsCutWhileItIsReadIsAnError) {
    const auto path = fileWith("From: a@b.example\n\n" + std::string(1'000'000, 'x'));
    const auto file = MailFile::open(path).value();
    std::filesystem::resize_file(path, 300'000);
    EXPECT_EQ(scanMail(*file, {}).error(), MailError::changed);
}

} // namespace
} // namespace zelto
