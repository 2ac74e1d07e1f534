#include <ZeltoIntegrations/Export/MessageFileExporter.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Platform/FileManager.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <utility>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using ExportError = IntegrationExportError;

const IntegrationExportContentTypes& bodies() {
    static const IntegrationExportContentTypes types{Type::pdf, {Type::pdf, Type::plainText}};
    return types;
}

// Fails without a text that can be written as UTF-8.
ExporterResult<std::filesystem::path> writtenText(const std::string& title,
                                                  const std::optional<std::string>& text) {
    const auto path = ExportServiceHelper::txtFilePath(title);
    const bool isText = text && isValidUTF8(*text);
    if (!path || !isText || !FileManager::writeFileAtomically(*path, *text)) {
        return failure(ExportError::createBodyError);
    }
    return *path;
}

} // namespace

IntegrationExportContentTypes MessageFileExporter::contentTypes(IntegrationExportTarget) const {
    return bodies();
}

void MessageFileExporter::loadPreview(IntegrationExportContentType type,
                                      Callback<std::optional<IntegrationExportPreview>> completion) {
    if (type == Type::pdf) {
        return completion(pdfPreview());
    }
    if (type != Type::plainText) {
        return completion(std::nullopt);
    }
    dataInteractor().messagePlainText(std::nullopt, [completion = std::move(completion)](auto text) mutable {
        completion(text ? std::optional(IntegrationExportPreview::email(*std::move(text))) : std::nullopt);
    });
}

bool MessageFileExporter::hasBody(IntegrationExportContentType type) {
    return std::ranges::count(bodies().supported, type) != 0;
}

void MessageFileExporter::makeBody(StepRun& run, IntegrationExportContentType type, const std::string& title,
                                   StepCompletion<File> done) {
    if (type == Type::pdf) {
        return makePdf(run, title, ExportError::convertError, std::move(done));
    }
    makeTextBody(title, std::move(done));
}

void MessageFileExporter::makeTextBody(const std::string& title, StepCompletion<File> done) {
    dataInteractor().messagePlainText(
        std::nullopt, [title, done = std::move(done)](const std::optional<std::string>& text) mutable {
            done(writtenText(title, text));
        });
}

} // namespace zelto
