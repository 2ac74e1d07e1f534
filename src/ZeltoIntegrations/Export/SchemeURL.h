#pragma once

#include <ZeltoIntegrations/Content/IntegrationError.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// Puts the URL of an application's scheme together, piece by piece.
class SchemeURL {
  public:
    explicit SchemeURL(std::string start) : text_(std::move(start)) {}

    // A value in which all but letters and digits is percent-encoded.
    SchemeURL& encoded(std::string_view parameter, std::string_view value);
    // A value as it stands. One that would end its field is `createUrlError`.
    SchemeURL& plain(std::string_view parameter, std::string_view value);

    // The URL's text, or the error of its first value that has no place in it: `urlEncodeError` for one that
    // cannot be encoded.
    ExporterResult<std::string> text() const;

  private:
    void fail(IntegrationExportError error);

    std::string text_;
    std::optional<IntegrationExportError> error_;
};

} // namespace zelto
