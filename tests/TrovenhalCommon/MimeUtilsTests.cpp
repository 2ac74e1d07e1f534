#include <Support/LogCapture.h>
#include <TrovenhalCommon/MimeUtils.h>
#include <TrovenhalCommon/SkippableAssert.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

TEST(MimeUtils, KnowsTheMediaTypeOfAnExtensionInAnyCase) {
    EXPECT_EQ(MimeUtils::mime("pdf"), "application/pdf");
    EXPECT_EQ(MimeUtils::mime("PNG"), "image/png");
}

TEST(MimeUtils, AnUnknownExtensionHasNone) {
    EXPECT_EQ(MimeUtils::mime("no-such-extension"), std::nullopt);
    EXPECT_EQ(MimeUtils::mime(""), std::nullopt);
}

TEST(SkippableAssert, LogsWhatDoesNotHoldAndGoesOn) {
    const LogCapture log;
    EXPECT_TRUE(skippableAssert(true, "fine"));
    EXPECT_FALSE(skippableAssert(false, "not so"));
    EXPECT_EQ(log.messages(LogLevel::error), std::vector<std::string>{"not so"});
    EXPECT_EQ(log.records().at(0).file, "MimeUtilsTests.cpp");
}

} // namespace
} // namespace zelto
