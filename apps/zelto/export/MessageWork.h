#pragma once

#include "accounts/Workspace.h"
#include "base/Outcome.h"
#include "commandline/CommandLine.h"
#include "export/ExportFailures.h"
#include "export/ExportSession.h"
#include "export/URLDelivery.h"

#include <ZeltoHost/Content/ContentNotes.h>
#include <ZeltoHost/Platform/HostPlatformInteractor.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace zelto::cli {

// What a command may do.
enum class Effects {
    all,
    storesNothing, // not even the account that an application gets at its first export
    sendsNothing,  // nor does it open the key chain: the account has placeholders for its secrets
};

// All that a command about a message and an account works with.
struct MessageWork {
    Workspace workspace;
    std::shared_ptr<URLDelivery> delivery;
    std::shared_ptr<HostPlatformInteractor> platform;
    std::shared_ptr<IntegrationsManager> manager;
    ServiceAccountConfiguration account;
    std::optional<AccountLock> lock;
    std::unique_ptr<ExportSession> session;
    std::shared_ptr<const ContentNotes> notes; // what an export does not show of the message
    bool hasLink;                              // whether there is a link to the message

    static Outcome<MessageWork> open(const Invocation& invocation, Effects effects);

    std::string service() const; // as the program shows it

    // The files that the last export made in an account's folder; in a dry run, those that it would make.
    std::vector<std::filesystem::path> files() const;

    // What the sentences about a failure of the export are made of.
    ExportCircumstances circumstances(const ExportPlan& plan) const;
};

} // namespace zelto::cli
