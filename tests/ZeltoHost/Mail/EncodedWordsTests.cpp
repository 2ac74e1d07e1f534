#include <ZeltoHost/Mail/EncodedWords.h>
#include <ZeltoHost/Mail/MailHeaderText.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

TEST(EncodedWords, RunsOfBase64WordsAreJoined) {
    EXPECT_EQ(joiningEncodedWords("=?UTF-8?B?YQ==?= =?utf-8?b?Yg==?="), "=?UTF-8?B?YWI=?=");
    EXPECT_EQ(joiningEncodedWords("x =?a?B?YQ==?=  =?b?B?Yg==?= y"), "x =?a?B?YQ==?=  =?b?B?Yg==?= y");
    EXPECT_EQ(joiningEncodedWords("=?a?B?YQ==?= and =?a?B?Yg==?="), "=?a?B?YQ==?= and =?a?B?Yg==?=");
    for (const std::string_view same :
         {"", "=?", "=?a?B?", "=?a?B?YQ==?", "a = b ?= c", "=?a?Q?b?= =?a?Q?c?="}) {
        EXPECT_EQ(joiningEncodedWords(same), same);
    }
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
