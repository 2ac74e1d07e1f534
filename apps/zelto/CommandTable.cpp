#include "CommandTable.h"

#include <algorithm>
#include <numeric>
#include <string>

namespace zelto::cli {

namespace {

const OptionSpec to = {"--to", "ID|SERVICE", "The account, or a service with one account",
                       ValueKind::account};

const ArgumentSpec mail = {"MAIL", "An .eml file, a meeting note in .json, or - for a mail on standard input",
                           ValueKind::mail};

const ArgumentSpec service = {"SERVICE", "A service's name, as `zelto services` lists it",
                              ValueKind::service};

const OptionSpec webLink = {"--web-link", "URL", "The message's address on the web"};

const std::vector<CommandSpec> table = {
    {"services",
     "List the services",
     "Lists every service with the way an account of it is connected, and whether this program can export to "
     "it.",
     {},
     {},
     {"zelto services", "zelto services --json"}},
    {"connect",
     "Connect an account",
     "Connects an account of a service. An application on this machine needs no sign-in; it need not be "
     "connected "
     "before its first export either. --name tells several accounts of one application apart.",
     {service},
     {{"--name", "USER", "The account's name"}},
     {"zelto connect bear", "zelto connect things --name work"}},
    {"accounts",
     "List the connected accounts",
     "Lists the connected accounts in the order of their connection, with the identifier that --to takes.",
     {},
     {},
     {"zelto accounts", "zelto accounts --json"}},
    {"accounts remove",
     "Remove an account",
     "Removes an account and its secrets from this machine. Nothing is changed on the service.",
     {{"ID", "The account's identifier, as `zelto accounts` lists it", ValueKind::account}},
     {},
     {"zelto accounts remove Bear", "zelto accounts remove 'Things+work'"}},
    {"config",
     "Show what an export would start with",
     "Prints the configuration that the service's exporter offers for a mail, as JSON. Edited and saved to a "
     "file, "
     "it goes back in by `zelto export --config FILE`.",
     {mail},
     {to, webLink},
     {"zelto config examples/mails/project-kickoff.eml --to bear",
      "zelto config examples/mails/project-kickoff.eml --to things > things.json"}},
    {"preview",
     "Show what would be sent",
     "Prints the text that an export as the type would send.",
     {mail},
     {to, {"--as", "TYPE", "The form of the export", ValueKind::contentType}, webLink},
     {"zelto preview examples/mails/project-kickoff.eml --to bear --as emailBacklink",
      "zelto preview examples/mails/project-kickoff.eml --to things --as backLink"}},
    {"export",
     "Send a mail or a meeting note to a service",
     "Sends one mail or meeting note to a service: a task, a note or whatever the service makes of it. "
     "Options "
     "change single fields of what the exporter offers; --config gives all of them.",
     {mail},
     {to,
      {"--as", "TYPE", "The form of the export", ValueKind::contentType},
      {"--title", "TEXT", "The title instead of the mail's subject"},
      {"--note", "TEXT", "A note of your own, before the mail's text"},
      {"--tags", "A,B", "Tags, separated by commas"},
      {"--due", "ISO8601", "The due date, like 2026-03-05T14:00:00Z"},
      {"--deadline", "ISO8601", "The deadline, like 2026-03-05"},
      {"--attach", "all|none|NAME", "Which attachments go along", ValueKind::text, {}, true},
      {"--config", "FILE", "The whole configuration, as `zelto config` prints it", ValueKind::file},
      webLink,
      {"--opener", "COMMAND", "Opens the URL, given as its last argument; - prints it instead",
       ValueKind::command},
      {"--pdf-converter", "COMMAND", "Makes a PDF: run as COMMAND IN.html OUT.pdf", ValueKind::command},
      {"--dry-run", "", "Do all but the last step: nothing is opened, sent or remembered"},
      {"--progress",
       "KIND",
       "How progress is shown on standard error",
       ValueKind::text,
       {"bar", "json", "none"}}},
     {"zelto export examples/mails/project-kickoff.eml --to things --due 2026-12-24T09:00:00Z --opener -",
      "zelto export examples/mails/project-kickoff.eml --to bear --tags work,mail --note 'Call back' "
      "--dry-run"}},
    {"completion",
     "Print a shell's completions",
     "Prints what makes a shell complete this program's commands and options.",
     {{"SHELL", "The shell", ValueKind::text, {"bash", "zsh", "fish"}}},
     {},
     {"zelto completion bash > ~/.local/share/bash-completion/completions/zelto",
      "zelto completion fish > ~/.config/fish/completions/zelto.fish"}},
};

const std::vector<OptionSpec> global = {
    {"--data-dir", "DIR", "Where accounts are kept [$XDG_DATA_HOME/zelto]", ValueKind::directory},
    {"--keychain", "KIND", "Where secrets are kept", ValueKind::text, {"secret-service", "file", "memory"}},
    {"--json", "", "Print exactly one JSON document, whatever the outcome"},
    {"--quiet", "", "Print nothing but what was asked for"},
    {"--verbose", "", "Show the log on standard error; secrets are masked"},
    {"--help", "", "Show help for the command"},
    {"--version", "", "Show the version"},
};

} // namespace

std::span<const CommandSpec> commands() {
    return table;
}

std::span<const OptionSpec> globalOptions() {
    return global;
}

const CommandSpec* findCommand(std::string_view name) {
    const auto found = std::ranges::find(table, name, &CommandSpec::name);
    return found == table.end() ? nullptr : &*found;
}

std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const auto above = row[j];
            row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row.back();
}

std::optional<std::string_view> nearestCommand(std::string_view name) {
    return nearestName(name, table, &CommandSpec::name);
}

} // namespace zelto::cli
