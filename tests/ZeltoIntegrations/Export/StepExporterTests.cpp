#include <ZeltoIntegrations/Export/StepExporter.h>

#include <Support/Completed.h>
#include <Support/Event.h>
#include <Support/Eventually.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>
#include <Support/HostMistakes.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace zelto {

namespace {

using Error = IntegrationExportError;
using Done = Completion<int, Error>;
using VoidResult = ExporterResult<void>;
using Loaded = Result<int, IntegrationLoadError>;

struct FakeClient final : CancellableServiceClient {
    std::atomic<int> cancellations = 0;

    void cancelAllOperations() override { ++cancellations; }
};

// Runs numbered steps, each of which does what the test says.
class NumberedSteps final : public StepExporter {
  public:
    using StepExporter::StepExporter;
    using Work = std::function<void(StepRun&, Done)>;

    std::map<int, Work> work; // steps without one succeed with their number

    std::vector<int> called() const {
        const std::lock_guard guard(lock_);
        return called_;
    }

    std::shared_ptr<ExportProgress> run(int count, FailureRule rule, std::size_t unitCount,
                                        std::function<void(VoidResult)> finish, bool endsAsSecond = false) {
        auto steps = exportSteps(rule, unitCount, std::move(finish));
        for (int number = 1; number <= count; ++number) {
            steps.add<int>(&NumberedSteps::step, number);
            if (endsAsSecond && number == 2) {
                steps.endAsLast();
            }
        }
        return steps.execute();
    }

    void loadNumber(Completion<int, IntegrationLoadError> completion,
                    std::function<void(Completion<int, IntegrationLoadError>)> loading) {
        load(std::move(completion), &NumberedSteps::loadStep, std::move(loading));
    }

  private:
    void step(StepRun& run, int number, Done done) {
        {
            const std::lock_guard guard(lock_);
            called_.push_back(number);
        }
        if (const auto found = work.find(number); found != work.end()) {
            return found->second(run, std::move(done));
        }
        done(number);
    }

    void loadStep(StepRun&, const std::function<void(Completion<int, IntegrationLoadError>)>& loading,
                  Completion<int, IntegrationLoadError> done) {
        loading(std::move(done));
    }

    mutable std::mutex lock_;
    std::vector<int> called_;
};

class StepExporterTest : public testing::Test {
  protected:
    std::shared_ptr<NumberedSteps> exporter = std::make_shared<NumberedSteps>(
        ServiceAccountConfiguration(ServiceType::Asana, "alice", true), std::make_shared<FakeStorage>(),
        std::make_shared<FakePlatformInteractor>(), std::make_shared<FakeDataInteractor>(), "test", true);
    Completed<VoidResult> completed;
    std::atomic<int> completions = 0;

    std::function<void(VoidResult)> finish() {
        auto callback = std::make_shared<Callback<VoidResult>>(completed.callback<Callback<VoidResult>>());
        return [this, callback](VoidResult result) {
            ++completions;
            (*callback)(result);
        };
    }

    VoidResult run(int count, FailureRule rule, bool endsAsSecond = false) {
        exporter->run(count, rule, static_cast<std::size_t>(count), finish(), endsAsSecond);
        return completed.value();
    }

    void fail(int number, Error error) {
        exporter->work[number] = [error](StepRun&, Done done) { done(failure(error)); };
    }
};

} // namespace

TEST_F(StepExporterTest, AllStepsRunAndTheFirstFailureInTheirOrderIsTheResult) {
    fail(2, Error::convertError);
    fail(3, Error::createTaskError);
    EXPECT_EQ(run(4, FailureRule::goOn).error(), Error::convertError);
    EXPECT_EQ(exporter->called(), (std::vector{1, 2, 3, 4}));
}

TEST_F(StepExporterTest, TheStepsBehindAFailureEndWithItUncalled) {
    fail(2, Error::convertError);
    fail(3, Error::createTaskError);
    EXPECT_EQ(run(4, FailureRule::stop).error(), Error::convertError);
    EXPECT_EQ(exporter->called(), (std::vector{1, 2}));
}

TEST_F(StepExporterTest, ARunMayEndAsOneOfItsStepsWhateverTheOthersComeTo) {
    fail(1, Error::convertError);
    fail(3, Error::createTaskError);
    EXPECT_TRUE(run(3, FailureRule::goOn, true));
    EXPECT_EQ(exporter->called(), (std::vector{1, 2, 3}));
}

