#pragma once

#include <ZeltoIntegrations/Export/ExportReport.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// Writes the report of one run while its requests come and go. Any thread.
class ExportReportLog {
  public:
    // A request begins that makes something, of a file of that many bytes where it is one, without so many
    // blocks, or characters, of its content; gives its place.
    std::size_t begin(std::string kind, std::string name, std::optional<std::uint64_t> fileSize = {},
                      std::size_t leftOutBlocks = 0, std::size_t leftOutCharacters = 0);
    void made(std::size_t place, std::optional<std::string> identifier);
    void refused(std::size_t place, ServiceClientError reason);

    // What the request was to make was on the service already.
    void withdraw(std::size_t place);

    // A request that makes nothing has failed, and nothing was sent of what was to be made after it.
    void refusedUnsent(std::string kind, std::string name, ServiceClientError reason);

    // What the service says of a refusal in its own words; for the request under way that is refused next.
    void note(ServiceRefusal refusal);

    // The run has ended: for a request without an end it is not known whether it has worked.
    void close();

    ExportReport report() const;

  private:
    struct Entry {
        std::string kind;
        std::string name;
        std::optional<std::uint64_t> fileSize;
        std::size_t leftOutBlocks = 0;
        std::size_t leftOutCharacters = 0;
        bool isMade = false;
        bool isWithdrawn = false;
        std::optional<std::string> identifier;
        std::optional<ServiceClientError> reason;
        ServiceRefusal refusal;
    };

    mutable std::mutex lock_;
    std::vector<Entry> entries_;
    std::optional<ServiceRefusal> noted_;
    bool isClosed_ = false;
};

} // namespace zelto
