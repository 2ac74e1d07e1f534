#pragma once

#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Client/ServiceRequest.h>
#include <ZeltoIntegrations/Helpers/ExporterHelperMultipartData.h>
#include <ZeltoIntegrations/OneNote/OneNoteRecords.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// OneNote's part of the Microsoft Graph API, version 1.0. Always made with std::make_shared.
class OneNoteClient final : public ServiceClient {
  public:
    using EmailValidator = std::function<bool(const std::string&)>;

    // The validator says of a user without an e-mail address whether the name to sign in with is one.
    OneNoteClient(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder,
                  EmailValidator emailValidator);

    // The user, and the notebooks with their sections, by three requests side by side.
    // https://learn.microsoft.com/graph/api/user-get
    // https://learn.microsoft.com/graph/api/onenote-list-notebooks
    // https://learn.microsoft.com/graph/api/onenote-list-sections
    void fetchNotebooks(ServiceCompletion<OneNoteFullData> completion);

    // Makes a page of the part "Presentation", its HTML, and of the files that this refers to by the names of
    // their parts. Files are sent as they are read. https://learn.microsoft.com/graph/api/section-post-pages
    void createNoteInSection(const std::string& sectionId,
                             const std::vector<ExporterHelperMultipartData>& fromParts,
                             ServiceCompletion<void> completion);

    static constexpr std::string_view apiBaseURL = "https://graph.microsoft.com/v1.0/";

  private:
    static ServiceRequest createUrlRequest(std::string_view path, std::string httpMethod);

    const EmailValidator emailValidator_;
};

} // namespace zelto
