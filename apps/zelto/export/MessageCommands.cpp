#include "accounts/SecretPlaces.h"
#include "commandline/Commands.h"
#include "export/MessageWork.h"
#include "export/NotesOfContent.h"

#include <Platform/Joined.h>

namespace zelto::cli {

namespace {

JSONValue described(const IntegrationExportPreview& preview) {
    const auto one = [](std::string_view name, JSONObject payload) {
        JSONObject object;
        object.set(name, std::move(payload));
        return JSONValue(std::move(object));
    };

    struct Described {
        decltype(one) make;

        JSONValue operator()(const IntegrationExportPreview::Pdf& pdf) const {
            return make("pdf", {{"name", pdf.name}});
        }

        JSONValue operator()(const IntegrationExportPreview::Email& mail) const {
            return make("email", {{"body", mail.body}});
        }

        JSONValue operator()(const IntegrationExportPreview::BackLink& link) const {
            return make("backLink", {{"url", link.url}});
        }

        JSONValue operator()(const IntegrationExportPreview::WebLink& link) const {
            return make("webLink", {{"url", link.url}});
        }

        JSONValue operator()(const IntegrationExportPreview::ExternalLink&) const {
            return make("externalLink", {});
        }
    };

    return std::visit(Described{one}, preview.value);
}

std::string textOf(const IntegrationExportPreview& preview) {
    struct Text {
        std::string operator()(const IntegrationExportPreview::Pdf& pdf) const { return pdf.name; }

        std::string operator()(const IntegrationExportPreview::Email& mail) const { return mail.body; }

        std::string operator()(const IntegrationExportPreview::BackLink& link) const { return link.url; }

        std::string operator()(const IntegrationExportPreview::WebLink& link) const { return link.url; }

        std::string operator()(const IntegrationExportPreview::ExternalLink&) const {
            return "The external link alone.";
        }
    };

    return std::visit(Text(), preview.value);
}

} // namespace

Outcome<Report> runConfig(const Invocation& invocation, const Terminal&) {
    const auto work = MessageWork::open(invocation, Effects::storesNothing);
    if (!work) {
        return failure(work.error());
    }
    const auto form = invocation.has("--names") ? ConfigurationForm::names : ConfigurationForm::record;
    const auto configuration = work->session->offeredConfiguration(invocation.value("--target"), form);
    if (!configuration) {
        return failure(explained(configuration.error(), work->workspace, work->account));
    }
    constexpr auto indent = 2;
    // Behind "result", so that this too goes back in by --config.
    return Report{*configuration,
                  terminalSafeJSON(JSONValue(*configuration).text(indent).value_or("{}")) + "\n"};
}

Outcome<Report> runPreview(const Invocation& invocation, const Terminal& terminal) {
    const auto edits = ConfigurationEdits::from(invocation);
    const auto work = edits ? MessageWork::open(invocation, Effects::storesNothing) : failure(edits.error());
    if (!work) {
        return failure(work.error());
    }
    const auto preview = work->session->preview(edits->saveAs);
    if (!preview) {
        return failure(explained(preview.error(), work->workspace, work->account));
    }
    if (!*preview) {
        const auto taken = work->session->takenTypes();
        return failure(Failure{
            "noPreview",
            work->service() + " has no preview of that type for this message; it takes " +
                joined(taken, ", ") + ".",
            withAnotherType(taken, work->session->usualType(), invocation.value("--as").value_or(""))});
    }
    Report report;
    report.members.set("preview", described(**preview));
    report.text = terminal.shownLines(textOf(**preview)) + "\n";
    addNotes(report.members, *work->notes);
    return report;
}

} // namespace zelto::cli
