#include "commandline/CommandTable.h"

#include <algorithm>
#include <numeric>

namespace zelto::cli {

namespace {

const OptionSpec to = {
    "--to", "ID|SERVICE",
    "The account's identifier; or a service, which means its only account or the one used last",
    ValueKind::accountOrService};

const OptionSpec previewedAs = {"--as", "TYPE", "The form of the export; a service takes some of them",
                                ValueKind::contentType};

const OptionSpec exportedAs = {
    "--as", "TYPE",
    "The form of the export; a service takes some of them. It is remembered for the account, whose next "
    "exports have it too; `zelto config MAIL --to ID --names` shows it as saveAs",
    ValueKind::contentType};

const ArgumentSpec onlyAccount = {
    "ID", "The account's identifier, as `zelto accounts` lists it; or its service, if that has no other",
    ValueKind::account};

const ArgumentSpec mail = {"MAIL", "An .eml file, a meeting note in .json, or - for a mail on standard input",
                           ValueKind::mail};

const OptionSpec webLink = {"--web-link", "URL",
                            "The message's address on the web, for the forms that link to it"};

const OptionSpec target = {"--target", "PATH",
                           "What the export goes into, like \"Board/List\": names or identifiers that `zelto "
                           "targets` lists",
                           ValueKind::target};

const OptionSpec realAccount = {
    "--real-account", "",
    "With --sandbox: send an account's tokens there even if it was not connected in a sandbox"};

const OptionSpec exportTarget = {
    "--target", "PATH",
    "What the export goes into, like \"Board/List\": names or identifiers that `zelto targets` lists. It is "
    "remembered for the account, whose next exports go there too; `zelto config MAIL --to ID --names` shows it as "
    "saveTo",
    ValueKind::target};

// The options of a sign-in, after those that are the command's own.
std::vector<OptionSpec> withSignInOptions(std::vector<OptionSpec> options) {
    const std::vector<OptionSpec> shared = {
        {"--no-browser", "",
         "Print the page's address, for a browser on any machine, and take the address that it ends at"},
        {"--opener", "COMMAND", "Opens the page, given as its last argument", ValueKind::command},
        {"--redirect", "URL",
         "The address that your own client is registered with; at one of this machine, the program listens"},
        {"--token", "TOKEN",
         "An access token; - takes it from standard input, which a terminal does not show",
         ValueKind::secret},
        {"--refresh-token", "TOKEN", "What renews it; - takes the next line of standard input",
         ValueKind::secret},
        {"--expires-in", "SECONDS", "How long the access token is good from now on"},
        {"--login", "NAME", "The user name, for a service with a password"},
        {"--password-stdin", "", "Take the password from standard input, which a terminal does not show"},
        {"--follow", "", "With --sandbox: agree on its pages without a browser"}};
    options.insert(options.end(), shared.begin(), shared.end());
    return options;
}

const ArgumentSpec mcpServer = {"URL", "The server's address: https, or http on this machine"};

// What every command to a Model Context Protocol server takes.
std::vector<OptionSpec> withMcpOptions(std::vector<OptionSpec> options) {
    const std::vector<OptionSpec> shared = {
        {"--header", "'NAME: VALUE'", "A header field of every request", ValueKind::secret, {}, true},
        {"--header-stdin", "",
         "Read such fields from standard input, one a line: for secrets, which other users of the machine "
         "see on a command line"},
        {"--repeat", "N", "Do it N times in one session, and show the rate"},
        {"--timeout", "SECONDS", "Give up after so long in all, every repeat included [300]"}};
    options.insert(options.end(), shared.begin(), shared.end());
    return options;
}

const ArgumentSpec meetingAccount = {"ID", "The account's identifier, or its service",
                                     ValueKind::meetingAccountOrService};

const ArgumentSpec meeting = {"MEETING", "The meeting's identifier, as `zelto meeting create` prints it"};

// What every command about a meeting takes; some write its fields.
std::vector<OptionSpec> withMeetingOptions(bool writesFields) {
    std::vector<OptionSpec> options;
    if (writesFields) {
        options = {{"--title", "TEXT", "What the meeting is called"},
                   {"--start", "ISO8601",
                    "When it begins, with a zone: 2026-03-05T14:00Z or 2026-03-05T14:00+01:00"},
                   {"--end", "ISO8601", "When it ends, in the same form"}};
    }
    const std::vector<OptionSpec> shared = {
        {"--dry-run", "",
         "Send nothing; show the request, without secrets, and each limit of the service that it would pass"},
        {"--timeout", "SECONDS", "Give up when for so long fewer than 64 KiB have moved [120]"},
        realAccount};
    options.insert(options.end(), shared.begin(), shared.end());
    return options;
}

const std::vector<CommandSpec> table = {
    {"services",
     "List the services",
     "Lists every service: its name, how an account of it is connected (by the application on this machine, "
     "by a sign-in, or by a permission of the system), and whether this program can export to it yet. "
     "Wherever a service is asked for, its name goes in any case and without its blanks.",
     {},
     {},
     {"zelto services", "zelto services --json"}},
    {"connect",
     "Connect an account",
     "Connects an account of a service. A service on the web shows its page in the browser, where you sign "
     "in "
     "and agree; credentials that you have already are taken by --token, --login or $ZELTO_TOKEN instead. "
     "They are kept in the key chain. With --sandbox it becomes an account of the sandbox, which is used with "
     "one alone. With --folder, iCloud Drive is a folder that another program keeps synchronised, and "
     "Evernote a folder of files that it imports. An application on this machine needs no sign-in, and need "
     "not be connected before its first export either; --name tells several accounts of one application apart.",
     {{"SERVICE", "The service", ValueKind::service}},
     withSignInOptions(
         {{"--name", "USER", "The account's name, where the service does not say it"},
          {"--folder", "DIR", "For iCloud Drive and Evernote: the folder that gets the files of exports",
           ValueKind::directory}}),
     {"zelto connect bear", "zelto connect things --name work", "zelto connect icloud --folder iCloud",
      "printf %s my-token | zelto connect zoom --name work --token -"}},
    {"reconnect",
     "Sign in to a connected account again",
     "Gives a connected account a new sign-in, for when its service does not accept the old one any more. It "
     "must be the same user's; what is remembered of the account stays. Takes what `zelto connect` takes. A "
     "sign-in in a sandbox makes it an account of the sandbox.",
     {onlyAccount},
     withSignInOptions({realAccount}),
     {"printf %s new-token | zelto reconnect Zoom+work --token -",
      "printf %s other-token | zelto reconnect Zoom+work --token - --expires-in 3600"}},
    {"accounts",
     "List the connected accounts",
     "Lists the connected accounts in the order of their connection: the identifier that --to takes, and "
     "which account of its service was used last. Those that were connected with --sandbox come behind the "
     "others (with --json, as \"sandboxAccounts\"); they are used with a sandbox alone.",
     {},
     {},
     {"zelto accounts", "zelto accounts --json"}},
    {"accounts remove",
     "Remove an account",
     "Removes an account and its secrets from this machine, with those that `zelto accounts restore` would "
     "bring back. Nothing is changed on the service.",
     {onlyAccount},
     {},
     {"zelto accounts remove Bear", "zelto accounts remove Things+work"}},
    {"accounts restore",
     "Bring back an account's wiped tokens",
     "Brings back the tokens of an account that its service did not renew. Whatever the reason, an account "
     "loses its tokens then; but a service that was only out of order may still take them. They are kept for "
     "seven days, beside the account's secrets in the key chain, and erased earlier by a new sign-in or when "
     "the account is removed. Nothing is brought back over tokens that the account has.",
     {onlyAccount},
     {},
     {"zelto accounts restore Zoom+work", "zelto accounts restore Trello+me@example.org --json"}},
    {"targets",
     "Show what exports can go into",
     "Lists what an account's exports can be put into, with identifiers: boards and their lists, projects, "
     "folders or what else the service has. They are remembered from when the account was connected; --refresh asks the service again. "
     "`zelto export --target` takes their names or identifiers.",
     {{"ID", "The account's identifier, or its service", ValueKind::accountOrService}},
     {{"--refresh", "", "Ask the service, whatever is remembered"},
      {"--paths", "", "Print one path a line, as --target takes it"},
      realAccount},
     {"zelto targets trello", "zelto targets Trello+me@example.org --json"}},
    {"config",
     "Show what an export would start with",
     "Prints the configuration that the service's exporter offers for a mail, as JSON: the title, the form "
     "(saveAs) and whatever else the service takes. With --names it has names where the record has numbers "
     "and identifiers. Saved to a file and edited, it goes back in by `zelto export --config FILE`, in either "
     "form; `zelto export --config-over FILE` takes some members of it alone.",
     {mail},
     {to,
      target,
      {"--names", "", "Write names of types, targets and attachments, and dates like 2026-03-05T14:00:00Z"},
      webLink,
      realAccount},
     {"zelto config examples/mails/project-kickoff.eml --to bear",
      "zelto config examples/mails/project-kickoff.eml --to things --names > things.json"}},
    {"preview",
     "Show what would be sent",
     "Prints the text or the link that an export in that form would send, and sends nothing.",
     {mail},
     {to, previewedAs, webLink, realAccount},
     {"zelto preview examples/mails/project-kickoff.eml --to bear --as emailBacklink",
      "zelto preview examples/mails/project-kickoff.eml --to things --as backLink"}},
    {"export",
     "Send a mail or a meeting note to a service",
     "Sends one mail or meeting note to a service, which makes a task, a note or the like of it. Without "
     "options "
     "it goes as the exporter offers it; options change single fields of that, --config-over some "
     "and --config all of them. An application is reached by a URL, which is opened by xdg-open or by the program of --opener; "
     "the export has worked if that ends with status 0. Ctrl-C cancels an export; what is on the service by "
     "then stays there and is named.",
     {mail},
     {to,
      exportedAs,
      exportTarget,
      {"--title", "TEXT", "The title instead of the mail's subject"},
      {"--note", "TEXT", "A note of your own, before the mail's text"},
      {"--tags", "A,B", "Tags, separated by commas"},
      {"--due", "ISO8601", "The due date, like 2026-03-05T14:00; without a zone (Z, +02:00) in local time"},
      {"--deadline", "ISO8601", "The deadline, like 2026-03-05"},
      {"--visibility",
       "WHO",
       "Who may open the web link, for the forms that link to the message on the web",
       ValueKind::text,
       {"onlyMe", "anyone", "team"}},
      {"--team", "ID", "The number of the team that may open the web link, with --visibility team"},
      {"--policy",
       "POLICY",
       "What becomes of files that the service has under the same names; without it the export fails then",
       ValueKind::text,
       {"keepBoth", "overrideExisting"}},
      {"--attach", "all|none|NAME", "Which attachments go along", ValueKind::text, {}, true},
      {"--contacts",
       "WHOSE",
       "Which addresses of the mail it belongs to as contacts, for a service that keeps contacts; a contact "
       "that is missing is made. This and the next three are remembered",
       ValueKind::text,
       {"senderOnly", "allExternalRecipients", "none"}},
      {"--stage", "ID|LABEL",
       "The lifecycle stage of the contacts that are made: one that `zelto targets` lists, or none",
       ValueKind::target},
      {"--status", "STATUS",
       "The lead status of the contacts that are made, like \"in progress\", or none; a wrong one lists all"},
      {"--meeting", "", "Make a meeting of a meeting note too, with the contacts"},
      {"--config", "FILE", "The whole configuration, as `zelto config` prints it with or without --names",
       ValueKind::file},
      {"--config-over", "FILE",
       "Some members of the configuration, each of which replaces the one that is there as a whole; null "
       "clears it",
       ValueKind::file},
      webLink,
      {"--opener", "COMMAND", "Opens the URL, given as its last argument; - prints the URL instead",
       ValueKind::command},
      {"--pdf-converter", "COMMAND", "Makes PDF files of mails: run as COMMAND IN.html OUT.pdf",
       ValueKind::command},
      {"--dry-run", "",
       "Do all but the last step: nothing is opened, sent or remembered. The URL is printed, or each request "
       "to a service on the web, without secrets, and each limit of the service that it would pass"},
      {"--timeout", "SECONDS",
       "Give up when for so long no step has ended and fewer than 64 KiB have moved [600]"},
      {"--progress",
       "KIND",
       "How progress is shown on standard error; a bar is shown on a terminal only",
       ValueKind::text,
       {"bar", "json", "none"}},
      realAccount},
     {"zelto export examples/mails/project-kickoff.eml --to things --due 2026-12-24T09:00:00Z --opener -",
      "zelto export examples/mails/project-kickoff.eml --to bear --tags work,mail --note 'Call back' "
      "--dry-run",
      "zelto export - --to agenda --as backLink --opener - < examples/mails/plain-note.eml"}},
    {"files",
     "List the files of a cloud drive",
     "Lists what is in a folder of a connected drive: folders first, each file as `zelto fetch` takes it, its "
     "identifier and its name. Without FOLDER it lists the drive's root.",
     {{"ID", "The account's identifier, or its service", ValueKind::accountOrService},
      {"FOLDER",
       "A folder's identifier, as this command lists it; for Dropbox its path does too",
       ValueKind::text,
       {},
       true}},
     {realAccount},
     {"zelto files dropbox", "zelto files Dropbox+me@example.org /Reports --json"}},
    {"fetch",
     "Bring files of a cloud drive to this machine",
     "Downloads files of a connected drive into a folder, side by side, and prints the path of each. A name "
     "that is taken there gets a number, like \"report (1).pdf\": no file is replaced. What comes lies there "
     "as NAME.part until it is whole. Ctrl-C cancels and leaves nothing of what had not come whole.",
     {{"ID", "The account's identifier, or its service", ValueKind::accountOrService},
      {"FILE_ID:NAME",
       "A file's identifier and the name that it gets, as `zelto files` lists them; the last colon parts them",
       ValueKind::text,
       {},
       false,
       true}},
     {{"--out", "DIR", "The folder that the files are put into; made if it is missing", ValueKind::directory},
      {"--timeout", "SECONDS",
       "Give up when for so long no file has ended and fewer than 64 KiB have moved [600]"},
      {"--progress",
       "KIND",
       "How progress is shown on standard error; a bar is shown on a terminal only",
       ValueKind::text,
       {"bar", "json", "none"}},
      realAccount},
     {"zelto fetch dropbox id:a4ayc_80_OEAAAAAAAAAXw:report.pdf --out reports",
      "zelto fetch Dropbox+me@example.org id:a4ayc_80_OEAAAAAAAAAXw:report.pdf "
      "id:a4ayc_80_OEAAAAAAAAAXx:photo.png --json"}},
    {"meeting",
     "Make online meetings",
     "Lists the commands that make, change and delete meetings on Zoom, GoTo and Microsoft Teams.",
     {},
     {},
     {"zelto meeting", "zelto meeting create --help"}},
    {"meeting create",
     "Make a meeting",
     "Makes an online meeting and prints the link for those who join, the text with call information for an "
     "event, and the meeting's identifier, which the other commands take. Without both --start and --end it is "
     "a meeting at no fixed time: on Zoom and GoTo then neither date goes out, on Microsoft Teams the one that "
     "is given does.",
     {meetingAccount},
     withMeetingOptions(true),
     {"zelto meeting create zoom --title 'Weekly' --start 2026-12-24T10:00:00Z --end 2026-12-24T10:45:00Z",
      "zelto meeting create zoom --title 'Open house' --json"}},
    {"meeting update",
     "Change a meeting",
     "Writes a meeting anew, as `zelto meeting create` would make it with the same options, of --title, --start "
     "and --end at least one: what is left out is not kept by Zoom and GoTo; Microsoft Teams keeps it.",
     {meetingAccount, meeting},
     withMeetingOptions(true),
     {"zelto meeting update zoom 92674392836 --title 'Weekly' --start 2026-12-24T11:00:00+01:00 --end "
      "2026-12-24T12:00:00+01:00",
      "zelto meeting update Zoom+work 92674392836 --title 'Open house' --json"}},
    {"meeting delete",
     "Delete a meeting",
     "Deletes a meeting on its service.",
     {meetingAccount, meeting},
     withMeetingOptions(false),
     {"zelto meeting delete zoom 92674392836", "zelto meeting delete zoom 92674392836 --dry-run"}},
    {"sandbox",
     "Stand in for the services on this machine",
     "Listens on this machine alone and responds like the outside services do, so that everything can be "
     "tried without an account anywhere: the sign-ins of all services, and what exports send to those that "
     "`zelto services` lists as ready. Commands reach it by --sandbox. Its address shows in a browser what each service received. Nothing is kept: it ends, with "
     "all that it holds, by Ctrl-C.",
     {},
     {{"--port", "N", "The port to listen at; 0 takes a free one [8377]"},
      {"--consent",
       "KIND",
       "What its consent pages do: ask a person, or agree or refuse at once [ask]",
       ValueKind::text,
       {"ask", "allow", "deny"}}},
     {"zelto sandbox --port 0", "zelto sandbox --port 0 --consent allow --json"}},
    {"mcp",
     "Talk to a Model Context Protocol server",
     "Lists the commands that ask a server of the Model Context Protocol (streamable HTTP) for its tools and "
     "call them. Each begins a session, and ends it before the program ends.",
     {},
     {},
     {"zelto mcp", "zelto mcp call --help"}},
    {"mcp ping",
     "See whether a server responds",
     "Connects to a server, pings it and shows its name and version.",
     {mcpServer},
     withMcpOptions({}),
     {"zelto mcp ping http://127.0.0.1:3001/mcp", "zelto mcp ping http://127.0.0.1:3001/mcp --repeat 100"}},
    {"mcp tools",
     "List a server's tools",
     "Lists the tools of a server: the name that `zelto mcp call` takes, and what the server says of it. "
     "With --json the form of the arguments is there too.",
     {mcpServer},
     withMcpOptions({}),
     {"zelto mcp tools http://127.0.0.1:3001/mcp", "zelto mcp tools http://127.0.0.1:3001/mcp --json"}},
    {"mcp call",
     "Call a tool",
     "Calls a tool and shows its result. Text is printed; images, sounds and files are saved with --out, "
     "under names of their own, never over a file that is there, and nothing is opened or run. What this "
     "program does not know is shown as JSON. Control characters are shown as escapes, but for line ends and "
     "tabs of text; --json has all as it came.",
     {mcpServer, {"TOOL", "The tool's name, as `zelto mcp tools` lists it"}},
     withMcpOptions({{"--args", "JSON|@FILE", "The tool's arguments, or the file that holds them"},
                     {"--out", "DIR", "Where images, sounds and files are saved", ValueKind::directory}}),
     {"zelto mcp call http://127.0.0.1:3001/mcp echo --args '{\"message\":\"hello\"}'",
      "echo 'Authorization: Bearer secret' | zelto mcp call http://127.0.0.1:3001/mcp echo --args "
      "'{\"message\":\"hello\"}' --header-stdin --out results"}},
    {"completion",
     "Print a shell's completions",
     "Prints what makes a shell complete this program's commands, options, accounts and files.",
     {{"SHELL", "The shell", ValueKind::text, {"bash", "zsh", "fish"}}},
     {},
     {"source <(zelto completion bash)", "mkdir -p ~/.config/fish/completions && zelto completion fish > "
                                         "~/.config/fish/completions/zelto.fish"}},
};

const std::vector<OptionSpec> global = {
    {"--data-dir", "DIR", "Where accounts are kept [$XDG_DATA_HOME/zelto]", ValueKind::directory},
    {"--keychain", "KIND", "Where secrets are kept", ValueKind::text, {"secret-service", "file", "memory"}},
    {"--json", "", "Print exactly one JSON document, whatever the outcome"},
    {"--sandbox", "URL",
     "Take the sandbox at this address (`zelto sandbox`) for all services on the web [$ZELTO_SANDBOX]"},
    {"--quiet", "", "Print nothing but what was asked for"},
    {"--verbose", "",
     "Show the log on standard error, with each request: its method, host, path, status, milliseconds and "
     "bytes; secrets are masked"},
    {"--help", "", "Show help for the command"},
    {"--version", "", "Show the version"},
};

} // namespace

std::string shownName(const ArgumentSpec& argument) {
    const auto name = std::string(argument.name) + (argument.repeatable ? "..." : "");
    return argument.isOptional ? "[" + name + "]" : name;
}

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
