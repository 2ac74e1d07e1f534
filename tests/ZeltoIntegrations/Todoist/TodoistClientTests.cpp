#include <ZeltoIntegrations/Todoist/TodoistAuthoriser.h>
#include <ZeltoIntegrations/Todoist/TodoistClient.h>

#include <Support/TodoistExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = ServiceClientError;

class TodoistClientTest : public testing::Test {
  protected:
    std::shared_ptr<TodoistClient> client() {
        ServiceAccountCredentials credentials;
        credentials.accessToken = token;
        return std::make_shared<TodoistClient>(std::make_shared<TodoistAuthoriser>(credentials),
                                               JSONDecoder());
    }

    ServiceResult<TodoistFetchResponse> allData() {
        Completed<ServiceResult<TodoistFetchResponse>> completed;
        client()->getAllData(completed.callback<ServiceCompletion<TodoistFetchResponse>>());
        return completed.value();
    }

    ServiceResult<TodoistUploadResponse> addTask(const std::vector<TodoistCommand>& commands) {
        Completed<ServiceResult<TodoistUploadResponse>> completed;
        client()->addTask(commands, completed.callback<ServiceCompletion<TodoistUploadResponse>>());
        return completed.value();
    }

    ServiceResult<JSONValue> upload(const std::string& name, const std::filesystem::path& file) {
        Completed<ServiceResult<JSONValue>> completed;
        client()->uploadAttachment(name, file, completed.callback<ServiceCompletion<JSONValue>>());
        return completed.value();
    }

    std::optional<std::string> token = "token";
    MemoryKeyChain keyChain;
    TemporaryFolder folder;
    TodoistServer service;
};

} // namespace

TEST_F(TodoistClientTest, AllDataAreOneRequest) {
    const auto loaded = allData();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(*loaded, (TodoistFetchResponse{.user = {.email = "me@example.org"},
                                             .projects = {{"p1", "Inbox"}, {"p2", "Work"}}}));
    EXPECT_EQ(service.texts(), Texts{"POST /api/v1/sync\nContent-Type: application/json\n"
                                     "Authorization: Bearer token\nContent-Length: 55\n\n"
                                     R"({"sync_token":"*","resource_types":["projects","user"]})"});
    EXPECT_EQ(service.server.requests().front().headers.value("Host"), "api.todoist.com");
}

TEST_F(TodoistClientTest, CommandsAreOneRequest) {
    const TodoistCommand task{.type = "item_add", .temp_id = "t", .uuid = "u", .args = JSONObject()};
    const auto response = addTask({task});
    ASSERT_TRUE(response);
    EXPECT_EQ(*response,
              (TodoistUploadResponse{.sync_status = {{"u", {}}}, .temp_id_mapping = {{"t", "id0"}}}));
    EXPECT_EQ(service.texts(),
              Texts{"POST /api/v1/sync\nContent-Type: application/json\n"
                    "Authorization: Bearer token\nContent-Length: 96\n\n"
                    R"({"resource_types":["notes"],"commands":[{"type":"item_add","temp_id":"t","uuid":"u",)"
                    R"("args":{}}]})"});
}

TEST_F(TodoistClientTest, AFileIsUploadedByAFormWithItsName) {
    const auto info = upload("a \"b\"\r\nx.txt", folder.write("a.txt", "content\r\n"));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->text().value(), R"({"file_name":"a.txt","file_size":7,)"
                                    R"("file_url":"https://files.example/1","upload_state":"completed"})");
    EXPECT_EQ(service.texts(),
              Texts{"POST /api/v1/uploads\nContent-Type: multipart/form-data; boundary=B\n"
                    "Authorization: Bearer token\nContent-Length: 317\n\n"
                    "--B\r\nContent-Disposition: form-data; name=\"file_name\"\r\n\r\na \"b\"\r\nx.txt\r\n"
                    "--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a.txt\"\r\n"
                    "Content-Type: text/plain\r\n\r\ncontent\r\n\r\n--B--\r\n"});
}

TEST_F(TodoistClientTest, AnUploadsResponseIsKeptAsItIsWritten) {
    service.uploadInfo = R"("b":1.50,"a":123456789012345678901234567890,"c":[-0,1e400],"\u00e9":null})";
    EXPECT_EQ(upload("a", folder.write("a", "x"))->text().value(),
              R"({"file_name":"a","b":1.50,"a":123456789012345678901234567890,"c":[-0,1e400],"é":null})");
}

TEST_F(TodoistClientTest, AnUploadsResponseThatIsNoObjectIsNone) {
    const auto file = folder.write("a", "x");
    const auto deep = std::string(600, '[') + std::string(600, ']');
    for (const auto& body : {std::string(""), std::string("<html>"), std::string("[]"), std::string("null"),
                             std::string("1e400"), std::string(R"("text")"), std::string("{\"a\":1} x"),
                             std::string("{\"a\":\"\xFF\"}"), R"({"a":)" + deep + "}"}) {
        service.respondTo("/uploads", PlayedResponse::json(body));
        EXPECT_EQ(upload("a", file).error(), Error::dataParseError) << body;
    }
}

TEST_F(TodoistClientTest, AFileThatIsNotThereIsNotSent) {
    EXPECT_EQ(upload("a", folder.path() / "missing").error(), Error::internalError);
    EXPECT_EQ(upload("a", "").error(), Error::internalError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(TodoistClientTest, WithoutATokenNothingIsSent) {
    token = std::nullopt;
    EXPECT_EQ(allData().error(), Error::oauthError);
    EXPECT_EQ(addTask({}).error(), Error::oauthError);
    EXPECT_EQ(upload("a", folder.write("a", "x")).error(), Error::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(TodoistClientTest, AHundredThousandProjectsTakeLinearTime) {
    // Quadratic work would run for minutes.
    std::string text;
    constexpr auto count = 100'000;
    for (int i = 0; i < count; ++i) {
        const auto id = std::to_string(i);
        text += std::string(i == 0 ? "" : ",") + R"({"id":")" + id + R"(","name":"Project )" + id + R"("})";
    }
    service.data = R"({"user":{"email":"e","is_premium":true},"projects":[)" + text + "]}";
    const auto loaded = allData();
    ASSERT_TRUE(loaded);
    ASSERT_EQ(loaded->projects.size(), std::size_t{count});
    EXPECT_EQ(loaded->projects.back().id, "99999");
}

} // namespace zelto
