#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

URLRequest emptyRequest() {
    return URLRequest(*URL::parse("https://example.com/upload"), "POST");
}

std::string bodyOf(const URLRequest& request) {
    const auto bytes = request.body ? request.body->bytes() : Data();
    return bytes ? std::string(viewOf(*bytes)) : "(error)";
}

// The boundary that the request's Content-Type names behind the given text.
std::string boundaryOf(const URLRequest& request, const std::string& before) {
    const auto type = request.headers.value("Content-Type").value_or("(none)");
    EXPECT_TRUE(type.starts_with(before)) << type;
    return type.substr(std::min(before.size(), type.size()));
}

std::string relatedBoundary(const URLRequest& request) {
    return boundaryOf(request, "multipart/related; boundary=");
}

std::string formBoundary(const URLRequest& request) {
    const auto boundary = boundaryOf(request, "multipart/form-data; boundary=");
    EXPECT_TRUE(boundary.starts_with("Boundary-")) << boundary;
    EXPECT_EQ(boundary.size(), 9u + 36u);
    return boundary;
}

} // namespace

TEST(DriveFileUploadRequest, TheBodyIsMetadataAndTheFileInBase64) {
    const TemporaryFolder folder;
    auto request = emptyRequest();
    ExportServiceHelper::makeDriveFileUploadRequest(folder.write("a.pdf", "content"), "Naïve \"a\"/b.pdf",
                                                    "folder-1", request);
    const auto boundary = relatedBoundary(request);
    EXPECT_EQ(boundary.size(), 36u);
    EXPECT_EQ(
        bodyOf(request),
        "\r\n--" + boundary + "\r\nContent-Type: application/json; charset=UTF-8\r\n\r\n" +
            R"({"name":"Naïve \"a\"/b.pdf","mimeType":"application/pdf","parents":["folder-1"]})" + "\r\n--" +
            boundary +
            "\r\nContent-Type: application/pdf\r\nContent-Transfer-Encoding: base64\r\n\r\nY29udGVudA==" +
            "\r\n--" + boundary + "--");
    EXPECT_EQ(request.headers.fields().size(), 1u);
}

TEST(DriveFileUploadRequest, AnAbsentOrEmptyParentIsNoParents) {
    const TemporaryFolder folder;
    const auto path = folder.write("a", "");
    for (const auto& parent : {std::optional<std::string>(), std::optional<std::string>("")}) {
        auto request = emptyRequest();
        ExportServiceHelper::makeDriveFileUploadRequest(path, "n", parent, request);
        EXPECT_TRUE(bodyOf(request).contains(R"({"name":"n","mimeType":"application/octet-stream"})"))
            << bodyOf(request);
        EXPECT_FALSE(bodyOf(request).contains("parents"));
    }
}

TEST(DriveFileUploadRequest, AFileThatCannotBeReadChangesNothing) {
    const TemporaryFolder folder;
    auto request = emptyRequest();
    ExportServiceHelper::makeDriveFileUploadRequest(folder / "absent.pdf", "n", "p", request);
    ExportServiceHelper::makeDriveFileUploadRequest(folder.path(), "n", "p", request);
    EXPECT_FALSE(request.body);
    EXPECT_TRUE(request.headers.fields().empty());
}

TEST(DriveFileUploadRequest, MetadataThatIsNotUTF8ChangesNothing) {
    const TemporaryFolder folder;
    auto request = emptyRequest();
    ExportServiceHelper::makeDriveFileUploadRequest(folder.write("a", "x"), "\xFF", std::nullopt, request);
    ExportServiceHelper::makeDriveFileUploadRequest(folder.write("a", "x"), "n", "\xFF", request);
    EXPECT_FALSE(request.body);
    EXPECT_TRUE(request.headers.fields().empty());
}

TEST(DriveFileUploadRequest, EachRequestHasABoundaryOfItsOwn) {
    const TemporaryFolder folder;
    auto one = emptyRequest();
    auto two = emptyRequest();
    ExportServiceHelper::makeDriveFileUploadRequest(folder.write("a", "x"), "n", std::nullopt, one);
    ExportServiceHelper::makeDriveFileUploadRequest(folder / "a", "n", std::nullopt, two);
    EXPECT_NE(relatedBoundary(one), relatedBoundary(two));
}

