#pragma once

#include <Platform/Date.h>

#include <string>

namespace zelto {

// The host's way of writing dates: by a Unicode date format pattern, in the user's locale or in a named one.
class IntegrationsDateFormatter {
  public:
    virtual ~IntegrationsDateFormatter() = default;

    virtual std::string string(Date date, const std::string& format) = 0;
    virtual std::string string(Date date, const std::string& format, const std::string& localeName) = 0;
};

} // namespace zelto
