#include <ZeltoIntegrations/OneNote/OneNoteClient.h>

#include <ZeltoIntegrations/Client/Joining.h>
#include <ZeltoIntegrations/Client/MappedRequest.h>
#include <ZeltoIntegrations/OneNote/OneNoteResponses.h>

#include <utility>

namespace zelto {

namespace {

using Responses =
    Joined<ServiceClientError, OneNoteUserResponse, OneNoteNotebooksResponse, OneNoteSectionsResponse>;

} // namespace

OneNoteClient::OneNoteClient(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder,
                             EmailValidator emailValidator)
    : ServiceClient(std::move(authoriser), decoder), emailValidator_(std::move(emailValidator)) {}

void OneNoteClient::fetchNotebooks(ServiceCompletion<OneNoteFullData> completion) {
    const auto responses =
        std::make_shared<Responses>([emailValidator = emailValidator_, completion = std::move(completion)](
                                        ServiceResult<Responses::All> all) mutable {
            if (!all) {
                return completion(failure(all.error()));
            }
            auto& [user, notebooks, sections] = *all;
            completion(
                OneNoteFullData{.user = toOneNoteUser(std::move(user), emailValidator),
                                .notebooks = toOneNoteNotebooks(std::move(notebooks), std::move(sections))});
        });
    performRequest(*this, createUrlRequest("me", "GET"), responses->part<0>());
    performRequest(*this, createUrlRequest("me/onenote/notebooks", "GET"), responses->part<1>());
    performRequest(*this, createUrlRequest("me/onenote/sections", "GET"), responses->part<2>());
}

void OneNoteClient::createNoteInSection(const std::string& sectionId,
                                        const std::vector<ExporterHelperMultipartData>& fromParts,
                                        ServiceCompletion<void> completion) {
    performDiscarding<Empty>(
        *this,
        createUrlRequest("me/onenote/sections/" + pathSegment(sectionId) + "/pages", "POST").parts(fromParts),
        std::move(completion));
}

ServiceRequest OneNoteClient::createUrlRequest(std::string_view path, std::string httpMethod) {
    return ServiceRequest(std::move(httpMethod), apiBaseURL, path);
}

} // namespace zelto
