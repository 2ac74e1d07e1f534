#include "base/TransferLog.h"

#include <ZeltoCommonLogger/Logger.h>

#include <Platform/HTTP/TransferRecord.h>

#include <cmath>
#include <cstdint>
#include <string>

namespace zelto::cli {

namespace {

std::string hostOf(const URL& url) {
    auto host = url.host();
    return host.contains(':') ? "[" + host + "]" : host;
}

// The query is left out: that is where services take credentials and texts.
std::string addressOf(const URL& url) {
    const auto port = url.port() ? ":" + std::to_string(*url.port()) : "";
    return url.scheme() + "://" + hostOf(url) + port + url.percentEncodedPath();
}

std::string bytes(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string endOf(const TransferRecord& record) {
    const auto status = record.status ? "status " + std::to_string(*record.status) : std::string();
    // Whoever has seen enough of a response cancels the task.
    const bool isEnough = record.status && record.error == URLErrorCode::cancelled;
    const auto error = record.error && !isEnough ? std::string(nameOf(*record.error)) : std::string();
    return status + (status.empty() || error.empty() ? "" : ", ") + error;
}

std::string lineOf(const TransferRecord& record) {
    const auto milliseconds = std::llround(record.duration.count() * 1000);
    // A path that ends in "token" and a colon would be masked as a key and its value.
    return record.method + " " + addressOf(record.url) + ", " + endOf(record) + ", " +
           std::to_string(milliseconds) + " ms, request " + bytes(record.requestSize) + ", response " +
           bytes(record.responseSize);
}

} // namespace

void logTransfers() {
    setTransferObserver(
        [](const TransferRecord& record) { Logger::shared().info(lineOf(record), "request"); });
}

} // namespace zelto::cli
