#pragma once

#include <zelto/ServiceCommands.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

struct ExpectedPreview {
    std::string type;
    std::string json; // the member "preview"
    std::string text;
};

// What is printed of exports and previews, for CommandFacts that also have
//
//     static std::vector<ExpectedPreview> previews(); // of "project-kickoff.eml", without other options
//     static constexpr auto takenTypes;               // as a message lists them
//     static constexpr auto otherType;                // that is not taken
//     static constexpr auto notMade;                  // "Trello did not make the card \"Title\""
//     static constexpr auto notMadeError;             // the case of that failure
//     static constexpr auto unknownOutcome;           // what an export may have made whose first request
//     that
//                                                     // makes something is cut off: "card \"Title\""
//     static constexpr auto madeData;                 // `made` in JSON
template <CommandFacts Facts> class ExportCommands : public ServiceCommands<Facts> {
  protected:
    void failAll(const PlayedResponse& response) {
        this->service.onRequest = [response](const auto&) { return response; };
    }

    // Requests that make something.
    void failMaking(const PlayedResponse& response) {
        this->service.onRequest =
            [this, response](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
            const bool makes = this->service.madeBy(request) || uploadedFile(request);
            return makes ? std::optional(response) : std::nullopt;
        };
    }

    // `error`: what the reason is called, where the service has a failure of its own for it.
    ExpectedFailure notMade(const std::string& reason, const ExpectedNext& next,
                            const std::string& error = Facts::notMadeError) const {
        return {1, this->errorOf(error, Facts::notMadeError), std::string(Facts::notMade) + ": " + reason,
                next};
    }
};

TYPED_TEST_SUITE_P(ExportCommands);

TYPED_TEST_P(ExportCommands, PreviewWhatEachTypeWouldMake) {
    for (const auto& [type, json, text] : TypeParam::previews()) {
        EXPECT_EQ(this->run(this->withMail("preview", {"--as", type})).output, text + "\n");
        EXPECT_EQ(this->run(this->withMail("preview", {"--as", type, "--json"})).output,
                  R"({"result":"success","preview":)" + json + "}\n");
    }
    EXPECT_EQ(this->sent().size(), 0U);
}

TYPED_TEST_P(ExportCommands, SayInJSONWhatWasMade) {
    EXPECT_EQ(this->run(this->exportOf({"--json"})).output,
              R"({"result":"success","service":")" + std::string(nameOf(TypeParam::type)) +
                  R"(","identifier":")" + this->account + R"(","target":")" + this->usualTarget() +
                  R"(","made":)" + TypeParam::madeData + "}\n");
}

TYPED_TEST_P(ExportCommands, RefuseATypeThatTheServiceDoesNotTake) {
    const auto offered = this->run(this->withMail("config", {"--names"}));
    const auto form = offered.text("saveAs");
    const auto usual = form.empty() ? offered.text("selectedExportKind") : form;
    this->expectFailure(this->withMail("preview", {"--as", TypeParam::otherType}),
                        {1, "noPreview",
                         this->name + " has no preview of that type for this message; it takes " +
                             TypeParam::takenTypes + ".",
                         this->withMail("preview", {"--as", usual})});
    this->expectFailure(this->exportAs(TypeParam::otherType),
                        {1, "unsupportedFormat",
                         this->name + " does not take that type; it takes " + TypeParam::takenTypes + ".",
                         this->exportAs(usual)});
    EXPECT_EQ(this->sent().size(), 0U);
}

TYPED_TEST_P(ExportCommands, AreNotSpoiltByATypeThatWasRefused) {
    const auto offered = this->run(this->withMail("config")).output;
    ASSERT_EQ(this->run(this->exportAs(TypeParam::otherType)).status, 1);
    EXPECT_EQ(this->run(this->withMail("config")).output, offered);
}

