#include <ZeltoIntegrations/Notion/NotionResponses.h>

#include <utility>

namespace zelto {

namespace {

std::optional<std::string> emailOf(std::optional<notion::Person> person) {
    return person ? std::move(person->email) : std::nullopt;
}

NotionDatabase toNotionDatabase(notion::Database database) {
    std::string title;
    for (const auto& text : database.title) {
        title += text.plain_text;
    }
    return {.id = std::move(database.id.rawValue), .title = std::move(title)};
}

} // namespace

NotionUser toNotionUser(notion::User user) {
    if (user.bot && user.bot->owner && user.bot->owner->user) {
        auto& owner = *user.bot->owner->user;
        return {.id = std::move(owner.id.rawValue),
                .name = std::move(owner.name),
                .email = emailOf(std::move(owner.person))};
    }
    return {.id = std::move(user.id.rawValue),
            .name = std::move(user.name),
            .email = emailOf(std::move(user.person))};
}

NotionDatabases toNotionDatabases(notion::ListResponse<notion::SearchResultItem> response) {
    NotionDatabases all{.databases = {}, .hasMore = response.has_more};
    for (auto& item : response.results) {
        if (item.database) {
            all.databases.push_back(toNotionDatabase(*std::move(item.database)));
        }
    }
    return all;
}

} // namespace zelto
