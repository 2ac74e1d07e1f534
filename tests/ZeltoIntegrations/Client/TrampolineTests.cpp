#include <ZeltoIntegrations/Client/Trampoline.h>

#include <Support/Event.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

namespace zelto {

namespace {

// A loop of rounds, each of which asks for the next until there were enough.
class Rounds {
  public:
    explicit Rounds(int count) : count_(count) {}

    void run() {
        trampoline_.run([this] { round(); });
    }

    // How many rounds have begun.
    int begun() const { return begun_; }

    // The largest number of rounds that ran at a time.
    int deepest() const { return deepest_; }

  private:
    void round() {
        deepest_ = std::max(deepest_, ++depth_);
        if (++begun_ < count_) {
            run();
        }
        --depth_;
    }

    const int count_;
    Trampoline trampoline_;
    int begun_ = 0;
    int depth_ = 0;
    int deepest_ = 0;
};

} // namespace

TEST(Trampoline, RunsARoundAtOnce) {
    Rounds rounds(1);
    rounds.run();
    EXPECT_EQ(rounds.begun(), 1);
    rounds.run();
    EXPECT_EQ(rounds.begun(), 2) << "also after the first one has ended";
}

TEST(Trampoline, ARoundThatIsAskedForWithinARoundBeginsBehindIt) {
    Trampoline trampoline;
    std::vector<int> order;
    trampoline.run([&] {
        order.push_back(static_cast<int>(order.size()));
        if (order.size() == 1) {
            trampoline.run([] { FAIL() << "the first call runs all rounds"; });
            order.push_back(-1);
        }
    });
    EXPECT_EQ(order, (std::vector{0, -1, 2}));
}

TEST(Trampoline, AMillionRoundsDoNotDeepenTheStack) {
    constexpr int count = 1'000'000;
    Rounds rounds(count);
    rounds.run();
    EXPECT_EQ(rounds.begun(), count);
    EXPECT_EQ(rounds.deepest(), 1);
}

TEST(Trampoline, ARoundThatAnotherThreadAsksForWhileOneRunsIsLeftToThatOne) {
    Trampoline trampoline;
    Event isRunning;
    Event hasAsked;
    std::vector<std::thread::id> ranOn;
    const auto round = [&] {
        ranOn.push_back(std::this_thread::get_id());
        isRunning.set();
        hasAsked.wait();
    };
    std::thread other([&] { trampoline.run(round); });
    const auto otherID = other.get_id();
    isRunning.wait();
    trampoline.run([] { FAIL() << "the thread of the first round runs the second"; });
    hasAsked.set();
    other.join();
    EXPECT_EQ(ranOn, (std::vector{otherID, otherID}));
}

TEST(Trampoline, RoundsThatEndOnOtherThreadsFollowOneAnother) {
    constexpr int count = 200;
    Trampoline trampoline;
    std::atomic<int> running = 0;
    std::atomic<bool> overlapped = false;
    std::vector<std::thread> ends;
    Event isDone;
    const std::function<void()> round = [&] {
        if (++running > 1) {
            overlapped = true;
        }
        if (ends.size() == count) {
            isDone.set();
        } else {
            ends.emplace_back([&] { trampoline.run(round); });
        }
        --running;
    };
    trampoline.run(round);
    isDone.wait();
    for (auto& end : ends) {
        end.join();
    }
    EXPECT_FALSE(overlapped);
    EXPECT_EQ(ends.size(), std::size_t{count});
}

} // namespace zelto
