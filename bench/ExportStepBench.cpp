#include <ZeltoIntegrations/Agenda/AgendaExporter.h>

#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>

// The cost of a step: exports to an application, of three steps each, with a host that does nothing. One
// after the other, each with an exporter of its own, as a mail client makes them. CPU is that of all threads;
// the best of several rounds.

namespace zelto {

namespace {

constexpr int exportsInARound = 2'000;
constexpr int rounds = 9;
constexpr int stepsOfAnExport = 3;

double cpuMicroseconds() {
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto of = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
    };
    return of(usage.ru_utime) + of(usage.ru_stime);
}

void exportOnce() {
    const auto exporter = std::make_shared<AgendaExporter>(
        ServiceAccountConfiguration(ServiceType::Agenda, std::nullopt, true), std::make_shared<FakeStorage>(),
        std::make_shared<FakePlatformInteractor>(), std::make_shared<FakeDataInteractor>(), "bench", true);
    AgendaConfiguration configuration;
    configuration.userTitle = "Title";
    std::promise<bool> ended;
    exporter->export_(std::move(configuration),
                      [&](const ExporterResult<void>& result) { ended.set_value(result.has_value()); });
    if (!ended.get_future().get()) {
        std::fputs("an export failed\n", stderr);
        std::exit(1);
    }
}

} // namespace

} // namespace zelto

int main() {
    using namespace zelto;
    double best = 1e9;
    double bestTime = 1e9;
    for (int round = 0; round < rounds; ++round) {
        const auto started = std::chrono::steady_clock::now();
        const auto before = cpuMicroseconds();
        for (int count = 0; count < exportsInARound; ++count) {
            exportOnce();
        }
        const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - started;
        constexpr double steps = exportsInARound * stepsOfAnExport;
        best = std::min(best, (cpuMicroseconds() - before) / steps);
        bestTime = std::min(bestTime, time.count() / steps);
    }
    std::printf("a step of an export   %6.2f us   CPU %6.2f us\n", bestTime, best);
}
