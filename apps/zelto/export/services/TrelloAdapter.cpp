#include "export/services/TrelloAdapter.h"

#include <ZeltoIntegrations/Trello/TrelloConstants.h>

#include <Platform/Text.h>
#include <Platform/URLComponents.h>

#include <string_view>

namespace zelto::cli {

namespace {

constexpr std::size_t maximumCardText = 16'384;
// What all servers are asked to take (RFC 9110, section 4.1): the texts of a card travel in its address.
constexpr std::size_t maximumURL = 8'000;

void checkCard(LimitCheck& limits, const SentRequest& request) {
    const auto url = URL::parse(request.url);
    if (!url) {
        return;
    }
    for (const auto& [name, value] : URLComponents::of(*url).queryItems) {
        if (name == "name" || name == "desc") {
            limits.check(name == "name" ? "the card's name" : "the card's description",
                         characterCount(value.value_or("")), maximumCardText, "characters");
        }
    }
    limits.check("the address of the request that makes the card", request.url.size(), maximumURL, "bytes");
}

} // namespace

TargetTree TrelloAdapter::targetTree(const TrelloFullData& data) {
    TargetTree tree{.levels = {"board", "list"}, .nodes = {}};
    for (const auto& board : data.boards) {
        auto& node = tree.nodes.emplace_back(TargetNode{board.id, board.name.value_or("")});
        for (const auto& list : board.lists) {
            node.children.push_back({list.id, list.name.value_or("")});
        }
    }
    return tree;
}

void TrelloAdapter::setTarget(TrelloExportConfiguration& configuration, const TrelloFullData& data,
                              const TargetPath& path) {
    const auto& board = data.boards.at(path.at(0));
    configuration.saveTo = TrelloSaveToInfo{.board = board, .list = board.lists.at(path.at(1))};
}

std::string TrelloAdapter::targetName(const TrelloExportConfiguration& configuration) {
    if (!configuration.saveTo) {
        return {};
    }
    const auto& [board, list] = *configuration.saveTo;
    return nameOrIdentifier(board.name, board.id) + "/" + nameOrIdentifier(list.name, list.id);
}

std::string TrelloAdapter::standInResponse(const SentRequest& request) {
    return request.parts.empty() ? R"({"id":"NEW-CARD"})" : R"({"id":"NEW-ATTACHMENT"})";
}

std::vector<PassedLimit> TrelloAdapter::passedLimits(const TrelloExporter& exporter,
                                                     const TrelloExportConfiguration& configuration,
                                                     const std::vector<SentRequest>& requests) {
    const auto user = exporter.user();
    const auto sizeLimit = TrelloConstants::attachmentSizeLimit(user && user->isPremium);
    LimitCheck limits;
    for (const auto& request : requests) {
        if (request.parts.empty()) {
            checkCard(limits, request);
        }
    }
    limits.checkFiles(requests, static_cast<std::uint64_t>(sizeLimit));
    limits.check("the card's list of attachments", configuration.attachments.selected().size(),
                 static_cast<std::uint64_t>(TrelloConstants::attachmentsCountLimit), "files");
    return limits.passed();
}

} // namespace zelto::cli
