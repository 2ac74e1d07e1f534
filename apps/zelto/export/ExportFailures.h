#pragma once

#include "base/Outcome.h"
#include "export/RefusalAdvice.h"

#include <ZeltoHost/PDF/PDFError.h>
#include <ZeltoIntegrations/Client/ServiceRefusal.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Export/ExportReport.h>

#include <Platform/FileError.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::cli {

// What the sentences about an export are made of.
struct ExportCircumstances {
    std::string service;                 // as the program shows it
    std::string account;                 // its identifier
    std::vector<std::string> takenTypes; // what an export to it may be
    std::string usualType;               // what it is where none was ever chosen
    std::string type;                    // what this one is
    std::string title;
    std::vector<std::string> attachments; // the names of those that go along
    std::vector<std::string> tags;
    bool hasLink = true; // whether there is a link to the message
    std::string openerFailure;
    std::optional<Failure> missingTarget;        // where the export needs a target and none is chosen
    std::vector<std::string> existingFiles = {}; // in place of those of the export, as they are shown
    bool tellsMissingTargets = false;            // whether the service refuses those in a way of their own
    std::optional<PDFError> pdfError;
    std::optional<FileError> fileError; // of the account's folder
    ExportReport report;
    std::optional<RefusalAdvice> advice = {}; // on the report's first refusal
    std::chrono::milliseconds timeout{0};
    bool hasStalled = false; // for that time, and was cancelled
};

// What was typed, as the usual type or the first of these that is another one; the help where there is none.
NextCommand withAnotherType(const std::vector<std::string>& takenTypes, const std::string& usualType,
                            std::string_view type);

// Why an export failed, what is on the service already, and what to do.
Failure exportFailure(IntegrationExportError error, const ExportCircumstances& circumstances);

// Why the data of an account could not be loaded, and what is known of the request that failed.
Failure loadFailure(IntegrationLoadError error, const std::string& service, const std::string& account,
                    const std::optional<ServiceRefusal>& refusal = {},
                    const std::optional<RefusalAdvice>& advice = {});

// `card "Title", file "a.pdf"`; empty for none.
std::string listOf(const std::vector<ExportReport::Made>& made);

// "made" of a JSON document.
JSONValue described(const std::vector<ExportReport::Made>& made);

} // namespace zelto::cli
