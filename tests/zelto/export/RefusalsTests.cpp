#include <export/Refusals.h>

#include <gtest/gtest.h>

#include <optional>

namespace zelto::cli {

namespace {

struct WithWords {
    ServiceClientError reason = ServiceClientError::apiCallError;
    std::optional<std::string> words;
    bool nothingWasSent = false;
};

} // namespace

TEST(Refusals, QuoteTheServicesOwnWords) {
    EXPECT_EQ(wordsOf(WithWords{.words = "invalid list"}), " (\"invalid list\")");
    EXPECT_EQ(wordsOf(WithWords{}), "");
}

TEST(Refusals, AreUnknownWhereARequestWentOutAndNoResponseCame) {
    EXPECT_TRUE(isOutcomeUnknown(WithWords{.reason = ServiceClientError::connectionError}));
    EXPECT_FALSE(
        isOutcomeUnknown(WithWords{.reason = ServiceClientError::connectionError, .nothingWasSent = true}));
    EXPECT_FALSE(isOutcomeUnknown(WithWords{}));
}

} // namespace zelto::cli
