#pragma once

#include "export/Targets.h"

#include <ZeltoIntegrations/Trello/TrelloExportConfiguration.h>

// What each service's exports can be put into: its data as a tree, the choice of one target in it, and the
// name of the one that is chosen.

namespace zelto::cli {

TargetTree targetTree(const TrelloFullData& data);
void setTarget(TrelloExportConfiguration& configuration, const TrelloFullData& data, const TargetPath& path);
std::string targetName(const TrelloExportConfiguration& configuration);

} // namespace zelto::cli
