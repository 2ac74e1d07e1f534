#pragma once

#include <ZeltoSandbox/Drives/Drive.h>
#include <ZeltoSandbox/Dropbox/DropboxSearch.h>
#include <ZeltoSandbox/OAuth/SecretTable.h>
#include <ZeltoSandbox/SandboxService.h>

#include <memory>

namespace zelto::sandbox {

// The part of the Dropbox API, version 2, that lists, searches, uploads and downloads files.
class DropboxSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit DropboxSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    // What a cursor goes on with, behind the entry that was listed last.
    struct Listing {
        std::string folder; // its identifier
        bool isRecursive = false;
        bool hasDeleted = false;
        std::size_t limit = 0;
        std::string last = {};
    };

    struct SearchPage {
        JSONValue arguments;
        std::size_t position = 0;
    };

    static const SandboxEndpoint<DropboxSandbox> endpoints[];

    SandboxResponse routed(const SandboxRequest& request);
    SandboxResponse account(const SandboxRequest& request);
    SandboxResponse listFolder(const SandboxRequest& request);
    SandboxResponse continueListing(const SandboxRequest& request);
    SandboxResponse search(const SandboxRequest& request);
    SandboxResponse continueSearch(const SandboxRequest& request);
    SandboxResponse upload(const SandboxRequest& request);
    SandboxResponse download(const SandboxRequest& request);

    SandboxResponse listed(Listing listing);
    SandboxResponse found(const SearchPage& page);
    bool isFound(const DriveEntry& entry, const DropboxSearch& query, const JSONValue& options) const;

    Drive& drive() const { return *drive_; }

    SandboxContext& context_;
    std::unique_ptr<Drive> drive_;
    SecretTable<Listing> cursors_;
    SecretTable<SearchPage> searches_;
};

} // namespace zelto::sandbox
