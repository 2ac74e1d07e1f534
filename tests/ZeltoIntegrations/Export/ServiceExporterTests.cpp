#include <ZeltoIntegrations/Export/ServiceExporter.h>

#include <Support/Completed.h>
#include <Support/Event.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>
#include <Support/LogCapture.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using VoidResult = ExporterResult<void>;

class StepExporter;

// A configuration whose export runs one step for each of its names.
struct StepConfiguration {
    using Exporter = StepExporter;

    IntegrationExportContentType saveAs = IntegrationExportContentType::pdf;
    std::string name = "offered";

    IntegrationExportContentType exportType() const { return saveAs; }

    Texts diff(const StepConfiguration& userConfig, bool) const {
        return userConfig.name == name ? Texts{} : Texts{"name"};
    }

    void storeLastExportInfo(StepExporter& exporter) const;
};

struct FakeClient final : CancellableServiceClient {
    std::atomic<int> cancellations = 0;
    std::function<void()> onRelease = [] {};

    ~FakeClient() { onRelease(); }

    void cancelAllOperations() override { ++cancellations; }
};

class StepExporter final : public ServiceExporter {
  public:
    using ServiceExporter::createResultMediator;
    using ServiceExporter::ServiceExporter;
    using ServiceExporter::update;
    using ServiceExporter::updateActiveClient;

    std::atomic<int> stepsRun = 0;
    std::function<void(int)> beforeStep = [](int) {};
    bool offersConfiguration = true;

    void loadConfiguration(Completion<StepConfiguration, IntegrationLoadError> completion) {
        if (offersConfiguration) {
            completion(StepConfiguration());
        } else {
            completion(failure(IntegrationLoadError::internalError));
        }
    }

    // `count` steps and a last one that reports.
    std::shared_ptr<ExportProgress> export_(StepConfiguration configuration, int count,
                                            Completion<void, IntegrationExportError> completion) {
        const auto finish = createResultMediator(configuration, std::move(completion));
        if (configuration.saveAs != IntegrationExportContentType::pdf) {
            return refuseFormat(0, finish);
        }
        const auto progress = std::make_shared<ExportProgress>(count);
        std::vector<std::shared_ptr<Operation>> steps;
        const auto self = std::static_pointer_cast<StepExporter>(shared_from_this());
        for (int i = 0; i < count; ++i) {
            steps.push_back(createAsyncTask<VoidResult>([self, i, progress, finish](auto done) {
                self->beforeStep(i);
                ++self->stepsRun;
                self->update(*progress, finish);
                done(VoidResult());
            }));
        }
        steps.push_back(createSyncTask([finish] { finish(VoidResult()); }));
        execute(steps);
        return progress;
    }
};

void StepConfiguration::storeLastExportInfo(StepExporter& exporter) const {
    exporter.setCachedValue(std::optional(name), "lastName");
}

// Its configuration's exporter is another class than the one that closes the export.
struct ForeignConfiguration : StepConfiguration {
    struct Exporter : ServiceExporter {};

    Texts diff(const ForeignConfiguration&, bool) const { return {}; }

    void storeLastExportInfo(Exporter&) const { ADD_FAILURE() << "nothing is to be stored"; }
};

class ServiceExporterTest : public testing::Test {
  protected:
    std::shared_ptr<FakeStorage> storage = std::make_shared<FakeStorage>();
    std::shared_ptr<FakePlatformInteractor> interactor = std::make_shared<FakePlatformInteractor>();
    std::shared_ptr<FakeDataInteractor> data = std::make_shared<FakeDataInteractor>();
    std::shared_ptr<StepExporter> exporter =
        std::make_shared<StepExporter>(ServiceAccountConfiguration(ServiceType::Asana, "alice", true),
                                       storage, interactor, data, "toolbar", true);
    Completed<VoidResult> completed;

    std::shared_ptr<ExportProgress> start(StepConfiguration configuration, int steps) {
        return exporter->export_(std::move(configuration), steps,
                                 completed.callback<Completion<void, IntegrationExportError>>());
    }
};

} // namespace

TEST_F(ServiceExporterTest, WithoutAnOverrideFetchServiceDataFailsAndLogsItsTextOnce) {
    const LogCapture log;
    std::optional<Result<void, IntegrationLoadError>> result;
    exporter->fetchServiceData([&](Result<void, IntegrationLoadError> given) { result = given; });
    EXPECT_EQ(result->error(), IntegrationLoadError::internalError);
    ASSERT_EQ(log.records().size(), 1u);
    EXPECT_EQ(log.records()[0].message, "fetchServiceData is not implemented");
    EXPECT_EQ(log.records()[0].function, "fetchServiceData(withCompletion:)");
    EXPECT_EQ(log.records()[0].level, LogLevel::error);
}

TEST_F(ServiceExporterTest, WithoutAnOverrideLoadUserEmailGivesNothingAndLogsItsText) {
    const LogCapture log;
    EXPECT_EQ(exporter->loadUserEmail(), std::nullopt);
    ASSERT_EQ(log.records().size(), 1u);
    EXPECT_EQ(log.records()[0].message, "loadUserEmail is not implemented");
    EXPECT_EQ(log.records()[0].function, "loadUserEmail()");
}

