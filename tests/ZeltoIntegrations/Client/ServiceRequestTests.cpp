#include <ZeltoIntegrations/Client/ServiceRequest.h>

#include <Support/LogCapture.h>
#include <Support/ServiceServer.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <limits>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

constexpr auto base = "https://api.example/1/";

URLRequest made(ServiceRequest request) {
    return std::move(request).maker()().value();
}

std::string addressOf(ServiceRequest request) {
    return made(std::move(request)).url.absoluteString();
}

// With "B" for the boundary of a form.
std::string bodyOf(const URLRequest& request) {
    return request.body ? withoutBoundary(std::string(viewOf(request.body->bytes().value()))) : "no body";
}

Texts headersOf(const URLRequest& request) {
    Texts headers;
    for (const auto& field : request.headers.fields()) {
        headers.push_back(withoutBoundary(field.name + ": " + field.value));
    }
    return headers;
}

class UploadTest : public testing::Test {
  protected:
    static constexpr auto logged = "Failed to uploadFile - no file on path";

    RequestMaker uploadOf(const std::filesystem::path& file) {
        return ServiceRequest("POST", base, "files").upload(file).maker();
    }

    TemporaryFolder folder;
};

} // namespace

TEST(ServiceRequest, HasNoHeaderAndNoBodyButThoseThatAreAskedFor) {
    const auto request = made(ServiceRequest("DELETE", base, "items/1"));
    EXPECT_EQ(request.method, "DELETE");
    EXPECT_EQ(request.url.absoluteString(), "https://api.example/1/items/1");
    EXPECT_EQ(request.timeout, TimeInterval(60));
    EXPECT_EQ(request.cachePolicy, URLRequestCachePolicy::useProtocolCachePolicy);
    EXPECT_EQ(headersOf(request), Texts{});
    EXPECT_FALSE(request.body);
}

TEST(ServiceRequest, JoinsBaseAndPathAsTexts) {
    EXPECT_EQ(addressOf(ServiceRequest("GET", "https://api.example/v1", "/items?a=b")),
              "https://api.example/v1/items?a=b");
    EXPECT_EQ(addressOf(ServiceRequest("GET", "https://api.example/v1/", "/items")),
              "https://api.example/v1//items");
    EXPECT_EQ(addressOf(ServiceRequest("GET", base, "")), "https://api.example/1/");
}

TEST(ServiceRequest, EncodesItsQuery) {
    EXPECT_EQ(addressOf(ServiceRequest("GET", base, "items", {{"b", "2"}, {"a c", "x&y=z+1 #?/\xC3\xA4"}})),
              "https://api.example/1/items?a%20c=x%26y%3Dz%2B1%20%23%3F%2F%C3%A4&b=2");
    EXPECT_EQ(addressOf(ServiceRequest("GET", base, "items", {{"empty", ""}})),
              "https://api.example/1/items?empty=");
    EXPECT_EQ(addressOf(ServiceRequest("GET", base, "items", {})), "https://api.example/1/items");
}

TEST(ServiceRequest, AHeaderThatIsSetAgainHasTheLastValue) {
    EXPECT_EQ(headersOf(made(ServiceRequest("GET", base, "items")
                                 .jsonHeaders()
                                 .header("X-Version", "1")
                                 .header("accept", "text/plain"))),
              (Texts{"Content-Type: application/json", "accept: text/plain", "X-Version: 1"}));
}

TEST(ServiceRequest, ABodyOfJSONHasNoHeaderOfItsOwn) {
    const auto plain = made(ServiceRequest("POST", base, "items").json(Texts{"a", "\xC3\xA4\""}));
    EXPECT_EQ(bodyOf(plain), "[\"a\",\"\xC3\xA4\\\"\"]");
    EXPECT_EQ(headersOf(plain), Texts{});
    const auto both = made(ServiceRequest("POST", base, "items").jsonHeaders().json(Texts{}));
    EXPECT_EQ(bodyOf(both), "[]");
    EXPECT_EQ(headersOf(both), (Texts{"Content-Type: application/json", "Accept: application/json"}));
}

TEST(ServiceRequest, AValueWithoutJSONIsNoRequest) {
    EXPECT_EQ(ServiceRequest("POST", base, "items").json(std::numeric_limits<double>::quiet_NaN()).maker()(),
              std::nullopt);
    EXPECT_EQ(ServiceRequest("POST", base, "items").json(std::string("\xff")).maker()(), std::nullopt);
}

TEST(ServiceRequest, AFormIsEncodedInTheOrderOfItsNames) {
    const auto request = made(
        ServiceRequest("POST", base, "items").form({{"b", "1&c=2"}, {"a", "x y+z\r\n"}, {"\xC3\xA4", ""}}));
    EXPECT_EQ(bodyOf(request), "a=x%20y%2Bz%0D%0A&b=1%26c%3D2&%C3%A4=");
    EXPECT_EQ(headersOf(request), Texts{"Content-Type: application/x-www-form-urlencoded"});
}

