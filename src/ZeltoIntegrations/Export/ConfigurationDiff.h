#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>

#include <optional>
#include <string>
#include <utility>
#include <variant>
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

    // A member of one case of a choice that both may have made: differs also where one of them chose another
    // case. An optional member that has no value is as one that the other case does not have.
    template <class Case, class Choice, class Part>
    ConfigurationDiff& casePart(std::string name, Part Case::*member, const std::optional<Choice>& original,
                                const std::optional<Choice>& user) {
        const auto partOf = [member](const std::optional<Choice>& choice) {
            const auto* chosen = choice ? std::get_if<Case>(&choice->value) : nullptr;
            return chosen ? std::optional(chosen->*member) : std::nullopt;
        };
        return field(std::move(name), partOf(original), partOf(user));
    }

    // "webLinkVisibility" and "teamId", of configurations that have these fields.
    template <class Configuration>
    ConfigurationDiff& webLinks(const Configuration& original, const Configuration& user) {
        return field("webLinkVisibility", original.webLinkVisibility, user.webLinkVisibility)
            .field("teamId", original.teamId, user.teamId);
    }

    // "attachments", if the user's selection has another size than what was selected from the start.
    ConfigurationDiff& attachments(const IntegrationAttachments& original, const IntegrationAttachments& user,
                                   bool attachmentsAreSelectedByDefault);

    const std::vector<std::string>& names() const { return names_; }

  private:
    std::vector<std::string> names_;
};

} // namespace zelto
