#include <export/ExportFailures.h>

#include <gtest/gtest.h>

#include <set>

namespace zelto::cli {

namespace {

using Error = IntegrationExportError;

ExportCircumstances circumstances() {
    return {.service = "Trello",
            .account = "Trello+me",
            .takenTypes = {"pdf", "backLink"},
            .usualType = "pdf",
            .type = "pdf",
            .title = "T",
            .attachments = {"a.mov", "b.mov"},
            .tags = {},
            .openerFailure = "The URL was not opened.",
            .missingTarget = {},
            .pdfError = {},
            .report = {}};
}

ExportCircumstances refused(ExportReport::Refused refused) {
    auto about = circumstances();
    about.report.refused.push_back(std::move(refused));
    return about;
}

} // namespace

TEST(ExportFailures, AreEachASentenceOfTheirOwn) {
    std::set<std::string> sentences;
    for (const auto& each : casesOf<Error>()) {
        const auto failure = exportFailure(each.value, circumstances());
        EXPECT_EQ(failure.name, each.name);
        EXPECT_TRUE(failure.message.ends_with('.')) << failure.message;
        EXPECT_TRUE(sentences.insert(failure.message).second) << failure.message;
        EXPECT_FALSE(failure.next.isHelp()) << each.name;
    }
    for (const auto& each : casesOf<ServiceClientError>()) {
        const auto failure = exportFailure(Error::createTaskError,
                                           refused({.kind = "card", .name = "T", .reason = each.value}));
        EXPECT_TRUE(failure.message.starts_with("Trello did not make the card \"T\": ")) << failure.message;
        EXPECT_FALSE(failure.next.isHelp()) << each.name;
    }
    for (const auto& each : casesOf<IntegrationLoadError>()) {
        const auto failure = loadFailure(each.value, "Trello", "Trello+me");
        EXPECT_EQ(failure.name, each.name);
        EXPECT_TRUE(failure.message.ends_with('.')) << failure.message;
        EXPECT_FALSE(failure.next.isHelp()) << each.name;
    }
}

TEST(ExportFailures, OfLoadingQuoteTheServicesOwnWordsAndSayThatNothingWasSent) {
    const auto refused =
        loadFailure(IntegrationLoadError::internalError, "Trello", "Trello+me", ServiceRefusal{"not today"});
    EXPECT_EQ(refused.message, "The data of Trello could not be loaded (\"not today\").");
    EXPECT_EQ(JSONValue(refused.members).text().value(), R"({"words":"not today"})");
    const auto unsent =
        loadFailure(IntegrationLoadError::connectionError, "Trello", "Trello+me", ServiceRefusal{"", true});
    EXPECT_EQ(unsent.message, "Trello could not be reached.");
    EXPECT_TRUE(unsent.nothingWasSent);
    EXPECT_FALSE(refused.nothingWasSent);
}

TEST(ExportFailures, QuoteTheServicesOwnWords) {
    EXPECT_EQ(exportFailure(Error::createTaskError, refused({.kind = "card",
                                                             .name = "T",
                                                             .reason = ServiceClientError::forbidden,
                                                             .words = "unauthorized"}))
                  .message,
              "Trello did not make the card \"T\": the account may not do that there (\"unauthorized\").");
}

TEST(ExportFailures, DistinguishWhatWasNotSentFromWhatMayHaveArrived) {
    EXPECT_EQ(exportFailure(Error::createTaskError, refused({.kind = "card",
                                                             .name = "T",
                                                             .reason = ServiceClientError::connectionError,
                                                             .nothingWasSent = true}))
                  .message,
              "Trello did not make the card \"T\": it could not be reached.");
    EXPECT_EQ(
        exportFailure(Error::createTaskError,
                      refused({.kind = "card", .name = "T", .reason = ServiceClientError::connectionError}))
            .message,
        "Trello did not make the card \"T\": the connection ended without a response. Whether Trello "
        "has this is not known, since no response came: card \"T\".");
}

TEST(ExportFailures, SayInJSONThatNothingWasSent) {
    const ExportReport::Refused unsent{
        .kind = "card", .name = "T", .reason = ServiceClientError::connectionError, .nothingWasSent = true};
    auto about = refused(unsent);
    bool nothingWasSent = false;
    const auto members = [&] {
        const auto failure = exportFailure(Error::createTaskError, about);
        nothingWasSent = failure.nothingWasSent;
        return JSONValue(failure.members).text().value();
    };
    const std::string refusal =
        R"({"kind":"card","name":"T","reason":"connectionError","nothingWasSent":true})";
    EXPECT_EQ(members(), R"({"refused":[)" + refusal + "]}");
    EXPECT_TRUE(nothingWasSent);
    about.report.made = {{.kind = "file", .name = "a.txt", .identifier = {}}};
    EXPECT_EQ(members(), R"({"made":[{"kind":"file","name":"a.txt"}],"refused":[)" + refusal + "]}");
    EXPECT_FALSE(nothingWasSent);
    about.report.made.clear();
    about.report.refused.push_back(
        {.kind = "file", .name = "b.txt", .reason = ServiceClientError::connectionError});
    EXPECT_EQ(members(), R"({"refused":[)" + refusal +
                             R"(],"unsure":[{"kind":"file","name":"b.txt","reason":"connectionError"}]})");
    EXPECT_FALSE(nothingWasSent);
    about.report = {};
    EXPECT_EQ(members(), "{}");
}

TEST(ExportFailures, NameWhatIsTooLargeAndItsSize) {
    auto about = refused({.kind = "file",
                          .name = "a.mov",
                          .reason = ServiceClientError::apiCallError,
                          .words = "File too large",
                          .excessiveSize = 12582912});
    about.report.made = {{.kind = "card", .name = "T", .identifier = "c1"}};
    about.report.refused.push_back(
        {.kind = "file", .name = "b.mov", .reason = ServiceClientError::apiCallError, .excessiveSize = 1});
    const auto failed = exportFailure(Error::uploadAttachmentError, about);
    EXPECT_EQ(failed.message,
              "Trello did not take the file \"a.mov\": the file, of 12582912 bytes, is larger than Trello "
              "takes (\"File too large\"). On Trello already, and made again by another export: card "
              "\"T\". Not on Trello: file \"b.mov\" (too large: 1 byte).");
    EXPECT_EQ(JSONValue(failed.members).text().value(),
              R"({"made":[{"kind":"card","name":"T","identifier":"c1"}],"refused":[)"
              R"({"kind":"file","name":"a.mov","reason":"apiCallError","words":"File too large",)"
              R"("tooLarge":true,"size":12582912},)"
              R"({"kind":"file","name":"b.mov","reason":"apiCallError","tooLarge":true,"size":1}]})");
    EXPECT_EQ(failed.next, NextCommand::again("--attach", "b.mov"));
    EXPECT_EQ(exportFailure(Error::createTaskError, refused({.kind = "task",
                                                             .name = "T",
                                                             .reason = ServiceClientError::apiCallError,
                                                             .excessiveSize = 70000}))
                  .message,
              "Trello did not make the task \"T\": the request, of 70000 bytes, is larger than Trello "
              "takes.");
}

TEST(ExportFailures, ListEverythingThatWasRefused) {
    auto about = refused({.kind = "file",
                          .name = "a.txt",
                          .reason = ServiceClientError::toManyRequests,
                          .words = "slow down"});
    about.report.made = {{.kind = "card", .name = "T", .identifier = "c1"}};
    about.report.refused.push_back(
        {.kind = "file", .name = "b.txt", .reason = ServiceClientError::forbidden});
    about.report.refused.push_back({.kind = "file",
                                    .name = "c.txt",
                                    .reason = ServiceClientError::connectionError,
                                    .nothingWasSent = true});
    about.report.refused.push_back(
        {.kind = "file", .name = "d.txt", .reason = ServiceClientError::connectionError});
    const std::string upload = "Trello did not take the file \"a.txt\": it had too many requests; wait some "
                               "minutes (\"slow down\").";
    const std::string made = " On Trello already, and made again by another export: card \"T\".";
    const std::string unknown =
        " Whether Trello has this is not known, since no response came: file \"d.txt\".";
    const auto failed = exportFailure(Error::uploadAttachmentError, about);
    EXPECT_EQ(failed.message, upload + made + " Not on Trello: file \"b.txt\", file \"c.txt\"." + unknown);
    EXPECT_EQ(JSONValue(failed.members).text().value(),
              R"({"made":[{"kind":"card","name":"T","identifier":"c1"}],"refused":[)"
              R"({"kind":"file","name":"a.txt","reason":"toManyRequests","words":"slow down"},)"
              R"({"kind":"file","name":"b.txt","reason":"forbidden"},)"
              R"({"kind":"file","name":"c.txt","reason":"connectionError","nothingWasSent":true}],)"
              R"("unsure":[{"kind":"file","name":"d.txt","reason":"connectionError"}]})");
    EXPECT_EQ(exportFailure(Error::canceled, about).message,
              "The export was canceled." + made +
                  " Not on Trello: file \"a.txt\", file \"b.txt\", file \"c.txt\"." + unknown);
}

TEST(ExportFailures, SuggestTheSameExportWithWhatMayHelp) {
    auto about = circumstances();
    about.title = "a\xFF"
                  "b";
    about.tags = {"two words", "b\u00fcro"};
    about.timeout = std::chrono::seconds(600);
    about.hasStalled = true;
    const auto next = [&](Error error) { return exportFailure(error, about).next; };
    EXPECT_EQ(next(Error::canceled), NextCommand::again("--timeout", "1200"));
    EXPECT_EQ(next(Error::createBodyError), NextCommand::again("--title", "a\uFFFDb"));
    EXPECT_EQ(next(Error::convertError), NextCommand::againWith("--verbose"));
    EXPECT_EQ(next(Error::unsupportedFormat), NextCommand::again("--as", "backLink"));
    EXPECT_EQ(next(Error::fileAlreadyExists), NextCommand::again("--policy", "keepBoth"));
    EXPECT_EQ(next(Error::uploadAttachmentError), NextCommand::again("--attach", "none"));
    EXPECT_EQ(next(Error::urlEncodeError), NextCommand::again("--title", "a\uFFFDb"));
    EXPECT_EQ(next(Error::createUrlError), NextCommand::again("--tags", "two%20words,b%C3%BCro"));
    EXPECT_EQ(next(Error::xUrlCallbackError), NextCommand::again("--opener", "-"));
    about.timeout = std::chrono::hours(100);
    EXPECT_EQ(next(Error::canceled), NextCommand::again("--timeout", "604800"));
    about.pdfError = PDFError{PDFErrorCode::converterMissing};
    EXPECT_EQ(next(Error::convertError), NextCommand::again("--as", "backLink"));
    about.takenTypes = {"pdf", "backLink", "webLink"};
    about.usualType = "webLink";
    EXPECT_EQ(next(Error::convertError), NextCommand::again("--as", "webLink"));
    about.takenTypes = {"pdf"};
    about.usualType = "pdf";
    EXPECT_TRUE(next(Error::convertError).isHelp());
}

TEST(ExportFailures, SayWhatABodyIsMissing) {
    auto about = circumstances();
    const auto message = [&] { return exportFailure(Error::createBodyError, about).message; };
    EXPECT_EQ(message(), "The message has no text or no link of that kind.");
    EXPECT_EQ(exportFailure(Error::createBodyError, about).next, NextCommand::again("--as", "backLink"));
    about.type = "externalLink";
    EXPECT_EQ(message(),
              "There is no external link; name one as \"externalLink\" in a file for --config-over.");
    about.pdfError = PDFError{PDFErrorCode::converterMissing};
    EXPECT_EQ(message(), exportFailure(Error::convertError, about).message);
}

TEST(ExportFailures, SayWhatNeedsALinkToTheMessage) {
    auto about = circumstances();
    about.hasLink = false;
    about.type = "backLink";
    EXPECT_EQ(exportFailure(Error::createBodyError, about).message,
              "There is no link to the message, which an export as backLink needs: a mail has one by its "
              "Message-ID.");
    EXPECT_EQ(exportFailure(Error::internalError, about).message,
              "The export to Trello met an internal error.");
    about.takenTypes = {"pdf", "externalLink"};
    about.type = "pdf";
    const auto failed = exportFailure(Error::internalError, about);
    EXPECT_EQ(failed.message,
              "There is no link to the message, which an export as pdf needs: a mail has one by "
              "its Message-ID. A link of your own goes as externalLink.");
    EXPECT_EQ(failed.next, NextCommand::again("--as", "externalLink"));
    about.pdfError = PDFError{PDFErrorCode::converterMissing};
    EXPECT_EQ(exportFailure(Error::internalError, about).message,
              exportFailure(Error::convertError, about).message);
}

TEST(ExportFailures, NameWhatWasRefusedWhateverTheErrorIs) {
    auto about = circumstances();
    EXPECT_EQ(exportFailure(Error::oauthError, about).message,
              "Trello does not accept the account's sign-in any more.");
    EXPECT_EQ(exportFailure(Error::connectionError, about).message, "Trello could not be reached.");
    about.report.refused = {
        {.kind = "page", .name = "T", .reason = ServiceClientError::connectionError, .nothingWasSent = true}};
    EXPECT_EQ(exportFailure(Error::connectionError, about).message,
              "Trello did not take the page \"T\": it could not be reached.");
    about.report.refused = {{.kind = "page",
                             .name = "T",
                             .reason = ServiceClientError::apiCallError,
                             .words = "too large",
                             .excessiveSize = 1234}};
    about.attachments = {"a.txt", "b.txt"};
    EXPECT_EQ(exportFailure(Error::internalError, about).message,
              "Trello did not take the page \"T\": the request, of 1234 bytes, is larger than Trello takes "
              "(\"too large\").");
    EXPECT_EQ(exportFailure(Error::internalError, about).next, NextCommand::again("--attach", "none"));
}

TEST(ExportFailures, OfAMissingTargetNameItUnlessTheServiceRefusedSomething) {
    auto about = circumstances();
    about.missingTarget = Failure{"noTarget", "No target is chosen.", NextCommand::again("--target", "A")};
    for (const auto error : {Error::createTaskError, Error::internalError}) {
        const auto failure = exportFailure(error, about);
        EXPECT_EQ(failure.name, nameOf(error));
        EXPECT_EQ(failure.message, "No target is chosen.");
        EXPECT_EQ(failure.next, NextCommand::again("--target", "A"));
    }
    EXPECT_EQ(exportFailure(Error::oauthError, about).message,
              "Trello does not accept the account's sign-in any more.");
    about.report.refused.push_back(
        {.kind = "card", .name = "T", .reason = ServiceClientError::serviceInternalError});
    EXPECT_EQ(exportFailure(Error::createTaskError, about).message,
              "Trello did not make the card \"T\": it had an error of its own; try again later.");
}

TEST(ExportFailures, SayWhatTheServicesOwnWordsMeanAndWhatHelps) {
    using enum RefusalAdvice::Remedy;
    const auto failureBy = [](RefusalAdvice::Remedy remedy) {
        auto about = refused({.kind = "message",
                              .name = "T",
                              .reason = ServiceClientError::dataParseError,
                              .words = "is_archived"});
        about.advice = RefusalAdvice{"the channel is archived", remedy};
        return exportFailure(Error::internalError, about);
    };
    EXPECT_EQ(failureBy(otherTarget).message,
              "Trello did not take the message \"T\": the channel is archived (\"is_archived\").");
    EXPECT_EQ(failureBy(otherTarget).next, "zelto targets Trello+me --refresh");
    EXPECT_EQ(failureBy(reconnect).next, "zelto reconnect Trello+me");
    EXPECT_EQ(failureBy(again).next, NextCommand::again());
    EXPECT_EQ(failureBy(otherType).next, NextCommand::again("--as", "backLink"));
    EXPECT_EQ(failureBy(log).next, NextCommand::againWith("--verbose"));
}

TEST(ExportFailures, TellContactsThatAreFoundAgainFromWhatIsMadeAgain) {
    auto about = refused({.kind = "meeting", .name = "M", .reason = ServiceClientError::apiCallError});
    about.tellsMissingTargets = true;
    about.report.made = {{"contact", "a@b.example", {}}, {"note", "N", {}}, {"contact", "c@d.example", {}}};
    EXPECT_EQ(exportFailure(Error::internalError, about).message,
              "Trello did not take the meeting \"M\": it refused the request. On Trello already, and made "
              "again by another export: note \"N\". On Trello already: contact \"a@b.example\", contact "
              "\"c@d.example\".");
}

TEST(ExportFailures, OfLoadingSayWhatTheServicesOwnWordsMean) {
    using enum RefusalAdvice::Remedy;
    const ServiceRefusal refusal{"token_revoked"};
    const auto failureBy = [&](RefusalAdvice::Remedy remedy) {
        return loadFailure(IntegrationLoadError::internalError, "Slack", "Slack+me", refusal,
                           RefusalAdvice{"it does not accept the sign-in", remedy});
    };
    EXPECT_EQ(failureBy(reconnect).message, "The data of Slack could not be loaded: it does not accept the "
                                            "sign-in (\"token_revoked\").");
    EXPECT_EQ(failureBy(reconnect).next, "zelto reconnect Slack+me");
    EXPECT_EQ(failureBy(log).next, "zelto targets Slack+me --refresh --verbose");
}

} // namespace zelto::cli
