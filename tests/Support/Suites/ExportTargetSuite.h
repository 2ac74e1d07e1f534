#pragma once

#include <Support/ExportScenario.h>
#include <Support/NetworkExport.h>
#include <Support/TestHTTPServer.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zelto {

// Where an export goes, and what of that the next one starts with, for an ExportScenario that also has
//
//     static constexpr IntegrationExportError noTargetError; // of an export without a target
//     static std::vector<std::string> madeWithoutTarget();   // as ServiceServer lists it
//     static auto goneTarget();  // as the configuration has it in `saveTo`; the service does not list it
template <ExportScenario Scenario> class ExportTarget : public testing::Test {
  protected:
    using Target = decltype(Scenario::goneTarget());

    // What the exporter has stored and offers is what was exported.
    static void expectStored(Prepared<Scenario>& one) {
        const auto& configuration = one.configuration;
        const auto next = one.offered();
        EXPECT_EQ(next.saveTo, configuration.saveTo);
        EXPECT_EQ(next.saveAs, configuration.saveAs);
        EXPECT_EQ(one.exporter()->lastExportContentType(), configuration.saveAs);
        const auto stored = one.storage->load(one.account.identifier()).value();
        EXPECT_EQ(stored.template getCachedItem<Target>("lastExportInfo"), configuration.saveTo);
        EXPECT_EQ(stored.template getCachedItem<IntegrationExportContentType>("lastExportContentType"),
                  configuration.saveAs);
    }

    // Not the type that is offered at first, where there is another.
    static void chooseLastType(Prepared<Scenario>& one) {
        one.configuration.saveAs =
            one.exporter()->contentTypes(IntegrationExportTarget::email).supported.back();
    }

    typename Scenario::Server service;
};

TYPED_TEST_SUITE_P(ExportTarget);

TYPED_TEST_P(ExportTarget, IsNeededToMakeSomethingInIt) {
    Prepared<TypeParam> one;
    one.configuration.saveTo = std::nullopt;
    EXPECT_EQ(one.run(), failure(TypeParam::noTargetError));
    EXPECT_EQ(this->service.made(), TypeParam::madeWithoutTarget());
    const auto report = one.exporter()->exportReport();
    EXPECT_EQ(report.made.size(), TypeParam::madeWithoutTarget().size());
    EXPECT_EQ(report.refused.size(), 0U);
    const auto events = one.interactor->exportEvents();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events.front().exportError, nameOf(TypeParam::noTargetError));
}

TYPED_TEST_P(ExportTarget, IsOfferedAgainThoughItHasGone) {
    Prepared<TypeParam> one;
    ASSERT_TRUE(one.fetch());
    one.exporter()->lastExportInfo.set(TypeParam::goneTarget());
    EXPECT_EQ(one.offered().saveTo, TypeParam::goneTarget());
}

TYPED_TEST_P(ExportTarget, AndTypeAreStoredAfterSuccess) {
    Prepared<TypeParam> one;
    this->chooseLastType(one);
    ASSERT_TRUE(one.run());
    this->expectStored(one);
}

TYPED_TEST_P(ExportTarget, AndTypeAreStoredAfterAFailure) {
    Prepared<TypeParam> one;
    this->chooseLastType(one);
    one.configuration.saveTo = TypeParam::goneTarget();
    this->service.onRequest = [](const auto&) { return PlayedResponse::json("no", 404); };
    ASSERT_FALSE(one.run());
    this->expectStored(one);
}

TYPED_TEST_P(ExportTarget, AndTypeAreOfferedToTheNextExporterOfTheAccount) {
    Prepared<TypeParam> one;
    this->chooseLastType(one);
    ASSERT_TRUE(one.run());
    one.account = one.storage->load(one.account.identifier()).value();
    one.releaseExporter();
    this->expectStored(one);
}

REGISTER_TYPED_TEST_SUITE_P(ExportTarget, IsNeededToMakeSomethingInIt, IsOfferedAgainThoughItHasGone,
                            AndTypeAreStoredAfterSuccess, AndTypeAreStoredAfterAFailure,
                            AndTypeAreOfferedToTheNextExporterOfTheAccount);

} // namespace zelto
