#include <ZeltoSandbox/HTTP/SandboxRequest.h>

#include <gtest/gtest.h>

namespace zelto {

using namespace sandbox;

namespace {

SpoolRange spooled(const std::string& bytes) {
    const auto space = std::make_shared<SpoolSpace>(std::uint64_t{1} << 30);
    SpoolWriter writer(space);
    for (std::size_t i = 0; i < bytes.size(); i += 100'000) {
        EXPECT_TRUE(writer.append(std::string_view(bytes).substr(i, 100'000)));
    }
    return SpoolRange::all(writer.finish());
}

std::string errorOf(const std::string& body, const std::string& boundary = "b") {
    const auto parts = parseMultipart(spooled(body), boundary);
    return parts ? "(none)" : parts.error();
}

const std::string header = "Content-Disposition: form-data; name=\"x\"\r\n\r\n";

} // namespace

TEST(Multipart, GivesThePartsWithTheirBytes) {
    const auto parts = parseMultipart(
        spooled("--b\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n1\r\n--b\r\nContent-Type: "
                "Image/PNG; x=y\r\ncontent-disposition: form-data; name=\"f\"; "
                "filename=\"q;\\\"1.png\"\r\n\r\n\r\n--\r\n"
                "--cb\r\n--b\r\nContent-Disposition: form-data; name=e\r\n\r\n\r\n--b--\r\n"),
        "b");
    ASSERT_TRUE(parts) << parts.error();
    ASSERT_EQ(parts->size(), 3U);
    EXPECT_EQ((*parts)[0].name, "a");
    EXPECT_EQ((*parts)[0].content.text(9), "1");
    EXPECT_EQ((*parts)[0].contentType, "text/plain");
    EXPECT_FALSE((*parts)[0].fileName);
    EXPECT_EQ((*parts)[1].fileName, "q;\"1.png");
    EXPECT_EQ((*parts)[1].contentType, "image/png");
    EXPECT_EQ((*parts)[2].name, "e");
    EXPECT_EQ((*parts)[2].content.size, 0U);
}

// The body is searched in windows of a mebibyte.
TEST(Multipart, FindsABoundaryWhereverItLies) {
    const std::size_t window = std::size_t{1} << 20;
    for (std::size_t size = window - 120; size < window + 20; size += 3) {
        std::string content(size, 'x');
        content.replace(size / 2, 4, "\r\n--");
        const auto parts = parseMultipart(spooled("--b\r\n" + header + content + "\r\n--b--"), "b");
        ASSERT_TRUE(parts) << size;
        ASSERT_EQ(parts->front().content.size, size);
    }
    const std::string large(5 * window + 77, 'y');
    const auto parts = parseMultipart(
        spooled("--b\r\n" + header + large + "\r\n--b\r\n" + header + large + "\r\n--b--\r\n"), "b");
    ASSERT_TRUE(parts);
    ASSERT_EQ(parts->size(), 2U);
    EXPECT_EQ((*parts)[1].content.text(10 * window), large);
}

TEST(Multipart, RefusesWhatIsBroken) {
    EXPECT_EQ(errorOf(""), "the body does not begin with the boundary");
    EXPECT_EQ(errorOf("x--b--"), "the body does not begin with the boundary");
    EXPECT_EQ(errorOf("--b--", ""), "the boundary has not 1 to 70 characters");
    EXPECT_EQ(errorOf("--b--", std::string(71, 'b')), "the boundary has not 1 to 70 characters");
    EXPECT_EQ(errorOf("--b"), "a boundary is not followed by a line end");
    EXPECT_EQ(errorOf("--b\n" + header + "x\n--b--"), "a boundary is not followed by a line end");
    EXPECT_EQ(errorOf("--b\r\n" + header + "x"), "the last boundary is missing");
    EXPECT_EQ(errorOf("--b\r\n" + header + "x\r\n--b"), "a boundary is not followed by a line end");
    EXPECT_EQ(errorOf("--b\r\nContent-Disposition: form-data; name=\"x\"\r\nno"),
              "a part's header does not end");
    EXPECT_EQ(errorOf("--b\r\n\r\n\r\n--b--"), "a part has no Content-Disposition");
    EXPECT_EQ(errorOf("--b\r\nContent-Type: a/b\r\n\r\nx\r\n--b--"), "a part has no Content-Disposition");
    EXPECT_EQ(errorOf("--b\r\nContent-Disposition: form-data\r\n\r\nx\r\n--b--"),
              "a part has no single Content-Disposition: form-data with a name");
    EXPECT_EQ(errorOf("--b\r\nContent-Disposition: attachment; name=x\r\n\r\nx\r\n--b--"),
              "a part has no single Content-Disposition: form-data with a name");
    EXPECT_EQ(errorOf("--b\r\nno colon\r\n\r\nx\r\n--b--"), "a part has a header line that is none");
    EXPECT_EQ(errorOf("--b\r\n" + header + "x\r\n--b--\r\nmore"),
              "something stands behind the last boundary");
    EXPECT_EQ(errorOf("--b\r\nX: " + std::string(20'000, 'x') + "\r\n" + header + "x\r\n--b--"),
              "a part's header does not end");
    std::string many;
    for (int i = 0; i < 1001; ++i) {
        many += "--b\r\n" + header + "\r\n";
    }
    EXPECT_EQ(errorOf(many + "--b--"), "there are more than 1000 parts");
}

TEST(Multipart, HeaderParametersAreReadByTheStandard) {
    EXPECT_EQ(headerParameter("multipart/form-data; Boundary=\"a b\"; x=y", "boundary"), "a b");
    EXPECT_EQ(headerParameter("a; x=\"1;y=2\"; y=3", "y"), "3");
    EXPECT_EQ(headerParameter("a; x", "x"), std::nullopt);
    EXPECT_EQ(headerParameter("boundary=x", "boundary"), std::nullopt);
    EXPECT_EQ(mediaTypeOf(" Text/HTML ; charset=x"), "text/html");
}

} // namespace zelto
