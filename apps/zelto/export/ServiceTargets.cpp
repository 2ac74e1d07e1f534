#include "export/ServiceTargets.h"

namespace zelto::cli {

TargetTree targetTree(const TrelloFullData& data) {
    TargetTree tree{.levels = {"board", "list"}, .nodes = {}};
    for (const auto& board : data.boards) {
        auto& node = tree.nodes.emplace_back(TargetNode{board.id, board.name.value_or("")});
        for (const auto& list : board.lists) {
            node.children.push_back({list.id, list.name.value_or("")});
        }
    }
    return tree;
}

void setTarget(TrelloExportConfiguration& configuration, const TrelloFullData& data, const TargetPath& path) {
    const auto& board = data.boards.at(path.at(0));
    configuration.saveTo = TrelloSaveToInfo{.board = board, .list = board.lists.at(path.at(1))};
}

std::string targetName(const TrelloExportConfiguration& configuration) {
    if (!configuration.saveTo) {
        return {};
    }
    const auto& [board, list] = *configuration.saveTo;
    return board.name.value_or(board.id) + "/" + list.name.value_or(list.id);
}

} // namespace zelto::cli
