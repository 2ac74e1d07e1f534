#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationQueue.h>

#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

// The cost of an operation, compared with an Asio thread pool that does the same. Each figure is the best of
// several rounds and includes creating what is run.

namespace {

using zelto::BlockOperation;
using zelto::Operation;
using zelto::OperationQueue;

constexpr int rounds = 5;
constexpr std::size_t emptyCount = 1'000'000;
constexpr std::size_t chainCount = 100'000;

template <class F> double bestNanoseconds(std::size_t count, F&& work) {
    double best = 1e30;
    for (int round = 0; round < rounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count() / static_cast<double>(count));
    }
    return best;
}

void print(const char* name, double queue, double pool) {
    std::printf("%-44s %8.0f ns   bare pool %8.0f ns   rate %.2f of the pool's\n", name, queue, pool,
                pool / queue);
    std::fflush(stdout);
}

double emptyOperations() {
    return bestNanoseconds(emptyCount, [] {
        OperationQueue queue;
        for (std::size_t index = 0; index < emptyCount; ++index) {
            queue.addOperation(std::make_shared<BlockOperation>([] {}));
        }
        queue.waitUntilAllOperationsAreFinished();
    });
}

double emptyPosts(std::size_t threads) {
    return bestNanoseconds(emptyCount, [threads] {
        boost::asio::thread_pool pool(threads);
        for (std::size_t index = 0; index < emptyCount; ++index) {
            boost::asio::post(pool, [] {});
        }
        pool.join();
    });
}

double operationChain() {
    return bestNanoseconds(chainCount, [] {
        OperationQueue queue;
        std::shared_ptr<Operation> before;
        for (std::size_t index = 0; index < chainCount; ++index) {
            auto operation = std::make_shared<BlockOperation>([] {});
            if (before) {
                operation->addDependency(before);
            }
            queue.addOperation(operation);
            before = std::move(operation);
        }
        queue.waitUntilAllOperationsAreFinished();
    });
}

// The same chain, added while the queue is suspended: the time from resuming it to its end.
double laidOperationChain() {
    double best = 1e30;
    for (int round = 0; round < rounds; ++round) {
        OperationQueue queue;
        queue.setSuspended(true);
        std::shared_ptr<Operation> before;
        for (std::size_t index = 0; index < chainCount; ++index) {
            auto operation = std::make_shared<BlockOperation>([] {});
            if (before) {
                operation->addDependency(before);
            }
            queue.addOperation(operation);
            before = std::move(operation);
        }
        const auto start = std::chrono::steady_clock::now();
        queue.setSuspended(false);
        queue.waitUntilAllOperationsAreFinished();
        const std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count() / static_cast<double>(chainCount));
    }
    return best;
}

double postChain(std::size_t threads) {
    return bestNanoseconds(chainCount, [threads] {
        boost::asio::thread_pool pool(threads);
        std::size_t left = chainCount;
        std::function<void()> next = [&] {
            if (--left != 0) {
                boost::asio::post(pool, next);
            }
        };
        boost::asio::post(pool, next);
        pool.join();
    });
}

double serialQueue() {
    return bestNanoseconds(emptyCount, [] {
        OperationQueue queue;
        queue.setMaxConcurrentOperationCount(1);
        for (std::size_t index = 0; index < emptyCount; ++index) {
            queue.addOperation(std::make_shared<BlockOperation>([] {}));
        }
        queue.waitUntilAllOperationsAreFinished();
    });
}

} // namespace

int main() {
    const std::size_t threads = std::max(4U, std::thread::hardware_concurrency());
    const double posts = emptyPosts(threads);
    const double chained = postChain(threads);
    print("1,000,000 empty operations, no limit", emptyOperations(), posts);
    print("1,000,000 empty operations, one at a time", serialQueue(), posts);
    print("100,000 in a chain, laid and run", operationChain(), chained);
    print("100,000 in a chain, run only", laidOperationChain(), chained);
}
