#include <ZeltoIntegrations/Export/DriveExport.h>

#include <algorithm>

namespace zelto {

std::vector<std::string> DriveExport::names(const std::string& messageName) const {
    std::vector<std::string> names = {messageName};
    for (const auto& attachment : attachments) {
        names.push_back(attachment.name);
    }
    return names;
}

bool DriveExport::isTwin(std::size_t index, const std::string& messageName) const {
    const auto all = names(messageName);
    const auto own = all.begin() + static_cast<std::ptrdiff_t>(index) + 1;
    return std::find(all.begin(), own, *own) != own;
}

} // namespace zelto
