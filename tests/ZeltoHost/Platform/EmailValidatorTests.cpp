#include <ZeltoHost/Platform/EmailValidator.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

std::string repeated(std::string_view text, int count) {
    std::string all;
    for (int round = 0; round < count; ++round) {
        all += text;
    }
    return all;
}

class ValidAddress : public testing::TestWithParam<std::string> {};

class InvalidAddress : public testing::TestWithParam<std::string> {};

} // namespace

TEST_P(ValidAddress, IsTaken) {
    EXPECT_TRUE(isEmailAddress(GetParam())) << GetParam();
}

TEST_P(InvalidAddress, IsRefused) {
    EXPECT_FALSE(isEmailAddress(GetParam())) << GetParam();
}

const std::string label63(63, 'a');

INSTANTIATE_TEST_SUITE_P(
    EmailValidator, ValidAddress,
    testing::Values("a@b.c", "alice@example.com", "first.last@example.co.uk", "a+tag@example.com", "1@2.com",
                    "!#$%&'*+-/=?^_`{|}~@example.com", "-a-@example.com", "user@localhost",
                    "user@a-b.example", "user@xn--bcher-kva.example", "user@123.com", "A.B@EXAMPLE.COM",
                    "john_gmail.com#EXT#@contoso.onmicrosoft.com", R"("john doe"@example.com)",
                    R"("a@b"@example.com)", R"("a\"b"@example.com)", R"("a\\b"@example.com)",
                    R"("a..b"@example.com)", R"(""@example.com)", R"("."@example.com)", R"("\a"@example.com)",
                    "жуков@пример.рф", "用户@例え.テスト", "jos\xC3\xA9@example.com", "😀@example.com",
                    R"("é ü"@example.com)", "user@[192.168.0.1]", "user@[IPv6:::1]",
                    "user@[IPv6:2001:db8::ff00:42:8329]", "user@[IPv6:::ffff:1.2.3.4]",
                    std::string(64, 'a') + "@example.com", "a@" + label63 + ".example",
                    // 254 octets in all
                    std::string(64, 'a') + "@" + label63 + "." + label63 + "." + std::string(61, 'b'),
                    "a@" + repeated("é", 59) + ".example"));

INSTANTIATE_TEST_SUITE_P(
    EmailValidator, InvalidAddress,
    testing::Values(
        "", "@", "a", "a@", "@b", "alice", "alice.example.com", "a@b@c", "a@@b", ".a@b.c", "a.@b.c",
        "a..b@c.d", "a b@c.d", " a@b.c", "a@b.c ", "a@b.c\n", "a\n@b.c", "a\t@b.c", "a,b@c.d", "a;b@c.d",
        "a:b@c.d", "a<b@c.d", "<a@b.c>", "Alice <a@b.c>", "a(comment)@b.c", "a@b(c).d", "a[b@c.d", "a\\b@c.d",
        "a\"b@c.d", R"("a"b@c.d)", R"(a"b"@c.d)", R"("a"b"@c.d)", R"("a@c.d)", R"("@c.d)", R"(a"@c.d)",
        R"("a\"@c.d)", "\"a\nb\"@c.d", "\"a\x7F\"@c.d", "a@.b", "a@b.", "a@b..c", "a@-b.c", "a@b-.c",
        "a@b_c.d", "a@b c.d", "a@b.c/d", "a@1.2.3.4", "a@123", "a@b.123", "a@[1.2.3]", "a@[1.2.3.256]",
        "a@[1.2.3.4", "a@1.2.3.4]", "a@[01.2.3.4.5]", "a@[IPv6:1.2.3.4]", "a@[IPv6:12345::]", "a@[IPv6:]",
        "a@[::1]", "a@[]", "a@[example.com]", std::string("a\0@b.c", 6), std::string("a@b.c\0", 6),
        std::string(65, 'a') + "@example.com", "a@" + label63 + "a.example",
        // 255 octets in all
        std::string(64, 'a') + "@" + label63 + "." + label63 + "." + std::string(62, 'b'),
        "a@" + repeated("é", 60) + ".example", "a\xFF@b.c", "a@b\xC3.c", "a\xC2\x85@b.c", "a\u00A0b@c.d",
        "a\u3000@c.d", "a\u202Eb@c.d", "a\u2028@c.d", "a@b\u00A0.d", "\"a\u202Eb\"@c.d"));

TEST(EmailValidator, ALongTextIsRefusedAtOnce) {
    EXPECT_FALSE(isEmailAddress(std::string(100'000'000, 'a') + "@b.c"));
}

} // namespace zelto
