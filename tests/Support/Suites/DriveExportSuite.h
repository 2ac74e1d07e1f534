#pragma once

#include <Support/Completed.h>
#include <Support/ExportScenario.h>
#include <Support/Gate.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// The clash check and the policies of an export to a drive, for an ExportScenario with the files "Title.pdf",
// "a.txt", "b.txt" and "c.txt" that also has
//
//     static void put(Server& server, std::vector<std::string> names); // into the folder that is checked
//     static auto existed(std::vector<std::string> names);             // what the check finds of these
//     static bool isCheck(const ReceivedRequest& request);
//     static bool replaces(const ReceivedRequest& upload);             // a file that is there
//     static void setFolder(Configuration& configuration, std::string folder);
//     static bool replacesUncheckedMessage; // by its name, whatever the check has found
template <ExportScenario Scenario> class DriveExportPolicy : public testing::Test {
  protected:
    using Texts = std::vector<std::string>;
    using Policy = ExportFilePolicy;
    using Done = typename Scenario::Export::Done;

    static auto failed() { return failure(IntegrationExportError::fileAlreadyExists); }

    // "replaced a.txt" or "new a.txt" for each upload, from the first one that is given on.
    Texts uploads(std::size_t from = 0) const {
        Texts uploads;
        for (const auto& request : service.server.requests()) {
            if (const auto made = service.madeBy(request)) {
                uploads.push_back((Scenario::replaces(request) ? "replaced" : "new") + made->substr(4));
            }
        }
        return {uploads.begin() + static_cast<std::ptrdiff_t>(from), uploads.end()};
    }

    std::ptrdiff_t checks() const {
        const auto requests = service.server.requests();
        return std::ranges::count_if(requests, Scenario::isCheck);
    }

    ExporterResult<void> run(std::optional<Policy> policy) {
        one.policy = policy;
        return one.run();
    }

    void put(Texts names) { Scenario::put(service, std::move(names)); }

    static Texts allNew() { return {"new Title.pdf", "new a.txt", "new b.txt", "new c.txt"}; }

    // What becomes of the message's file where the check has not found its name.
    static std::string uncheckedMessage() {
        return Scenario::replacesUncheckedMessage ? "replaced Title.pdf" : "new Title.pdf";
    }

    Prepared<Scenario> one;
    typename Scenario::Server service; // behind what its requests write to
};

TYPED_TEST_SUITE_P(DriveExportPolicy);

TYPED_TEST_P(DriveExportPolicy, IsNotNeededWhereNothingHasTheNames) {
    this->put({"other.pdf"});
    EXPECT_EQ(this->run({}), ExporterResult<void>());
    EXPECT_EQ(this->checks(), 1);
    EXPECT_EQ(this->uploads(), this->allNew());
    EXPECT_EQ(this->one.progress->totalUnitCount(), 6);
    EXPECT_EQ(this->one.exporter()->existedFiles(), TypeParam::existed({}));
}

TYPED_TEST_P(DriveExportPolicy, IsMissingWhereAnythingHasOneOfTheNamesAndNothingIsSent) {
    for (const auto* name : {"Title.pdf", "c.txt"}) {
        this->put({name});
        EXPECT_EQ(this->run({}), this->failed());
        EXPECT_EQ(this->one.exporter()->existedFiles(), TypeParam::existed({name}));
        EXPECT_EQ(this->one.interactor->exportEvents().back().exportError, "fileAlreadyExists");
        EXPECT_EQ(this->one.exporter()->exportReport(), ExportReport());
    }
    EXPECT_EQ(this->uploads(), std::vector<std::string>{});
}

TYPED_TEST_P(DriveExportPolicy, OverridesWhatTheCheckHasFoundWithoutAnotherCheck) {
    this->put({"Title.pdf", "b.txt"});
    EXPECT_EQ(this->run({}), this->failed());
    EXPECT_EQ(this->run(ExportFilePolicy::overrideExisting), ExporterResult<void>());
    EXPECT_EQ(this->checks(), 1);
    EXPECT_EQ(this->uploads(),
              (std::vector<std::string>{"replaced Title.pdf", "new a.txt", "replaced b.txt", "new c.txt"}));
    EXPECT_EQ(this->one.progress->totalUnitCount(), 6);
    EXPECT_EQ(this->one.exporter()->existedFiles(), TypeParam::existed({"Title.pdf", "b.txt"}));
}

TYPED_TEST_P(DriveExportPolicy, OverridesNoAttachmentWithoutACheckBeforeIt) {
    this->put({"Title.pdf", "b.txt"});
    EXPECT_EQ(this->run(ExportFilePolicy::overrideExisting), ExporterResult<void>());
    EXPECT_EQ(this->checks(), 0);
    EXPECT_EQ(this->uploads(),
              (std::vector<std::string>{this->uncheckedMessage(), "new a.txt", "new b.txt", "new c.txt"}));
}

TYPED_TEST_P(DriveExportPolicy, KeepsBothWithoutACheckAndForgetsWhatOneHasFound) {
    this->put({"Title.pdf", "b.txt"});
    EXPECT_EQ(this->run({}), this->failed());
    EXPECT_EQ(this->run(ExportFilePolicy::keepBoth), ExporterResult<void>());
    EXPECT_EQ(this->checks(), 1);
    EXPECT_EQ(this->uploads(), this->allNew());
    EXPECT_EQ(this->one.exporter()->existedFiles(), TypeParam::existed({}));

    EXPECT_EQ(this->run(ExportFilePolicy::overrideExisting), ExporterResult<void>());
    EXPECT_EQ(this->uploads(4),
              (std::vector<std::string>{this->uncheckedMessage(), "new a.txt", "new b.txt", "new c.txt"}));
}

