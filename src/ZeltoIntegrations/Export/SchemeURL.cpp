#include <ZeltoIntegrations/Export/SchemeURL.h>

#include <Platform/PercentEncoding.h>

namespace zelto {

SchemeURL& SchemeURL::encoded(std::string_view parameter, std::string_view value) {
    const auto text = percentEncode(value);
    failed_ = failed_ || !text;
    return text ? plain(parameter, *text) : *this;
}

SchemeURL& SchemeURL::plain(std::string_view parameter, std::string_view value) {
    text_.append(parameter).append(value);
    return *this;
}

ExporterResult<std::string> SchemeURL::text() const {
    if (failed_) {
        return failure(IntegrationExportError::urlEncodeError);
    }
    return text_;
}

} // namespace zelto
