#pragma once

#include <Platform/Date.h>
#include <Platform/Enum.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zelto {

enum class LogLevel { trace, info, warn, error };
ZELTO_ENUM(LogLevel);

// One line of the log, on its way to a sink.
struct LogRecord {
    LogLevel level = LogLevel::info;
    std::string message;   // secrets are masked already; all else, line ends too, as it was logged
    std::string function;  // as the caller names it: "store(credentials:)"
    std::string_view file; // the source file, without its folders; lives as long as the process
    std::uint32_t line = 0;
    Date time;

    // The class that logged: a source file is named after its class.
    std::string_view client() const { return file.substr(0, file.rfind('.')); }
};

} // namespace zelto
