#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Platform/FileManager.h>
#include <Platform/Text.h>
#include <TrovenhalCommon/MimeUtils.h>

#include <algorithm>

namespace zelto {

namespace {

constexpr std::string_view pdfExtension = ".pdf";
constexpr std::string_view txtExtension = ".txt";

std::string replacingSlashRuns(std::string_view name) {
    std::string replaced;
    for (const char each : name) {
        if (each != '/') {
            replaced += each;
        } else if (!replaced.ends_with('/')) {
            replaced += '/';
        }
    }
    std::ranges::replace(replaced, '/', '_');
    return replaced;
}

std::string_view escapeInJSON(char character) {
    switch (character) {
    case '\\':
        return "\\\\";
    case '"':
        return "\\\"";
    case '/':
        return "\\/";
    case '\n':
        return "\\n";
    case '\b':
        return "\\b";
    case '\f':
        return "\\f";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return {};
    }
}

} // namespace

std::optional<std::string> ExportServiceHelper::getServiceProductNameFor(ServiceType type) {
    return productName(type);
}

std::string ExportServiceHelper::getServiceIdentifierFor(ServiceType type,
                                                         const std::optional<std::string>& username) {
    return serviceIdentifier(type, username);
}

std::string ExportServiceHelper::mimeType(const std::filesystem::path& path) {
    const auto extension = path.extension().native();
    const auto known = extension.empty() ? std::nullopt : MimeUtils::mime(extension.substr(1));
    return known.value_or("application/octet-stream");
}

std::string ExportServiceHelper::fileName(std::string_view name, std::string_view extension, bool sanitise) {
    std::string result(name);
    if (sanitise) {
        result = replacingSlashRuns(name);
        result = toLatin(result).value_or(result);
        result = strippingDiacritics(result).value_or(result);
    }
    return result += extension;
}

std::string ExportServiceHelper::pdfName(std::string_view name, bool sanitise) {
    return fileName(name, pdfExtension, sanitise);
}

std::string ExportServiceHelper::txtName(std::string_view name, bool sanitise) {
    return fileName(name, txtExtension, sanitise);
}

Result<std::filesystem::path, FileError> ExportServiceHelper::pdfFilePath(std::string_view name,
                                                                          bool sanitise) {
    return FileManager::temporaryPath(pdfName(name, sanitise));
}

Result<std::filesystem::path, FileError> ExportServiceHelper::txtFilePath(std::string_view name,
                                                                          bool sanitise) {
    return FileManager::temporaryPath(txtName(name, sanitise));
}

bool ExportServiceHelper::isNotEmpty(const std::optional<std::string>& text) {
    return text && !isBlank(*text);
}

std::string ExportServiceHelper::escapeJSONString(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char each : text) {
        if (const auto escape = escapeInJSON(each); !escape.empty()) {
            escaped += escape;
        } else {
            escaped += each;
        }
    }
    return escaped;
}

IntegrationExportContentType ExportServiceHelper::saveAs(std::optional<IntegrationExportContentType> lastUsed,
                                                         const IntegrationExportContentTypes& contentTypes) {
    const auto& supported = contentTypes.supported;
    const bool goesOn = lastUsed && std::ranges::find(supported, *lastUsed) != supported.end();
    return goesOn ? *lastUsed : contentTypes.default_;
}

} // namespace zelto
