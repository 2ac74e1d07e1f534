#include <ZeltoCommonLogger/LogLine.h>

#include <Platform/Text.h>

namespace zelto {

namespace {

std::string shownMessage(std::string_view message) {
    if (message.size() <= logMessageLimit) {
        return escapeControlCharacters(message);
    }
    const auto kept = prefixBytes(message, logMessageLimit);
    return escapeControlCharacters(kept) + "… (" + std::to_string(message.size() - kept.size()) +
           " bytes more)";
}

} // namespace

std::string logLine(const LogRecord& record) {
    std::string line(record.file);
    line.append(":").append(std::to_string(record.line)).append(" ");
    line.append(escapeControlCharacters(record.function)).append(": ");
    return line.append(shownMessage(record.message));
}

} // namespace zelto
