#pragma once

#include <Platform/Date.h>
#include <Platform/Enum.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zelto {

enum class LogLevel { trace, info, warn, error };
ZELTO_ENUM(LogLevel);

// One line of the log, as passed to a sink.
struct LogRecord {
    LogLevel level = LogLevel::info;
    std::string message;   // with secrets masked; everything else, line ends too, as it was logged
    std::string function;  // as named by the caller: "store(credentials:)"
    std::string_view file; // the name of the source file, without folders; lives as long as the process
    std::uint32_t line = 0;
    Date time;

    // The class that logged: a source file is named after its class.
    std::string_view client() const { return file.substr(0, file.rfind('.')); }
};

} // namespace zelto
