#include <ZeltoHost/Mail/EncodedWords.h>
#include <ZeltoHost/Mail/MailHeaderText.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

TEST(EncodedWords, RunsOfWordsAreJoinedAndMadeUTF8) {
    EXPECT_EQ(withUTF8Words("=?UTF-8?B?YQ==?= =?utf-8?b?Yg==?="), "=?utf-8?B?YWI=?=");
    EXPECT_EQ(withUTF8Words("=?utf-8?Q?a_?= =?utf-8?B?Yg==?="), "=?utf-8?B?YSBi?=");
    EXPECT_EQ(withUTF8Words("x =?a?B?YQ==?=  =?b?B?Yg==?= y"), "x =?utf-8?B?YWI=?= y");
    EXPECT_EQ(withUTF8Words("=?a?B?YQ==?= and =?a?B?Yg==?="), "=?utf-8?B?YQ==?= and =?utf-8?B?Yg==?=");
    EXPECT_EQ(withUTF8Words("=?us-ascii*en?q?a=3D?="), "=?utf-8?B?YT0=?=");
    for (const std::string_view same :
         {"", "=?", "=?a", "=?a?", "=?a?B", "=?a?BB?YQ==?=", "=?a?B?YQ==?x", "=?a?B?", "=?a?B?YQ==?",
          "=?a?Q?b", "=?a?X?b?=", "=?a?Q?b c?=", "a = b ?= c"}) {
        EXPECT_EQ(withUTF8Words(same), same);
    }
}

TEST(EncodedWords, ACharsetMeansWhatMailsMeanByItsName) {
    EXPECT_EQ(decodedText("=?Shift_JIS?B?l1yS6JVch0A=?="), "予定表①");
    EXPECT_EQ(decodedText("=?shift_jis?Q?=97=5C=92=E8?= =?Shift_JIS?Q?=95=5C=87=40?="), "予定表①");
    EXPECT_EQ(decodedText("=?iso-8859-1?Q?It=92s_5_=80?="), "It’s 5 €");
    EXPECT_EQ(decodedText("=?gb2312?B?lFg=?= =?x-unknown?Q?=FC?="), "擷ü");
    EXPECT_EQ(decodedText("a =?utf-8?Q?"
                          "?= b"),
              "a b");
    EXPECT_EQ(decodedText("=?iso-2022-jp?B?GyRCRnxLXBsoQg==?="), "日本");
}

TEST(EncodedWords, PaddedWordsAndSplitCharactersAreReadWhole) {
    EXPECT_EQ(decodedText("=?utf-8?B?0J8=?= =?utf-8?B?0YA=?="), "Пр");
    EXPECT_EQ(decodedText("=?utf-8?B?0A==?= =?utf-8?B?nw==?="), "П");
    EXPECT_EQ(decodedText("=?utf-8?Q?=D0?= =?utf-8?Q?=9F?="), "П");
    EXPECT_EQ(decodedText("=?utf-8?B?0J8=?= =?koi8-r?B?0g==?= end"), "Пр end");
    EXPECT_EQ(decodedAddresses("=?utf-8?B?0J8=?= =?utf-8?B?0YA=?= <a@b.example>").at(0).displayName, "Пр");
}

} // namespace
} // namespace zelto
