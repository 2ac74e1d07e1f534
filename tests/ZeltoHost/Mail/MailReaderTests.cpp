#include <ZeltoHost/Mail/MailBodyText.h>
#include <ZeltoHost/Mail/MailContent.h>
#include <ZeltoHost/Mail/MailSamples.h>

#include <Platform/FileManager.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace zelto {
namespace {

using testing::fileWith;
using testing::openMail;
using testing::readMail;

std::vector<std::string> attachmentNames(const MailMessage& message) {
    std::vector<std::string> names;
    for (const auto& each : message.attachments) {
        names.push_back(each.name);
    }
    return names;
}

using Names = std::vector<std::string>;

// A mail with one attachment that has this header.
std::shared_ptr<const MailMessage> mailWithAttachment(const std::string& header) {
    return readMail("From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nhello\n--b\n" +
                    header + "\n\nAAAA\n--b--\n");
}

TEST(MailReader, SaysWhenThereIsNoFile) {
    EXPECT_EQ(MailReader::open("/nowhere/mail.eml").error(), MailError::notFound);
}

TEST(MailReader, RefusesADirectory) {
    EXPECT_EQ(MailReader::open(std::filesystem::temp_directory_path()).error(), MailError::unreadable);
}

TEST(MailReader, RefusesWhatIsNoMail) {
    for (const std::string_view content :
         {std::string_view(), std::string_view("\n\n\n"), std::string_view("hello there\nhow are you\n"),
          std::string_view("{\"title\": \"a note\"}"), std::string_view("%PDF-1.4\nFrom: a@b.example\n"),
          std::string_view("\x89PNG\r\n\x1a\n\0\0\0", 11),
          std::string_view("name: not a mail\nother: neither\n\n")}) {
        const auto opened = openMail(content);
        ASSERT_FALSE(opened.has_value()) << content;
        EXPECT_EQ(opened.error(), MailError::notAMail) << content;
    }
}

TEST(MailReader, ReadsAMailFromAPipe) {
    const auto path = fileWith("x").parent_path() / "pipe";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::jthread writer([&] {
        const int pipe = ::open(path.c_str(), O_WRONLY);
        const std::string_view mail = "Subject: through a pipe\n\nbody\n";
        EXPECT_EQ(::write(pipe, mail.data(), mail.size()), static_cast<ssize_t>(mail.size()));
        ::close(pipe);
    });
    const auto opened = MailReader::open(path);
    ASSERT_TRUE(opened.has_value());
    EXPECT_EQ((*opened)->subject, "through a pipe");
}

TEST(MailReader, SpoolsToAPrivateFile) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const std::string_view mail = "Subject: spooled\n\nbody\n";
    ASSERT_EQ(::write(pipe[1], mail.data(), mail.size()), static_cast<ssize_t>(mail.size()));
    ::close(pipe[1]);
    const auto path = spool(pipe[0]);
    ::close(pipe[0]);
    ASSERT_TRUE(path.has_value());
    EXPECT_EQ(testing::contentOf(*path), mail);

    struct stat status {};

