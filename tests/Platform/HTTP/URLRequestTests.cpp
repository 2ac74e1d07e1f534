#include <Platform/HTTP/URLRequest.h>

#include <gtest/gtest.h>

namespace zelto {

TEST(URLRequest, ANewRequestIsAGetWithTheProtocolsCachePolicyAndSixtySeconds) {
    const URLRequest request(*URL::parse("https://example.com/a"));
    EXPECT_EQ(request.url.absoluteString(), "https://example.com/a");
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.cachePolicy, URLRequestCachePolicy::useProtocolCachePolicy);
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
    EXPECT_TRUE(request.headers.fields().empty());
    EXPECT_FALSE(request.body);
}

TEST(URLRequest, ACopyIsChangedWithoutTheOriginal) {
    URLRequest request(*URL::parse("https://example.com/"), "POST");
    request.body = HTTPBody("text");
    URLRequest copy = request;
    copy.headers.set("Authorization", "Bearer x");
    copy.body->append(" and more");
    EXPECT_EQ(request.headers.value("Authorization"), std::nullopt);
    EXPECT_EQ(request.body->size(), 4u);
    EXPECT_EQ(copy.method, "POST");
    EXPECT_EQ(copy.body->size(), 13u);
}

} // namespace zelto
