#include <Platform/Date.h>

#include <atomic>
#include <limits>

namespace zelto {

namespace {

// NaN while no ClockOverride is in force.
std::atomic<double>& overriddenSeconds() {
    static constinit std::atomic<double> seconds{std::numeric_limits<double>::quiet_NaN()};
    return seconds;
}

} // namespace

Date Date::now() {
    const double overridden = overriddenSeconds().load();
    if (overridden == overridden) {
        return fromReferenceSeconds(overridden);
    }
    return fromUnixSeconds(TimeInterval(std::chrono::system_clock::now().time_since_epoch()).count());
}

ClockOverride::ClockOverride(Date date)
    : before_(overriddenSeconds().exchange(date.secondsSinceReference())) {}

ClockOverride::~ClockOverride() {
    overriddenSeconds() = before_;
}

void ClockOverride::set(Date date) {
    overriddenSeconds() = date.secondsSinceReference();
}

void ClockOverride::advance(TimeInterval interval) {
    overriddenSeconds().fetch_add(interval.count());
}

} // namespace zelto