TEST_F(ServiceExporterTest, ASuccessfulExportPostsAnalyticsThenStoresThenCompletes) {
    const auto progress = start({.name = "mine"}, 2);
    EXPECT_TRUE(completed.value());
    EXPECT_EQ(progress->completedUnitCount(), 2);
    EXPECT_EQ(
        interactor->exportEvents(),
        (std::vector<ExportEvent>{
            {ServiceType::Asana, IntegrationExportContentType::pdf, {"name"}, "toolbar", std::nullopt}}));
    EXPECT_EQ(exporter->getCachedValue<std::string>("lastName"), "mine");
    EXPECT_EQ(storage->calls(), (Texts{"save Asana+alice"}));
}

TEST_F(ServiceExporterTest, AnalyticsComeBeforeTheSettingsAndBothBeforeTheCompletion) {
    Texts order;
    interactor->onExportEvent = [&] { order.push_back("analytics"); };
    storage->onChange = [&] { order.push_back("settings"); };
    const auto finish = exporter->createResultMediator<StepConfiguration, void>(
        {}, [this](auto offered) { exporter->loadConfiguration(std::move(offered)); },
        Completion<void, IntegrationExportError>([&](VoidResult) { order.push_back("completion"); }));
    finish(VoidResult());
    EXPECT_EQ(order, (Texts{"analytics", "settings", "completion"}));
}

