#include <ZeltoSandbox/FaultList.h>

#include <Platform/ASCII.h>
#include <Platform/Joined.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace zelto::sandbox {

namespace {

constexpr double maximumDelay = 3600;
constexpr int maximumTimes = 1'000'000;
constexpr std::int64_t maximumLength = 1'000'000'000'000;

JSONObject jsonOf(const SandboxFault& fault) {
    JSONObject json{
        {"host", fault.host}, {"path", fault.path}, {"method", fault.method}, {"times", fault.times}};
    if (fault.status) {
        json.set("status", *fault.status);
    }
    if (fault.body) {
        json.set("body", *fault.body);
    }
    if (!fault.fields.empty()) {
        JSONObject headers;
        for (const auto& field : fault.fields) {
            headers.set(field.name, field.value);
        }
        json.set("headers", std::move(headers));
    }
    if (fault.delay) {
        json.set("delay", fault.delay->count());
    }
    if (fault.reset) {
        json.set("reset", true);
    }
    if (fault.slowBody) {
        json.set("slowBody", *fault.slowBody);
    }
    if (fault.lengthError) {
        json.set("lengthError", *fault.lengthError);
    }
    if (fault.cutAfter) {
        json.set("cutAfter", *fault.cutAfter);
    }
    if (fault.stallAfter) {
        json.set("stallAfter", *fault.stallAfter);
    }
    if (fault.expireTokens) {
        json.set("expireTokens", true);
    }
    return json;
}

bool readText(const JSONValue& json, std::string& text) {
    const auto* value = json.asString();
    if (value) {
        text = *value;
    }
    return value != nullptr;
}

bool readFlag(const JSONValue& json, bool& flag) {
    const auto value = json.asBool();
    flag = value.value_or(false);
    return value.has_value();
}

std::optional<std::int64_t> readCount(const JSONValue& json, std::int64_t minimum, std::int64_t maximum) {
    const auto value = json.asInt64();
    return value && *value >= minimum && *value <= maximum ? value : std::nullopt;
}

bool readFields(const JSONValue& json, std::vector<HTTPHeaderField>& fields) {
    const auto* object = json.asObject();
    if (!object) {
        return false;
    }
    for (const auto& [name, value] : *object) {
        const auto* text = value.asString();
        if (!text || !isValidHeaderName(name) || !isValidHeaderValue(*text)) {
            return false;
        }
        fields.push_back({name, *text});
    }
    return true;
}

// What the member has to be; nullopt if it is valid.
std::optional<std::string> readMember(SandboxFault& fault, const std::string& key, const JSONValue& value) {
    const auto unless = [](bool isGood, const char* wanted) {
        return isGood ? std::nullopt : std::optional<std::string>(wanted);
    };
    if (key == "host") {
        return unless(readText(value, fault.host), "a text");
    }
    if (key == "path") {
        return unless(readText(value, fault.path), "a text");
    }
    if (key == "method") {
        return unless(readText(value, fault.method), "a text");
    }
    if (key == "body") {
        return unless(readText(value, fault.body.emplace()), "a text");
    }
    if (key == "headers") {
        return unless(readFields(value, fault.fields), "an object of texts that can be header fields");
    }
    if (key == "reset") {
        return unless(readFlag(value, fault.reset), "true or false");
    }
    if (key == "expireTokens") {
        return unless(readFlag(value, fault.expireTokens), "true or false");
    }
    if (key == "times") {
        const auto times = readCount(value, 1, maximumTimes);
        fault.times = static_cast<int>(times.value_or(1));
        return unless(times.has_value(), "a number from 1 to 1000000");
    }
    if (key == "status") {
        const auto status = readCount(value, 200, 599);
        fault.status = static_cast<int>(status.value_or(500));
        return unless(status.has_value(), "a number from 200 to 599");
    }
    if (key == "slowBody") {
        const auto speed = readCount(value, 1, 1'000'000'000);
        fault.slowBody = static_cast<std::uint32_t>(speed.value_or(1));
        return unless(speed.has_value(), "a number of bytes a second, from 1 on");
    }
    if (key == "lengthError") {
        fault.lengthError = readCount(value, -maximumLength, maximumLength);
        return unless(fault.lengthError.has_value(), "a number of bytes, which may be negative");
    }
    if (key == "cutAfter" || key == "stallAfter") {
        const auto count = readCount(value, 0, maximumLength);
        (key == "cutAfter" ? fault.cutAfter : fault.stallAfter) =
            static_cast<std::uint64_t>(count.value_or(0));
        return unless(count.has_value(), "a number of bytes");
    }
    if (key == "delay") {
        const auto seconds = value.asDouble().value_or(-1);
        fault.delay = TimeInterval(seconds);
        return unless(seconds >= 0 && seconds <= maximumDelay, "a number of seconds, from 0 to 3600");
    }
    return "left out; there is no such member";
}

} // namespace

bool FaultList::add(SandboxFault fault) {
    if (fault.times < 1 || faults_.size() >= maximumCount) {
        return false;
    }
    faults_.push_back(std::move(fault));
    return true;
}

std::optional<SandboxFault> FaultList::take(const SandboxRequest& request) {
    const auto found = std::ranges::find_if(faults_, [&](const SandboxFault& fault) {
        return (fault.host.empty() || equalIgnoringASCIICase(fault.host, request.host)) &&
               (fault.method.empty() || fault.method == request.method) &&
               request.path.starts_with(fault.path);
    });
    if (found == faults_.end()) {
        return std::nullopt;
    }
    auto fault = *found;
    if (--found->times == 0) {
        faults_.erase(found);
    }
    return fault;
}

JSONValue FaultList::json() const {
    JSONValue::Array all;
    for (const auto& fault : faults_) {
        all.push_back(jsonOf(fault));
    }
    return all;
}

Result<SandboxFault, std::string> readFault(const JSONValue& json) {
    const auto* object = json.asObject();
    if (!object) {
        return failure(std::string("A fault is an object."));
    }
    SandboxFault fault;
    for (const auto& [key, value] : *object) {
        if (const auto wanted = readMember(fault, key, value)) {
            return failure("\"" + key + "\" has to be " + *wanted + ".");
        }
    }
    if (!fault.status && !fault.delay && !fault.reset && !fault.slowBody && !fault.lengthError &&
        !fault.cutAfter && !fault.stallAfter && !fault.expireTokens) {
        return failure(std::string("A fault needs one of \"status\", \"delay\", \"reset\", \"slowBody\", "
                                   "\"lengthError\", \"cutAfter\", \"stallAfter\" and \"expireTokens\"."));
    }
    return fault;
}

std::string describe(const SandboxFault& fault) {
    std::vector<std::string> pieces;
    if (fault.expireTokens) {
        pieces.emplace_back("the access tokens expired");
    }
    if (fault.status) {
        pieces.push_back("status " + std::to_string(*fault.status));
    }
    if (fault.delay) {
        const auto milliseconds = static_cast<std::int64_t>(std::llround(fault.delay->count() * 1000));
        pieces.push_back(std::to_string(milliseconds) + " ms late");
    }
    if (fault.slowBody) {
        pieces.push_back(std::to_string(*fault.slowBody) + " bytes a second");
    }
    if (fault.lengthError) {
        const bool isMore = *fault.lengthError >= 0;
        pieces.push_back("a Content-Length of " + std::to_string(std::abs(*fault.lengthError)) +
                         (isMore ? " bytes more" : " bytes fewer"));
    }
    if (fault.stallAfter) {
        pieces.push_back("nothing after " + std::to_string(*fault.stallAfter) + " bytes");
    }
    if (fault.reset || fault.cutAfter) {
        pieces.push_back(std::string("the connection was ") + (fault.reset ? "reset" : "closed") +
                         (fault.cutAfter ? " after " + std::to_string(*fault.cutAfter) + " bytes" : ""));
    }
    return joined(pieces, ", ");
}

} // namespace zelto::sandbox
