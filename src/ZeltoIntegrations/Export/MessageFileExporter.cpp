#include <ZeltoIntegrations/Export/MessageFileExporter.h>

#include <Platform/UTF8.h>

#include <utility>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using ExportError = IntegrationExportError;

} // namespace

IntegrationExportContentTypes MessageFileExporter::contentTypes(IntegrationExportTarget) const {
    return {Type::pdf, {Type::pdf, Type::plainText}};
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
    return type == Type::pdf || type == Type::plainText;
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
            const bool isText = text && isValidUTF8(*text);
            done(isText ? textFile(title, *text, ExportError::createBodyError)
                        : failure(ExportError::createBodyError));
        });
}

} // namespace zelto
