#include <ZeltoHost/Mail/MailBodyText.h>
#include <ZeltoHost/Mail/MailSamples.h>

namespace zelto {
namespace {

using testing::openMail;

std::string mailOfParts(std::size_t count) {
    std::string mail = "From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n";
    for (std::size_t index = 0; index < count; ++index) {
        mail += "--b\n\n";
    }
    return mail + "--b--\n";
}

std::string nested(std::size_t depth, bool messages) {
    std::string mail = "From: a@b.example\n";
    for (std::size_t level = 0; level < depth; ++level) {
        const auto boundary = "b" + std::to_string(level);
        mail += messages ? "Content-Type: message/rfc822\n\n"
                         : "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + "\n";
    }
    return mail + "Content-Type: text/plain\n\nat the bottom\n";
}

void expectRefused(const std::string& mail, MailError error) {
    const auto opened = openMail(mail);
    ASSERT_FALSE(opened.has_value());
    EXPECT_EQ(nameOf(opened.error()), nameOf(error));
    EXPECT_FALSE(messageOf(opened.error()).empty());
}

TEST(MailLimits, TenThousandPartsAreReadAndOneMoreIsRefused) {
    const auto opened = openMail(mailOfParts(10'000));
    ASSERT_TRUE(opened.has_value());
    EXPECT_EQ((*opened)->parts.size(), 10'001U);
    expectRefused(mailOfParts(10'001), MailError::tooManyParts);
}

TEST(MailLimits, AMillionTinyPartsAreRefused) {
    expectRefused(mailOfParts(1'000'000), MailError::tooManyParts);
}

TEST(MailLimits, TenThousandHeadersAreReadAndOneMoreIsRefused) {
    std::string mail = "From: a@b.example\n";
    for (int index = 1; index < 10'000; ++index) {
        mail += "X: y\n";
    }
    EXPECT_TRUE(openMail(mail + "\nbody\n").has_value());
    expectRefused(mail + "X: y\n\nbody\n", MailError::tooManyHeaders);
}

TEST(MailLimits, HeadersOfAllPartsCount) {
    std::string mail = "From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n";
    for (int part = 0; part < 101; ++part) {
        mail += "--b\n";
        for (int index = 0; index < 100; ++index) {
            mail += "X: y\n";
        }
        mail += "\ntext\n";
    }
    expectRefused(mail, MailError::tooManyHeaders);
}

TEST(MailLimits, AMebibyteOfHeadersIsReadAndMoreIsRefused) {
    const std::string start = "From: a@b.example\nSubject: ";
    const std::string subject((1U << 20) - start.size() - 1, 'x');
    EXPECT_TRUE(openMail(start + subject + "\n\nbody").has_value());
    expectRefused(start + subject + "x\n\nbody", MailError::headersTooLarge);
}

TEST(MailLimits, AHeaderLineWithoutEndIsRefused) {
    expectRefused("From: a@b.example\nSubject: " + std::string(8U << 20, 'x'), MailError::headersTooLarge);
}

TEST(MailLimits, AHundredLevelsAreReadAndOneMoreIsRefused) {
    for (const bool messages : {false, true}) {
        EXPECT_TRUE(openMail(nested(100, messages)).has_value());
        expectRefused(nested(101, messages), MailError::nestedTooDeep);
    }
    EXPECT_EQ(plainBodyOf(**openMail(nested(100, false))), "at the bottom");
}

TEST(MailLimits, DashesInATextAreNoParts) {
    std::string text;
    for (int index = 0; index < 50'000; ++index) {
        text += "--b\n--\n----- Forwarded message -----\n";
    }
    const auto opened = openMail("From: a@b.example\nContent-Type: text/plain\n\n" + text);
    ASSERT_TRUE(opened.has_value());
    EXPECT_EQ((*opened)->parts.size(), 1U);
}

TEST(MailLimits, ABoundaryIsFoundHoweverItsHeaderIsWritten) {
    for (const std::string type :
         {"multipart/mixed;\n\tboundary=bound", "multipart/mixed; boundary=\"bound\"",
          "multipart/mixed; boundary*0=bo; boundary*1=und", "multipart/mixed; boundary*=us-ascii''bo%75nd",
          "MULTIPART/Mixed ; Boundary = \"bo\\und\"", "multipart/mixed (comment); boundary=bound",
          "multipart/mixed; boundary=\"=?us-ascii?q?bound?=\""}) {
        const auto opened = openMail("From: a@b.example\nContent-Type: " + type +
                                     "\n\n--bound\n\none\n--bound\n\ntwo\n--bound--\n");
        ASSERT_TRUE(opened.has_value()) << type;
        EXPECT_EQ((*opened)->parts.size(), 3U) << type;
    }
}

TEST(MailLimits, ABoundaryThatBeginsAnotherOneIsNotTakenForIt) {
    const auto opened = openMail("From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n"
                                 "--b\nContent-Type: multipart/mixed; boundary=bb\n\n"
                                 "--bb\n\ninner\n--bb--\n--b \t\n\nouter\n--b--\n--b\n\nafter the end\n");
    ASSERT_TRUE(opened.has_value());
    EXPECT_EQ((*opened)->parts.size(), 4U);
    EXPECT_EQ(plainBodyOf(**opened), "inner\n\nouter");
}

TEST(MailLimits, ATextLargerThanTheLimitIsCutWithANote) {
    MailLimits limits;
    limits.textBytes = 100;
    for (const std::string type : {"text/plain", "text/html"}) {
        const auto opened =
            openMail("From: a@b.example\nContent-Type: " + type + "\n\n" + std::string(101, 'x'), limits);
        ASSERT_TRUE(opened.has_value());
        ContentNotes notes;
        EXPECT_EQ(plainBodyOf(**opened, &notes), std::string(100, 'x'));
        EXPECT_EQ(notes.all(), std::vector{ContentNote{ContentNoteKind::textCut}});
    }
}

TEST(MailLimits, ATextOfTheLimitIsWhole) {
    MailLimits limits;
    limits.textBytes = 100;
    const auto opened = openMail("From: a@b.example\n\n" + std::string(100, 'x'), limits);
    ASSERT_TRUE(opened.has_value());
    ContentNotes notes;
    EXPECT_EQ(plainBodyOf(**opened, &notes), std::string(100, 'x'));
    EXPECT_EQ(notes.all(), std::vector<ContentNote>());
}

TEST(MailLimits, TheTextsOfABodyShareTheLimit) {
    MailLimits limits;
    limits.textBytes = 100;
    const auto opened = openMail("From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\n" +
                                     std::string(60, 'x') + "\n--b\n\n" + std::string(60, 'y') + "\n--b--\n",
                                 limits);
    ASSERT_TRUE(opened.has_value());
    ContentNotes notes;
    EXPECT_EQ(plainBodyOf(**opened, &notes), std::string(60, 'x') + "\n\n" + std::string(40, 'y'));
    EXPECT_EQ(notes.all(), std::vector{ContentNote{ContentNoteKind::textCut}});
}

TEST(MailLimits, ACharacterIsNotCutInTwo) {
    MailLimits limits;
    limits.textBytes = 100;
    const auto opened =
        openMail("From: a@b.example\nContent-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: 8bit"
                 "\n\n" +
                     std::string(99, 'x') + "éé",
                 limits);
    ASSERT_TRUE(opened.has_value());
    EXPECT_EQ(plainBodyOf(**opened), std::string(99, 'x'));
}

} // namespace
} // namespace zelto