TEST_F(StepExporterTest, ARunThatEndsAsAStepFailsWithItsFailure) {
    fail(1, Error::convertError);
    fail(2, Error::createTaskError);
    EXPECT_EQ(run(2, FailureRule::goOn, true).error(), Error::createTaskError);
}

TEST_F(StepExporterTest, ASuccessCompletesTheProgressAlsoWhereThereAreMoreUnitsThanSteps) {
    const auto progress = exporter->run(2, FailureRule::stop, 5, finish());
    EXPECT_TRUE(completed.value());
    EXPECT_EQ(progress->completedUnitCount(), 5);
}

TEST_F(StepExporterTest, AFailureLeavesTheProgressWhereItIs) {
    fail(2, Error::convertError);
    const auto progress = exporter->run(3, FailureRule::stop, 5, finish());
    EXPECT_FALSE(completed.value());
    EXPECT_EQ(progress->completedUnitCount(), 1);
}

TEST_F(StepExporterTest, AStepThatDropsItsCallbackFailsWithInternalError) {
    const DroppedCallbacks dropped;
    exporter->work[2] = [](StepRun&, Done done) { const auto letGo = std::move(done); };
    EXPECT_EQ(run(3, FailureRule::stop).error(), Error::internalError);
    EXPECT_EQ(exporter->called(), (std::vector{1, 2}));
    EXPECT_EQ(dropped.count(), 1);
}

TEST_F(StepExporterTest, AStepThatThrowsFailsWithInternalErrorAndTheOthersGoOn) {
    const DroppedCallbacks dropped;
    const ContainedExceptions contained;
    exporter->work[1] = [](StepRun&, const Done&) { throw std::runtime_error("a step threw"); };
    EXPECT_EQ(run(2, FailureRule::goOn).error(), Error::internalError);
    EXPECT_EQ(exporter->called(), (std::vector{1, 2}));
    EXPECT_TRUE(contained.haveCome(1));
}

TEST_F(StepExporterTest, CancellingEndsTheRunOnceWithoutWaitingForTheStepThatRuns) {
    Done kept;
    Event isCalled;
    exporter->work[1] = [&](StepRun&, Done done) {
        kept = std::move(done);
        isCalled.set();
    };
    const auto progress = exporter->run(2, FailureRule::goOn, 2, finish());
    isCalled.wait();
    progress->cancel();
    progress->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    kept(1);
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(exporter->called(), std::vector{1});
    EXPECT_EQ(progress->completedUnitCount(), 0);
}

TEST_F(StepExporterTest, AStepThatFailsAfterCancellingWasCancelled) {
    std::shared_ptr<ExportProgress> progress;
    Event isStarted;
    exporter->work[1] = [&](StepRun&, Done done) {
        isStarted.wait();
        progress->cancel();
        done(failure(Error::convertError));
    };
    progress = exporter->run(1, FailureRule::goOn, 1, finish());
    isStarted.set();
    EXPECT_EQ(completed.value().error(), Error::canceled);
}

TEST_F(StepExporterTest, CancellingEndsTheRequestsOfTheRunAndLetsNoMoreBeMade) {
    const auto client = std::make_shared<FakeClient>();
    Event hasClient;
    Event isCancelled;
    Event hasAskedAgain;
    std::shared_ptr<FakeClient> later = client;
    exporter->work[1] = [&](StepRun& run, Done done) {
        EXPECT_EQ(run.client<FakeClient>([&] { return client; }), client);
        hasClient.set();
        isCancelled.wait();
        later = run.client<FakeClient>([&] { return client; });
        hasAskedAgain.set();
        done(1);
    };
    const auto progress = exporter->run(1, FailureRule::goOn, 1, finish());
    hasClient.wait();
    progress->cancel();
    EXPECT_EQ(client->cancellations, 1);
    EXPECT_EQ(completed.value().error(), Error::canceled);
    isCancelled.set();
    hasAskedAgain.wait();
    EXPECT_EQ(later, nullptr);
}

TEST_F(StepExporterTest, ARunHasOneClient) {
    int made = 0;
    const auto make = [&] {
        ++made;
        return std::make_shared<FakeClient>();
    };
    for (const int number : {1, 2}) {
        exporter->work[number] = [&, number](StepRun& run, Done done) {
            EXPECT_TRUE(run.client<FakeClient>(make));
            done(number);
        };
    }
    EXPECT_TRUE(run(2, FailureRule::goOn));
    EXPECT_EQ(made, 1);
}

