#pragma once

#include <Support/FailingExports.h>

#include <gtest/gtest.h>

namespace zelto {

// What the statuses and bodies of a service's responses do to an export, for an ExportScenario that also has
//
//     static std::vector<FailingStep> failingSteps(); // each request of the export
template <ExportScenario Scenario> class ExportStatus : public testing::Test {};

TYPED_TEST_SUITE_P(ExportStatus);

TYPED_TEST_P(ExportStatus, IsMappedAtEveryStepAndReportedOnce) {
    for (const auto& step : TypeParam::failingSteps()) {
        expectFailuresAt<TypeParam>(step, failingResponses());
    }
}

TYPED_TEST_P(ExportStatus, OfSuccessIsNoneWithoutWhatTheStepNeeds) {
    for (const auto& step : TypeParam::failingSteps()) {
        expectFailuresAt<TypeParam>(step, step.unreadable);
    }
}

REGISTER_TYPED_TEST_SUITE_P(ExportStatus, IsMappedAtEveryStepAndReportedOnce,
                            OfSuccessIsNoneWithoutWhatTheStepNeeds);

} // namespace zelto
