#include <ZeltoSandbox/DateText.h>

#include <Platform/ISO8601.h>

#include <cmath>

namespace zelto::sandbox {

std::string dateText(Date date, int fractionDigits) {
    auto text = iso8601(date);
    if (text.empty()) {
        return text;
    }
    const auto seconds = date.unixSeconds();
    const auto fraction = (seconds - std::floor(seconds)) * std::pow(10.0, fractionDigits);
    const auto digits = std::to_string(static_cast<long>(fraction));
    text.back() = '.';
    text.append(static_cast<std::size_t>(fractionDigits) - digits.size(), '0').append(digits);
    return text + "Z";
}

std::string controlDateText(Date date) {
    constexpr int microseconds = 6;
    return dateText(date, microseconds);
}

} // namespace zelto::sandbox
