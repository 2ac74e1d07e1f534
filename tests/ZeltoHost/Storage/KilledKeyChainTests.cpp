#include <ZeltoHost/Storage/RestorableKeyChain.h>

#include <Support/TemporaryFolder.h>
#include <Support/TracedProcess.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include <sys/mman.h>

namespace zelto {

namespace {

using Path = std::filesystem::path;

const std::string key = "ServiceCredentials - Asana+me";
const std::string keptKey = "Wiped " + key;
const Data tokens = dataOf(R"({"accessToken":"access-1","refreshToken":"refresh-1"})");
const Data newerTokens = dataOf(R"({"accessToken":"access-2","refreshToken":"refresh-2"})");
const Data noTokens = dataOf(R"({"loginName":"me"})");

// What the key chain has after a step.
struct State {
    std::optional<Data> record;
    std::optional<Data> tokens; // of the record, or else those that can be restored
};

struct Step {
    bool (*take)(RestorableKeyChain& keyChain);
    State after;
};

bool wipe(RestorableKeyChain& keyChain) {
    return keyChain.write(key, noTokens).has_value();
}

const std::array<Step, 7> steps{{
    {[](auto& keyChain) { return keyChain.write(key, tokens).has_value(); }, {tokens, tokens}},
    {wipe, {noTokens, tokens}},
    {[](auto& keyChain) { return keyChain.restore(key).has_value(); }, {tokens, tokens}},
    {wipe, {noTokens, tokens}},
    {[](auto& keyChain) { return keyChain.write(key, newerTokens).has_value(); }, {newerTokens, newerTokens}},
    {wipe, {noTokens, newerTokens}},
    {[](auto& keyChain) { return keyChain.erase(key).has_value(); }, {std::nullopt, std::nullopt}},
}};

State stateAfter(std::size_t stepsDone) {
    return stepsDone == 0 ? State() : steps[std::min(stepsDone, steps.size()) - 1].after;
}

// Counts in memory that a forked process shares.
class SharedCount {
  public:
    SharedCount()
        : count_(static_cast<std::size_t*>(::mmap(nullptr, sizeof(std::size_t), PROT_READ | PROT_WRITE,
                                                  MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
        if (count_ == MAP_FAILED) {
            throw std::runtime_error("no shared memory");
        }
    }

    SharedCount(const SharedCount&) = delete;
    SharedCount& operator=(const SharedCount&) = delete;

    ~SharedCount() { ::munmap(count_, sizeof(std::size_t)); }

    std::size_t& operator*() const { return *count_; }

  private:
    std::size_t* count_;
};

std::shared_ptr<LVXKeyChainStore> storeIn(const Path& folder) {
    return std::make_shared<FileKeyChainStore>(folder / "keychain");
}

int takeSteps(const Path& folder, const SharedCount& done) {
    RestorableKeyChain keyChain(storeIn(folder), "file", folder);
    const auto isTaken = [&](const Step& step) {
        const bool isDone = step.take(keyChain);
        *done += isDone ? 1U : 0U;
        return isDone;
    };
    return std::ranges::all_of(steps, isTaken) ? 0 : 1;
}

// Kills the steps at their n-th call that changes files; false if they ended by themselves before.
bool killedAtCall(const Path& folder, const SharedCount& done, int calls) {
    int seen = 0;
    const auto result = runTraced([&] { return takeSteps(folder, done); },
                                  [&](const TracedCall& call) {
                                      return call.changesFiles() && ++seen == calls ? TracedDecision::kill()
                                                                                    : TracedDecision::goOn();
                                  });
    EXPECT_EQ(result.value_or(0), 0);
    return !result;
}

std::optional<Data> recordIn(const Path& folder, const std::string& ofKey) {
    return storeIn(folder)->read(ofKey).value();
}

// As the user gets them back; in a copy, since restoring changes the key chain.
std::optional<Data> availableTokens(const Path& folder) {
    const TemporaryFolder place;
    std::filesystem::copy(folder, place / "copy", std::filesystem::copy_options::recursive);
    RestorableKeyChain keyChain(storeIn(place / "copy"), "file", place / "copy");
    (void)keyChain.restore(key);
    const auto record = keyChain.read(key).value();
    return record == noTokens ? std::nullopt : record;
}

// Nothing that was kept stays for longer than it may.
void expectNothingKeptIsForgotten(const Path& folder, ClockOverride& clock) {
    clock.advance(RestorableKeyChain::keptFor + TimeInterval(1));
    RestorableKeyChain::eraseOld(folder, [&](const std::string&) { return storeIn(folder); });
    EXPECT_EQ(recordIn(folder, keptKey), std::nullopt);
    if (std::filesystem::exists(folder / "wiped")) {
        for (const auto& entry : std::filesystem::directory_iterator(folder / "wiped")) {
            EXPECT_NE(entry.path().extension(), ".wipe") << entry.path();
        }
    }
}

} // namespace

TEST(KilledKeyChain, AtWhicheverChangingCallNoTokensAreLostNorKeptForEver) {
    int calls = 1;
    for (bool killed = true; killed && !testing::Test::HasFailure(); ++calls) {
        SCOPED_TRACE("system call " + std::to_string(calls));
        ClockOverride clock(Date::fromReferenceSeconds(800'000'000));
        const TemporaryFolder folder;
        const SharedCount done;
        killed = killedAtCall(folder.path(), done, calls);
        EXPECT_TRUE(killed || *done == steps.size());
        const auto before = stateAfter(*done);
        const auto after = stateAfter(*done + 1);
        const auto record = recordIn(folder.path(), key);
        EXPECT_TRUE(record == before.record || record == after.record) << *done << " steps done";
        const auto available = availableTokens(folder.path());
        EXPECT_TRUE(available == before.tokens || available == after.tokens) << *done << " steps done";
        expectNothingKeptIsForgotten(folder.path(), clock);
    }
    RecordProperty("calls", calls);
    EXPECT_GT(calls, 50) << "fewer system calls than a key chain can do with: was it traced?";
}

} // namespace zelto
