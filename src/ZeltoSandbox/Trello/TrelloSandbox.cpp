#include <ZeltoSandbox/Trello/TrelloSandbox.h>

#include <ZeltoSandbox/UploadedFile.h>

#include <Platform/PercentEncoding.h>
#include <Platform/Result.h>
#include <Platform/Text.h>
#include <Platform/URL.h>

#include <algorithm>
#include <span>

namespace zelto::sandbox {

namespace {

constexpr std::size_t maximumText = 16384; // characters of a card's name and description
constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20;
constexpr std::uint64_t freeAttachment = 10 * mebibyte;
constexpr std::uint64_t paidAttachment = 250 * mebibyte;
constexpr std::size_t maximumAttachmentCount = 1000; // of a card

SandboxResponse refused(int status, std::string text) {
    return SandboxResponse::text(text, status).because(std::move(text));
}

bool isShownBy(std::string_view filter, bool closed) {
    return filter == "all" || (filter == "open" && !closed) || (filter == "closed" && closed);
}

bool isFilter(std::string_view text) {
    return text == "all" || text == "open" || text == "closed" || text == "none";
}

SandboxResponse uploadRefusal(UploadProblem problem) {
    switch (problem) {
    case UploadProblem::several:
        return refused(400, "only one file at a time");
    case UploadProblem::tooLarge:
        return refused(413, "File too large");
    case UploadProblem::missing:
    case UploadProblem::unnamed:
        break;
    }
    return refused(400, "invalid value for file");
}

constexpr std::size_t maximumPage = 1000;

using Cards = std::span<TrelloCardRecord>;

// The cards of a list, which are in the order of creation, that `before`, `since` and `limit` select: the
// newest of those between two others.
Result<Cards, std::string> pageOf(const SandboxRequest& request, std::vector<TrelloCardRecord>& cards) {
    auto first = cards.begin();
    auto last = cards.end();
    for (const auto name : {"since", "before"}) {
        if (const auto id = request.queryValue(name)) {
            const auto card = std::ranges::find(cards, *id, &TrelloCardRecord::id);
            if (card == cards.end()) {
                return failure("invalid value for " + std::string(name));
            }
            std::string_view(name) == "since" ? first = card + 1 : last = card;
        }
    }
    auto count = first < last ? static_cast<std::size_t>(last - first) : 0;
    if (const auto limit = request.queryValue("limit")) {
        const auto wanted = pageLimit(*limit, 0, maximumPage);
        if (!wanted) {
            return failure(std::string("invalid value for limit"));
        }
        count = std::min(count, *wanted);
    }
    return Cards(last - static_cast<std::ptrdiff_t>(count), last);
}

} // namespace

const SandboxEndpoint<TrelloSandbox> TrelloSandbox::endpoints[] = {
    {"GET", "1/members/me", &TrelloSandbox::member, "read"},
    {"GET", "1/members/me/boards", &TrelloSandbox::memberBoards, "read"},
    {"GET", "1/lists/*/cards", &TrelloSandbox::listCards, "read"},
    {"GET", "1/cards/*", &TrelloSandbox::card, "read"},
    {"POST", "1/cards", &TrelloSandbox::addCard, "write"},
    {"POST", "1/cards/*/attachments", &TrelloSandbox::addAttachment, "write"},
};

std::unique_ptr<SandboxService> TrelloSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<TrelloSandbox>(context);
}

SandboxResponse TrelloSandbox::respond(const SandboxRequest& request) {
    if (const auto* endpoint = endpointFor<TrelloSandbox>(request, endpoints)) {
        auto refusal = refusalOf(request, endpoint->scope);
        return refusal ? *std::move(refusal) : (this->*endpoint->handler)(request);
    }
    return refused(404, "Cannot " + request.method + " " + request.path);
}

std::optional<SandboxResponse> TrelloSandbox::refusalOf(const SandboxRequest& request,
                                                        std::string_view scope) {
    const auto key = request.parameter("key").value_or("");
    const auto token = request.parameter("token").value_or("");
    if (key.empty()) {
        return refused(401, "invalid key");
    }
    const auto* grant = context_.tokens.anyAccess(token);
    if (!grant || grant->service != "Trello") {
        return refused(401, "invalid token");
    }
    if (!grant->clientID.empty() && grant->clientID != key) {
        return refused(401, "invalid key");
    }
    if (!context_.tokens.access(token)) {
        return refused(401, "expired token");
    }
    if (!hasScope(grant->scope, scope)) {
        return refused(401, "unauthorized permission requested");
    }
    if (!request.bodyProblem.empty()) {
        return refused(400, "invalid body: " + request.bodyProblem);
    }
    return std::nullopt;
}

SandboxResponse TrelloSandbox::failure(int status) const {
    if (status == 429) {
        return SandboxResponse::json(
            JSONObject{{"error", "API_TOKEN_LIMIT_EXCEEDED"}, {"message", "Rate limit exceeded"}}, status);
    }
    if (status == 401) {
        return SandboxResponse::text("invalid token", status);
    }
    return SandboxService::failure(status);
}

SandboxResponse TrelloSandbox::member(const SandboxRequest& request) {
    const auto* grant = context_.tokens.access(request.parameter("token").value_or(""));
    const auto whole = trelloMemberJSON(context_.settings.paidPlan, hasScope(grant->scope, "account"));
    auto chosen = withTrelloFields(whole, request.queryValue("fields").value_or(""));
    return chosen ? SandboxResponse::json(std::move(*chosen)) : refused(400, "invalid value for fields");
}

