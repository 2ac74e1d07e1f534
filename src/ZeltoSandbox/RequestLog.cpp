#include <ZeltoSandbox/RequestLog.h>

#include <ZeltoSandbox/DateText.h>

namespace zelto::sandbox {

namespace {

JSONObject jsonOf(const SandboxRecord& record) {
    JSONValue::Array fields;
    for (const auto& field : record.fields) {
        fields.push_back(JSONObject{{"name", field.name}, {"value", field.value}});
    }
    return {{"number", record.number},         {"date", controlDateText(record.date)},
            {"connection", record.connection}, {"service", record.service},
            {"method", record.method},         {"host", record.host},
            {"target", record.target},         {"fields", std::move(fields)},
            {"bodySize", record.bodySize},     {"body", record.body},
            {"status", record.status},         {"problem", record.problem},
            {"fault", record.fault},           {"isWeb", record.isWeb}};
}

} // namespace

void RequestLog::add(SandboxRecord record) {
    const std::lock_guard guard(lock_);
    record.number = ++lastNumber_;
    ++counts_[record.service];
    records_.push_back(std::move(record));
    if (records_.size() > limit_) {
        records_.pop_front();
    }
    changed();
}

void RequestLog::touch() {
    const std::lock_guard guard(lock_);
    changed();
}

void RequestLog::clear() {
    const std::lock_guard guard(lock_);
    records_.clear();
    counts_.clear();
    lastNumber_ = 0;
    changed();
}

std::vector<SandboxRecord> RequestLog::records() const {
    const std::lock_guard guard(lock_);
    return {records_.begin(), records_.end()};
}

JSONObject RequestLog::json(std::uint64_t after) const {
    const std::lock_guard guard(lock_);
    JSONValue::Array requests;
    for (const auto& record : records_) {
        if (record.number > after) {
            requests.push_back(jsonOf(record));
        }
    }
    return {{"requests", std::move(requests)}};
}

std::uint64_t RequestLog::lastNumber() const {
    const std::lock_guard guard(lock_);
    return lastNumber_;
}

std::uint64_t RequestLog::countOf(std::string_view service) const {
    const std::lock_guard guard(lock_);
    const auto found = counts_.find(service);
    return found == counts_.end() ? 0 : found->second;
}

std::uint64_t RequestLog::revision() const {
    const std::lock_guard guard(lock_);
    return revision_;
}

std::uint64_t RequestLog::waitForChange(std::uint64_t since, TimeInterval time) const {
    std::unique_lock guard(lock_);
    signal_.wait_for(guard, time, [&] { return revision_ != since; });
    return revision_;
}

void RequestLog::changed() {
    ++revision_;
    signal_.notify_all();
}

} // namespace zelto::sandbox
