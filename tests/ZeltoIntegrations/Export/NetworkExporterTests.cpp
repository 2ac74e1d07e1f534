#include <ZeltoIntegrations/Export/NetworkExporter.h>

#include <Support/Eventually.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>
#include <Support/HostMistakes.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

class LoadingExporter final : public NetworkExporter {
  public:
    using Loaded = Result<int, IntegrationLoadError>;
    using NetworkExporter::executeLoading;
    using NetworkExporter::NetworkExporter;
};

std::shared_ptr<LoadingExporter> makeExporter() {
    return std::make_shared<LoadingExporter>(
        ServiceAccountConfiguration(ServiceType::Trello, "alice", true), std::make_shared<FakeStorage>(),
        std::make_shared<FakePlatformInteractor>(), std::make_shared<FakeDataInteractor>(), "test", true);
}

} // namespace

TEST(NetworkExporter, LoadingThatDropsItsCallbackUncalledKeepsNothing) {
    const DroppedCallbacks dropped;
    auto exporter = makeExporter();
    const std::weak_ptr<LoadingExporter> weakly = exporter;
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> heldByCompletion = held;
    exporter->executeLoading<int>(
        [](Completion<int, IntegrationLoadError> done) { const auto letGo = std::move(done); },
        [held = std::move(held)](const LoadingExporter::Loaded&) { ADD_FAILURE() << "nothing was loaded"; });
    exporter.reset();
    EXPECT_TRUE(eventually([&] { return weakly.expired() && heldByCompletion.expired(); }));
}

} // namespace zelto
