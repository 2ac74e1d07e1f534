#include <ZeltoHost/Platform/HostDateFormatter.h>

#include <Platform/DateFormatter.h>

namespace zelto {

std::string HostDateFormatter::string(Date date, const std::string& format) {
    return DateFormatter(format).string(date);
}

std::string HostDateFormatter::string(Date date, const std::string& format, const std::string& localeName) {
    return DateFormatter(format, localeName).string(date);
}

} // namespace zelto
