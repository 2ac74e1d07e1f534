#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// Collects the names of the fields in which the user's configuration differs from the one that was offered.
class ConfigurationDiff {
  public:
    template <class T> ConfigurationDiff& field(std::string name, const T& original, const T& user) {
        if (!(original == user)) {
            names_.push_back(std::move(name));
        }
        return *this;
    }

    // A member of what both may have.
    template <class Whole, class Part>
    ConfigurationDiff& part(std::string name, Part Whole::*member, const std::optional<Whole>& original,
                            const std::optional<Whole>& user) {
        const bool isSame = original && user ? (*original).*member == (*user).*member : !original && !user;
        return field(std::move(name), true, isSame);
    }

    // "attachments", if the user's selection has another size than what was selected from the start.
    ConfigurationDiff& attachments(const IntegrationAttachments& original, const IntegrationAttachments& user,
                                   bool attachmentsAreSelectedByDefault);

    const std::vector<std::string>& names() const { return names_; }

  private:
    std::vector<std::string> names_;
};

} // namespace zelto
