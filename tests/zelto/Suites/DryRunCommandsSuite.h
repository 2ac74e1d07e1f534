#pragma once

#include <zelto/ServiceCommands.h>

#include <export/SentRequest.h>

#include <regex>
#include <string>
#include <string_view>

namespace zelto {

// That a dry run shows what an export sends, for CommandFacts that also have
//
//     using Adapter;               // of the service
//     static constexpr auto origin; // of the service's API: "https://api.trello.com"
template <CommandFacts Facts> class DryRunCommands : public ServiceCommands<Facts> {
  protected:
    // The options that an export of all attachments has, or of those alone that are named.
    static ZeltoProgram::Arguments attaching(const std::string& names) {
        return TakesFiles<Facts> ? ZeltoProgram::Arguments{"--attach", names} : ZeltoProgram::Arguments();
    }

    // The service gives what it makes the identifiers that a dry run gives it.
    void respondAsADryRun() {
        this->service.onRequest = [](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
            cli::SentRequest asked{.method = request.method, .url = Facts::origin + request.target};
            if (const auto file = uploadedFile(request)) {
                asked.parts = {{.name = "file", .fileName = file}};
            } else {
                asked.text = request.body;
            }
            return PlayedResponse::json(Facts::Adapter::standInResponse(asked));
        };
    }

    // A request as a text, without what differs between two exports of the same.
    static std::string comparable(const std::string& text) {
        const auto plain = withoutBoundary(text);
        if constexpr (requires { Facts::Server::comparable(plain); }) {
            return Facts::Server::comparable(plain);
        } else {
            return plain;
        }
    }

    static std::string text(const JSONValue& value, std::string_view key) {
        const auto* member = value.find(key);
        const auto* string = member ? member->asString() : nullptr;
        return string ? *string : "";
    }

    // As a dry run lists them. The files of a form are listed by their parts.
    static std::string shown(const JSONValue& request) {
        auto all = text(request, "method") + " " + text(request, "url") + "\n";
        for (const auto& [name, value] : *request.find("headers")->asObject()) {
            all += name + ": " + *value.asString() + "\n";
        }
        if (const auto* parts = request.find("parts")) {
            return all + parts->text().value() + "\n";
        }
        return all + text(request, "body") + "\n";
    }

    static std::string received(const ReceivedRequest& request) {
        static const std::regex secrets("((?:key|token)=|Authorization: Bearer )[^&\\n]*");
        auto all = request.method + " " + Facts::origin + request.target + "\n";
        for (const auto& [name, value] : request.headers.fields()) {
            all += name == "Host" ? "" : name + ": " + value + "\n";
        }
        all = std::regex_replace(all, secrets, "$1***");
        return all + (uploadedFile(request) ? partsOf(request.body) : request.body) + "\n";
    }

    // The parts of a form, as a dry run describes them.
    static std::string partsOf(const std::string& form) {
        static const std::regex head(
            R"rx(\r\nContent-Disposition: form-data; name="([^"]*)"(; filename="([^"]*)")?\r\n)rx"
            R"rx((?:Content-Type: ([^\r]*)\r\n)?\r\n)rx");
        const auto boundary = form.substr(0, form.find("\r\n"));
        JSONValue::Array parts;
        for (std::sregex_iterator found(form.begin(), form.end(), head), none; found != none; ++found) {
            const auto start = static_cast<std::size_t>(found->position() + found->length());
            const auto content = form.substr(start, form.find("\r\n" + boundary, start) - start);
            JSONObject part{{"name", found->str(1)}};
            if ((*found)[2].matched) {
                part.set("fileName", found->str(3));
            }
            part.set("contentType", (*found)[4].matched ? found->str(4) : "text/plain");
            part.set("size", static_cast<std::int64_t>(content.size()));
            if (!(*found)[2].matched) {
                part.set("text", content);
            }
            parts.emplace_back(std::move(part));
        }
        return JSONValue(std::move(parts)).text().value();
    }
};

TYPED_TEST_SUITE_P(DryRunCommands);

TYPED_TEST_P(DryRunCommands, ShowEachRequestThatTheExportSends) {
    const auto arguments = this->exportOf(this->attaching("all"));
    auto dryRun = arguments;
    dryRun.insert(dryRun.end(), {"--dry-run", "--json"});
    const auto document = this->run(dryRun).json();
    ASSERT_EQ(this->text(document, "result"), "success");
    EXPECT_EQ(this->sent().size(), 0U);
    std::string shown;
    for (const auto& request : *document.find("requests")->asArray()) {
        shown += this->shown(request);
    }
    EXPECT_EQ(document.find("limits")->text().value(), "[]");
    EXPECT_EQ(document.find("attachments")->text().value(),
              TakesFiles<TypeParam> ? R"(["Relaunch plan.pdf","Agenda.txt"])" : "[]");

    this->respondAsADryRun();
    const auto exported = this->run(arguments);
    ASSERT_EQ(exported.status, 0) << exported.errorOutput;
    std::string received;
    for (const auto& request : this->sent()) {
        received += this->received(request);
    }
    EXPECT_EQ(this->comparable(shown), this->comparable(received));
}

TYPED_TEST_P(DryRunCommands, ShowThePlan) {
    auto arguments = this->exportOf(this->attaching("Agenda.txt"));
    arguments.emplace_back("--dry-run");
    const auto outcome = this->run(arguments);
    EXPECT_TRUE(outcome.output.starts_with(
        "Would go to " + std::string(TypeParam::name) + ", " + this->usualTarget() + ": \"" + this->title() +
        "\" as " + TypeParam::exportType + (TakesFiles<TypeParam> ? ", Agenda.txt" : "") + ".\n\n1. POST " +
        TypeParam::origin + "/"))
        << outcome.output << outcome.errorOutput;
    EXPECT_EQ(outcome.errorOutput, "");
    EXPECT_EQ(this->sent().size(), 0U);
}

REGISTER_TYPED_TEST_SUITE_P(DryRunCommands, ShowEachRequestThatTheExportSends, ShowThePlan);

} // namespace zelto