TEST(ServiceRequest, AnEmptyFormIsAnEmptyBody) {
    const auto request = made(ServiceRequest("POST", base, "items").form({}));
    EXPECT_EQ(bodyOf(request), "");
    EXPECT_EQ(headersOf(request), Texts{"Content-Type: application/x-www-form-urlencoded"});
}

TEST(ServiceRequestDeathTest, APathThatMakesNoURLStopsTheProcess) {
    EXPECT_DEATH(ServiceRequest("GET", base, "a b"), "the path of a request makes no URL");
}

TEST(ServiceRequest, APathSegmentHoldsAnyText) {
    const std::pair<const char*, const char*> rows[] = {{"plain-1_2.3~", "plain-1_2.3~"},
                                                        {"a/b\\c", "a%2Fb%5Cc"},
                                                        {"?x=1#y", "%3Fx=1%23y"},
                                                        {"%41 ;", "%2541%20%3B"},
                                                        {"a\r\nb", "a%0D%0Ab"},
                                                        {"\xC3\xA4\xFF", "%C3%A4%FF"},
                                                        {"..", "%2E%2E"},
                                                        {".", "%2E"},
                                                        {"...", "..."},
                                                        {"", ""}};
    for (const auto& [text, segment] : rows) {
        EXPECT_EQ(pathSegment(text), segment);
        EXPECT_EQ(addressOf(ServiceRequest("GET", base, "items/" + pathSegment(text) + "/x")),
                  "https://api.example/1/items/" + std::string(segment) + "/x");
    }
    EXPECT_EQ(pathSegment(std::string_view("a\0b", 3)), "a%00b");
}

TEST_F(UploadTest, IsAFormWithTheFile) {
    const auto request = uploadOf(folder.write("a.txt", "content"))().value();
    EXPECT_EQ(headersOf(request), Texts{"Content-Type: multipart/form-data; boundary=B"});
    EXPECT_EQ(bodyOf(request), "--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a.txt\"\r\n"
                               "Content-Type: text/plain\r\n\r\ncontent\r\n--B--\r\n");
}

TEST_F(UploadTest, HasParametersBeforeTheFileAndAFieldOfAnyName) {
    const auto request = ServiceRequest("POST", base, "files")
                             .upload(folder.write("a", ""), {{"size", "0"}, {"name", "a b"}}, "local")
                             .maker()()
                             .value();
    EXPECT_EQ(bodyOf(request), "--B\r\nContent-Disposition: form-data; name=\"name\"\r\n\r\na b\r\n"
                               "--B\r\nContent-Disposition: form-data; name=\"size\"\r\n\r\n0\r\n"
                               "--B\r\nContent-Disposition: form-data; name=\"local\"; filename=\"a\"\r\n"
                               "Content-Type: application/octet-stream\r\n\r\n\r\n--B--\r\n");
}

TEST_F(UploadTest, OfAFileThatIsNotThereIsLoggedUnderItsFunctionAndNoRequest) {
    const LogCapture log;
    const auto maker =
        ServiceRequest("POST", base, "files").upload(folder / "missing", {}, "file", "upload(file:)").maker();
    EXPECT_TRUE(log.records().empty());
    EXPECT_FALSE(maker());
    const auto records = log.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records.front().level, LogLevel::error);
    EXPECT_EQ(records.front().message, logged);
    EXPECT_EQ(records.front().function, "upload(file:)");
}

TEST_F(UploadTest, OfWhatIsNoRegularFileIsNoRequest) {
    std::filesystem::create_symlink(folder / "missing", folder / "link");
    for (const auto& file : {folder.path(), folder / "link", std::filesystem::path()}) {
        const LogCapture log;
        EXPECT_FALSE(uploadOf(file)()) << file;
        EXPECT_EQ(log.messages(LogLevel::error), Texts{logged}) << file;
    }
}

TEST_F(UploadTest, OfAFileThatAppearsBetweenTwoTriesIsARequestAtTheSecond) {
    const auto maker = uploadOf(folder / "a.txt");
    EXPECT_FALSE(maker());
    folder.write("a.txt", "late");
    EXPECT_NE(bodyOf(maker().value()).find("\r\n\r\nlate\r\n"), std::string::npos);
    std::filesystem::remove(folder / "a.txt");
    EXPECT_FALSE(maker());
}

TEST_F(UploadTest, SendsTheFileAsItWasWhenTheRequestWasMade) {
    const auto request = uploadOf(folder.write("a.txt", "first"))().value();
    std::filesystem::remove(folder / "a.txt");
    folder.write("a.txt", "second");
    EXPECT_NE(bodyOf(request).find("\r\n\r\nfirst\r\n"), std::string::npos);
}

TEST_F(UploadTest, ANameOfAFileStaysInItsHeader) {
    const auto request = uploadOf(folder.write("a\"\r\nX: y.txt", "c"))().value();
    EXPECT_NE(bodyOf(request).find("filename=\"a%22%0D%0AX: y.txt\"\r\n"), std::string::npos);
}

} // namespace zelto
