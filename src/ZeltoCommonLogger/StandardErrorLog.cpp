#include <ZeltoCommonLogger/StandardErrorLog.h>

#include <ZeltoCommonLogger/LogLine.h>

#include <spdlog/details/log_msg.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/stdout_sinks.h>

namespace zelto {

namespace {

spdlog::level::level_enum spdlogLevel(LogLevel level) {
    switch (level) {
    case LogLevel::trace:
        return spdlog::level::trace;
    case LogLevel::info:
        return spdlog::level::info;
    case LogLevel::warn:
        return spdlog::level::warn;
    case LogLevel::error:
        return spdlog::level::err;
    }
    return spdlog::level::off;
}

spdlog::log_clock::time_point spdlogTime(Date date) {
    const std::chrono::duration<double> sinceUnixEpoch(date.unixSeconds());
    return spdlog::log_clock::time_point(std::chrono::round<std::chrono::milliseconds>(sinceUnixEpoch));
}

} // namespace

LogSubscription logToStandardError(LogLevel minimum) {
    auto sink = std::make_shared<spdlog::sinks::stderr_sink_st>();
    sink->set_formatter(std::make_unique<spdlog::pattern_formatter>("%Y-%m-%dT%H:%M:%S.%eZ %l %v",
                                                                    spdlog::pattern_time_type::utc));
    return LogSubscription(
        [sink](const LogRecord& record) {
            const auto line = logLine(record);
            sink->log(spdlog::details::log_msg(spdlogTime(record.time), spdlog::source_loc{}, "zelto",
                                               spdlogLevel(record.level), line));
        },
        minimum);
}

} // namespace zelto