TEST_F(StepExporterTest, CancellingARunLeavesTheOneThatWaitsBehindItAlone) {
    Event isReleased;
    exporter->work[1] = [&](StepRun&, Done done) {
        isReleased.wait();
        done(1);
    };
    Completed<VoidResult> second;
    auto callback = std::make_shared<Callback<VoidResult>>(second.callback<Callback<VoidResult>>());
    const auto first = exporter->run(1, FailureRule::goOn, 1, finish());
    exporter->run(2, FailureRule::goOn, 2, [callback](VoidResult result) { (*callback)(result); });
    first->cancel();
    EXPECT_EQ(completed.value().error(), Error::canceled);
    isReleased.set();
    EXPECT_TRUE(second.value());
}

TEST_F(StepExporterTest, ARunIsReleasedWithItsExporterWhenItHasEnded) {
    const std::weak_ptr weakly = exporter;
    EXPECT_TRUE(run(3, FailureRule::goOn));
    exporter.reset();
    EXPECT_TRUE(isGone(weakly));
}

namespace {

// Steps of an owner whose queue lets four run at a time.
struct SideBySide : std::enable_shared_from_this<SideBySide> {
    using Run = TypedRun<Error>;

    // Each of three steps waits until all have begun; the second one fails.
    void step(StepRun& run, int number, Done done) {
        clients[static_cast<std::size_t>(number)] =
            run.client<FakeClient>([] { return std::make_shared<FakeClient>(); });
        if (++begun == 3) {
            allBegan.set();
        }
        allBegan.wait();
        done(number == 1 ? ExporterResult<int>(failure(Error::convertError)) : number);
    }

    void start(std::function<void(VoidResult)> finish) {
        auto progress = std::make_shared<ExportProgress>(3);
        auto run = std::make_shared<Run>(progress, std::make_shared<ExportReportLog>(), FailureRule::stop,
                                         std::move(finish));
        Steps<SideBySide, Error> steps(shared_from_this(), tasks, std::move(run), progress);
        for (const int number : {0, 1, 2}) {
            steps.add<int>(&SideBySide::step, number);
        }
        counted = steps.execute();
    }

    TaskRunner tasks{4};
    std::atomic<int> begun = 0;
    Event allBegan;
    std::array<std::shared_ptr<FakeClient>, 3> clients;
    std::shared_ptr<ExportProgress> counted;
};

} // namespace

TEST_F(StepExporterTest, OnAQueueOfSeveralTheRunEndsWhenAllHaveEndedAndHasOneClient) {
    const auto owner = std::make_shared<SideBySide>();
    owner->start(finish());
    EXPECT_EQ(completed.value().error(), Error::convertError);
    EXPECT_EQ(owner->begun, 3);
    EXPECT_EQ(owner->counted->completedUnitCount(), 2);
    EXPECT_TRUE(owner->clients[0] && owner->clients[0] == owner->clients[1] &&
                owner->clients[1] == owner->clients[2]);
}

TEST_F(StepExporterTest, LoadingGivesItsValue) {
    Completed<Loaded> loaded;
    exporter->loadNumber(loaded.callback<Callback<Loaded>>(), [](auto done) { done(7); });
    EXPECT_EQ(loaded.value().value(), 7);
}

TEST_F(StepExporterTest, LoadingFailsWithItsError) {
    Completed<Loaded> loaded;
    exporter->loadNumber(loaded.callback<Callback<Loaded>>(),
                         [](auto done) { done(failure(IntegrationLoadError::oauthError)); });
    EXPECT_EQ(loaded.value().error(), IntegrationLoadError::oauthError);
}

TEST_F(StepExporterTest, LoadingThatDropsItsCallbackFailsWithInternalErrorAndKeepsNothing) {
    const DroppedCallbacks dropped;
    const std::weak_ptr weakly = exporter;
    Completed<Loaded> loaded;
    exporter->loadNumber(loaded.callback<Callback<Loaded>>(),
                         [](auto done) { const auto letGo = std::move(done); });
    EXPECT_EQ(loaded.value().error(), IntegrationLoadError::internalError);
    exporter.reset();
    EXPECT_TRUE(isGone(weakly));
}

} // namespace zelto
