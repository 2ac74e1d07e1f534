#pragma once

#include <ZeltoIntegrations/Content/IntegrationError.h>

#include <string>
#include <string_view>

namespace zelto {

// Puts the URL of an application's scheme together, piece by piece.
class SchemeURL {
  public:
    explicit SchemeURL(std::string start) : text_(std::move(start)) {}

    // A value in which all but letters and digits is percent-encoded.
    SchemeURL& encoded(std::string_view parameter, std::string_view value);
    // A value as it stands.
    SchemeURL& plain(std::string_view parameter, std::string_view value);

    // The URL's text, or `urlEncodeError` if a value could not be encoded.
    ExporterResult<std::string> text() const;

  private:
    std::string text_;
    bool failed_ = false;
};

} // namespace zelto