TEST(DriveFileUploadRequest, AFileOfOneGibibyteIsNotReadIntoMemory) {
    const TemporaryFolder folder;
    const auto path = folder.write("a.mp4", "");
    std::filesystem::resize_file(path, std::uint64_t{1} << 30);
    auto drive = emptyRequest();
    ExportServiceHelper::makeDriveFileUploadRequest(path, "a.mp4", std::nullopt, drive);
    // The last segment begins behind a third more than the file's size.
    EXPECT_GT(drive.body->size(), 1431655768u);
    EXPECT_LT(drive.body->size(), 1431655768u + 500);
    auto form = emptyRequest();
    ExportServiceHelper::makeFilesUploadRequest({}, std::vector{path}, form);
    EXPECT_GT(form.body->size(), std::uint64_t{1} << 30);
}

TEST(FilesUploadRequest, FieldsAndFilesFollowEachOther) {
    const TemporaryFolder folder;
    auto request = emptyRequest();
    ExportServiceHelper::makeFilesUploadRequest(
        {{"a", "1"}, {"b", "two\r\nlines"}},
        std::vector{folder.write("x.txt", "first"), folder.write("y", std::string("\0\xFF", 2))}, request);
    const auto boundary = formBoundary(request);
    EXPECT_EQ(bodyOf(request),
              "--" + boundary + "\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n1\r\n" + "--" +
                  boundary + "\r\nContent-Disposition: form-data; name=\"b\"\r\n\r\ntwo\r\nlines\r\n" + "--" +
                  boundary + "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"x.txt\"\r\n" +
                  "Content-Type: text/plain\r\n\r\nfirst\r\n" + "--" + boundary +
                  "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"y\"\r\n" +
                  "Content-Type: application/octet-stream\r\n\r\n" + std::string("\0\xFF", 2) + "\r\n" +
                  "--" + boundary + "--\r\n");
    EXPECT_EQ(request.headers.fields().size(), 1u);
}

TEST(FilesUploadRequest, TheCallerNamesTheFilesField) {
    const TemporaryFolder folder;
    auto request = emptyRequest();
    ExportServiceHelper::makeFilesUploadRequest({}, std::vector{folder.write("x.txt", "t")}, request,
                                                "attachment");
    EXPECT_TRUE(bodyOf(request).contains("name=\"attachment\"; filename=\"x.txt\""));
}

TEST(FilesUploadRequest, AFileThatCannotBeReadIsSkipped) {
    const TemporaryFolder folder;
    auto request = emptyRequest();
    ExportServiceHelper::makeFilesUploadRequest({}, std::vector{folder / "absent", folder.path()}, request);
    EXPECT_EQ(bodyOf(request), "--" + formBoundary(request) + "--\r\n");
}

TEST(FilesUploadRequest, PartsCarryTheirNameIdentifierTypeAndData) {
    const TemporaryFolder folder;
    HTTPBody image("<");
    ASSERT_TRUE(image.appendFile(folder.write("x.png", "image")));
    const std::vector<ExporterHelperMultipartData> parts = {
        {.name = "Presentation", .dataId = "id-1", .contentType = "text/html", .data = HTTPBody("<html/>")},
        {.name = "p1", .dataId = "id-2", .contentType = "image/png", .data = image},
    };
    auto request = emptyRequest();
    ExportServiceHelper::makeFilesUploadRequest({{"k", "v"}}, parts, request);
    const auto boundary = formBoundary(request);
    EXPECT_EQ(bodyOf(request),
              "--" + boundary + "\r\nContent-Disposition: form-data; name=\"k\"\r\n\r\nv\r\n" + "--" +
                  boundary +
                  "\r\nContent-Disposition: form-data; name=\"Presentation\"; filename=\"id-1\"\r\n" +
                  "Content-Type: text/html\r\n\r\n<html/>\r\n" + "--" + boundary +
                  "\r\nContent-Disposition: form-data; name=\"p1\"; filename=\"id-2\"\r\n" +
                  "Content-Type: image/png\r\n\r\n<image\r\n" + "--" + boundary + "--\r\n");
}

TEST(FilesUploadRequest, APartWithoutAnIdentifierGetsAFreshOne) {
    const ExporterHelperMultipartData one = {.name = "a", .contentType = "b", .data = {}};
    const ExporterHelperMultipartData two = {.name = "a", .contentType = "b", .data = {}};
    EXPECT_EQ(one.dataId.size(), 36u);
    EXPECT_NE(one.dataId, two.dataId);
}

