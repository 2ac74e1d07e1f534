#include "commandline/Commands.h"
#include "meeting/MeetingDryRun.h"
#include "meeting/MeetingFields.h"
#include "meeting/MeetingWork.h"

#include <utility>

namespace zelto::cli {

namespace {

using CreationCompletion = MeetingCreator::CreationCompletion;

// Of a meeting that there was before.
MeetingCreator::ChangeCompletion withIdentifier(const std::string& id, ServiceType type,
                                                CreationCompletion completion) {
    return [id, type, completion = std::move(completion)](Result<void, MeetingCreatorError> ended) mutable {
        if (!ended) {
            return completion(failure(ended.error()));
        }
        completion(ConferenceDetails{.id = id, .joinURL = {}, .callInfo = {}, .type = type});
    };
}

MeetingOperation creation(const MeetingFields& fields) {
    return {.action = MeetingAction::create,
            .meeting = {},
            .title = fields.title,
            .begin = [fields](MeetingCreator& creator, CreationCompletion completion) {
                creator.createMeeting(fields.title, fields.start, fields.end, std::move(completion));
            }};
}

MeetingOperation update(const std::string& id, ServiceType type, const MeetingFields& fields) {
    return {.action = MeetingAction::update,
            .meeting = id,
            .title = fields.title,
            .begin = [=](MeetingCreator& creator, CreationCompletion completion) {
                creator.updateMeeting(id, fields.title, fields.start, fields.end,
                                      withIdentifier(id, type, std::move(completion)));
            }};
}

MeetingOperation deletion(const std::string& id, ServiceType type) {
    return {.action = MeetingAction::delete_,
            .meeting = id,
            .title = {},
            .begin = [=](MeetingCreator& creator, CreationCompletion completion) {
                creator.deleteMeeting(id, withIdentifier(id, type, std::move(completion)));
            }};
}

// Without any of them it would take from the meeting all that it has, on a service that keeps nothing that is
// left out.
Outcome<MeetingFields> fieldsOfUpdate(const Invocation& invocation) {
    auto fields = MeetingFields::from(invocation);
    if (fields && *fields == MeetingFields()) {
        return wrongUsage("There is nothing to write into the meeting; give --title, --start or --end.");
    }
    return fields;
}

JSONObject described(const ConferenceDetails& details) {
    JSONObject members{{"id", details.id}};
    if (details.joinURL) {
        members.set("joinURL", *details.joinURL);
    }
    if (details.callInfo) {
        members.set("callInfo", *details.callInfo);
    }
    members.set("type", std::string(nameOf(details.type)));
    return members;
}

std::string linesOf(const ConferenceDetails& details, const Terminal& terminal) {
    std::string lines = "Meeting: " + terminal.shown(details.id) + "\n";
    if (details.joinURL) {
        lines += "Join: " + terminal.shown(*details.joinURL) + "\n";
    }
    if (details.callInfo) {
        lines += "Call information: " + terminal.shownLines(*details.callInfo) + "\n";
    }
    return lines;
}

Report reportOf(const ConferenceDetails& details, MeetingAction action, const Terminal& terminal) {
    Report report{.members = described(details), .text = {}};
    switch (action) {
    case MeetingAction::create:
        report.text = linesOf(details, terminal);
        return report;
    case MeetingAction::update:
        report.text = terminal.shown("Changed the meeting " + details.id + ".") + "\n";
        break;
    case MeetingAction::delete_:
        report.text = terminal.shown("Deleted the meeting " + details.id + ".") + "\n";
        break;
    }
    report.isNotice = true;
    return report;
}

Outcome<Report> perform(MeetingWork& work, const MeetingOperation& operation, const Terminal& terminal) {
    if (work.isDryRun()) {
        return meetingDryRun(work, operation, terminal);
    }
    const auto details = work.run(operation);
    return details ? reportOf(*details, operation.action, terminal)
                   : Outcome<Report>(failure(details.error()));
}

} // namespace

Outcome<Report> runMeeting(const Invocation& invocation, const Terminal&) {
    return commandsBelow(*invocation.command);
}

Outcome<Report> runMeetingCreate(const Invocation& invocation, const Terminal& terminal) {
    const auto fields = MeetingFields::from(invocation);
    auto work = fields ? MeetingWork::open(invocation) : failure(fields.error());
    return work ? perform(*work, creation(*fields), terminal) : failure(work.error());
}

Outcome<Report> runMeetingUpdate(const Invocation& invocation, const Terminal& terminal) {
    const auto fields = fieldsOfUpdate(invocation);
    auto work = fields ? MeetingWork::open(invocation) : failure(fields.error());
    if (!work) {
        return failure(work.error());
    }
    const auto id = invocation.value("MEETING").value();
    return perform(*work, update(id, work->serviceType(), *fields), terminal);
}

Outcome<Report> runMeetingDelete(const Invocation& invocation, const Terminal& terminal) {
    auto work = MeetingWork::open(invocation);
    if (!work) {
        return failure(work.error());
    }
    const auto id = invocation.value("MEETING").value();
    return perform(*work, deletion(id, work->serviceType()), terminal);
}

} // namespace zelto::cli
