#pragma once

#include <ZeltoIntegrations/Export/StepExporter.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zelto {

// What the exporters share that have no service but an application on the same machine: one URL is built from
// the mail or meeting note and handed to the platform. Success means that the platform opened it; whether the
// application is installed is not checked.
class SchemeExporter : public StepExporter {
  public:
    using StepExporter::StepExporter;

    IntegrationExportContentTypes contentTypes(IntegrationExportTarget target) const;

    // No value for a type that is not supported, and where the host has no such text.
    void loadPreview(IntegrationExportContentType type,
                     Callback<std::optional<IntegrationExportPreview>> completion);

  protected:
    // What a URL is made of.
    struct Content {
        std::string title;
        std::string text;
        std::optional<std::string> link; // only where the application takes it apart from the text
    };

    // What of an export the user decides.
    struct Request {
        IntegrationExportContentType saveAs;
        std::optional<std::string> userTitle;
        std::optional<std::string> userNote;
        bool linkApart = false;
    };

    using URLMaker = std::function<ExporterResult<std::string>(const Content&)>;

    // A configuration with the fields that all five have.
    template <class C> C offeredConfiguration() {
        const auto types = contentTypes(exportTarget());
        C configuration;
        configuration.saveAs = ExportServiceHelper::saveAs(lastExportContentType(), types);
        configuration.userTitle = dataInteractor().title();
        configuration.supportedContentTypes = types.supported;
        return configuration;
    }

    // Three steps: the content, the URL, the opening of it.
    std::shared_ptr<ExportProgress> exportURL(Request request, URLMaker makeURL, ResultMediator<void> finish);

    // A date by the host's formatter; the user's locale unless one is named.
    std::string formatted(Date date, const std::string& format,
                          const std::optional<std::string>& localeName = std::nullopt) const;

  private:
    void makeContent(StepRun& run, const Request& request, StepCompletion<Content> done);
    void addLink(Content content, StepCompletion<Content> done);
    void makeURL(StepRun& run, const Step<Content>& content, const URLMaker& maker, StepCompletion<URL> done);
    void open(StepRun& run, const Step<URL>& url, StepCompletion<void> done);
};

} // namespace zelto