TEST(FilesUploadRequest, QuotesAndLineEndsOfNamesCannotLeaveTheirHeader) {
    const TemporaryFolder folder;
    auto request = emptyRequest();
    ExportServiceHelper::makeFilesUploadRequest(
        {{"k\"\r\nX: 1", "v"}}, std::vector{folder.write("a\"; b=\"c\r\nX-Evil: 1ä\\%.txt", "t")}, request,
        "f\n\"");
    const auto boundary = formBoundary(request);
    EXPECT_EQ(bodyOf(request),
              "--" + boundary + "\r\nContent-Disposition: form-data; name=\"k%22%0D%0AX: 1\"\r\n\r\nv\r\n" +
                  "--" + boundary + "\r\nContent-Disposition: form-data; name=\"f%0A%22\"; " +
                  "filename=\"a%22; b=%22c%0D%0AX-Evil: 1ä\\%.txt\"\r\n" +
                  "Content-Type: text/plain\r\n\r\nt\r\n" + "--" + boundary + "--\r\n");
}

TEST(FilesUploadRequest, AMediaTypeCannotBringAHeaderOfItsOwn) {
    const std::vector<ExporterHelperMultipartData> parts = {
        {.name = "n", .dataId = "i", .contentType = "text/html; charset=\"utf-8\"\r\nX-Evil: 1", .data = {}}};
    auto request = emptyRequest();
    ExportServiceHelper::makeFilesUploadRequest({}, parts, request);
    EXPECT_TRUE(bodyOf(request).contains("Content-Type: text/html; charset=\"utf-8\"X-Evil: 1\r\n\r\n"));
}

TEST(URLEncodedString, AllButLettersAndDigitsIsEscaped) {
    EXPECT_EQ(ExportServiceHelper::urlEncodedString({{"a b", "x&y=z +ä~-._"}}),
              "a%20b=x%26y%3Dz%20%2B%C3%A4%7E%2D%2E%5F");
}

TEST(URLEncodedString, AmpersandAndEqualsSignOfAFieldAreEscapedAndABlankIsNoPlus) {
    EXPECT_EQ(ExportServiceHelper::urlEncodedString({{"field", "a&b=c d"}}), "field=a%26b%3Dc%20d");
}

TEST(URLEncodedString, PairsAreJoinedByAmpersands) {
    EXPECT_EQ(ExportServiceHelper::urlEncodedString({}), "");
    EXPECT_EQ(ExportServiceHelper::urlEncodedString({{"a", "1"}, {"b", ""}, {"", "c"}}), "=c&a=1&b=");
}

TEST(URLEncodedRequest, APostWithItsLengthAndTypeIsMade) {
    const auto request =
        ExportServiceHelper::urlEncodedRequest("https://example.com/token", {{"grant", "ä b"}, {"x", "1"}});
    ASSERT_TRUE(request);
    EXPECT_EQ(request->url.absoluteString(), "https://example.com/token");
    EXPECT_EQ(request->method, "POST");
    EXPECT_EQ(request->cachePolicy, URLRequestCachePolicy::useProtocolCachePolicy);
    EXPECT_EQ(request->timeout, std::chrono::seconds(60));
    EXPECT_EQ(bodyOf(*request), "grant=%C3%A4%20b&x=1");
    const std::vector<HTTPHeaderField> expected = {{"Content-Length", "20"},
                                                   {"Content-Type", "application/x-www-form-urlencoded"}};
    EXPECT_EQ(request->headers.fields(), expected);
}

TEST(URLEncodedRequest, WithoutParametersTheBodyIsEmpty) {
    const auto request = ExportServiceHelper::urlEncodedRequest("https://example.com/", {});
    ASSERT_TRUE(request && request->body);
    EXPECT_EQ(request->body->size(), 0u);
    EXPECT_EQ(request->headers.value("Content-Length"), "0");
}

TEST(URLEncodedRequest, ATextThatIsNoURLGivesNothing) {
    for (const auto* url : {"", "no url", "https://exa mple.com/", "https://example.com/%zz"}) {
        EXPECT_FALSE(ExportServiceHelper::urlEncodedRequest(url, {})) << url;
    }
}

} // namespace zelto
