#pragma once

#include <ZeltoIntegrations/Todoist/TodoistExporter.h>

#include <Platform/JSON/JSONValue.h>

#include <Support/NetworkExport.h>
#include <Support/ServiceServer.h>

#include <map>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zelto {

// With letters, from "A", in place of the UUIDs, in the order in which they appear first.
inline std::string withoutUUIDs(const std::string& text) {
    static const std::regex pattern("[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}");
    std::string replaced;
    std::map<std::string, char> letters;
    auto end = text.begin();
    for (std::sregex_iterator found(text.begin(), text.end(), pattern), none; found != none; ++found) {
        const auto letter = letters.emplace(found->str(), static_cast<char>('A' + letters.size()));
        replaced.append(end, (*found)[0].first).push_back(letter.first->second);
        end = (*found)[0].second;
    }
    return replaced.append(end, text.end());
}

// Responds as Todoist does.
class TodoistService {
  public:
    Replaceable<std::string> data{
        R"({"full_sync":true,"projects":[{"id":"p1","name":"Inbox"},{"id":"p2","name":"Work"}],)"
        R"("user":{"email":"me@example.org","is_premium":false,"premium_until":null}})"};

    // How the commands of a request end, in JSON, by their place in it; those behind are "ok".
    Replaceable<std::vector<std::string>> statuses;

    // Behind the name of the file, which is in the response to its upload.
    Replaceable<std::string> uploadInfo{
        R"("file_size":7,"file_url":"https://files.example/1","upload_state":"completed"})"};

    PlayedResponse usualResponse(const ReceivedRequest& request) const {
        if (const auto file = uploadedFile(request)) {
            const auto name = JSONValue(*file).text().value();
            return PlayedResponse::json(R"({"file_name":)" + name + "," + *uploadInfo.get());
        }
        return PlayedResponse::json(hasCommands(request) ? outcome(request) : *data.get());
    }

    std::optional<std::string> madeBy(const ReceivedRequest& request) const {
        return hasCommands(request) ? std::optional<std::string>("task") : std::nullopt;
    }

    static std::string comparable(const std::string& text) { return withoutUUIDs(text); }

    static std::vector<JSONValue> commands(const ReceivedRequest& request) {
        const auto body = JSONValue::parse(request.body);
        const auto* all = body ? body->find("commands") : nullptr;
        return all && all->asArray() ? *all->asArray() : std::vector<JSONValue>();
    }

  private:
    static bool hasCommands(const ReceivedRequest& request) { return !commands(request).empty(); }

    std::string outcome(const ReceivedRequest& request) const {
        JSONObject status;
        JSONObject mapping;
        const auto known = statuses.get();
        std::size_t index = 0;
        for (const auto& command : commands(request)) {
            const auto text = index < known->size() ? (*known)[index] : R"("ok")";
            status.set(*command.find("uuid")->asString(), JSONValue::parse(text).value());
            if (text == R"("ok")") {
                mapping.set(*command.find("temp_id")->asString(), "id" + std::to_string(index));
            }
            ++index;
        }
        return JSONValue(JSONObject{{"sync_status", std::move(status)},
                                    {"temp_id_mapping", std::move(mapping)},
                                    {"sync_token", "s"}})
            .text()
            .value();
    }
};

using TodoistServer = ServiceServer<TodoistService>;

// An export of "Title" with its text into the project "Work".
class TodoistExport : public NetworkExport<TodoistExporter> {
  public:
    TodoistExport() : NetworkExport(ServiceType::TodoIst) {
        configuration.saveTo = TodoistSaveToInfo{{.id = "p2", .name = "Work"}};
        configuration.userTitle = "Title";
    }
};

} // namespace zelto
