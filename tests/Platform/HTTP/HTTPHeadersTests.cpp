#include <Platform/HTTP/HTTPHeaders.h>

#include <gtest/gtest.h>

namespace zelto {

TEST(HTTPHeaders, AFieldIsFoundWithoutRegardToCase) {
    HTTPHeaders headers;
    headers.set("Content-Type", "text/plain");
    EXPECT_EQ(headers.value("content-type"), "text/plain");
    EXPECT_EQ(headers.value("CONTENT-TYPE"), "text/plain");
    EXPECT_EQ(headers.value("Content-Typ"), std::nullopt);
}

TEST(HTTPHeaders, FieldsKeepTheOrderAndSpellingOfSetting) {
    HTTPHeaders headers;
    headers.set("x-B", "1");
    headers.set("Accept", "2");
    headers.set("a", "3");
    const std::vector<HTTPHeaderField> expected = {{"x-B", "1"}, {"Accept", "2"}, {"a", "3"}};
    EXPECT_EQ(headers.fields(), expected);
}

TEST(HTTPHeaders, SettingAFieldAgainReplacesItInItsPlaceWithTheNewSpelling) {
    HTTPHeaders headers;
    headers.set("authorization", "old");
    headers.set("Accept", "*/*");
    headers.set("Authorization", "new");
    const std::vector<HTTPHeaderField> expected = {{"Authorization", "new"}, {"Accept", "*/*"}};
    EXPECT_EQ(headers.fields(), expected);
}

TEST(HTTPHeaders, AnAppendedValueGoesBehindTheOneThatIsThere) {
    HTTPHeaders headers;
    headers.append("vary", "Accept", ", ");
    headers.append("Via", "one", ", ");
    headers.append("Vary", "Origin", ", ");
    headers.append("Via", "two", " ");
    const std::vector<HTTPHeaderField> expected = {{"Vary", "Accept, Origin"}, {"Via", "one two"}};
    EXPECT_EQ(headers.fields(), expected);
}

TEST(HTTPHeaders, AFieldIsContainedWithoutRegardToCase) {
    HTTPHeaders headers;
    headers.set("Accept", "");
    EXPECT_TRUE(headers.contains("ACCEPT"));
    EXPECT_FALSE(headers.contains("Accept-Encoding"));
}

TEST(HTTPHeaders, ARemovedFieldIsGone) {
    HTTPHeaders headers;
    headers.set("Accept", "*/*");
    headers.remove("ACCEPT");
    headers.remove("Never-Set");
    EXPECT_TRUE(headers.fields().empty());
}

TEST(HTTPHeaders, AnEmptyValueIsAValue) {
    HTTPHeaders headers;
    headers.set("Accept", "");
    EXPECT_EQ(headers.value("Accept"), "");
}

TEST(HTTPHeaders, AValueThatEndsTheLineOrHoldsNULIsNotValid) {
    EXPECT_TRUE(isValidHeaderValue(""));
    EXPECT_TRUE(isValidHeaderValue("Bearer abc.def-ghi\tx"));
    EXPECT_TRUE(isValidHeaderValue("gr\xC3\xBC\xC3\x9F"));
    EXPECT_FALSE(isValidHeaderValue("a\rb"));
    EXPECT_FALSE(isValidHeaderValue("a\nb"));
    EXPECT_FALSE(isValidHeaderValue("token\r\nX-Evil: 1"));
    EXPECT_FALSE(isValidHeaderValue("token\n"));
    EXPECT_FALSE(isValidHeaderValue(std::string_view("a\0b", 3)));
}

TEST(HTTPHeaders, ANameMustBeAToken) {
    EXPECT_TRUE(isValidHeaderName("Mcp-Session-Id"));
    EXPECT_TRUE(isValidHeaderName("x!#$%&'*+-.^_`|~9"));
    for (const auto* name : {"", "a b", "a:", "a\r", "a\n", "\xC3\xA4", "(a)", "a\"", "a/b", "\x7F"}) {
        EXPECT_FALSE(isValidHeaderName(name)) << name;
    }
    EXPECT_FALSE(isValidHeaderName(std::string_view("a\0", 2)));
}

TEST(HTTPHeaders, TheFirstFieldThatMayNotBeSentIsNamed) {
    HTTPHeaders headers;
    headers.set("Accept", "*/*");
    EXPECT_EQ(headers.firstInvalid(), nullptr);
    headers.set("Authorization", "Bearer a\r\nb");
    headers.set("bad name", "x");
    ASSERT_NE(headers.firstInvalid(), nullptr);
    EXPECT_EQ(headers.firstInvalid()->name, "Authorization");
    headers.remove("Authorization");
    EXPECT_EQ(headers.firstInvalid()->name, "bad name");
}

} // namespace zelto
