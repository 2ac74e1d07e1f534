#include <export/PassedLimit.h>
#include <export/PlaceholderSecrets.h>
#include <export/RequestDescription.h>
#include <export/RequestRecorder.h>

#include <Support/SessionTasks.h>
#include <Support/TemporaryFolder.h>
#include <ZeltoIntegrations/Client/ServiceRequest.h>

#include <Platform/Base64.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <utility>

namespace zelto::cli {

namespace {

const std::string placeholder(placeholderSecret);

// Sends requests through a recorder that responds with the number of parts.
class Recorder : public testing::Test {
  protected:
    void SetUp() override {
        auto started = RequestRecorder::start([](const SentRequest& request) -> StandInResponse {
            return {std::to_string(request.parts.size()), request.method == "PUT" ? 404 : 200};
        });
        ASSERT_TRUE(started) << started.error().message;
        recorder = *std::move(started);
    }

    // What comes back.
    static std::string send(const std::string& method, const std::string& url,
                            const std::vector<HTTPHeaderField>& headers = {}, std::string body = {}) {
        URLSession session(URLSessionConfiguration::ephemeral());
        URLRequest request(URL::parse(url).value(), method);
        for (const auto& [name, value] : headers) {
            request.headers.set(name, value);
        }
        if (!body.empty()) {
            request.body = HTTPBody(std::move(body));
        }
        return TaskEnd::of(session, std::move(request)).text();
    }

    // The first request as JSON, without what the transport adds.
    std::string shown() const {
        auto object = *described(recorder->requests()).asArray()->at(0).asObject();
        JSONObject headers;
        for (const auto& [name, value] : *object.find("headers")->asObject()) {
            if (name != "Accept-Encoding" && name != "User-Agent" && name != "Accept") {
                headers.set(name, value);
            }
        }
        object.set("headers", std::move(headers));
        return JSONValue(std::move(object)).text().value();
    }

    std::unique_ptr<RequestRecorder> recorder;
};

} // namespace

TEST_F(Recorder, ReceivesWhatIsMeantForAServiceAndResponds) {
    EXPECT_EQ(send("GET", "https://api.service.example/a%20b?x=1&x=2"), "0");
    EXPECT_EQ(shown(), R"({"method":"GET","url":"https://api.service.example/a%20b?x=1&x=2","headers":{}})");
}

TEST_F(Recorder, RespondsWithTheStatusThatTheStandInGives) {
    const auto statusOf = [](const std::string& method) {
        URLSession session(URLSessionConfiguration::ephemeral());
        return TaskEnd::of(session, URLRequest(URL::parse("https://api.service.example/").value(), method))
            .status();
    };
    EXPECT_EQ(statusOf("GET"), 200);
    EXPECT_EQ(statusOf("PUT"), 404);
}

TEST_F(Recorder, ShowsTheNumberedPartsOfABodyThatIsNoFormWithTheSizesOfTheirFiles) {
    const std::string head =
        "\r\n--b\r\nContent-Type: application/json; charset=UTF-8\r\n\r\n{\"name\":\"a\"}\r\n";
    const auto withFile = [&](const std::string& base64) {
        return head + "--b\r\nContent-Type: text/plain\r\nContent-Transfer-Encoding: base64\r\n\r\n" +
               base64 + "\r\n--b--";
    };
    for (const auto& file : {"", "a", "ab", "abc", "abcd"}) {
        EXPECT_EQ(send("POST", "https://api.service.example/",
                       {{"Content-Type", "multipart/related; boundary=b"}}, withFile(base64Encoded(file))),
                  "2");
        const auto parts = recorder->requests().back().parts;
        ASSERT_EQ(parts.size(), 2U);
        EXPECT_EQ(parts[0], (SentPart{.name = "1",
                                      .fileName = {},
                                      .contentType = "application/json",
                                      .size = 12,
                                      .text = R"({"name":"a"})"}));
        EXPECT_EQ(parts[1], (SentPart{.name = "2",
                                      .fileName = {},
                                      .contentType = "text/plain",
                                      .size = std::string_view(file).size(),
                                      .text = {}}));
    }
    EXPECT_EQ(send("POST", "https://api.service.example/",
                   {{"Content-Type", "multipart/related; boundary=b"}}, "no parts"),
              "0");
}

TEST_F(Recorder, ShowsTextsWholeAndSecretsMasked) {
    EXPECT_EQ(send("POST", "https://api.service.example/" + placeholder + "?token=" + placeholder,
                   {{"Authorization", "Bearer " + placeholder}, {"Content-Type", "application/json"}},
                   R"({"a":"ä\n","b":")" + placeholder + "\"}"),
              "0");
    EXPECT_EQ(shown(), R"({"method":"POST","url":"https://api.service.example/***?token=***",)"
                       R"("headers":{"Authorization":"Bearer ***","Content-Type":"application/json",)"
                       R"("Content-Length":"85"},"bodySize":85,"body":"{\"a\":\"ä\\n\",\"b\":\"***\"}"})");
}

TEST_F(Recorder, MasksWhatBasicAuthenticationEncodes) {
    send("GET", "https://api.service.example/",
         {{"Authorization", "Basic " + base64Encoded("id:" + placeholder)}});
    EXPECT_NE(shown().find(R"("Authorization":"Basic ***")"), std::string::npos) << shown();
}

TEST_F(Recorder, ListsThePartsOfAFormWithTheirSizes) {
    const std::string body = "--B\r\nContent-Disposition: form-data; name=\"file_name\"\r\n\r\nä.txt\r\n"
                             "--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"ä.txt\"\r\n"
                             "Content-Type: text/plain\r\n\r\nabc\r\n--B--\r\n";
    EXPECT_EQ(send("POST", "https://api.service.example/uploads",
                   {{"Content-Type", "multipart/form-data; boundary=B"}}, body),
              "2");
    EXPECT_NE(
        shown().find(R"("parts":[{"name":"file_name","contentType":"text/plain","size":6,"text":"ä.txt"},)"
                     R"({"name":"file","fileName":"ä.txt","contentType":"text/plain","size":3}])"),
        std::string::npos)
        << shown();
    const auto text = linesOf(recorder->requests(), Terminal());
    EXPECT_TRUE(text.ends_with("    part file_name: text/plain, 6 bytes: ä.txt\n"
                               "    part file: file \"ä.txt\", text/plain, 3 bytes\n"))
        << text;
}

TEST_F(Recorder, ShowsOtherBodiesByTheirSize) {
    EXPECT_EQ(send("PUT", "https://api.service.example/f", {{"Content-Type", "application/octet-stream"}},
                   std::string("\0\1\2", 3)),
              "0");
    EXPECT_EQ(send("POST", "https://api.service.example/f",
                   {{"Content-Type", "multipart/form-data; boundary=B"}}, "no form"),
              "0");
    const auto text = linesOf(recorder->requests(), Terminal());
    EXPECT_NE(text.find("\n1. PUT https://api.service.example/f\n"), std::string::npos) << text;
    EXPECT_NE(text.find("    body: 3 bytes\n\n2. POST https://api.service.example/f\n"), std::string::npos)
        << text;
    EXPECT_TRUE(text.ends_with("    body: 7 bytes\n")) << text;
}

TEST_F(Recorder, KeepsJSONWholeWhateverItsLengthForTheLimitsToBeChecked) {
    const auto json = "{\"a\":\"" + std::string(std::size_t{17} << 20, 'x') + "\"}";
    send("POST", "https://api.service.example/", {{"Content-Type", "application/json; charset=utf-8"}}, json);
    const auto requests = recorder->requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].bodySize, json.size());
    EXPECT_TRUE(requests[0].text == json);
}