    ASSERT_EQ(::stat(path->c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST(MailReader, SpoolingWhatCannotBeReadIsAnError) {
    const int file = ::open("/dev/null", O_WRONLY);
    EXPECT_EQ(spool(file), failure(MailError::unreadable));
    ::close(file);
}

TEST(MailReader, ReadsTheHeader) {
    const auto message =
        readMail("Received: from b by c; Tue, 21 Oct 2025 14:00:05 +0200\r\n"
                 "Received: from a by b; Tue, 21 Oct 2025 14:00:01 +0200\r\n"
                 "Delivered-To: <me@own.example>\r\n"
                 "From: \"Doe, Jane Mary\" <jane@doe.example>\r\n"
                 "To: me@own.example, Team: x@y.example, Y Z <z@y.example>;\r\n"
                 "Cc: one@a.example; Two <two@a.example>\r\n"
                 "Bcc: undisclosed-recipients:;\r\n"
                 "Subject: =?utf-8?B?0J/RgNC40LLQtdGC?=\r\n =?utf-8?Q?_=F0=9F=9A=80?= and\r\n\tmore\r\n"
                 "Message-ID: <note.1@doe.example>\r\n"
                 "Date: Tue, 21 Oct 2025 13:59:58 +0200 (CEST)\r\n\r\nHello\r\n");
    ASSERT_TRUE(message->from.has_value());
    EXPECT_EQ(*message->from,
              (IntegrationsInteractorAddress{"jane@doe.example", "Doe, Jane Mary", "Jane Mary", "Doe"}));
    ASSERT_EQ(message->to.size(), 3U);
    EXPECT_EQ(message->to[2], (IntegrationsInteractorAddress{"z@y.example", "Y Z", "Y", "Z"}));
    ASSERT_EQ(message->cc.size(), 2U);
    EXPECT_EQ(message->cc[1].displayName, "Two");
    EXPECT_TRUE(message->bcc.empty());
    EXPECT_EQ(message->subject, "Привет 🚀 and more");
    EXPECT_EQ(message->messageID, "note.1@doe.example");
    EXPECT_EQ(message->deliveredTo, "me@own.example");
    EXPECT_EQ(message->sentDate, Date::fromUnixSeconds(1761047998));
    EXPECT_EQ(message->receivedDate, Date::fromUnixSeconds(1761048005));
    EXPECT_EQ(plainBodyOf(*message), "Hello");
}

TEST(MailReader, ReadsRawBytesInHeaders) {
    EXPECT_EQ(readMail("Subject: J\xC3\xBCrgen\n\n")->subject, "Jürgen");
    EXPECT_EQ(readMail("Subject: J\xFCrgen\n\n")->subject, "Jürgen");
    EXPECT_EQ(readMail("From: J\xFCrgen Ott <j@o.example>\n\n")->from->displayName, "Jürgen Ott");
    EXPECT_EQ(readMail(std::string_view("Subject: a\0b\n\n", 14))->subject, "a b");
    EXPECT_EQ(readMail("Subject: =?x-none?B?!!!?= =?utf-8?Q?a=0D=0Ab=07?=\n\n")->subject->find('\n'),
              std::string::npos);
}

TEST(MailReader, ToleratesWhatMailsGetWrong) {
    EXPECT_EQ(readMail("From mira Tue Oct 21 14:00:00 2025\nSubject: mailbox\n\nx")->subject, "mailbox");
    EXPECT_EQ(readMail("\xEF\xBB\xBFSubject: marked\n\nx")->subject, "marked");
    EXPECT_EQ(readMail("\n\nSubject: late\n\nx")->subject, "late");
    EXPECT_EQ(readMail("Subject : blank before the colon\n\nx")->subject, "blank before the colon");
    EXPECT_EQ(readMail("Subject: no body at all")->subject, "no body at all");
    EXPECT_EQ(plainBodyOf(*readMail("\njust text, no header\n")), "just text, no header");

    const auto broken = readMail("Subject: one\nthis line was not folded\nFrom: a@b.example\n\nbody\n");
    EXPECT_EQ(broken->from->email, "a@b.example");
    EXPECT_EQ(plainBodyOf(*broken), "body");

    const auto glued = readMail("Subject: one\nthe blank line is missing\nhere as well\n");
    EXPECT_EQ(plainBodyOf(*glued), "the blank line is missing\nhere as well");
}

TEST(MailReader, TakesDatesThatAreNoneAsAbsent) {
    const auto message = readMail("Date: soon\nReceived: by x; yesterday\nReceived: by y\n\nx");
    EXPECT_FALSE(message->sentDate.has_value());
    EXPECT_FALSE(message->receivedDate.has_value());
}

TEST(MailReader, AddressesNestedWithoutEndDoNoHarm) {
    std::string groups;
    for (int index = 0; index < 300'000; ++index) {
        groups += "a:";
    }
    EXPECT_TRUE(openMail("From: a@b.example\nTo: " + groups + "\n\nx").has_value());
}

TEST(MailReader, OfAlternativesTheLastPlainAndTheLastHTMLAreTheBody) {
    const auto message =
        readMail("From: a@b.example\nContent-Type: multipart/alternative; boundary=b\n\n"
                 "--b\n\nplain\n--b\nContent-Type: text/html\n\n<p>first</p>\n"
                 "--b\nContent-Type: text/x-amp-html\n\n<amp>\n"
                 "--b\nContent-Type: text/html\n\n<p>second</p>\n"
                 "--b\nContent-Type: text/calendar; method=REQUEST\n\nBEGIN:VCALENDAR\n--b--\n");
    EXPECT_EQ(plainBodyOf(*message), "plain");
    EXPECT_EQ(htmlBodyOf(*message), "<p>second</p>");
    EXPECT_EQ(attachmentNames(*message), Names{"invite.ics"});
}

TEST(MailReader, OfRelatedPartsTheRootIsTheBody) {
    const auto message =
        readMail("From: a@b.example\nContent-Type: multipart/related; boundary=b; start=\"<root@x>\"\n\n"
                 "--b\nContent-Type: image/png; name=a.png\nContent-ID: <a@x>\n\nA\n"
                 "--b\nContent-Type: text/html\nContent-ID: <root@x>\n\n<img src=\"cid:a@x\">\n--b--\n");
    EXPECT_EQ(htmlBodyOf(*message), "<img src=\"cid:a@x\">");
    ASSERT_EQ(message->inlineImages.size(), 1U);
    EXPECT_EQ(message->inlineImages[0].contentID, "a@x");
    EXPECT_TRUE(message->attachments.empty());
}

TEST(MailReader, AnImageThatNothingRefersToIsAnAttachment) {
    const auto message =
        readMail("From: a@b.example\nContent-Type: multipart/related; boundary=b\n\n"
                 "--b\nContent-Type: text/html\n\n<p>cid:a@x is only text</p><img src='CID:c%40x'>\n"
                 "--b\nContent-Type: image/png; name=a.png\nContent-ID: <a@x>\n\nA\n"
                 "--b\nContent-Type: image/gif; name=c.gif\nContent-ID: <c@x>\n\nA\n--b--\n");
    EXPECT_EQ(attachmentNames(*message), Names{"a.png"});
    EXPECT_EQ(message->inlineImages.size(), 1U);
}

TEST(MailReader, OfMixedPartsTheTextsAreTheBodyAndNamedOnesAreAttachments) {
    const auto message = readMail("From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n"
                                  "--b\nContent-Type: text/plain; name=body.txt\n\nfirst\n"
                                  "--b\nContent-Type: text/plain; name=notes.txt\n\nnotes\n"
                                  "--b\nContent-Disposition: attachment\n\nalone\n"
                                  "--b\n\nlist footer\n--b--\n");
    EXPECT_EQ(plainBodyOf(*message), "first\n\nlist footer");
    EXPECT_EQ(attachmentNames(*message), (Names{"notes.txt", "attachment.txt"}));
}

TEST(MailReader, OfASignedMailTheSignatureIsNotShown) {
    const auto message =
        readMail("From: a@b.example\nContent-Type: multipart/signed; protocol=\"application/pgp-signature\"; "
                 "boundary=b\n\n--b\n\nsigned text\n--b\nContent-Type: application/pgp-signature; "
                 "name=signature.asc\n\nXXX\n--b--\n");
    EXPECT_EQ(plainBodyOf(*message), "signed text");
    EXPECT_TRUE(message->attachments.empty());
}

TEST(MailReader, OfAnEncryptedMailTheContentIsAnAttachment) {
    const auto message = readMail(
        "From: a@b.example\nContent-Type: multipart/encrypted; protocol=\"application/pgp-encrypted\"; "
        "boundary=b\n\n--b\nContent-Type: application/pgp-encrypted\n\nVersion: 1\n"
        "--b\nContent-Type: application/octet-stream; name=encrypted.asc\n\nXXX\n--b--\n");
    EXPECT_EQ(plainBodyOf(*message), "");
    EXPECT_EQ(attachmentNames(*message), Names{"encrypted.asc"});
}

TEST(MailReader, AnAttachedMessageComesAsAFileNamedAfterItsSubject) {
    const auto message =
        readMail("From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nsee below\n"
                 "--b\nContent-Type: message/rfc822\n\nSubject: Re: minutes\n"
                 "Content-Type: multipart/mixed; boundary=c\n\n--c\n\ninner\n--c--\n\n--b--\n");
    EXPECT_EQ(plainBodyOf(*message), "see below");
    ASSERT_EQ(attachmentNames(*message), Names{"Re_ minutes.eml"});
    const auto content = readContent(*message->file, message->parts[message->attachments[0].part], 1000);
    EXPECT_EQ(content,
              "Subject: Re: minutes\nContent-Type: multipart/mixed; boundary=c\n\n--c\n\ninner\n--c--\n");
}

TEST(MailReader, ADigestIsMadeOfMessages) {
    const auto message = readMail("From: a@b.example\nContent-Type: multipart/digest; boundary=b\n\n"
                                  "--b\n\nSubject: one\n\nx\n--b\n\nSubject: two\n\ny\n--b--\n");
    EXPECT_EQ(attachmentNames(*message), (Names{"one.eml", "two.eml"}));
}

TEST(MailReader, AMailThatIsAFileAloneHasNoText) {
    const auto message = readMail("From: a@b.example\nContent-Type: application/pdf; name=a.pdf\n"
                                  "Content-Transfer-Encoding: base64\n\nJVBERi0=\n");
    EXPECT_EQ(plainBodyOf(*message), "");
    EXPECT_EQ(attachmentNames(*message), Names{"a.pdf"});
}

TEST(MailReader, NamesAreDecodedAndCleaned) {
    const std::vector<std::pair<std::string, std::string>> rows{
        {"Content-Type: application/pdf; name=\"=?utf-8?B?0J/Qu9Cw0L0ucGRm?=\"", "План.pdf"},
        {"Content-Disposition: attachment; filename*0*=utf-8''%D0%9F; filename*1*=%D0%BB; filename*2=an.pdf",
         "Плan.pdf"},
        {"Content-Disposition: attachment; filename*=iso-8859-1'en'%A3%20rates.txt; filename=x",
         "£ rates.txt"},
        {"Content-Disposition: attachment; filename=a b c.pdf", "a b c.pdf"},
        {"Content-Disposition: attachment; filename=\"\xCF\xEB\xE0\xED.txt\"", "Ïëàí.txt"},
        {"Content-Disposition: attachment; filename*=utf-8''..%2F..%2F%0D%0Aevil%22.sh", "evil_.sh"},
        {"Content-Disposition: attachment; filename=\"/etc/passwd\"", "passwd"},
        {"Content-Disposition: attachment; filename=\"..\"\nContent-Type: image/png", "image.png"},
        {"Content-Disposition: attachment; filename=\".bashrc\"", "bashrc"},
        {"Content-Type: application/zip", "attachment.zip"},
        {"Content-Type: application/x-unheard-of", "attachment"},
    };
    for (const auto& [header, name] : rows) {
        EXPECT_EQ(attachmentNames(*mailWithAttachment(header)), Names{name}) << header;
    }
}

TEST(MailReader, AMultipartWithoutEndIsReadToTheEndOfTheFile) {
    const auto message = readMail("From: a@b.example\nContent-Type: multipart/mixed; boundary=b\n\npreamble\n"
                                  "--b\n\ntext\n--b\nContent-Type: image/png; name=a.png\n\nAAAA");
    EXPECT_EQ(plainBodyOf(*message), "text");
    EXPECT_EQ(attachmentNames(*message), Names{"a.png"});
    EXPECT_EQ(readContent(*message->file, message->parts[2], 100), "AAAA");
}

TEST(MailReader, AMultipartWhoseBoundaryIsMissingIsText) {
    const auto message = readMail("From: a@b.example\nContent-Type: multipart/mixed\n\n--b\n\ntext\n");
    EXPECT_EQ(plainBodyOf(*message), "--b\n\ntext");
}

TEST(MailReader, AMultipartWhoseBoundaryNeverComesIsText) {
    const auto message =
        readMail("From: a@b.example\nContent-Type: multipart/mixed; boundary=zz\n\nall text\n");
    EXPECT_EQ(plainBodyOf(*message), "all text");
    EXPECT_TRUE(message->attachments.empty());
}

} // namespace
} // namespace zelto
