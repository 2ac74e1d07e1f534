#include <ZeltoIntegrations/Export/AccountDataExporter.h>

#include <Support/Completed.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

struct PersonAndBoards {
    std::string person;
    std::vector<std::string> boards;

    bool operator==(const PersonAndBoards&) const = default;
};

using Boards = std::vector<std::string>;
using Loaded = Result<std::optional<PersonAndBoards>, IntegrationLoadError>;
using Fetched = Result<void, IntegrationLoadError>;

// The service has "me" and what the test says.
class PersonExporter final : public AccountDataExporter<PersonAndBoards, StepExporter> {
  public:
    using AccountDataExporter::AccountDataExporter;

    CachedValue<std::string> person{*this, "person"};
    CachedValue<Boards> boards{*this, "boards"};

    Result<Boards, IntegrationLoadError> boardsOfService = Boards{"Work"};
    int fetches = 0;
    bool loadsMissing = false;

  private:
    bool loadsWhatIsMissing() const override { return loadsMissing; }

    std::optional<PersonAndBoards> loadedData() const override { return dataOf(person(), boards()); }

    void fetchData(StepRun&, DataCompletion done) override {
        ++fetches;
        person.set("me");
        if (!boardsOfService) {
            return done(failure(boardsOfService.error()));
        }
        boards.set(*boardsOfService);
        done(loadedData());
    }
};

class AccountDataExporterTest : public testing::Test {
  protected:
    Loaded load(bool force) const {
        Completed<Loaded> completed;
        exporter->loadData(force, completed.callback<Callback<Loaded>>());
        return completed.value();
    }

    Fetched fetch() const {
        Completed<Fetched> completed;
        exporter->fetchServiceData(completed.callback<Callback<Fetched>>());
        return completed.value();
    }

    const std::shared_ptr<FakeStorage> storage = std::make_shared<FakeStorage>();
    const std::shared_ptr<PersonExporter> exporter = std::make_shared<PersonExporter>(
        ServiceAccountConfiguration(ServiceType::Trello, "me@example.org", true), storage,
        std::make_shared<FakePlatformInteractor>(), std::make_shared<FakeDataInteractor>(), std::nullopt,
        true);
};

} // namespace

TEST_F(AccountDataExporterTest, GivesWhatIsKeptWithoutAskingTheService) {
    exporter->person.set("you");
    exporter->boards.set(Boards{"Home"});
    EXPECT_EQ(load(false), (Loaded(PersonAndBoards{"you", {"Home"}})));
    EXPECT_EQ(exporter->fetches, 0);
}

TEST_F(AccountDataExporterTest, HasNoDataWhereAPartWasNeverLoaded) {
    EXPECT_EQ(load(false), Loaded(std::nullopt));
    exporter->person.set("you");
    EXPECT_EQ(load(false), Loaded(std::nullopt));
    EXPECT_EQ(exporter->fetches, 0);
}

TEST_F(AccountDataExporterTest, LoadsByForceAndKeepsItInTheAccount) {
    EXPECT_EQ(load(true), (Loaded(PersonAndBoards{"me", {"Work"}})));
    EXPECT_EQ(load(false), (Loaded(PersonAndBoards{"me", {"Work"}})));
    EXPECT_EQ(exporter->fetches, 1);
    EXPECT_EQ(storage->calls(), std::vector<std::string>(2, "save Trello+me@example.org"));
}

TEST_F(AccountDataExporterTest, TellsWhyLoadingFailed) {
    exporter->boardsOfService = failure(IntegrationLoadError::connectionError);
    EXPECT_EQ(load(true), Loaded(failure(IntegrationLoadError::connectionError)));
    EXPECT_EQ(fetch(), Fetched(failure(IntegrationLoadError::connectionError)));
}

TEST_F(AccountDataExporterTest, FetchesFromTheServiceWhateverIsKept) {
    exporter->person.set("you");
    exporter->boards.set(Boards{"Home"});
    EXPECT_TRUE(fetch());
    EXPECT_EQ(exporter->fetches, 1);
    EXPECT_EQ(exporter->boards(), Boards{"Work"});
}

TEST_F(AccountDataExporterTest, LoadsWhatIsMissingWithoutForceWhereTheServiceWantsThat) {
    exporter->loadsMissing = true;
    exporter->boardsOfService = failure(IntegrationLoadError::connectionError);
    EXPECT_EQ(load(false), Loaded(failure(IntegrationLoadError::connectionError)));
    exporter->boardsOfService = Boards{"Work"};
    EXPECT_EQ(load(false), (Loaded(PersonAndBoards{"me", {"Work"}})));
    EXPECT_EQ(exporter->fetches, 2);
    EXPECT_EQ(load(false), (Loaded(PersonAndBoards{"me", {"Work"}})));
    EXPECT_EQ(exporter->fetches, 2);
}

} // namespace zelto
