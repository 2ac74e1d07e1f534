#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailSamples.h>

#include <thread>

namespace zelto {
namespace {

using testing::exampleMail;
using testing::fileWith;
using testing::readMail;
using testing::resultOf;
using Text = std::optional<std::string>;
using Format = IntegrationLinkFormat;
using LinkType = IntegrationLinkType;

MailDataInteractor interactorOf(std::string_view mail, InteractorOptions options = {}) {
    return MailDataInteractor(readMail(mail), std::move(options));
}

MailDataInteractor kickoff(InteractorOptions options = {}) {
    options.timeZone = "Europe/Berlin";
    return MailDataInteractor(MailReader::open(exampleMail("project-kickoff.eml")).value(),
                              std::move(options));
}

Text htmlOf(MailDataInteractor& interactor, const IntegrationExportHtmlOptions& options = {}) {
    return resultOf<Text>([&](auto completion) { interactor.html(options, std::move(completion)); });
}

Text plainTextOf(MailDataInteractor& interactor, std::optional<LinkType> type = std::nullopt) {
    return resultOf<Text>([&](auto completion) { interactor.messagePlainText(type, std::move(completion)); });
}

Text linkOf(MailDataInteractor& interactor, const LinkType& type) {
    return resultOf<Text>([&](auto completion) { interactor.link(type, std::move(completion)); });
}

IntegrationAttachments attachmentsOf(MailDataInteractor& interactor) {
    return resultOf<IntegrationAttachments>(
        [&](auto completion) { interactor.availableAttachments(std::move(completion)); });
}

using Fetched = Result<std::optional<URL>, AttachmentFetchError>;

Fetched fetched(MailDataInteractor& interactor, std::int64_t id) {
    return resultOf<Fetched>([&](auto completion) { interactor.fetchAttachment(id, std::move(completion)); });
}

TEST(MailDataInteractor, GivesTheParties) {
    auto interactor = kickoff();
    EXPECT_EQ(interactor.exportTarget(), IntegrationExportTarget::email);
    const auto all = interactor.addresses();
    EXPECT_EQ(all.from->email, "mira@harbour.example");
    EXPECT_EQ(all.from->firstName, "Mira");
    EXPECT_EQ(all.to->size(), 2U);
    EXPECT_EQ(all.cc->at(0).lastName, "Reis");
    EXPECT_FALSE(all.bcc.has_value());
}

TEST(MailDataInteractor, ExternalPartiesAreThoseOutsideTheUsersDomain) {
    InteractorOptions options;
    for (const std::string user : {"someone@Harbour.example", "harbour.example"}) {
        options.userAddress = user;
        const auto external = kickoff(options).externalAddresses();
        EXPECT_FALSE(external.from.has_value());
        ASSERT_EQ(external.to->size(), 1U);
        EXPECT_EQ(external.to->at(0).email, "ana@quay.example");
        EXPECT_EQ(external.cc->size(), 1U);
    }
}

TEST(MailDataInteractor, WithoutAUserTheAddressOfDeliveryCounts) {
    const auto external = kickoff().externalAddresses();
    EXPECT_EQ(external.from->email, "mira@harbour.example");
    ASSERT_EQ(external.to->size(), 1U);
    EXPECT_EQ(external.to->at(0).email, "tomas@harbour.example");
    EXPECT_FALSE(external.cc.has_value());
}

TEST(MailDataInteractor, WithoutAUserOrDeliveryEveryPartyIsExternal) {
    auto interactor = interactorOf("From: a@b.example\nTo: c@d.example\n\nx");
    EXPECT_EQ(interactor.externalAddresses(), interactor.addresses());
}

TEST(MailDataInteractor, ASubdomainIsInternalAndALikeNameIsNot) {
    InteractorOptions options;
    options.userAddress = "me@own.example";
    auto interactor = interactorOf("From: a@mail.own.example\nTo: b@notown.example\n\nx", options);
    EXPECT_FALSE(interactor.externalAddresses().from.has_value());
    EXPECT_TRUE(interactor.externalAddresses().to.has_value());
}

TEST(MailDataInteractor, GivesSubjectTitleAndDates) {
    auto interactor = kickoff();
    EXPECT_EQ(interactor.subject(), "Project kick-off: lighthouse relaunch & first week");
    EXPECT_EQ(interactor.title(), "Project kick-off: lighthouse relaunch & first week");
    EXPECT_EQ(interactor.originalDate(), Date::fromUnixSeconds(1760685123));
    EXPECT_EQ(interactor.receivedDate(), Date::fromUnixSeconds(1760685128));

    auto bare = interactorOf("From: a@b.example\n\nx");
    EXPECT_FALSE(bare.subject().has_value());
    EXPECT_EQ(bare.title(), "No subject");
    EXPECT_FALSE(bare.originalDate().has_value());
    EXPECT_FALSE(bare.receivedDate().has_value());
}

TEST(MailDataInteractor, GivesEachLink) {
    auto interactor = kickoff();
    EXPECT_EQ(linkOf(interactor, LinkType::backlink(Format::raw)), "mid:kickoff-2025.43@harbour.example");
    EXPECT_EQ(linkOf(interactor, LinkType::altBacklink(Format::raw)),
              "message:%3Ckickoff-2025.43@harbour.example%3E");
    EXPECT_EQ(linkOf(interactor, LinkType::safeBacklink(Format::markdown)),
              "[Project kick-off: lighthouse relaunch & first week](mid:kickoff-2025.43@harbour.example)");
    EXPECT_EQ(
        linkOf(interactor, LinkType::backlink(Format::html)),
        "<a href=\"mid:kickoff-2025.43@harbour.example\">Project kick-off: lighthouse relaunch &amp; first "
        "week</a>");
    const auto components = resultOf<std::optional<IntegrationLinkComponents>>([&](auto completion) {
        interactor.linkComponents(LinkType::backlink(Format::mrkdwn), std::move(completion));
    });
    EXPECT_EQ(components, (IntegrationLinkComponents{"Project kick-off: lighthouse relaunch & first week",
                                                     "mid:kickoff-2025.43@harbour.example"}));
}

TEST(MailDataInteractor, AWebLinkIsTheOneTheUserGave) {
    const auto type = LinkType::webLink(Format::raw, IntegrationWebLinkVisibility::team, 7);
    auto without = kickoff();
    EXPECT_FALSE(linkOf(without, type).has_value());
    InteractorOptions options;
    options.webLink = URL::parse("https://web.example/m/1?a=b&c");
    auto with = kickoff(options);
    EXPECT_EQ(linkOf(with, type), "https://web.example/m/1?a=b&c");
}

TEST(MailDataInteractor, AMailWithoutMessageIDHasNoBacklink) {
    auto interactor = interactorOf("From: a@b.example\n\nbody");
    for (const auto& type : {LinkType::backlink(Format::raw), LinkType::altBacklink(Format::raw),
                             LinkType::safeBacklink(Format::raw)}) {
        EXPECT_FALSE(linkOf(interactor, type).has_value());
        EXPECT_EQ(plainTextOf(interactor, type), "body");
    }
}

TEST(MailDataInteractor, TextForSlackIsEscapedWithItsLink) {
    auto interactor = interactorOf("Subject: <!here> & you\nMessage-ID: <1@x>\n\n1 < 2 & <@U1>\n");
    EXPECT_EQ(plainTextOf(interactor, LinkType::altBacklink(Format::mrkdwn)),
              "1 &lt; 2 &amp; &lt;@U1&gt;\n\n<message:%3C1@x%3E|&lt;!here&gt; &amp; you>");
    EXPECT_EQ(linkOf(interactor, LinkType::backlink(Format::mrkdwn)), "<mid:1@x|&lt;!here&gt; &amp; you>");
    auto html = interactorOf("Content-Type: text/html\n\n<p>1 &lt; 2 &amp;amp; <b>3</b></p>");
    EXPECT_EQ(plainTextOf(html, LinkType::altBacklink(Format::mrkdwn)), "1 &lt; 2 &amp;amp; 3");
}

TEST(MailDataInteractor, PlainTextEndsInTheLinkAfterABlankLine) {
    auto interactor = interactorOf("Subject: a [b]\nMessage-ID: <1@x>\n\nbody\n\n\n");
    EXPECT_EQ(plainTextOf(interactor), "body");
    EXPECT_EQ(plainTextOf(interactor, LinkType::backlink(Format::markdown)), "body\n\n[a \\[b\\]](mid:1@x)");
    auto empty = interactorOf("Message-ID: <1@x>\n\n");
    EXPECT_EQ(plainTextOf(empty, LinkType::backlink(Format::raw)), "mid:1@x");
    EXPECT_EQ(plainTextOf(empty), "");
}

TEST(MailDataInteractor, HTMLIsAWholeDocumentWithTheHeaderTheBodyAndTheImages) {
    auto interactor = kickoff();
    const auto html = htmlOf(interactor).value();
    EXPECT_TRUE(html.starts_with("<!DOCTYPE html>"));
    EXPECT_NE(html.find("<title>Project kick-off: lighthouse relaunch &amp; first week</title>"),
              std::string::npos);
    EXPECT_NE(html.find("Mira Lindqvist &lt;mira@harbour.example&gt;"), std::string::npos);
    EXPECT_NE(html.find("17 October 2025, 09:12"), std::string::npos);
    EXPECT_NE(html.find("src=\"data:image/png;base64,iVBOR"), std::string::npos);
    EXPECT_EQ(html.find("cid:"), std::string::npos);
    EXPECT_LT(html.find("mira@harbour.example"), html.find("lighthouse site"));
}

TEST(MailDataInteractor, HTMLTakesHeaderTitleAndFooterThatAreGiven) {
    auto interactor = kickoff();
    IntegrationExportHtmlOptions options;
    options.customHeader = "<p>header &amp; link</p>";
    options.customTitle = "Title < 1";
    options.customFooter = "<p>footer</p>";
    options.skipInlineImages = true;
    const auto html = htmlOf(interactor, options).value();
    EXPECT_NE(html.find("<title>Title &lt; 1</title>"), std::string::npos);
    EXPECT_LT(html.find("header &amp; link"), html.find("lighthouse site"));
    EXPECT_LT(html.find("lighthouse site"), html.find("<p>footer</p>"));
    EXPECT_EQ(html.find("mira@harbour.example"), std::string::npos);
    EXPECT_EQ(html.find("<img"), std::string::npos);
}

TEST(MailDataInteractor, HostileTextBecomesNoMarkup) {
    auto interactor = interactorOf("From: \"<script>alert(1)</script>\" <a@b.example>\n"
                                   "Subject: </title><script>x</script>\n\n<script>body</script> & more\n");
    const auto html = htmlOf(interactor).value();
    EXPECT_EQ(html.find("<script"), std::string::npos);
    EXPECT_NE(html.find("&lt;script&gt;body&lt;/script&gt; &amp; more"), std::string::npos);
    auto scripted =
        interactorOf("From: a@b.example\nContent-Type: text/html\n\n"
                     "<p onclick=x>hi<script>y</script><img src=\"https://track.example/p.png\"></p>");
    const auto cleaned = htmlOf(scripted).value();
    EXPECT_EQ(cleaned.find("onclick"), std::string::npos);
    EXPECT_EQ(cleaned.find("track.example"), std::string::npos);
}

TEST(MailDataInteractor, GivesTheHeaderAsHTMLAndAsData) {
    auto interactor = kickoff();
    const auto html =
        resultOf<Text>([&](auto completion) { interactor.htmlHeader(std::move(completion)); }).value();
    EXPECT_NE(html.find("Reis, Joana &lt;joana@quay.example&gt;</span></td></tr>"), std::string::npos);
    EXPECT_NE(html.find("relaunch &amp; first week"), std::string::npos);

    const auto header = resultOf<IntegrationHeaderComponents>(
        [&](auto completion) { interactor.headerComponents(std::move(completion)); });
    using Address = IntegrationHeaderComponents::Address;
    ASSERT_EQ(header.sendersInfo.size(), 3U);
    EXPECT_EQ(header.sendersInfo[0].text, "From:");
    EXPECT_EQ(header.sendersInfo[0].value[0], Address::sender({"Mira Lindqvist", "mira@harbour.example"}));
    EXPECT_EQ(header.sendersInfo[1].value.size(), 2U);
    EXPECT_EQ(header.date.text, "Date:");
    EXPECT_TRUE(header.date.value.starts_with("17 October 2025, 09:12 ")) << header.date.value;

    auto nobody = interactorOf("Subject: x\n\ny");
    const auto empty = resultOf<IntegrationHeaderComponents>(
        [&](auto completion) { nobody.headerComponents(std::move(completion)); });
    ASSERT_EQ(empty.sendersInfo.size(), 1U);
    EXPECT_EQ(empty.sendersInfo[0].value[0], Address::noSender("No sender"));
    EXPECT_EQ(empty.date.value, "");
}

TEST(MailDataInteractor, GivesEvernoteContentWithItsImages) {
    auto interactor = kickoff();
    using Enml = std::optional<IntegrationsInteractorEnml>;
    IntegrationExportHtmlOptions options;
    options.customHeader = "<p>above</p>";
    const auto enml =
        resultOf<Enml>([&](auto completion) { interactor.enml(options, std::move(completion)); }).value();
    EXPECT_LT(enml.enml.find("above"), enml.enml.find("lighthouse site"));
    EXPECT_NE(enml.enml.find("<en-media"), std::string::npos);
    ASSERT_EQ(enml.inlineAttachments.size(), 1U);
    EXPECT_EQ(enml.inlineAttachments[0].name, "beacon.png");
    EXPECT_EQ(enml.inlineAttachments[0].mimeType, "image/png");
    EXPECT_TRUE(viewOf(enml.inlineAttachments[0].data).starts_with("\x89PNG"));

    const auto html = htmlOf(interactor).value();
    const auto fromHTML =
        resultOf<Enml>([&](auto completion) { interactor.enml(html, std::move(completion)); }).value();
    ASSERT_EQ(fromHTML.inlineAttachments.size(), 1U);
    EXPECT_EQ(fromHTML.inlineAttachments[0].data, enml.inlineAttachments[0].data);

    options.skipInlineImages = true;
    const auto bare =
        resultOf<Enml>([&](auto completion) { interactor.enml(options, std::move(completion)); }).value();
    EXPECT_TRUE(bare.inlineAttachments.empty());
    EXPECT_EQ(bare.enml.find("<en-media"), std::string::npos);
}

TEST(MailDataInteractor, ListsAndFetchesAttachments) {
    auto interactor = kickoff();
    const auto attachments = attachmentsOf(interactor);
    ASSERT_EQ(attachments.list.size(), 2U);
    EXPECT_EQ(attachments.list[0].name, "Relaunch plan.pdf");
    EXPECT_EQ(attachments.list[1].name, "Agenda.txt");
    EXPECT_EQ(attachments.list[1].state, IntegrationAttachmentState::restricted);
    for (const auto& each : attachments.list) {
        const auto url = fetched(interactor, each.id);
        ASSERT_TRUE(url.has_value() && *url);
        const auto path = (*url)->filePath();
        EXPECT_EQ(path.filename(), each.name);
        EXPECT_EQ(std::filesystem::file_size(path), static_cast<std::uintmax_t>(each.size));
    }
    EXPECT_TRUE(testing::contentOf((*fetched(interactor, 1))->filePath()).starts_with("%PDF-"));
    EXPECT_TRUE(testing::contentOf((*fetched(interactor, 2))->filePath()).starts_with("Kick-off, Tuesday"));
}

TEST(MailDataInteractor, TwoFetchesOfOneAttachmentGiveTwoFiles) {
    auto interactor = kickoff();
    EXPECT_NE((*fetched(interactor, 1))->filePath(), (*fetched(interactor, 1))->filePath());
}

TEST(MailDataInteractor, AnUnknownAttachmentIsATypedError) {
    auto interactor = kickoff();
    for (const std::int64_t id : {std::int64_t(0), std::int64_t(3), std::int64_t(-1), INT64_MAX}) {
        EXPECT_EQ(fetched(interactor, id), failure(AttachmentFetchError::unknownAttachment));
    }
}

TEST(MailDataInteractor, AMailThatWasChangedGivesErrorsAndNothing) {
    const auto path = fileWith(testing::contentOf(exampleMail("project-kickoff.eml")));
    MailDataInteractor interactor(MailReader::open(path).value());
    std::filesystem::resize_file(path, 2000);
    EXPECT_EQ(fetched(interactor, 1), failure(AttachmentFetchError::sourceChanged));
    EXPECT_FALSE(htmlOf(interactor).has_value());
    EXPECT_FALSE(plainTextOf(interactor).has_value());
    EXPECT_TRUE(attachmentsOf(interactor).list.empty());
    EXPECT_EQ(interactor.title(), "Project kick-off: lighthouse relaunch & first week");
}

TEST(MailDataInteractor, GivesTheBodyAsComponents) {
    auto interactor = kickoff();
    const auto components = resultOf<std::vector<FormattedBodyComponent>>(
        [&](auto completion) { interactor.formattedBodyComponents(std::move(completion)); });
    bool bold = false;
    bool heading = false;
    for (const auto& component : components) {
        heading |= std::holds_alternative<FormattedBodyComponent::Header>(component.value);
        const auto* text = std::get_if<FormattedBodyComponent::Text>(&component.value);
        for (const auto& part :
             text != nullptr ? text->parts : std::vector<FormattedBodyComponent::TextPart>()) {
            bold |= part.value == "lighthouse site" &&
                    part.modifiers == FormattedBodyComponent::TextPart::Modifiers::bold;
        }
    }
    EXPECT_TRUE(bold);
    EXPECT_TRUE(heading);
}

TEST(MailDataInteractor, AMailIsNoMeeting) {
    auto interactor = kickoff();
    EXPECT_FALSE(interactor.meetTranscriptStartDate().has_value());
    EXPECT_FALSE(interactor.meetTranscriptEndDate().has_value());
    EXPECT_FALSE(interactor.meetTranscriptAttendees().has_value());
    EXPECT_FALSE(resultOf<Text>([&](auto completion) {
                     interactor.meetTranscript(IntegrationMeetingTranscriptContent::summary,
                                               IntegrationMeetingTranscriptFormat::text, std::nullopt,
                                               std::move(completion));
                 }).has_value());
    EXPECT_TRUE(resultOf<std::vector<FormattedBodyComponent>>([&](auto completion) {
                    interactor.formattedMeetingSummaryComponents(std::move(completion));
                }).empty());
}

TEST(MailDataInteractor, ManyThreadsGetTheSameResults) {
    auto interactor = kickoff();
    const auto text = plainTextOf(interactor);
    std::vector<std::jthread> threads;
    for (int index = 0; index < 8; ++index) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round) {
                EXPECT_EQ(plainTextOf(interactor), text);
                EXPECT_EQ(attachmentsOf(interactor).list.size(), 2U);
                EXPECT_TRUE(fetched(interactor, 1).has_value());
                EXPECT_TRUE(htmlOf(interactor).has_value());
            }
        });
    }
}

TEST(MailDataInteractor, ReadsTheOtherSamples) {
    MailDataInteractor tickets(MailReader::open(exampleMail("ferry-tickets.eml")).value());
    EXPECT_EQ(tickets.title(), "Билеты на паром 🚢 — пятница, 24 октября");
    EXPECT_TRUE(plainTextOf(tickets)->starts_with("Добрый день!\n\nБилеты на паром"));
    const auto attachments = attachmentsOf(tickets);
    ASSERT_EQ(attachments.list.size(), 2U);
    EXPECT_EQ(attachments.list[0].name, "invite.ics");
    EXPECT_EQ(attachments.list[1].name, "Билеты на паром.pdf");

    MailDataInteractor note(MailReader::open(exampleMail("plain-note.eml")).value());
    EXPECT_EQ(plainTextOf(note),
              "Mira,\n\nthe keys for the lamp room are with Ana until Friday. She leaves them "
              "at the front desk; ask for the brown envelope.\n\nTomas\n\n-- \nHarbour Office");
}

} // namespace
} // namespace zelto