TYPED_TEST_P(DriveExportPolicy, OverridesNoAttachmentByACheckOfAnotherFolder) {
    this->put({"Title.pdf", "b.txt"});
    EXPECT_EQ(this->run({}), this->failed());
    TypeParam::setFolder(this->one.configuration, "/other");
    EXPECT_EQ(this->run(ExportFilePolicy::overrideExisting), ExporterResult<void>());
    EXPECT_EQ(this->uploads(),
              (std::vector<std::string>{this->uncheckedMessage(), "new a.txt", "new b.txt", "new c.txt"}));
}

TYPED_TEST_P(DriveExportPolicy, OverridesByTheLastCheck) {
    this->put({"b.txt"});
    EXPECT_EQ(this->run({}), this->failed());
    this->put({});
    EXPECT_EQ(this->run({}), ExporterResult<void>());
    EXPECT_EQ(this->one.exporter()->existedFiles(), TypeParam::existed({}));
    EXPECT_EQ(this->run(ExportFilePolicy::overrideExisting), ExporterResult<void>());
    EXPECT_EQ(this->uploads(4),
              (std::vector<std::string>{this->uncheckedMessage(), "new a.txt", "new b.txt", "new c.txt"}));
}

TYPED_TEST_P(DriveExportPolicy, ReplacesNothingThatAppearsBetweenTheCheckAndTheUpload) {
    this->service.onRequest = [this](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
        if (!TypeParam::isCheck(request)) {
            return std::nullopt;
        }
        auto before = this->service.usualResponse(request);
        this->put({"Title.pdf", "a.txt", "b.txt", "c.txt"});
        return before;
    };
    EXPECT_EQ(this->run({}), ExporterResult<void>());
    EXPECT_EQ(this->uploads(), this->allNew());
}

TYPED_TEST_P(DriveExportPolicy, OfAnExportIsNotThatOfTheOneBesideIt) {
    this->put({"a.txt"});
    EXPECT_EQ(this->run({}), this->failed());
    const auto gate = std::make_shared<Gate>();
    this->one.data->onAsked = [gate](const std::string&) { gate->pass(); };
    const auto start = [this](Completed<ExporterResult<void>>& end, std::optional<ExportFilePolicy> policy) {
        this->one.policy = policy;
        this->one.start(end.template callback<typename TestFixture::Done>());
    };
    Completed<ExporterResult<void>> first, second, third;
    start(first, ExportFilePolicy::overrideExisting);
    start(second, ExportFilePolicy::keepBoth);
    start(third, ExportFilePolicy::overrideExisting);
    gate->open();
    EXPECT_TRUE(first.value() && second.value() && third.value());
    const auto all = this->uploads();
    EXPECT_EQ(all.at(1), "replaced a.txt");
    EXPECT_EQ(all.at(5), "new a.txt");
    EXPECT_EQ(all.at(9), "new a.txt");
}

TYPED_TEST_P(DriveExportPolicy, ReplacesNoFileThatTheSameExportHasPut) {
    this->one.attach("twin.txt");
    this->one.configuration.attachments.list.back().name = "a.txt";
    this->one.attach("Title.pdf");
    this->put({"Title.pdf", "a.txt"});
    EXPECT_EQ(this->run({}), this->failed());
    EXPECT_EQ(this->run(ExportFilePolicy::overrideExisting), ExporterResult<void>());
    EXPECT_EQ(this->uploads(), (std::vector<std::string>{"replaced Title.pdf", "replaced a.txt", "new b.txt",
                                                         "new c.txt", "new a.txt", "new Title.pdf"}));
}

TYPED_TEST_P(DriveExportPolicy, IsAskedForByTheNamesOfTheAttachmentsWhichHaveNoFolders) {
    this->one.configuration.attachments.list[0].name = "../x/a.txt";
    this->put({".._x_a.txt"});
    EXPECT_EQ(this->run({}), this->failed());
    EXPECT_EQ(this->run(ExportFilePolicy::overrideExisting), ExporterResult<void>());
    EXPECT_EQ(this->uploads().at(1), "replaced .._x_a.txt");
}

TYPED_TEST_P(DriveExportPolicy, IsTakenByAnExportOfTheTextAsWell) {
    this->one.configuration.selectedExportKind = IntegrationExportContentType::plainText;
    this->one.data->plainText = "B\u00f6dy";
    this->put({"Title.txt"});
    EXPECT_EQ(this->run({}), this->failed());
    EXPECT_EQ(this->run(ExportFilePolicy::overrideExisting), ExporterResult<void>());
    EXPECT_EQ(this->uploads().front(), "replaced Title.txt");
    EXPECT_EQ(this->one.exporter()->lastExportContentType(), IntegrationExportContentType::plainText);
    EXPECT_EQ(this->one.offered().selectedExportKind, IntegrationExportContentType::plainText);
}

REGISTER_TYPED_TEST_SUITE_P(DriveExportPolicy, IsNotNeededWhereNothingHasTheNames,
                            IsMissingWhereAnythingHasOneOfTheNamesAndNothingIsSent,
                            OverridesWhatTheCheckHasFoundWithoutAnotherCheck,
                            OverridesNoAttachmentWithoutACheckBeforeIt,
                            KeepsBothWithoutACheckAndForgetsWhatOneHasFound,
                            OverridesNoAttachmentByACheckOfAnotherFolder, OverridesByTheLastCheck,
                            ReplacesNothingThatAppearsBetweenTheCheckAndTheUpload,
                            OfAnExportIsNotThatOfTheOneBesideIt, ReplacesNoFileThatTheSameExportHasPut,
                            IsAskedForByTheNamesOfTheAttachmentsWhichHaveNoFolders,
                            IsTakenByAnExportOfTheTextAsWell);

} // namespace zelto
