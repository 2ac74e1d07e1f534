#pragma once

#include <ZeltoSandbox/SandboxCaller.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zelto {

// Requests of one connection to the sandbox's Slack.
class SlackCaller : public testing::Test {
  protected:
    static constexpr auto host = "slack.com";

    std::string header() const { return token.empty() ? "" : "Authorization: Bearer " + token + "\r\n"; }

    CallerResponse get(const std::string& method) const {
        return caller.get(host, "/api/" + method, header());
    }

    CallerResponse post(const std::string& method, const std::string& body,
                        const std::string& type = "application/json; charset=utf-8") const {
        return caller.post(host, "/api/" + method, type, body, header());
    }

    CallerResponse send(const std::string& channel, const std::string& text) const {
        return post("chat.postMessage",
                    JSONValue(JSONObject{{"channel", channel}, {"text", text}}).text().value());
    }

    // "ok", or the error of a refusal, which comes by status 200.
    std::string outcome(const CallerResponse& response) const {
        EXPECT_EQ(response.status, 200);
        const auto json = response.json();
        const bool isAccepted = json.find("ok")->asBool() == true;
        const auto problem = caller.server->requests().back().problem;
        EXPECT_EQ(problem.empty(), isAccepted) << problem;
        return isAccepted ? "ok" : response.text("error");
    }

    // The setting "slack".
    void set(const std::string& json) const {
        EXPECT_EQ(caller.control("settings", R"({"slack":)" + json + "}").status, 204);
    }

    // The identifiers of the records of a list.
    static std::vector<std::string> identifiers(const CallerResponse& response, std::string_view key) {
        std::vector<std::string> all;
        const auto json = response.json();
        if (const auto* records = json.find(key)) {
            for (const auto& each : *records->asArray()) {
                all.push_back(*each.find("id")->asString());
            }
        }
        return all;
    }

    static std::string nextCursor(const CallerResponse& response) {
        return *response.json().find("response_metadata")->find("next_cursor")->asString();
    }

    SandboxCaller caller;
    std::string token = caller.server->issueTokens("Slack")->accessToken;
};

} // namespace zelto
