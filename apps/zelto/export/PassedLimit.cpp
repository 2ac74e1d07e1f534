#include "export/PassedLimit.h"

#include <Platform/ASCII.h>

#include <utility>

namespace zelto::cli {

void LimitCheck::check(std::string what, std::uint64_t actual, std::uint64_t limit, std::string unit,
                       std::string consequence) {
    if (actual > limit) {
        passed_.push_back({std::move(what), limit, actual, std::move(unit), std::move(consequence)});
    }
}

void LimitCheck::checkFiles(const std::vector<SentRequest>& requests, std::uint64_t sizeLimit) {
    for (const auto& request : requests) {
        for (const auto& part : request.parts) {
            if (part.fileName) {
                check("the file \"" + *part.fileName + "\"", part.size, sizeLimit, "bytes");
            }
        }
    }
}

std::string sentenceOf(const PassedLimit& limit) {
    auto text = limit.what + " would pass the limit of " + std::to_string(limit.limit) + " " + limit.unit +
                ": it has " + std::to_string(limit.actual) +
                (limit.consequence.empty() ? "" : "; " + limit.consequence) + ".";
    text.front() = toASCIIUpper(text.front());
    return text;
}

JSONValue described(const std::vector<PassedLimit>& limits) {
    JSONValue::Array all;
    for (const auto& each : limits) {
        JSONObject limit{{"what", each.what},
                         {"limit", static_cast<std::int64_t>(each.limit)},
                         {"actual", static_cast<std::int64_t>(each.actual)},
                         {"unit", each.unit}};
        if (!each.consequence.empty()) {
            limit.set("consequence", each.consequence);
        }
        all.emplace_back(std::move(limit));
    }
    return all;
}

} // namespace zelto::cli
