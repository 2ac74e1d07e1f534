#include <ZeltoCommonLogger/Logger.h>

#include <ZeltoCommonLogger/LogMasking.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

namespace zelto {

struct LogSubscription::Entry {
    Entry(LogSink function, LogLevel level) : sink(std::move(function)), minimum(level) {}

    std::mutex lock; // held while the sink runs: unsubscribing waits for it
    LogSink sink;    // empty once unsubscribed
    const LogLevel minimum;
};

namespace {

using Entry = LogSubscription::Entry;

struct Subscriptions {
    std::mutex lock;
    std::vector<std::shared_ptr<Entry>> entries;
    std::atomic<int> lowestLevel{rawValue(LogLevel::error) + 1};

    void add(std::shared_ptr<Entry> entry) {
        const std::lock_guard guard(lock);
        entries.push_back(std::move(entry));
        updateLowestLevel();
    }

    void remove(const std::shared_ptr<Entry>& entry) {
        const std::lock_guard guard(lock);
        std::erase(entries, entry);
        updateLowestLevel();
    }

    std::vector<std::shared_ptr<Entry>> snapshot() {
        const std::lock_guard guard(lock);
        return entries;
    }

  private:
    void updateLowestLevel() {
        int lowest = rawValue(LogLevel::error) + 1;
        for (const auto& entry : entries) {
            lowest = std::min(lowest, rawValue(entry->minimum));
        }
        lowestLevel = lowest;
    }
};

// Never destroyed: destructors of other statics may still log.
Subscriptions& subscriptions() {
    static auto& all = *new Subscriptions;
    return all;
}

std::string_view fileName(const char* path) {
    const std::string_view whole(path);
    return whole.substr(whole.rfind('/') + 1);
}

thread_local bool insideSink = false;

void deliver(Entry& entry, const LogRecord& record) {
    const std::lock_guard guard(entry.lock);
    if (!entry.sink) {
        return;
    }
    insideSink = true;
    try {
        entry.sink(record);
    } catch (...) {
        // A log that fails must not fail the work that is logged.
    }
    insideSink = false;
}

} // namespace

LogSubscription::LogSubscription(LogSink sink, LogLevel minimum)
    : entry_(std::make_shared<Entry>(std::move(sink), minimum)) {
    subscriptions().add(entry_);
}

LogSubscription::~LogSubscription() {
    if (!entry_) {
        return;
    }
    subscriptions().remove(entry_);
    const std::lock_guard guard(entry_->lock);
    entry_->sink = nullptr;
}

LogSubscription& LogSubscription::operator=(LogSubscription&& other) noexcept {
    std::swap(entry_, other.entry_);
    return *this;
}

Logger& Logger::shared() {
    static Logger logger;
    return logger;
}

bool Logger::isEnabled(LogLevel level) const {
    return rawValue(level) >= subscriptions().lowestLevel.load(std::memory_order_relaxed);
}

void Logger::log(LogLevel level, std::string_view message, std::string_view function,
                 const std::source_location& location) {
    if (!isEnabled(level) || insideSink) {
        return;
    }
    LogRecord record{.level = level,
                     .message = maskSecrets(message),
                     .function = std::string(function),
                     .file = fileName(location.file_name()),
                     .line = location.line(),
                     .time = Date::now()};
    for (const auto& entry : subscriptions().snapshot()) {
        if (level >= entry->minimum) {
            deliver(*entry, record);
        }
    }
}

} // namespace zelto
