#include <ZeltoHost/Mail/MailHeaderText.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

std::vector<std::string> emailsOf(std::string_view value) {
    std::vector<std::string> emails;
    for (const auto& each : decodedAddresses(value)) {
        emails.push_back(each.email);
    }
    return emails;
}

TEST(MailHeaderText, EveryKindOfLineEndAndBlankBecomesOneBlank) {
    EXPECT_EQ(onOneLine(" \ta\r\nb\u0085c\u2028d\u2029e\x7f\x01 f\n"), "a b c d e f");
    EXPECT_EQ(onOneLine("\u2028\u2029"), "");
    EXPECT_EQ(onOneLine("a\xff"), "a\uFFFD");
    EXPECT_EQ(onOneLine("\u2027\u202A"), "\u2027\u202A");
}

TEST(MailHeaderText, AddressesOfGroupsAreTakenOutOfThem) {
    EXPECT_EQ(emailsOf("a@x.example, Team: b@x.example, \"C\" <c@x.example>;, d@x.example"),
              (std::vector<std::string>{"a@x.example", "b@x.example", "c@x.example", "d@x.example"}));
    EXPECT_EQ(emailsOf("a@x.example; b@x.example"), (std::vector<std::string>{"a@x.example", "b@x.example"}));
}

TEST(MailHeaderText, WhatNamesNobodyHasNoAddress) {
    for (const std::string_view value : {"", " ", ",", ", ,", ";", "<>", "\"Name\" <>", "<\u2028>",
                                         "\"Name\" <\u0085>", "Undisclosed recipients:;", "()"}) {
        EXPECT_EQ(emailsOf(value), std::vector<std::string>()) << value;
    }
}

} // namespace
} // namespace zelto