TEST_F(ServiceExporterTest, StepsRunOneAfterTheOtherInTheirOrderOffTheCallersThread) {
    std::vector<int> order;
    const auto caller = std::this_thread::get_id();
    exporter->beforeStep = [&](int i) {
        EXPECT_NE(std::this_thread::get_id(), caller);
        order.push_back(i);
    };
    start({}, 5);
    EXPECT_TRUE(completed.value());
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST_F(ServiceExporterTest, ProgressAdvancesByOneStepAtATime) {
    std::vector<float> fractions;
    const auto handlerSet = std::make_shared<Event>();
    exporter->beforeStep = [handlerSet](int) { handlerSet->wait(); };
    const auto progress = start({}, 4);
    progress->setProgressHandler([&](float fraction) { fractions.push_back(fraction); });
    handlerSet->set();
    EXPECT_TRUE(completed.value());
    EXPECT_EQ(fractions, (std::vector<float>{0.25f, 0.5f, 0.75f, 1.0f}));
}

TEST_F(ServiceExporterTest, ACancelledProgressStopsTheStepsAndCompletesOnceWithCanceled) {
    const auto client = std::make_shared<FakeClient>();
    exporter->updateActiveClient(client);
    const auto cancelled = std::make_shared<Event>();
    exporter->beforeStep = [cancelled](int) { cancelled->wait(); };
    const auto progress = start({.name = "mine"}, 3);
    progress->cancel();
    cancelled->set();
    EXPECT_EQ(completed.value().error(), IntegrationExportError::canceled);
    EXPECT_EQ(exporter->stepsRun, 1);
    EXPECT_EQ(client->cancellations, 1);
    EXPECT_EQ(interactor->exportEvents(),
              (std::vector<ExportEvent>{
                  {ServiceType::Asana, IntegrationExportContentType::pdf, {"name"}, "toolbar", "canceled"}}));
    EXPECT_EQ(exporter->getCachedValue<std::string>("lastName"), "mine") << "a failed export stores too";
}

TEST_F(ServiceExporterTest, UpdateOfACancelledProgressIsFalseAlsoWithoutACompletion) {
    const auto progress = std::make_shared<ExportProgress>(2);
    EXPECT_TRUE(exporter->update<void>(*progress, nullptr));
    progress->cancel();
    EXPECT_FALSE(exporter->update<void>(*progress, nullptr));
    EXPECT_EQ(progress->completedUnitCount(), 2);
}

TEST_F(ServiceExporterTest, AProgressOfTotalZeroNeverCallsItsHandler) {
    const auto progress = start({.saveAs = IntegrationExportContentType::attachment}, 3);
    progress->setProgressHandler([](float) { ADD_FAILURE() << "there is nothing to count"; });
    EXPECT_EQ(completed.value().error(), IntegrationExportError::unsupportedFormat);
    progress->cancel();
    EXPECT_EQ(progress->totalUnitCount(), 0);
    EXPECT_EQ(progress->completedUnitCount(), 0);
}

TEST_F(ServiceExporterTest, AnUnsupportedFormatReturnsAProgressOfTotalZeroAtOnceAndStillPostsAnalytics) {
    const auto progress = start({.saveAs = IntegrationExportContentType::attachment}, 3);
    EXPECT_TRUE(completed.hasCome());
    EXPECT_EQ(completed.value().error(), IntegrationExportError::unsupportedFormat);
    EXPECT_EQ(progress->totalUnitCount(), 0);
    EXPECT_EQ(interactor->exportEvents().at(0).exportError, "unsupportedFormat");
    EXPECT_EQ(exporter->stepsRun, 0);
}

TEST_F(ServiceExporterTest, AConfigurationOfAnotherExporterGivesInternalErrorAndNothingElse) {
    const auto finish = exporter->createResultMediator<ForeignConfiguration, void>(
        {}, [](auto) { ADD_FAILURE() << "the original configuration is not asked for"; },
        completed.callback<Completion<void, IntegrationExportError>>());
    finish(VoidResult());
    EXPECT_EQ(completed.value().error(), IntegrationExportError::internalError);
    EXPECT_TRUE(interactor->exportEvents().empty());
    EXPECT_TRUE(storage->calls().empty());
}

TEST_F(ServiceExporterTest, AnExportIsToldOnceHoweverOftenItsStepsReport) {
    int completions = 0;
    const auto finish = exporter->createResultMediator<StepConfiguration, void>(
        {}, [this](auto offered) { exporter->loadConfiguration(std::move(offered)); },
        Completion<void, IntegrationExportError>([&](VoidResult result) {
            ++completions;
            EXPECT_EQ(result.error(), IntegrationExportError::connectionError);
        }));
    finish(failure(IntegrationExportError::connectionError));
    finish(VoidResult());
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(interactor->exportEvents().size(), 1u);
}

TEST_F(ServiceExporterTest, WithoutAnOfferedConfigurationNothingCountsAsChanged) {
    exporter->offersConfiguration = false;
    start({.name = "mine"}, 1);
    EXPECT_TRUE(completed.value());
    EXPECT_EQ(interactor->exportEvents().at(0).modifiedFields, Texts{});
}

TEST_F(ServiceExporterTest, AnExportKeepsItsExporterAliveUntilItHasCompleted) {
    const auto released = std::make_shared<Event>();
    exporter->beforeStep = [released](int) { released->wait(); };
    const std::weak_ptr<StepExporter> weakly = exporter;
    start({}, 2);
    exporter.reset();
    EXPECT_FALSE(weakly.expired());
    released->set();
    EXPECT_TRUE(completed.value());
    // The queue drops its last step on a thread of its own.
    EXPECT_TRUE(isGone(weakly));
}

TEST_F(ServiceExporterTest, AClientThatIsReplacedMayAskTheExporterAsItGoes) {
    auto client = std::make_shared<FakeClient>();
    std::string asked;
    client->onRelease = [&] { asked = exporter->accountConfiguration().identifier(); };
    exporter->updateActiveClient(std::move(client));
    exporter->updateActiveClient(std::make_shared<FakeClient>());
    EXPECT_EQ(asked, "Asana+alice");
}

TEST_F(ServiceExporterTest, SettingACachedValueEndsInOneSaveOfTheWholeAccount) {
    exporter->setCachedValue(std::optional(7), "count");
    EXPECT_EQ(storage->calls(), (Texts{"save Asana+alice"}));
    EXPECT_EQ(storage->load("Asana+alice")->additionalInfo,
              (std::map<std::string, std::string>{{"cached_count", "7"}}));
}

TEST_F(ServiceExporterTest, ARefreshedTokenLandsInItsCopyOfTheAccount) {
    exporter->modifyAccountConfiguration([](ServiceAccountConfiguration& account) {
        account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
        account.credentials->accessToken = "refreshed";
    });
    EXPECT_TRUE(storage->calls().empty());
    EXPECT_EQ(exporter->accountConfiguration().credentials->accessToken, "refreshed");
    exporter->saveConfiguration();
    EXPECT_EQ(storage->load("Asana+alice")->credentials->accessToken, "refreshed");
}

TEST_F(ServiceExporterTest, AValueThatIsSetWhileAnotherIsSavedIsNotLost) {
    bool isFirst = true;
    storage->onChange = [&] {
        if (std::exchange(isFirst, false)) {
            std::thread([&] { exporter->setCachedValue(std::optional(2), "second"); }).join();
        }
    };
    exporter->setCachedValue(std::optional(1), "first");
    EXPECT_EQ(storage->load("Asana+alice")->additionalInfo,
              (std::map<std::string, std::string>{{"cached_first", "1"}, {"cached_second", "2"}}));
}

TEST_F(ServiceExporterTest, TheLastContentTypeRestsInTheAccountAsItsNumber) {
    EXPECT_EQ(exporter->lastExportContentType(), std::nullopt);
    exporter->setLastExportContentType(IntegrationExportContentType::emailWeblink);
    EXPECT_EQ(exporter->lastExportContentType(), IntegrationExportContentType::emailWeblink);
    EXPECT_EQ(storage->load("Asana+alice")->additionalInfo.at("cached_lastExportContentType"), "9");
}

TEST_F(ServiceExporterTest, TheTargetIsThatOfTheDataInteractor) {
    EXPECT_EQ(exporter->exportTarget(), IntegrationExportTarget::email);
    data->target = IntegrationExportTarget::meetingNote;
    EXPECT_EQ(exporter->exportTarget(), IntegrationExportTarget::meetingNote);
}

} // namespace zelto
