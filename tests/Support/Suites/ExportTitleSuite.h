#pragma once

#include <Support/ExportScenario.h>
#include <Support/NetworkExport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zelto {

// How the user's title takes the place of the message's, for an ExportScenario.
template <ExportScenario Scenario> class ExportTitle : public testing::Test {
  protected:
    typename Scenario::Server service;
};

TYPED_TEST_SUITE_P(ExportTitle);

TYPED_TEST_P(ExportTitle, OfTheMessageIsOffered) {
    Prepared<TypeParam> one;
    one.data->titleText = "Über/Plan";
    EXPECT_EQ(one.offered().userTitle, "Über/Plan");
}

TYPED_TEST_P(ExportTitle, OfTheMessageIsTakenWithoutOneOfTheUser) {
    Prepared<TypeParam> given;
    given.configuration.userTitle = "Über/Plan";
    ASSERT_TRUE(given.run());
    const auto expected = this->service.texts();

    Prepared<TypeParam> taken;
    taken.configuration.userTitle = std::nullopt;
    taken.data->titleText = "Über/Plan";
    ASSERT_TRUE(taken.run());
    EXPECT_EQ(this->service.texts(), twice(expected));
    EXPECT_EQ(taken.exporter()->exportReport(), given.exporter()->exportReport());
    auto made = TypeParam::made();
    std::ranges::replace(made, "file Title.pdf", "file Uber_Plan.pdf");
    EXPECT_EQ(this->service.made(), twice(made));
}

TYPED_TEST_P(ExportTitle, OfTheUserIsNotOfferedAgain) {
    Prepared<TypeParam> one;
    one.configuration.userTitle = "Other";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.offered().userTitle, one.data->titleText);
}

TYPED_TEST_P(ExportTitle, OfTheUserIsInTheAnalyticsWhereItIsAnother) {
    Prepared<TypeParam> one;
    for (const auto* title : {"Title", "Other"}) {
        one.configuration.userTitle = title;
        ASSERT_TRUE(one.run());
        const auto names = one.interactor->exportEvents().back().modifiedFields;
        EXPECT_EQ(std::ranges::count(names, "userTitle"), title == one.data->titleText ? 0 : 1);
    }
}

REGISTER_TYPED_TEST_SUITE_P(ExportTitle, OfTheMessageIsOffered, OfTheMessageIsTakenWithoutOneOfTheUser,
                            OfTheUserIsNotOfferedAgain, OfTheUserIsInTheAnalyticsWhereItIsAnother);

} // namespace zelto
