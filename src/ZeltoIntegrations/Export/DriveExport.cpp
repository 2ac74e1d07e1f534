#include <ZeltoIntegrations/Export/DriveExport.h>

#include <algorithm>

namespace zelto {

std::string DriveExport::attachmentName(std::size_t index) const {
    auto name = attachments.at(index).name;
    std::ranges::replace(name, '/', '_');
    return name;
}

std::vector<std::string> DriveExport::names(const std::string& messageName) const {
    std::vector<std::string> names = {messageName};
    for (std::size_t index = 0; index < attachments.size(); ++index) {
        names.push_back(attachmentName(index));
    }
    return names;
}

bool DriveExport::isTwin(std::size_t index, const std::string& messageName) const {
    const auto all = names(messageName);
    const auto own = all.begin() + static_cast<std::ptrdiff_t>(index) + 1;
    return std::find(all.begin(), own, *own) != own;
}

} // namespace zelto
