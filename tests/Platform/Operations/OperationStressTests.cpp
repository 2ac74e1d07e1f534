#include <Platform/Operations/OperationFixtures.h>

#include <array>
#include <random>

namespace zelto {
namespace {

// Several threads use the same operations and queues.
class Stress {
  public:
    explicit Stress(unsigned seed) : seed_(seed) {
        queues_[1].setMaxConcurrentOperationCount(1);
        queues_[2].setMaxConcurrentOperationCount(3);
    }

    void run() {
        std::vector<std::thread> threads;
        for (unsigned index = 0; index < 4; ++index) {
            threads.emplace_back([this, index] { act(index); });
        }
        for (auto& each : threads) {
            each.join();
        }
        for (auto& each : queues_) {
            each.setSuspended(false);
            each.setMaxConcurrentOperationCount(2);
        }
        for (auto& each : queues_) {
            each.waitUntilAllOperationsAreFinished();
        }
        ASSERT_TRUE(eventually([this] { return completed_ == made_; }));
        EXPECT_EQ(ran_ + ended_, made_);
        for (const auto& each : all_) {
            EXPECT_TRUE(each->isFinished());
            EXPECT_TRUE(each->dependencies().empty());
        }
    }

  private:
    static constexpr int steps = 2000;

    class Counted : public Operation {
      public:
        Counted(Stress& stress, bool isAsynchronous) : stress_(stress), isAsynchronous_(isAsynchronous) {}

        bool isAsynchronous() const noexcept override { return isAsynchronous_; }

        using Operation::finish;

      protected:
        void main() override {
            ++stress_.ran_;
            if (isAsynchronous_) {
                const auto self = std::static_pointer_cast<Counted>(shared_from_this());
                stress_.finishers_.addOperation([self] { self->finish(); });
            }
        }

        void endBeforeStart() override { ++stress_.ended_; }

      private:
        Stress& stress_;
        const bool isAsynchronous_;
    };

    // An operation made earlier never depends on a later one, so that there are no circles.
    void act(unsigned thread) {
        std::mt19937 random(seed_ * 97 + thread);
        for (int step = 0; step < steps; ++step) {
            const auto operation = std::make_shared<Counted>(*this, random() % 3 == 0);
            operation->setCompletionBlock([this] { ++completed_; });
            std::shared_ptr<Operation> older;
            std::shared_ptr<Operation> oldest;
            {
                const std::lock_guard lock(mutex_);
                ++made_;
                if (!all_.empty()) {
                    const auto place = random() % all_.size();
                    older = all_[place];
                    oldest = all_[random() % (place + 1)];
                }
                all_.push_back(operation);
            }
            if (older && random() % 2 == 0) {
                operation->addDependency(older);
            }
            auto& queue = queues_[random() % queues_.size()];
            queue.addOperation(operation);
            if (older) {
                disturb(random, *older, oldest, queue);
            }
        }
    }

    static void disturb(std::mt19937& random, Operation& older, const std::shared_ptr<Operation>& oldest,
                        OperationQueue& queue) {
        switch (random() % 12) {
        case 0:
        case 1:
            older.addDependency(oldest);
            break;
        case 2:
            older.removeDependency(oldest);
            break;
        case 3:
            older.cancel();
            break;
        case 4:
            queue.setSuspended(random() % 2 == 0);
            break;
        case 5:
            queue.setMaxConcurrentOperationCount(static_cast<int>(random() % 5) - 1);
            break;
        case 6:
            if (random() % 50 == 0) {
                queue.cancelAllOperations();
            }
            break;
        case 7:
            EXPECT_LE(queue.operations().size(), std::size_t{4 * steps});
            break;
        case 8:
            EXPECT_TRUE(!older.isFinished() || older.dependencies().empty());
            break;
        default:
            break;
        }
    }

    const unsigned seed_;
    std::mutex mutex_;
    std::vector<std::shared_ptr<Operation>> all_;
    std::atomic<int> made_ = 0;
    std::atomic<int> ran_ = 0;
    std::atomic<int> ended_ = 0;
    std::atomic<int> completed_ = 0;
    OperationQueue finishers_;
    std::array<OperationQueue, 4> queues_;
};

TEST(OperationStress, EveryOperationEndsOnceWhateverManyThreadsDo) {
    for (unsigned seed = 0; seed < 10; ++seed) {
        SCOPED_TRACE(seed);
        Stress(seed).run();
    }
}

// A target that gets one dependency after another while the earlier ones finish runs after all of them.
TEST(OperationStress, DependenciesThatFinishWhileTheyAreAddedAreAllWaitedFor) {
    for (int round = 0; round < 300; ++round) {
        OperationQueue queue;
        std::atomic<int> ran = 0;
        const auto target = makeBlock([&] { EXPECT_EQ(ran, 40); });
        const auto gate = std::make_shared<WaitingOperation>();
        target->addDependency(gate);
        queue.addOperations({gate, target}, false);
        std::thread other([&] {
            for (int index = 0; index < 20; ++index) {
                const auto each = makeBlock([&] { ++ran; });
                target->addDependency(each);
                queue.addOperation(each);
            }
        });
        for (int index = 0; index < 20; ++index) {
            const auto each = makeBlock([&] { ++ran; });
            queue.addOperation(each);
            target->addDependency(each);
        }
        other.join();
        ASSERT_TRUE(eventually([&] { return gate->isExecuting(); }));
        gate->finish();
        queue.waitUntilAllOperationsAreFinished();
        EXPECT_EQ(ran, 40);
    }
}

} // namespace
} // namespace zelto
