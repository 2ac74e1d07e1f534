#pragma once

#include <ZeltoIntegrations/Export/NetworkExporter.h>

#include <optional>
#include <string>

namespace zelto {

// What the exporters share that make one file of the message: its PDF, or its plain text.
class MessageFileExporter : public NetworkExporter {
  public:
    using NetworkExporter::NetworkExporter;

    // The target plays no part.
    IntegrationExportContentTypes contentTypes(IntegrationExportTarget target) const;

    // The name of the PDF, or the plain text. No value for another type, and where the host has no text.
    void loadPreview(IntegrationExportContentType type,
                     Callback<std::optional<IntegrationExportPreview>> completion);

  protected:
    static bool hasBody(IntegrationExportContentType type);

    // A step: the message as a file of that type and title, which stays there. Fails with `convertError`
    // without a PDF, `createBodyError` without a text or where it cannot be written.
    void makeBody(StepRun& run, IntegrationExportContentType type, const std::string& title,
                  StepCompletion<File> done);

  private:
    void makeTextBody(const std::string& title, StepCompletion<File> done);
};

} // namespace zelto
