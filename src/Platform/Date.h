#pragma once

#include <chrono>
#include <compare>
#include <cstddef>
#include <functional>

namespace zelto {

using TimeInterval = std::chrono::duration<double>;

// A moment: seconds since the reference date 2001-01-01T00:00:00Z, leap seconds not counted. Any double can
// be stored; NaN compares as a double does, and is of no use otherwise.
class Date {
  public:
    // The Unix time of the reference date.
    static constexpr double referenceUnixSeconds = 978307200;

    // The reference date.
    constexpr Date() = default;

    // The current time by the system's clock, or by the ClockOverride in force. Any thread.
    static Date now();

    // 4001-01-01T00:00:00Z
    static constexpr Date distantFuture() { return fromReferenceSeconds(63113904000.0); }

    static constexpr Date fromReferenceSeconds(double seconds) { return Date(seconds); }

    static constexpr Date fromUnixSeconds(double seconds) { return Date(seconds - referenceUnixSeconds); }

    constexpr double secondsSinceReference() const { return seconds_; }

    constexpr double unixSeconds() const { return seconds_ + referenceUnixSeconds; }

    constexpr Date operator+(TimeInterval interval) const { return Date(seconds_ + interval.count()); }

    constexpr Date operator-(TimeInterval interval) const { return Date(seconds_ - interval.count()); }

    constexpr TimeInterval operator-(Date other) const { return TimeInterval(seconds_ - other.seconds_); }

    constexpr auto operator<=>(const Date&) const = default;

  private:
    constexpr explicit Date(double seconds) : seconds_(seconds) {}

    double seconds_ = 0;
};

// Stops the process's clock for tests: while one lives, Date::now() gives its date. Overrides nest: the last
// one made must be destroyed first. Any thread may read or move the clock.
class ClockOverride {
  public:
    explicit ClockOverride(Date date);
    ~ClockOverride();
    ClockOverride(const ClockOverride&) = delete;
    ClockOverride& operator=(const ClockOverride&) = delete;

    void set(Date date);
    void advance(TimeInterval interval);

  private:
    double before_;
};

} // namespace zelto

template <> struct std::hash<zelto::Date> {
    std::size_t operator()(zelto::Date date) const noexcept {
        return std::hash<double>()(date.secondsSinceReference());
    }
};