TYPED_TEST_P(ExportCommands, NameTheWayToReconnectWhereTheTokenIsRefused) {
    this->failAll(PlayedResponse::json("no", 401));
    const auto document = this->expectFailure(
        {"targets", this->account, "--refresh"},
        {1, "oauthError", this->name + " does not accept the account's sign-in any more (\"no\").",
         this->reconnect});
    EXPECT_EQ(this->textOf(document, "words"), R"("no")");
    this->expectFailure(this->exportOf(),
                        this->notMade("it does not accept the account's sign-in any more (\"no\").",
                                      this->reconnect, "oauthError"));
}

TYPED_TEST_P(ExportCommands, SayThatTheSandboxDoesNotAnswer) {
    const ZeltoProgram::Arguments nowhere{"--sandbox", "http://127.0.0.1:1"};
    ZeltoProgram::Arguments targets{"targets", this->account, "--refresh"};
    targets.insert(targets.end(), nowhere.begin(), nowhere.end());
    const ExpectedFailure expected{
        1, "sandboxError",
        "The sandbox at http://127.0.0.1:1 does not respond: start it with `zelto sandbox --port 1`. "
        "Nothing was sent.",
        "zelto sandbox --port 1"};
    for (const auto& document :
         {this->expectFailure(targets, expected), this->expectFailure(this->exportOf(nowhere), expected)}) {
        EXPECT_EQ(this->textOf(document, "nothingWasSent"), "true");
        EXPECT_EQ(this->textOf(document, "unsure"), "");
    }
    EXPECT_EQ(this->sent().size(), 0U);
}

TYPED_TEST_P(ExportCommands, SayThatTheOutcomeOfACutOffRequestIsNotKnown) {
    this->failAll(PlayedResponse::reset());
    this->expectFailure({"targets", this->account, "--refresh"},
                        {1, "connectionError", this->name + " could not be reached.", this->refresh});
    this->failMaking(PlayedResponse::reset());
    const auto document = this->expectFailure(
        this->exportOf(), this->notMade("the connection ended without a response. Whether " + this->name +
                                            " has this is not known, since no response came: " +
                                            TypeParam::unknownOutcome + ".",
                                        this->exportOf({"--verbose"}), "connectionError"));
    EXPECT_EQ(this->textOf(document, "nothingWasSent"), "");
    EXPECT_EQ(this->textOf(document, "refused"), "");
    const auto* unsure = document.find("unsure");
    ASSERT_NE(unsure, nullptr);
    EXPECT_EQ(*unsure->asArray()->front().find("reason")->asString(), "connectionError");
}

TYPED_TEST_P(ExportCommands, NameATargetThatHasGone) {
    this->failAll(PlayedResponse::json("no", 404));
    this->expectFailure(
        this->exportOf(),
        this->notMade("what it was to go into is not there any more (\"no\").", this->refresh));
}

TYPED_TEST_P(ExportCommands, ShowNoToken) {
    this->failAll(PlayedResponse::json("no", 500));
    for (const auto& arguments :
         {this->exportOf({"--verbose"}), this->exportOf({"--verbose", "--json"}),
          ZeltoProgram::Arguments{"targets", this->account, "--refresh", "--verbose"}}) {
        const auto outcome = this->run(arguments);
        EXPECT_NE(outcome.errorOutput, "");
        for (const auto* token : {"token=token", "Bearer token"}) {
            EXPECT_EQ((outcome.output + outcome.errorOutput).find(token), std::string::npos)
                << outcome.output << outcome.errorOutput;
        }
    }
}

REGISTER_TYPED_TEST_SUITE_P(ExportCommands, PreviewWhatEachTypeWouldMake, SayInJSONWhatWasMade,
                            RefuseATypeThatTheServiceDoesNotTake, AreNotSpoiltByATypeThatWasRefused,
                            NameTheWayToReconnectWhereTheTokenIsRefused, SayThatTheSandboxDoesNotAnswer,
                            SayThatTheOutcomeOfACutOffRequestIsNotKnown, NameATargetThatHasGone, ShowNoToken);

} // namespace zelto