SandboxResponse TrelloSandbox::memberBoards(const SandboxRequest& request) {
    const auto filter = request.queryValue("filter").value_or("all");
    const auto lists = request.queryValue("lists").value_or("none");
    const auto fields = request.queryValue("fields").value_or("");
    if (!isFilter(filter)) {
        return refused(400, "invalid value for filter");
    }
    if (!isFilter(lists)) {
        return refused(400, "invalid value for lists");
    }
    JSONValue::Array boards;
    for (const auto& board : store_.boards()) {
        if (!isShownBy(filter, board.closed)) {
            continue;
        }
        auto chosen = withTrelloFields(trelloBoardJSON(board), fields);
        if (!chosen) {
            return refused(400, "invalid value for fields");
        }
        JSONValue::Array shown;
        for (const auto& list : board.lists) {
            auto ofList =
                withTrelloFields(trelloListJSON(board, list), request.queryValue("list_fields").value_or(""));
            if (!ofList) {
                return refused(400, "invalid value for list_fields");
            }
            if (isShownBy(lists, list.closed)) {
                shown.push_back(std::move(*ofList));
            }
        }
        if (lists != "none") {
            chosen->set("lists", std::move(shown));
        }
        boards.push_back(std::move(*chosen));
    }
    return SandboxResponse::json(std::move(boards));
}

SandboxResponse TrelloSandbox::listCards(const SandboxRequest& request) {
    if (!isTrelloID(request.segments[2])) {
        return refused(400, "invalid id");
    }
    auto place = store_.findList(request.segments[2]);
    if (!place.list) {
        return refused(404, "The requested resource was not found.");
    }
    const auto page = pageOf(request, place.list->cards);
    if (!page) {
        return refused(400, page.error());
    }
    JSONValue::Array cards;
    for (auto& card : *page) {
        place.card = &card;
        cards.push_back(trelloCardJSON(place));
    }
    return SandboxResponse::json(std::move(cards));
}

SandboxResponse TrelloSandbox::card(const SandboxRequest& request) {
    if (!isTrelloID(request.segments[2])) {
        return refused(400, "invalid id");
    }
    const auto place = store_.findCard(request.segments[2]);
    return place.card ? SandboxResponse::json(trelloCardJSON(place))
                      : refused(404, "The requested resource was not found.");
}

SandboxResponse TrelloSandbox::addCard(const SandboxRequest& request) {
    const auto listID = request.parameter("idList").value_or("");
    if (!isTrelloID(listID)) {
        return refused(400, "invalid value for idList");
    }
    auto place = store_.findList(listID);
    if (!place.list) {
        return refused(404, "The requested resource was not found.");
    }
    auto name = request.parameter("name").value_or("");
    auto desc = request.parameter("desc").value_or("");
    if (utf16Length(name) > maximumText) {
        return refused(400, "invalid value for name");
    }
    if (utf16Length(desc) > maximumText) {
        return refused(400, "invalid value for desc");
    }
    if (store_.cardCount() >= TrelloStore::maximumCardCount) {
        return refused(403, "There are as many cards as the sandbox keeps; reset it.");
    }
    place.card = &store_.addCard(place, std::move(name), std::move(desc));
    return SandboxResponse::json(trelloCardJSON(place));
}

SandboxResponse TrelloSandbox::addAttachment(const SandboxRequest& request) {
    if (!isTrelloID(request.segments[2])) {
        return refused(400, "invalid id");
    }
    const auto place = store_.findCard(request.segments[2]);
    if (!place.card) {
        return refused(404, "The requested resource was not found.");
    }
    if (place.card->attachments.size() >= maximumAttachmentCount) {
        return refused(403, "The card has as many attachments as it may.");
    }
    const auto file = filePart(request, "file", attachmentLimit());
    if (file) {
        return addFile(request, place, **file);
    }
    if (file.error() != UploadProblem::missing) {
        return uploadRefusal(file.error());
    }
    const auto url = request.parameter("url");
    if (!url || !(url->starts_with("http://") || url->starts_with("https://")) || !URL::parse(*url)) {
        return refused(400, request.parts.empty() && !url ? "No file or url given" : "invalid value for url");
    }
    const auto& added = place.card->attachments.emplace_back(TrelloAttachmentRecord{
        .id = store_.newID(),
        .name = request.parameter("name").value_or(*url),
        .mimeType = "",
        .date = Date::now(),
        .url = *url,
    });
    return SandboxResponse::json(trelloAttachmentJSON(added));
}

SandboxResponse TrelloSandbox::addFile(const SandboxRequest& request, const TrelloPlace& place,
                                       const FormPart& file) {
    const auto name = request.parameter("name").value_or(*file.fileName);
    const auto stored = storedFile(context_.files, file, name,
                                   request.parameter("mimeType").value_or(mediaTypeOfFile(file, name)));
    const auto id = store_.newID();
    const auto& added = place.card->attachments.emplace_back(TrelloAttachmentRecord{
        .id = id,
        .name = name,
        .mimeType = stored.mediaType,
        .bytes = stored.size,
        .date = Date::now(),
        .url = "https://trello.com/1/cards/" + place.card->id + "/attachments/" + id + "/download/" +
               percentEncodeBytes(name, AllowedCharacters::pathSegment),
        .path = stored.path,
    });
    return SandboxResponse::json(trelloAttachmentJSON(added));
}

std::uint64_t TrelloSandbox::attachmentLimit() const {
    return context_.settings.attachmentLimit.value_or(context_.settings.paidPlan ? paidAttachment
                                                                                 : freeAttachment);
}

JSONObject TrelloSandbox::state() const {
    return {{"user", trelloMemberJSON(context_.settings.paidPlan, true)},
            {"boards", trelloState(store_.boards())}};
}

void TrelloSandbox::reset() {
    store_ = TrelloStore();
}

} // namespace zelto::sandbox
