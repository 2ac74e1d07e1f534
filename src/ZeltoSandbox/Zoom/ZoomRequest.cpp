#include <ZeltoSandbox/Zoom/ZoomRequest.h>

#include <Platform/ISO8601.h>
#include <Platform/Text.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::pair<std::int64_t, std::string_view> kinds[] = {
    {zoomInstantType, "instant"},
    {zoomScheduledType, "scheduled"},
    {zoomRecurringType, "recurring"},
    {zoomFixedRecurringType, "recurring at fixed times"},
};

constexpr std::size_t maximumTopic = 200;                                          // characters
constexpr std::size_t maximumPassword = 10;                                        // characters
constexpr std::int64_t maximumDuration = std::numeric_limits<std::int32_t>::max(); // minutes
constexpr TimeInterval usualDuration{3600};
constexpr TimeInterval minute{60};
constexpr const char* usualTopic = "Zoom Meeting";
constexpr const char* invalidField = "Invalid field.";

// "2026-12-24T09:00:00Z", or without "Z" in the account's time zone, which is UTC.
std::optional<Date> startOf(std::string_view text) {
    const std::string_view form = "2026-12-24T09:00:00Z";
    const bool isWhole = text.size() == form.size() && text.back() == 'Z';
    return isWhole || text.size() == form.size() - 1 ? parseISO8601(text) : std::nullopt;
}

bool isPassword(std::string_view text) {
    constexpr std::string_view allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789@-_*";
    return text.size() <= maximumPassword && text.find_first_not_of(allowed) == std::string_view::npos;
}

// Reads the members of a body and collects what is wrong with them.
class Reader {
  public:
    explicit Reader(const JSONValue& body) : body_(body) {}

    std::optional<std::string> topic() {
        const auto text = textOf("topic");
        if (text && characterCount(*text) > maximumTopic) {
            fail("topic", "The size must be between 0 and 200.");
        }
        return text;
    }

    std::optional<std::int64_t> type() {
        const auto number = numberOf("type");
        if (number && zoomKind(*number).empty()) {
            fail("type", invalidField);
        }
        const auto* recurrence = body_.find("recurrence");
        if (number == zoomFixedRecurringType && (!recurrence || !recurrence->asObject())) {
            fail("recurrence", invalidField);
        }
        return number;
    }

    std::optional<Date> start() {
        const auto text = textOf("start_time");
        const auto date = text ? startOf(*text) : std::nullopt;
        if (text && !date) {
            fail("start_time", invalidField);
        }
        return date;
    }

    std::optional<TimeInterval> duration() {
        const auto minutes = numberOf("duration");
        if (minutes && (*minutes < 0 || *minutes > maximumDuration)) {
            fail("duration", invalidField);
            return std::nullopt;
        }
        return minutes ? std::optional(minute * static_cast<double>(*minutes)) : std::nullopt;
    }

    void checkOthers() {
        textOf("timezone");
        textOf("agenda");
        if (const auto password = textOf("password"); password && !isPassword(*password)) {
            fail("password", invalidField);
        }
    }

    std::vector<ZoomError::Field> takeProblems() { return std::move(problems_); }

  private:
    void fail(std::string name, std::string message) {
        problems_.push_back({std::move(name), std::move(message)});
    }

    std::optional<std::string> textOf(const std::string& key) {
        const auto* member = body_.find(key);
        if (!member) {
            return std::nullopt;
        }
        if (!member->asString()) {
            fail(key, invalidField);
            return std::nullopt;
        }
        return *member->asString();
    }

    std::optional<std::int64_t> numberOf(const std::string& key) {
        const auto* member = body_.find(key);
        if (member && !member->asInt64()) {
            fail(key, invalidField);
        }
        return member ? member->asInt64() : std::nullopt;
    }

    const JSONValue& body_;
    std::vector<ZoomError::Field> problems_;
};

bool hasFixedTime(std::string_view kind) {
    return kind == zoomKind(zoomScheduledType) || kind == zoomKind(zoomFixedRecurringType);
}

} // namespace

std::string_view zoomKind(std::int64_t type) {
    const auto found = std::ranges::find(kinds, type, &std::pair<std::int64_t, std::string_view>::first);
    return found == std::end(kinds) ? std::string_view() : found->second;
}

std::int64_t zoomType(std::string_view kind) {
    return std::ranges::find(kinds, kind, &std::pair<std::int64_t, std::string_view>::second)->first;
}

Result<MeetingDetails, ZoomError> zoomDetails(const JSONValue& body,
                                              const std::optional<MeetingDetails>& before) {
    Reader reader(body);
    const auto topic = reader.topic();
    const auto type = reader.type();
    const auto start = reader.start();
    const auto duration = reader.duration();
    reader.checkOthers();
    if (auto problems = reader.takeProblems(); !problems.empty()) {
        return failure(ZoomError::validation(std::move(problems)));
    }
    auto details = before.value_or(MeetingDetails{
        .title = {}, .start = {}, .end = {}, .kind = std::string(zoomKind(zoomScheduledType))});
    details.title = topic.value_or(details.title);
    if (details.title.empty()) {
        details.title = usualTopic;
    }
    if (type) {
        details.kind = zoomKind(*type);
    }
    if (!hasFixedTime(details.kind)) {
        details.start.reset();
        details.end.reset();
        return details;
    }
    const auto length = details.start && details.end ? *details.end - *details.start : usualDuration;
    details.start = start ? *start : details.start.value_or(Date::now());
    details.end = *details.start + duration.value_or(length);
    return details;
}

} // namespace zelto::sandbox
