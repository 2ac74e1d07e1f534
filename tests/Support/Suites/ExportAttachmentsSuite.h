#pragma once

#include <Support/ExportScenario.h>
#include <Support/NetworkExport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// A file of this size is too large for the accounts that the function makes.
template <class Exporter> struct FileSizeLimit {
    std::function<void(Exporter&)> makeAccount;
    std::int64_t size;
};

// Which attachments an export offers and takes along, for an ExportScenario that also has
//
//     static std::vector<FileSizeLimit<…Exporter>> fileSizeLimits(); // the largest is the last
//     static constexpr std::optional<std::size_t> attachmentLimit;   // how many there may be; else any
//     number
template <ExportScenario Scenario> class ExportAttachments : public testing::Test {
  protected:
    using State = IntegrationAttachmentState;
    using States = std::vector<State>;

    // The states of attachments of these sizes in an offered configuration.
    States statesOf(const std::vector<std::int64_t>& sizes) {
        one.data->attachments.list.clear();
        for (const auto size : sizes) {
            const auto id = std::ssize(one.data->attachments.list);
            one.data->attachments.list.push_back({id, "a", size, State::selected});
        }
        States states;
        for (const auto& attachment : one.offered().attachments.list) {
            states.push_back(attachment.state);
        }
        return states;
    }

    // Whether the analytics of an export with all attachments in that state say that the user has changed the
    // selection.
    bool isInAnalytics(State state, bool selectedByDefault) {
        Prepared<Scenario> each;
        each.attachmentsAreSelectedByDefault = selectedByDefault;
        for (auto& attachment : each.configuration.attachments.list) {
            attachment.state = state;
        }
        EXPECT_TRUE(each.run());
        return std::ranges::count(each.interactor->exportEvents().front().modifiedFields, "attachments") != 0;
    }

    Prepared<Scenario> one;
    typename Scenario::Server service; // behind what its requests write to
};

TYPED_TEST_SUITE_P(ExportAttachments);

TYPED_TEST_P(ExportAttachments, AreOfferedBelowTheLimitOfTheAccount) {
    using State = IntegrationAttachmentState;
    for (const auto& limit : TypeParam::fileSizeLimits()) {
        SCOPED_TRACE(limit.size);
        limit.makeAccount(*this->one.exporter());
        EXPECT_EQ(this->statesOf({limit.size - 1, limit.size, limit.size + 1,
                                  std::numeric_limits<std::int64_t>::max(), 0}),
                  (std::vector{State::allowed, State::restricted, State::restricted, State::restricted,
                               State::allowed}));
    }
}

TYPED_TEST_P(ExportAttachments, AreOfferedUpToTheirNumberWhateverTheirTotal) {
    using State = IntegrationAttachmentState;
    const auto largest = TypeParam::fileSizeLimits().back();
    largest.makeAccount(*this->one.exporter());
    constexpr auto limit = TypeParam::attachmentLimit;
    std::vector expected(limit.value_or(1000), State::allowed);
    if (limit) {
        expected.push_back(State::restricted);
    }
    EXPECT_EQ(this->statesOf(std::vector<std::int64_t>(expected.size(), largest.size - 1)), expected);
}

TYPED_TEST_P(ExportAttachments, AreOfferedAsNoneWhereThereAreNone) {
    EXPECT_EQ(this->statesOf({}), std::vector<IntegrationAttachmentState>{});
}

TYPED_TEST_P(ExportAttachments, GoAlongIfTheyAreSelected) {
    // Of three, the second.
    auto& all = this->one.configuration.attachments.list;
    ASSERT_EQ(all.size(), 3U);
    all[0].state = IntegrationAttachmentState::allowed;
    all[2].state = IntegrationAttachmentState::restricted;
    ASSERT_TRUE(this->one.run());
    const auto texts = this->service.texts();
    const auto units = this->one.progress->totalUnitCount();

    all = {all[1]};
    ASSERT_TRUE(this->one.run());
    EXPECT_EQ(this->service.texts(), twice(texts));
    EXPECT_EQ(this->one.progress->totalUnitCount(), units);

    auto made = TypeParam::made();
    std::erase(made, "file a.txt");
    std::erase(made, "file c.txt");
    EXPECT_EQ(this->service.made(), twice(made));
}

TYPED_TEST_P(ExportAttachments, AreInTheAnalyticsIfTheirSelectionIsNotTheDefault) {
    using State = IntegrationAttachmentState;
    EXPECT_FALSE(this->isInAnalytics(State::selected, true));
    EXPECT_TRUE(this->isInAnalytics(State::allowed, true));
    EXPECT_FALSE(this->isInAnalytics(State::allowed, false));
    EXPECT_TRUE(this->isInAnalytics(State::selected, false));
}

REGISTER_TYPED_TEST_SUITE_P(ExportAttachments, AreOfferedBelowTheLimitOfTheAccount,
                            AreOfferedUpToTheirNumberWhateverTheirTotal, AreOfferedAsNoneWhereThereAreNone,
                            GoAlongIfTheyAreSelected, AreInTheAnalyticsIfTheirSelectionIsNotTheDefault);

} // namespace zelto