TEST_F(Recorder, KeepsOtherTextsUpToSixteenMebibytes) {
    constexpr std::size_t limit = std::size_t{16} << 20;
    for (const auto length : {limit, limit + 1}) {
        send("PUT", "https://api.service.example/f", {{"Content-Type", "text/plain"}},
             std::string(length, 'x'));
        const auto request = recorder->requests().back();
        EXPECT_EQ(request.bodySize, length);
        EXPECT_EQ(request.text.has_value(), length == limit);
    }
}

TEST_F(Recorder, KnowsTheSizeOfAnUploadedFileWhateverItIs) {
    constexpr std::uint64_t size = (std::uint64_t{100} << 20) + 1;
    const TemporaryFolder folder;
    const auto file = folder.write("large.bin", "");
    std::filesystem::resize_file(file, size);
    URLSession session(URLSessionConfiguration::ephemeral());
    auto upload = ServiceRequest("POST", "https://api.service.example/", "uploads")
                      .upload(file, {{"file_name", "large.bin"}})
                      .maker()();
    EXPECT_EQ(TaskEnd::of(session, std::move(upload).value()).text(), "2");
    LimitCheck limits;
    limits.checkFiles(recorder->requests(), size - 1);
    EXPECT_EQ(limits.passed(), (std::vector{PassedLimit{"the file \"large.bin\"", size - 1, size, "bytes"}}));
}

TEST_F(Recorder, CutsAVeryLongTextAndSaysHowLongItIs) {
    constexpr std::size_t limit = 65'536;
    for (const auto length : {limit - 1, limit, limit + 1}) {
        const SentRequest request{.method = "POST",
                                  .url = "https://api.service.example/",
                                  .bodySize = length,
                                  .text = std::string(length, 'a')};
        const auto object = described(std::vector{request}).asArray()->at(0);
        const auto cut = std::string(limit, 'a') + "… (65537 bytes in all)";
        EXPECT_EQ(*object.find("body")->asString(), length > limit ? cut : std::string(length, 'a'));
    }
}

TEST_F(Recorder, LeavesTheSessionsThatFollowAsTheyWere) {
    const auto during = URLSessionConfiguration::ephemeral().route;
    ASSERT_TRUE(during);
    recorder.reset();
    EXPECT_NE(URLSessionConfiguration::ephemeral().route, during);
}

} // namespace zelto::cli
