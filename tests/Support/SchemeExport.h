#pragma once

#include <ZeltoIntegrations/Agenda/AgendaExporter.h>
#include <ZeltoIntegrations/Bear/BearExporter.h>
#include <ZeltoIntegrations/OmniFocus/OmniFocusExporter.h>
#include <ZeltoIntegrations/Things/ThingsExporter.h>
#include <ZeltoIntegrations/TwoDo/TwoDoExporter.h>

#include <Support/Event.h>
#include <Support/ServiceExport.h>

#include <functional>
#include <memory>
#include <string>

namespace zelto {

// An export by a URL scheme, whose account has no credentials.
template <class Exporter> class SchemeExport : public ServiceExport<Exporter> {
  public:
    using typename ServiceExport<Exporter>::VoidResult;

    SchemeExport()
        : ServiceExport<Exporter>(ServiceAccountConfiguration(ServiceType::Bear, std::nullopt, true)) {
        this->configuration.userTitle = "Title";
    }

    // Called when export_ has returned, before the first step runs.
    std::function<void(ExportProgress&)> onStarted = [](ExportProgress&) {};

    VoidResult run() {
        Completed<VoidResult> completed;
        // Holds the first text back until the caller of export_ has its progress.
        const auto started = std::make_shared<Event>();
        const auto asked = this->data->onAsked;
        this->data->onAsked = [asked, started](const std::string& operation) {
            started->wait();
            asked(operation);
        };
        this->progress = this->start(completed.template callback<Completion<void, IntegrationExportError>>());
        onStarted(*this->progress);
        started->set();
        const auto result = completed.value();
        this->data->onAsked = asked;
        return result;
    }

    void cancel() { this->progress->cancel(); }

    // Of the last export that opened one.
    std::string openedURL() const {
        const auto urls = this->interactor->openedURLs();
        return urls.empty() ? "<none>" : urls.back();
    }
};

} // namespace zelto
