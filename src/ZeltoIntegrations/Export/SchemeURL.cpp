#include <ZeltoIntegrations/Export/SchemeURL.h>

#include <Platform/PercentEncoding.h>

namespace zelto {

SchemeURL& SchemeURL::encoded(std::string_view parameter, std::string_view value) {
    const auto text = percentEncode(value);
    if (!text) {
        fail(IntegrationExportError::urlEncodeError);
        return *this;
    }
    text_.append(parameter).append(*text);
    return *this;
}

SchemeURL& SchemeURL::plain(std::string_view parameter, std::string_view value) {
    if (value.find_first_of("&#") != std::string_view::npos) {
        fail(IntegrationExportError::createUrlError);
    }
    text_.append(parameter).append(value);
    return *this;
}

void SchemeURL::fail(IntegrationExportError error) {
    error_ = error_.value_or(error);
}

ExporterResult<std::string> SchemeURL::text() const {
    if (error_) {
        return failure(*error_);
    }
    return text_;
}

} // namespace zelto
