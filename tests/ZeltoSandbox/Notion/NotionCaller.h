#pragma once

#include <ZeltoSandbox/SandboxCaller.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace zelto {

inline JSONValue notionJSON(std::string_view text) {
    return *JSONValue::parse(text);
}

// A body whose child blocks are these, for the first demo database.
inline JSONObject notionPage(JSONValue::Array children) {
    return {{"parent", JSONObject{{"database_id", "5a0db0c0-7a3e-4c1d-9f5a-000000000001"}}},
            {"properties", JSONObject()},
            {"children", std::move(children)}};
}

inline JSONValue notionItem(std::string_view content) {
    return JSONObject{{"text", JSONObject{{"content", content}}}};
}

inline JSONObject notionBlock(const std::string& type, JSONValue::Array items) {
    return {{"type", type}, {type, JSONObject{{"rich_text", std::move(items)}}}};
}

inline JSONValue notionParagraph(JSONValue item) {
    return notionBlock("paragraph", {std::move(item)});
}

// Requests of one connection to the sandbox's Notion.
class NotionCaller : public testing::Test {
  protected:
    static constexpr auto host = "api.notion.com";
    static constexpr auto firstDatabase = "5a0db0c0-7a3e-4c1d-9f5a-000000000001";

    std::string header() const {
        return "Authorization: Bearer " + token + "\r\n" +
               (version.empty() ? "" : "Notion-Version: " + version + "\r\n");
    }

    CallerResponse me() const { return caller.get(host, "/v1/users/me", header()); }

    CallerResponse post(const std::string& path, const std::string& body,
                        const std::string& type = "application/json") const {
        return caller.post(host, "/v1/" + path, type, body, header());
    }

    CallerResponse post(const std::string& path, const JSONObject& body) const {
        return post(path, JSONValue(body).text().value());
    }

    // "400 validation_error: …" of a refusal in Notion's form; "200" of another response.
    std::string outcome(const CallerResponse& response) const {
        if (response.status == 200) {
            return "200";
        }
        const auto body = response.json();
        EXPECT_EQ(*body.find("object")->asString(), "error");
        EXPECT_EQ(body.find("status")->asInt64(), response.status);
        EXPECT_EQ(body.asObject()->size(), 4U);
        EXPECT_FALSE(caller.server->requests().back().problem.empty());
        return std::to_string(response.status) + " " + response.text("code") + ": " +
               response.text("message");
    }

    std::string search(const std::string& body) const { return outcome(post("search", body)); }

    std::string create(const JSONObject& page) const { return outcome(post("pages", page)); }

    // What creating a page comes to whose one block has this text item.
    std::string createWith(std::string_view item) const {
        return create(notionPage({notionParagraph(notionJSON(item))}));
    }

    SandboxCaller caller;
    std::string token = caller.server->issueTokens("Notion")->accessToken;
    std::string version = "2022-06-28";
};

} // namespace zelto
