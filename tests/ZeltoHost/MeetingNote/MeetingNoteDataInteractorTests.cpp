#include <ZeltoHost/Mail/MailSamples.h>
#include <ZeltoHost/MeetingNote/MeetingNoteDataInteractor.h>
#include <ZeltoHost/MeetingNote/MeetingNoteReader.h>

namespace zelto {
namespace {

using testing::resultOf;
using Text = std::optional<std::string>;
using Content = IntegrationMeetingTranscriptContent;
using Format = IntegrationMeetingTranscriptFormat;
using LinkType = IntegrationLinkType;
using Components = std::vector<FormattedBodyComponent>;

MeetingNoteDataInteractor planning(InteractorOptions options = {}) {
    options.timeZone = "Europe/Berlin";
    return MeetingNoteDataInteractor(
        MeetingNoteReader::open(testing::exampleMail("weekly-planning.json")).value(), std::move(options));
}

Text pieceOf(MeetingNoteDataInteractor& interactor, Content content, Format format,
             std::optional<LinkType> link = std::nullopt) {
    return resultOf<Text>(
        [&](auto completion) { interactor.meetTranscript(content, format, link, std::move(completion)); });
}

TEST(MeetingNoteDataInteractor, GivesWhatTheMeetingWas) {
    auto interactor = planning();
    EXPECT_EQ(interactor.exportTarget(), IntegrationExportTarget::meetingNote);
    EXPECT_EQ(interactor.title(), "Weekly planning: lighthouse relaunch");
    EXPECT_EQ(interactor.subject(), interactor.title());
    EXPECT_EQ(interactor.originalDate(), Date::fromUnixSeconds(1761048000));
    EXPECT_EQ(interactor.meetTranscriptStartDate(), Date::fromUnixSeconds(1761048000));
    EXPECT_EQ(interactor.meetTranscriptEndDate(), Date::fromUnixSeconds(1761050700));
    EXPECT_FALSE(interactor.receivedDate().has_value());
    EXPECT_EQ(interactor.addresses().from->email, "mira@harbour.example");
    ASSERT_EQ(interactor.meetTranscriptAttendees()->size(), 2U);
    EXPECT_EQ(interactor.meetTranscriptAttendees()->at(1).lastName, "Reis");
    EXPECT_EQ(interactor.addresses().to, interactor.meetTranscriptAttendees());
}

TEST(MeetingNoteDataInteractor, ExternalPartiesAreThoseOutsideTheUsersDomain) {
    InteractorOptions options;
    options.userAddress = "mira@harbour.example";
    const auto external = planning(options).externalAddresses();
    EXPECT_FALSE(external.from.has_value());
    ASSERT_EQ(external.to->size(), 1U);
    EXPECT_EQ(external.to->at(0).email, "ana@quay.example");
}

TEST(MeetingNoteDataInteractor, GivesThePiecesWithTheirLink) {
    auto interactor = planning();
    const auto link = LinkType::backlink(IntegrationLinkFormat::raw);
    EXPECT_EQ(pieceOf(interactor, Content::notes, Format::text, link),
              "The tide table is made by a script that nobody owns.\nAna knows whom to ask.\n\n"
              "https://notes.harbour.example/lighthouse/43");
    EXPECT_TRUE(pieceOf(interactor, Content::transcript, Format::text)->starts_with("Mira: Shall we start"));
    const auto summary = pieceOf(interactor, Content::summary, Format::text).value();
    EXPECT_NE(summary.find("Tomas lists the pages"), std::string::npos);
    EXPECT_EQ(summary.find('<'), std::string::npos);
    const auto html =
        pieceOf(interactor, Content::summary, Format::html, LinkType::backlink(IntegrationLinkFormat::html))
            .value();
    EXPECT_NE(html.find("<b>both sites up</b>"), std::string::npos);
    EXPECT_NE(html.find("https://notes.harbour.example/lighthouse/43"), std::string::npos);
}

TEST(MeetingNoteDataInteractor, AnAbsentPieceGivesNullopt) {
    MeetingNoteDataInteractor interactor(MeetingNote{.title = "x"});
    for (const auto content : {Content::summary, Content::transcript, Content::notes}) {
        EXPECT_FALSE(pieceOf(interactor, content, Format::text).has_value());
        EXPECT_FALSE(pieceOf(interactor, content, Format::html).has_value());
    }
    EXPECT_TRUE(resultOf<Components>([&](auto completion) {
                    interactor.formattedMeetingSummaryComponents(std::move(completion));
                }).empty());
    EXPECT_FALSE(interactor.meetTranscriptAttendees().has_value());
    EXPECT_FALSE(interactor.addresses().from.has_value());
}

TEST(MeetingNoteDataInteractor, TheBodyIsAllPiecesUnderHeadings) {
    auto interactor = planning();
    const auto text = resultOf<Text>([&](auto completion) {
                          interactor.messagePlainText(LinkType::safeBacklink(IntegrationLinkFormat::markdown),
                                                      std::move(completion));
                      }).value();
    EXPECT_TRUE(text.starts_with("Summary\n\n"));
    EXPECT_LT(text.find("\n\nNotes\n\nThe tide"), text.find("\n\nTranscript\n\nMira"));
    EXPECT_TRUE(text.ends_with("\n\n[Weekly planning: lighthouse relaunch]"
                               "(https://notes.harbour.example/lighthouse/43)"));

    MeetingNoteDataInteractor one(MeetingNote{.title = "x", .notes = MeetingNoteText{"alone", false}});
    EXPECT_EQ(
        resultOf<Text>([&](auto completion) { one.messagePlainText(std::nullopt, std::move(completion)); }),
        "alone");
}

TEST(MeetingNoteDataInteractor, TextForSlackIsEscapedWithItsLink) {
    MeetingNoteDataInteractor one(MeetingNote{.title = "<Q&A>",
                                              .link = "zelto://note?a&b",
                                              .summary = MeetingNoteText{"<p>1 &lt; 2 &amp; 3</p>", true},
                                              .notes = MeetingNoteText{"ask <@U1>", false}});
    const auto link = LinkType::altBacklink(IntegrationLinkFormat::mrkdwn);
    const std::string written = "\n\n<zelto://note?a&amp;b|&lt;Q&amp;A&gt;>";
    EXPECT_EQ(pieceOf(one, Content::summary, Format::text, link), "1 &lt; 2 &amp; 3" + written);
    EXPECT_EQ(pieceOf(one, Content::notes, Format::text, link), "ask &lt;@U1&gt;" + written);
    EXPECT_EQ(resultOf<Text>([&](auto completion) { one.messagePlainText(link, std::move(completion)); }),
              "Summary\n\n1 &lt; 2 &amp; 3\n\nNotes\n\nask &lt;@U1&gt;" + written);
    EXPECT_EQ(pieceOf(one, Content::notes, Format::text), "ask <@U1>");
}

TEST(MeetingNoteDataInteractor, GivesHTMLWithTheHeader) {
    auto interactor = planning();
    const auto html =
        resultOf<Text>([&](auto completion) { interactor.html({}, std::move(completion)); }).value();
    EXPECT_NE(html.find("<title>Weekly planning: lighthouse relaunch</title>"), std::string::npos);
    EXPECT_NE(html.find("Attendees:"), std::string::npos);
    EXPECT_NE(html.find("Ana Reis &lt;ana@quay.example&gt;"), std::string::npos);
    EXPECT_NE(html.find("21 October 2025, 14:00"), std::string::npos);
    EXPECT_NE(html.find("both sites up"), std::string::npos);

    const auto header = resultOf<IntegrationHeaderComponents>(
        [&](auto completion) { interactor.headerComponents(std::move(completion)); });
    ASSERT_EQ(header.sendersInfo.size(), 2U);
    EXPECT_EQ(header.sendersInfo[0].text, "Organiser:");
    const auto block = resultOf<Text>([&](auto completion) { interactor.htmlHeader(std::move(completion)); });
    EXPECT_NE(block->find("Organiser:"), std::string::npos);
}

TEST(MeetingNoteDataInteractor, GivesLinksAndEvernoteContentAndComponents) {
    InteractorOptions options;
    options.webLink = URL::parse("https://web.example/1");
    auto interactor = planning(options);
    const auto linkOf = [&](const LinkType& type) {
        return resultOf<Text>([&](auto completion) { interactor.link(type, std::move(completion)); });
    };
    EXPECT_EQ(linkOf(LinkType::altBacklink(IntegrationLinkFormat::raw)),
              "https://notes.harbour.example/lighthouse/43");
    EXPECT_EQ(linkOf(LinkType::webLink(IntegrationLinkFormat::raw, IntegrationWebLinkVisibility::anyone, {})),
              "https://web.example/1");
    const auto components = resultOf<std::optional<IntegrationLinkComponents>>([&](auto completion) {
        interactor.linkComponents(LinkType::backlink(IntegrationLinkFormat::raw), std::move(completion));
    });
    EXPECT_EQ(components->text, "Weekly planning: lighthouse relaunch");

    using Enml = std::optional<IntegrationsInteractorEnml>;
    EXPECT_NE(resultOf<Enml>([&](auto completion) {
                  interactor.enml(IntegrationExportHtmlOptions(), std::move(completion));
              })->enml.find("both sites up"),
              std::string::npos);
    EXPECT_NE(resultOf<Enml>([&](auto completion) {
                  interactor.enml(std::string("<p>given</p>"), std::move(completion));
              })->enml.find("given"),
              std::string::npos);
    EXPECT_FALSE(resultOf<Components>([&](auto completion) {
                     interactor.formattedBodyComponents(std::move(completion));
                 }).empty());
    EXPECT_FALSE(resultOf<Components>([&](auto completion) {
                     interactor.formattedMeetingSummaryComponents(std::move(completion));
                 }).empty());
}

TEST(MeetingNoteDataInteractor, ANoteHasNoAttachments) {
    auto interactor = planning();
    EXPECT_TRUE(resultOf<IntegrationAttachments>([&](auto completion) {
                    interactor.availableAttachments(std::move(completion));
                }).list.empty());
    using Fetched = Result<std::optional<URL>, AttachmentFetchError>;
    EXPECT_EQ(
        resultOf<Fetched>([&](auto completion) { interactor.fetchAttachment(1, std::move(completion)); }),
        failure(AttachmentFetchError::unknownAttachment));
}

} // namespace
} // namespace zelto
